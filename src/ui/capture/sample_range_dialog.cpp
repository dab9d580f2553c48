#include "ui/capture/sample_range_dialog.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "ui/framework/window_timer.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <initializer_list>

namespace busquill {

namespace {

constexpr int period = 500; // milliseconds between checks for samples that are still being fetched

} // namespace

CSampleRangeDialog::CSampleRangeDialog(QWidget* parent, const SampleRange& range, int percent,
                                       Prompts& prompts, const MainThread& mainThread)
    : QDialog(parent), range_(range), prompts_(prompts), rows_(new QVBoxLayout),
      start_(new QLineEdit), end_(new QLineEdit), all_(new QPushButton("&All")),
      progress_(new QProgressBar), percent_(new QLabel(QString("%1%").arg(percent))),
      timer_(new WindowTimer(this, mainThread, [this] { Tick(); })) {
    start_->setObjectName("Start");
    end_->setObjectName("End");
    percent_->setObjectName("Percent");

    auto* samples = new QGroupBox("Samples");
    auto* fields = new QFormLayout;
    fields->addRow("Start", start_);
    fields->addRow("End", end_);
    auto* sampleRow = new QHBoxLayout(samples);
    sampleRow->addLayout(fields);
    sampleRow->addWidget(all_, 0, Qt::AlignTop);

    progress_->setTextVisible(false);
    progress_->setValue(0);
    percent_->setMinimumWidth(percent_->fontMetrics().horizontalAdvance("100%"));
    auto* progressRow = new QHBoxLayout;
    progressRow->addWidget(progress_);
    progressRow->addWidget(percent_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    cancel_ = buttons->button(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &CSampleRangeDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CSampleRangeDialog::reject);
    connect(all_, &QPushButton::clicked, this, &CSampleRangeDialog::ShowAll);

    rows_->addWidget(samples);
    rows_->addLayout(progressRow);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows_);
    layout->addWidget(buttons);
    ShowAll();
}

void CSampleRangeDialog::OrderTabs(QWidget* before, QWidget* after) {
    QWidget* last = before;
    for (QWidget* each : std::initializer_list<QWidget*>{start_, end_, all_, after, ok_, cancel_}) {
        if (each != nullptr) {
            if (last != nullptr) {
                setTabOrder(last, each);
            }
            last = each;
        }
    }
    start_->setFocus();
}

void CSampleRangeDialog::ShowAll() {
    start_->setText(QString::number(-range_.before));
    end_->setText(QString::number(range_.after));
}

void CSampleRangeDialog::SetEditable(bool editable) {
    for (QWidget* control : std::initializer_list<QWidget*>{ok_, start_, end_, all_}) {
        control->setEnabled(editable);
    }
}

void CSampleRangeDialog::accept() {
    OnOk();
    const std::int64_t first = ParseInt(start_->text().toStdString());
    const std::int64_t last = ParseInt(end_->text().toStdString());
    if (const auto wrong = CheckSampleRange(first, last, range_.before, range_.after)) {
        prompts_.Message(*wrong);
        return;
    }
    SetEditable(false);
    if (const auto failure = Begin(first, last)) {
        Fail(*failure);
        return;
    }
    working_ = true;
    progress_->setValue(0);
    if (Waits()) {
        timer_->start(period);
    } else {
        Tick();
    }
}

void CSampleRangeDialog::Tick() {
    switch (Work()) {
    case SampleStep::More:
        timer_->start(0);
        break;
    case SampleStep::Waiting:
        timer_->start(period);
        break;
    case SampleStep::Done:
        End();
        QDialog::accept();
        return;
    case SampleStep::Failed:
        Fail(FailureText());
        return;
    case SampleStep::Nothing:
        Fail("There are no samples to save in this range: the filter hides them, or they are "
             "missing.");
        return;
    case SampleStep::Missing:
        Fail(Printf("Sample %d has not come from the analyzer, and the upload has ended.",
                    static_cast<int>(NextNumber())));
        return;
    }
    progress_->setValue(Progress());
    percent_->setText(QString("%1%").arg(Progress()));
}

void CSampleRangeDialog::End() {
    timer_->stop();
    working_ = false;
}

/// Reports what went wrong and lets the user try another range.
void CSampleRangeDialog::Fail(const std::string& message) {
    End();
    Abandon(true);
    prompts_.Message(message);
    SetEditable(true);
}

void CSampleRangeDialog::reject() {
    if (working_) {
        End();
        Abandon(false);
    }
    QDialog::reject();
}

} // namespace busquill
