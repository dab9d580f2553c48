#pragma once

#include "ui/display/trace_display.h"
#include "ui/display/wave_painter.h"
#include "ui/patterns/header_control.h"
#include "ui/patterns/signal_menu.h"

namespace busquill {

class Prompts;
class Settings;

/// The waveforms: a band for each signal, time to the right. Draws nothing until it is
/// attached to a document.
class CWaveformWnd final : public TraceDisplay, private SignalMenuHost {
    Q_OBJECT
public:
    /// Without prompts there is no menu on the bands.
    CWaveformWnd(QWidget* parent, const Settings& settings, Prompts* prompts = nullptr);

    /// The bands keep the heights of their signals.
    void Attach(CTesselDoc& document, CSignalList& list, bool zoom) override;

    [[nodiscard]] int Zoom() const noexcept { return zoom_; }
    /// The first sample stays where it is.
    void SetZoom(int zoom);
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
    [[nodiscard]] BarState SignalBar() const override;
    void StepSignals(bool forward) override;
    void PageSignals(bool forward) override;
    void MoveSignalsTo(int position) override;
    void Render(bool blit) override;
    void RenderMarkers() override;
    void SamplesChanged() override;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    enum class Resizing { Nothing, Name, Value };

    [[nodiscard]] std::int64_t RowCount() const;
    [[nodiscard]] std::int64_t SampleOfRow(std::int64_t row) const;
    [[nodiscard]] WaveScale Scale() const;
    /// The row that a place in the waves means.
    [[nodiscard]] std::int64_t RowAt(int x) const;
    [[nodiscard]] int BandsRoom() const;
    [[nodiscard]] WaveFrame Frame();
    void SetPlace(const WavePlace& place);
    void SetTop(const BandPlace& top);
    void RenderNames();
    void RenderWaves();
    void RenderValues();
    void Report(std::optional<std::int64_t> missing);
    void Show(HeaderControl::Redraw redraw);
    [[nodiscard]] Resizing EdgeAt(int x) const;
    void ResizeColumn(int x);
    [[nodiscard]] bool AimAtBands(const QPoint& place);
    void SetMarkerAt(int x, int which);
    void ShowCursor(const QPoint& place);

    [[nodiscard]] CSignalList& MenuList() override { return *list_; }
    [[nodiscard]] HeaderControl& MenuHeader() override { return header_; }
    [[nodiscard]] std::uint32_t OfferMode() const override;
    [[nodiscard]] std::uint32_t SampleRoom() const override;
    void SignalAdded(CSignal& signal) override;
    /// A band keeps its height whatever it shows.
    void SignalReshaped(CSignal& /*signal*/) override {}
    void SignalsChanged() override;

    Prompts* prompts_;
    QFont bodyFont_;
    QFont titleFont_;
    QFont nameFont_;
    int smallestColumn_;
    CTesselDoc* document_ = nullptr;
    CSignalList* list_ = nullptr;
    bool isZoom_ = false;
    int zoom_ = startZoom;
    WavePlace place_;
    std::int64_t firstSample_ = 0;
    BandPlace top_;
    int nameWidth_ = 75;
    int valueWidth_ = 50;
    HeaderControl header_;
    Resizing resizing_ = Resizing::Nothing;
};

} // namespace busquill
