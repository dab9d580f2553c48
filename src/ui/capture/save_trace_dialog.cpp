#include "ui/capture/save_trace_dialog.h"

#include "capture/trace_document.h"
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

namespace busquill {

namespace {

constexpr int period = 500; // milliseconds between checks for samples that are still being fetched
/// Rows that are written before events are handled again.
constexpr std::size_t rowsAtOnce = 50000;

} // namespace

CSaveTraceDialog::CSaveTraceDialog(QWidget* parent, CTesselDoc& document, std::string path,
                                   Prompts& prompts, const MainThread& mainThread)
    : QDialog(parent), document_(document), path_(std::move(path)), prompts_(prompts),
      writer_(std::make_unique<TraceFileWriter>(document)), start_(new QLineEdit),
      end_(new QLineEdit), all_(new QPushButton("&All")), progress_(new QProgressBar),
      percent_(new QLabel("100%")), timer_(new WindowTimer(this, mainThread, [this] { Tick(); })) {
    setWindowTitle("Save Trace");
    auto* file = new QLineEdit(QString::fromStdString(path_));
    file->setObjectName("Save File");
    file->setReadOnly(true);
    file->setMinimumWidth(file->fontMetrics().averageCharWidth() * 48);
    start_->setObjectName("Start");
    end_->setObjectName("End");
    percent_->setObjectName("Percent");

    auto* samples = new QGroupBox("Samples");
    auto* range = new QFormLayout;
    range->addRow("Start", start_);
    range->addRow("End", end_);
    auto* sampleRow = new QHBoxLayout(samples);
    sampleRow->addLayout(range);
    sampleRow->addWidget(all_, 0, Qt::AlignTop);

    progress_->setTextVisible(false);
    percent_->setMinimumWidth(percent_->fontMetrics().horizontalAdvance("100%"));
    auto* progressRow = new QHBoxLayout;
    progressRow->addWidget(progress_);
    progressRow->addWidget(percent_);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    ok_ = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &CSaveTraceDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CSaveTraceDialog::reject);
    connect(all_, &QPushButton::clicked, this, &CSaveTraceDialog::ShowAll);

    auto* fileRow = new QFormLayout;
    fileRow->addRow("Save File", file);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fileRow);
    layout->addWidget(samples);
    layout->addLayout(progressRow);
    layout->addWidget(buttons);
    ShowAll();
}

CSaveTraceDialog::~CSaveTraceDialog() = default;

void CSaveTraceDialog::ShowAll() {
    start_->setText(QString::number(-writer_->Before()));
    end_->setText(QString::number(writer_->After()));
}

void CSaveTraceDialog::SetEditable(bool editable) {
    for (QWidget* control : std::initializer_list<QWidget*>{ok_, start_, end_, all_}) {
        control->setEnabled(editable);
    }
}

void CSaveTraceDialog::accept() {
    const std::int64_t first = ParseInt(start_->text().toStdString());
    const std::int64_t last = ParseInt(end_->text().toStdString());
    if (const auto wrong = CheckSaveRange(first, last, writer_->Before(), writer_->After())) {
        prompts_.Message(*wrong);
        return;
    }
    SetEditable(false);
    if (!writer_->Begin(path_, first, last)) {
        Fail(Printf("Error creating file %s.", path_.c_str()));
        return;
    }
    saving_ = true;
    progress_->setValue(0);
    if (writer_->HasSamples()) {
        timer_->start(period);
    } else {
        Tick();
    }
}

void CSaveTraceDialog::Tick() {
    switch (writer_->Write(rowsAtOnce)) {
    case TraceFileWriter::Step::More:
        timer_->start(0);
        break;
    case TraceFileWriter::Step::Waiting:
        timer_->start(period);
        break;
    case TraceFileWriter::Step::Done:
        timer_->stop();
        saving_ = false;
        QDialog::accept();
        return;
    case TraceFileWriter::Step::Failed:
        Fail(Printf("Error writing file %s.", path_.c_str()));
        return;
    case TraceFileWriter::Step::Missing:
        Fail(Printf("Sample %d has not come from the analyzer, and the upload has ended.",
                    static_cast<int>(writer_->NextNumber())));
        return;
    }
    progress_->setValue(writer_->Progress());
    percent_->setText(QString("%1%").arg(writer_->Progress()));
}

/// Reports what went wrong and lets the user try another range.
void CSaveTraceDialog::Fail(const std::string& message) {
    timer_->stop();
    saving_ = false;
    writer_ = std::make_unique<TraceFileWriter>(document_);
    prompts_.Message(message);
    SetEditable(true);
}

void CSaveTraceDialog::reject() {
    if (saving_) {
        timer_->stop();
        saving_ = false;
        writer_->Abort();
    }
    QDialog::reject();
}

} // namespace busquill
