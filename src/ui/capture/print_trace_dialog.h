#pragma once

#include "ui/capture/sample_range_dialog.h"

#include <optional>

class QCheckBox;

namespace busquill {

class CTesselDoc;
class Settings;

/// Asks for the range of samples to be printed, and waits until they have been uploaded.
class CPrintTraceDlg final : public CSampleRangeDialog {
    Q_OBJECT
public:
    CPrintTraceDlg(QWidget* parent, CTesselDoc& document, bool isState, bool isZoom,
                   Settings& settings, Prompts& prompts, const MainThread& mainThread);

    /// The chosen samples by their indexes, as far as there are such samples. The last is before
    /// the first if there are none.
    [[nodiscard]] std::int64_t First() const;
    [[nodiscard]] std::int64_t Last() const;
    [[nodiscard]] bool ScalesToPage() const;

protected:
    void OnOk() override;
    [[nodiscard]] std::optional<std::string> Begin(std::int64_t first, std::int64_t last) override;
    [[nodiscard]] bool Waits() const override { return !isZoom_ && range_.hasSamples; }
    [[nodiscard]] SampleStep Work() override;
    [[nodiscard]] int Progress() const override { return wait_->Progress(); }
    [[nodiscard]] std::int64_t NextNumber() const override { return wait_->Next() - range_.before; }
    void Abandon(bool /*failed*/) override {}

private:
    CTesselDoc& document_;
    const bool isZoom_;
    Settings& settings_;
    const char* const scaleKey_;
    QCheckBox* scale_;
    std::int64_t first_ = 0; // numbers
    std::int64_t last_ = 0;
    std::optional<SampleWait> wait_;
};

} // namespace busquill
