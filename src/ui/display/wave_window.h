#pragma once

#include "ui/display/trace_display.h"
#include "ui/display/wave_painter.h"

namespace busquill {

class Prompts;
class Settings;
struct SampleSpan;

/// The waveforms: a band for each signal, time to the right.
class CWaveformWnd final : public TraceDisplay {
    Q_OBJECT
public:
    /// Without prompts there is no menu on the bands.
    CWaveformWnd(QWidget* parent, const Settings& settings, Prompts* prompts = nullptr);

    /// The bands take the heights of their signals.
    void Attach(CTesselDoc& document, CSignalList& list, bool zoom) override;

    [[nodiscard]] int Zoom() const noexcept { return zoom_; }
    /// Keeps the first sample at the left edge.
    void SetZoom(int zoom);
    /// Keeps the sample that shows at `x` there; the first one, if none shows at `x`.
    void SetZoomAt(int zoom, int x);
    [[nodiscard]] const WavePlace& Place() const noexcept { return place_; }
    [[nodiscard]] const BandPlace& Top() const noexcept { return top_; }
    [[nodiscard]] int NameWidth() const noexcept { return nameWidth_; }
    [[nodiscard]] int ValueWidth() const noexcept { return valueWidth_; }

    [[nodiscard]] std::int64_t FirstSample() const override { return firstSample_; }
    [[nodiscard]] std::int64_t LastSample() const override;
    [[nodiscard]] std::int64_t LastClickableSample() const override;
    [[nodiscard]] std::int64_t LastDrawnSample() const override;
    [[nodiscard]] std::int64_t CenterSample() const override;
    [[nodiscard]] std::int64_t VisibleSampleCount() const override;
    void ScrollToSample(std::int64_t sample) override;
    [[nodiscard]] BarState SampleBar() const override;
    void StepSamples(bool forward) override;
    void PageSamples(bool forward) override;
    void MoveSamplesTo(int position) override;
    [[nodiscard]] PrintFailure Print(QPrinter& printer, const PrintJob& job) override;
    [[nodiscard]] bool CanCopy() const override { return RowCount() > 0; }
    /// The picture of the window.
    [[nodiscard]] std::string Copy() override;
    [[nodiscard]] BarState SignalBar() const override;
    void StepSignals(bool forward) override;
    void PageSignals(bool forward) override;
    void MoveSignalsTo(int position) override;
    void RenderMarkers() override;
    void SamplesChanged() override;

protected:
    void DrawFrame(QPainter& painter) override;
    void RenderNames() override;
    [[nodiscard]] bool AimAtNames(const QPoint& place) override;
    /// With the gaps between bands, which the scroll bar's position does not count.
    [[nodiscard]] int NamesOffset() const override;
    [[nodiscard]] PlaceTip NameTip(const CSignal& signal, int start) const override;
    [[nodiscard]] PlaceTip CellTip(const QPoint& place) override;
    [[nodiscard]] QPoint NamePlace(int along) const override { return {nameWidth_ / 2, along}; }
    /// Sets a marker on the sample at a place, or clears it if it is already there.
    void PressCell(const QPoint& place, Qt::MouseButton button) override;
    void ShowCursor(const QPoint& place) override;
    /// Nothing to do: the bands' position is limited when they are scrolled.
    void KeepOffset() override {}
    [[nodiscard]] std::uint32_t OfferMode() const override;
    /// Nothing to do: a band keeps its height whatever it shows.
    void SignalReshaped(CSignal& /*signal*/) override {}
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    enum class Resizing { Nothing, Name, Value };

    [[nodiscard]] WaveScale Scale() const;
    /// The row for a click at `x` in the waves.
    [[nodiscard]] std::int64_t RowAt(int x) const;
    [[nodiscard]] int BandsRoom() const;
    [[nodiscard]] std::optional<WaveBand> BandAt(int y) const;
    [[nodiscard]] WaveFrame Frame();
    /// The samples of the bookmarks whose line is at one of the pixels that end with `x`.
    [[nodiscard]] SampleSpan BookmarksAt(int x, int pixels) const;
    void SetPlace(const WavePlace& place);
    void SetTop(const BandPlace& top);
    void NoteFirstSample();
    void RenderWaves();
    void RenderValues();
    [[nodiscard]] Resizing EdgeAt(int x) const;
    void ResizeColumn(int x);

    const QFont titleFont_;
    const int smallestColumn_;
    int zoom_ = startZoom;
    WavePlace place_;
    std::int64_t firstSample_ = 0;
    BandPlace top_;
    int nameWidth_ = 75;
    int valueWidth_ = 50;
    Resizing resizing_ = Resizing::Nothing;
};

} // namespace busquill
