#pragma once

#include "capture/trace_writer.h"
#include "ui/capture/sample_range_dialog.h"

#include <memory>
#include <string>

namespace busquill {

class CTesselDoc;

/// Asks for a range of samples and saves it.
class CSaveTraceDialog final : public CSampleRangeDialog {
    Q_OBJECT
public:
    CSaveTraceDialog(QWidget* parent, CTesselDoc& document, std::string path, Prompts& prompts,
                     const MainThread& mainThread);
    ~CSaveTraceDialog() override;

protected:
    [[nodiscard]] std::optional<std::string> Begin(std::int64_t first, std::int64_t last) override;
    [[nodiscard]] SampleStep Work() override;
    [[nodiscard]] int Progress() const override { return writer_->Progress(); }
    [[nodiscard]] std::int64_t NextNumber() const override { return writer_->NextNumber(); }
    [[nodiscard]] std::string FailureText() const override;
    void Abandon(bool failed) override;

private:
    CTesselDoc& document_;
    const std::string path_;
    std::unique_ptr<TraceFileWriter> writer_; // a new one for each attempt
};

} // namespace busquill
