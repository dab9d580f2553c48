#pragma once

#include "capture/trace_document.h"
#include "ui/display/trace_frame.h"
#include "ui/framework/feature.h"
#include "ui/framework/mdi_child.h"

#include <functional>

namespace busquill {

class CTraceBar;
class CTraceView;

/// What a trace frame shows.
enum class TraceViewKind { Waveform, State, PowerZoom };

/// What a frame needs from the program's traces.
struct TraceActions {
    /// Opens a real-time trace with the lists and the setup of this document.
    std::function<void(CTesselDoc&, TraceViewKind)> clone;
    /// Opens one more frame for a document.
    std::function<CMDIChildWnd&(CTesselDoc&, TraceViewKind)> addFrame;
};

/// The window around one view of a trace: a State, Waveform or Power Zoom frame. Its bar runs the
/// capture.
class CChildFrame final : public CMDIChildWnd, public TraceFrame {
    Q_OBJECT
public:
    CChildFrame(const FeatureParts& parts, TraceActions actions, CTesselDoc& document,
                TraceViewKind kind);

    [[nodiscard]] bool IsStateFrame() const noexcept { return isState_; }
    [[nodiscard]] bool IsZoomFrame() const noexcept { return isZoom_; }
    [[nodiscard]] CTraceView& TraceView() const;
    [[nodiscard]] CTesselDoc& Trace() const;
    [[nodiscard]] CTraceBar& Bar() const noexcept { return *bar_; }
    [[nodiscard]] QString GetTitle() const { return windowTitle(); }

    void SetTitleName(const std::string& name) override;
    void SetComment(const std::string& text) override;
    void ShowSetupName() override;
    void SetCounters(std::int64_t before, std::int64_t after) override;
    void SetIndicator(RunIndicator indicator, int level = -1) override;
    void SetTimes(const std::array<std::string, 3>& times) override;
    [[nodiscard]] CPositionGauge& GetGauge() override;

    /// Replaces the view by one of the other kind, with the same sample at its centre.
    void SwitchDisplay(bool toState);

private:
    [[nodiscard]] CTraceView* MakeView();
    void MakeBar();
    /// What the buttons of the bar and their keys carry out.
    void MakeCommands();
    [[nodiscard]] bool HasPowerZoom() const;
    void UpdateTitle();
    void FillSetupBox();
    void SetupChosen();
    /// Opens the dialog for the document's setup. `path` is the file it came from, or empty.
    void EditSetup(const std::string& path);
    /// Sets the file that Go reads; none if it does not exist.
    void ChooseSetupFile(const std::string& path);
    void RememberSetupFile(const std::string& path);
    void OnGo();
    void OnStop();
    void OnDisplay();
    void OnPowerZoom();
    void FocusView();

    const FeatureParts parts_;
    const TraceActions actions_;
    bool isState_;
    bool isZoom_;
    CTraceBar* bar_;
    QString titleKind_;
    QString titleName_ = "New";
    QString titleComment_;
};

} // namespace busquill
