#pragma once

#include "ui/framework/printing.h"
#include "ui/framework/view.h"
#include "ui/framework/wheel_turns.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

class QPrinter;
class QScrollBar;

namespace busquill {

class CAnalyzerLink;
class CSignalList;
class CTesselDoc;
class CTraceStatusDialog;
class CWaveformWnd;
class MainThread;
class Prompts;
class Settings;
class TraceDisplay;
class TraceFrame;
struct PrintJob;
struct RunState;

enum class SearchDirection;
enum class GoToTarget { Trigger, Marker1, Marker2, Start, End };

/// What a trace view works with; all outlive it. A view of a file needs only the settings.
struct TraceViewParts {
    Settings& settings;
    CAnalyzerLink* link = nullptr;
    Prompts* prompts = nullptr;             // without it there is no menu on signals
    const MainThread* mainThread = nullptr; // without these two nothing is printed
    PrinterChoice* printer = nullptr;
};

/// The view of a captured trace: scroll bars around one display of its samples, kept in step with
/// the document's other views.
class CTraceView final : public CView {
    Q_OBJECT
public:
    CTraceView(QWidget* parent, bool isState, bool isZoom, const TraceViewParts& parts);
    ~CTraceView() override;

    /// The window around the view; it outlives the view.
    void SetFrame(TraceFrame* frame) { frame_ = frame; }
    [[nodiscard]] bool IsState() const noexcept { return isState_; }
    [[nodiscard]] bool IsZoom() const noexcept { return isZoom_; }
    [[nodiscard]] CTesselDoc& Trace() const;
    /// The signals that are shown.
    [[nodiscard]] const CSignalList& List() const { return ListOf(Trace()); }

    [[nodiscard]] std::int64_t TopSample() const;
    [[nodiscard]] std::int64_t CenterSample() const;
    /// Centres a sample.
    void ShowSample(std::int64_t sample);
    /// Makes a sample the first one shown, as far as the capture's end allows.
    void ScrollToSample(std::int64_t sample);

    [[nodiscard]] bool CanGoTo(GoToTarget target) const;
    /// Moves every view of the same samples to the target.
    void GoTo(GoToTarget target);
    /// Puts a marker on the sample in the middle, or removes it from there.
    void PutMarker(int which);

    /// The sample that the user looks at: that of marker 1 if it shows, else the one in the middle.
    [[nodiscard]] std::int64_t CurrentSample() const;
    /// Takes all views of the capture to the next bookmark, or the previous one: from the one that
    /// they were last taken to if it still shows, else from the middle.
    [[nodiscard]] bool CanGoToBookmark(bool forward) const;
    void GoToBookmark(bool forward);

    [[nodiscard]] bool CanSearchSamples() const;
    [[nodiscard]] bool CanFilterSamples() const;
    /// Asks for the number of a sample and goes there.
    void GoToNumber();
    /// Asks for the pattern that Find looks for.
    void FindPattern();
    /// Sets marker 1 to the next match, or reports that there is none.
    void Find(SearchDirection direction);
    void Filter();

    /// Only waveforms can be zoomed, within limits.
    [[nodiscard]] bool CanZoom(bool in) const;
    void Zoom(bool in);
    /// Zooms by one step and keeps the sample at `x` of the waves where it is.
    void ZoomAt(bool in, int x);

    /// Copies the marked rows of a listing, or the picture of waveforms.
    void Copy();

    /// Asks for a range of samples and prints it, or shows it in the preview.
    void Print(bool preview);
    /// Prints samples in the pages that the printer is set to.
    [[nodiscard]] PrintFailure PrintTo(QPrinter& printer, const PrintJob& job);

    [[nodiscard]] QSize sizeHint() const override { return {830, 380}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {240, 120}; }

    void OnInitialUpdate() override;
    void OnUpdate(DocumentView* sender, int hint, const HintObject* object) override;

signals:
    /// The view has followed a change of its document.
    void Updated(int hint);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] CSignalList& ListOf(CTesselDoc& document) const;
    [[nodiscard]] std::int64_t RowCount() const;
    void MakeCommands();
    void LayOut();
    void SetScrollBars();
    void SetSamplePosition();
    void SampleAction(int action);
    void SignalAction(int action);
    void MoveColumns(int notches);
    void ZoomAction(int action);
    void ShowZoom();
    void StepSamples(bool forward);
    void PageSamples(bool forward);
    void MarkerChanged(int which);
    void BlockArrived(const HintObject* object);
    void Synchronise();
    [[nodiscard]] bool Shows(std::int64_t sample) const;
    [[nodiscard]] std::int64_t MiddleSample() const;
    [[nodiscard]] std::optional<std::int64_t> BookmarkBeside(bool forward) const;
    void RefreshFrameName();
    void ShowTimes();
    void CaptureStarted();
    void ShowFilling();
    void ShowWholeCapture();
    void ReportWindow();
    void ReportBookmarks();
    void ShowCounts(std::int64_t before, std::int64_t after);
    void ShowRun();
    void FollowStatus(const RunState& state);

    const TraceViewParts parts_;
    const bool isState_;
    const bool isZoom_;
    TraceFrame* frame_ = nullptr;
    QScrollBar* vScroll_;
    QScrollBar* hScroll_;
    QScrollBar* zoomScroll_ = nullptr; // null in a listing
    CWaveformWnd* wave_ = nullptr;     // null in a listing
    TraceDisplay* display_;
    WheelTurns wheel_;
    std::unique_ptr<CTraceStatusDialog> statusDialog_;
    bool showStatus_ = false;
};

} // namespace busquill
