#pragma once

#include "capture/trace_document.h"
#include "ui/display/trace_frame.h"
#include "ui/framework/mdi_child.h"

namespace busquill {

class CTraceView;
class Settings;

/// The window around one view of a trace: a State, Waveform or Power Zoom frame, as it was made.
class CChildFrame final : public CMDIChildWnd, public TraceFrame {
    Q_OBJECT
public:
    /// `clientWidth` is the width of the main frame's client area.
    CChildFrame(CTesselDoc& document, TraceViewKind kind, int clientWidth,
                const Settings& settings);

    [[nodiscard]] bool IsStateFrame() const noexcept { return isState_; }
    [[nodiscard]] bool IsZoomFrame() const noexcept { return isZoom_; }
    [[nodiscard]] CTraceView& TraceView() const;
    [[nodiscard]] QString GetTitle() const { return windowTitle(); }

    void SetTitleName(const std::string& name) override;
    void SetComment(const std::string& text) override;

    /// Replaces the view by one of the other kind that has the same sample in its centre.
    void SwitchDisplay(bool toState);

private:
    [[nodiscard]] CTraceView* MakeView();
    void UpdateTitle();

    const Settings& settings_;
    bool isState_;
    bool isZoom_;
    QString titleKind_;
    QString titleName_ = "New";
    QString titleComment_;
};

} // namespace busquill
