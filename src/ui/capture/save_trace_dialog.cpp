#include "ui/capture/save_trace_dialog.h"

#include "capture/trace_writer.h"
#include "platform/text.h"
#include "ui/framework/help_page.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace busquill {

namespace {

/// Rows that are written before events are handled again.
constexpr std::size_t rowsAtOnce = 50000;

} // namespace

CSaveTraceDialog::CSaveTraceDialog(QWidget* parent, CTesselDoc& document, std::string path,
                                   Prompts& prompts, const MainThread& mainThread)
    : CSaveTraceDialog(
          parent, RangeOf(document),
          [&document] { return std::make_unique<TraceFileWriter>(document); }, std::move(path),
          prompts, mainThread) {}

CSaveTraceDialog::CSaveTraceDialog(QWidget* parent, const SampleRange& range, MakeWriter makeWriter,
                                   std::string path, Prompts& prompts, const MainThread& mainThread)
    : CSampleRangeDialog(parent, range, 100, prompts, mainThread),
      makeWriter_(std::move(makeWriter)), path_(std::move(path)), writer_(makeWriter_()) {
    setWindowTitle("Save Trace");
    SetHelpPage(*this, "capture.md#saving");
    auto* file = new QLineEdit(QString::fromStdString(path_));
    file->setObjectName("Save File");
    file->setReadOnly(true);
    file->setMinimumWidth(file->fontMetrics().averageCharWidth() * 48);
    auto* fileRow = new QFormLayout;
    fileRow->addRow("Save File", file);
    Rows().insertLayout(0, fileRow);
    OrderTabs(file, nullptr);
}

CSaveTraceDialog::~CSaveTraceDialog() = default;

std::optional<std::string> CSaveTraceDialog::Begin(std::int64_t first, std::int64_t last) {
    return writer_->Begin(path_, first, last)
               ? std::nullopt
               : std::optional(Printf("Error creating file %s.", path_.c_str()));
}

SampleStep CSaveTraceDialog::Work() {
    return writer_->Write(rowsAtOnce);
}

std::string CSaveTraceDialog::FailureText() const {
    return Printf("Error writing file %s.", path_.c_str());
}

void CSaveTraceDialog::Abandon(bool failed) {
    if (failed) {
        writer_ = makeWriter_();
    } else {
        writer_->Abort();
    }
}

} // namespace busquill
