#pragma once

#include "capture/sample_reader.h"
#include "ui/capture/sample_range_dialog.h"

#include <functional>
#include <memory>
#include <string>

namespace busquill {

class CTesselDoc;

/// Asks for a range of samples and saves it.
class CSaveTraceDialog final : public CSampleRangeDialog {
    Q_OBJECT
public:
    using MakeWriter = std::function<std::unique_ptr<SampleWriter>()>;

    /// Saves a trace file.
    CSaveTraceDialog(QWidget* parent, CTesselDoc& document, std::string path, Prompts& prompts,
                     const MainThread& mainThread);
    /// Saves what the writers write; each attempt has its own. `range` is the one they can write.
    CSaveTraceDialog(QWidget* parent, const SampleRange& range, MakeWriter makeWriter,
                     std::string path, Prompts& prompts, const MainThread& mainThread);
    ~CSaveTraceDialog() override;

    /// What the user should know about the saved file; empty if nothing.
    [[nodiscard]] std::string Note() const { return writer_->Note(); }

protected:
    [[nodiscard]] std::optional<std::string> Begin(std::int64_t first, std::int64_t last) override;
    [[nodiscard]] SampleStep Work() override;
    [[nodiscard]] int Progress() const override { return writer_->Progress(); }
    [[nodiscard]] std::int64_t NextNumber() const override { return writer_->NextNumber(); }
    [[nodiscard]] std::string FailureText() const override;
    void Abandon(bool failed) override;

private:
    const MakeWriter makeWriter_;
    const std::string path_;
    std::unique_ptr<SampleWriter> writer_; // a new one for each attempt
};

} // namespace busquill
