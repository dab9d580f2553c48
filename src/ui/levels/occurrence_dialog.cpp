#include "ui/levels/occurrence_dialog.h"

#include "platform/prompts.h"
#include "platform/text.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace busquill {

COccurrenceCountDialog::COccurrenceCountDialog(QWidget* parent, std::int32_t count,
                                               std::uint32_t limit, Prompts& prompts)
    : QDialog(parent), prompts_(prompts), count_(count), limit_(limit),
      edit_(new QLineEdit(QString::number(count))) {
    setWindowTitle("Occurrence Count");
    auto* prompt =
        new QLabel(QString::fromStdString(Printf("Enter a value between 1 and %u:", limit)));
    prompt->setBuddy(edit_);
    edit_->selectAll();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(edit_);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::accepted, this, &COccurrenceCountDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void COccurrenceCountDialog::accept() {
    const std::uint32_t count = edit_->text().trimmed().toUInt(); // 0 if it is not a number
    if (count < 1 || count > limit_) {
        prompts_.Message(Printf("Occurence value must be between 1 and %u.", limit_));
        edit_->setFocus();
        edit_->selectAll();
        return;
    }
    count_ = static_cast<std::int32_t>(count);
    QDialog::accept();
}

} // namespace busquill
