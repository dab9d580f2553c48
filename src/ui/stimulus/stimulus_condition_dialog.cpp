#include "ui/stimulus/stimulus_condition_dialog.h"

#include "platform/prompts.h"
#include "tracesetup/trace_setup.h"
#include "ui/framework/help_page.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace busquill {

namespace {

constexpr int longest = 255; // of one byte

constexpr const char* durationRefused = "Duration must be between 1 and 255";
constexpr const char* waitRefused = "Wait must be between 1 and 255.";

} // namespace

CStimulusConditionDialog::CStimulusConditionDialog(QWidget* parent, const StimulusBranch& branch,
                                                   Prompts& prompts)
    : QDialog(parent), prompts_(prompts), branch_(branch), level_(new QComboBox),
      duration_(new QLineEdit(QString::number(branch.duration))),
      wait_(new QLineEdit(QString::number(branch.wait))) {
    setWindowTitle("Stimulus Condition");
    SetHelpPage(*this, "stimulus.md#levels");
    for (std::int32_t each = 0; each <= stimulusStop; ++each) {
        level_->addItem(QString::fromStdString(FormatStimulusGoto(each, 1, 1)));
    }
    level_->setMaxVisibleItems(level_->count());
    level_->setCurrentIndex(branch.level);
    duration_->setObjectName("Duration");
    wait_->setObjectName("Wait");
    auto* fields = new QFormLayout;
    fields->addRow("Duration", duration_);
    fields->addRow("Wait", wait_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(level_);
    layout->addLayout(fields);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::accepted, this, &CStimulusConditionDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void CStimulusConditionDialog::accept() {
    if (Read(*duration_, durationRefused, branch_.duration) &&
        Read(*wait_, waitRefused, branch_.wait)) {
        branch_.level = level_->currentIndex();
        QDialog::accept();
    }
}

bool CStimulusConditionDialog::Read(QLineEdit& edit, const char* refusal, std::int32_t& number) {
    const int read = edit.text().trimmed().toInt(); // 0 if it is not a number
    if (read < 1 || read > longest) {
        prompts_.Message(refusal);
        edit.setFocus();
        edit.selectAll();
        return false;
    }
    number = read;
    return true;
}

} // namespace busquill
