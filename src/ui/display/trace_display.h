#pragma once

#include "ui/display/display_colors.h"
#include "ui/patterns/table_window.h"

#include <cstdint>
#include <optional>

namespace busquill {

class CTesselDoc;
class Settings;

/// The window inside a trace view that shows samples along one axis and signals along the other.
/// The view has its scroll bars and tells it of the document. Shows nothing but its background
/// until it is attached to one. Main thread.
class TraceDisplay : public TableWindow {
    Q_OBJECT
public:
    /// `name` is that of its colours in the settings, which outlive the window. Without prompts
    /// there is no menu on the signals.
    TraceDisplay(QWidget* parent, const Settings& settings, const char* name, Prompts* prompts,
                 const HeaderControl::Layout& layout);

    /// The document outlives the window. `zoom` asks for its Power Zoom samples.
    virtual void Attach(CTesselDoc& document, CSignalList& list, bool zoom);

    /// The sample that stood first when the place was set; outlives a change of the rows.
    [[nodiscard]] virtual std::int64_t FirstSample() const = 0;
    /// The last sample that counts as visible; with no rows it is that of no sample.
    [[nodiscard]] virtual std::int64_t LastSample() const = 0;
    /// The last sample that a click can mean; of its row or band little may show.
    [[nodiscard]] virtual std::int64_t LastClickableSample() const = 0;
    /// The last sample of which anything shows.
    [[nodiscard]] virtual std::int64_t LastDrawnSample() const = 0;
    [[nodiscard]] virtual std::int64_t CenterSample() const = 0;
    [[nodiscard]] virtual std::int64_t VisibleSampleCount() const = 0;
    /// Makes a sample the first one, as far as the capture's end allows.
    virtual void ScrollToSample(std::int64_t sample) = 0;

    /// The bar along the samples, and what its lines, pages and thumb do.
    [[nodiscard]] virtual BarState SampleBar() const = 0;
    virtual void StepSamples(bool forward) = 0;
    virtual void PageSamples(bool forward) = 0;
    virtual void MoveSamplesTo(int position) = 0;

    /// Draws what depends on the markers.
    virtual void RenderMarkers() { Render(); }
    /// Samples have come or the list has changed.
    virtual void SamplesChanged() {}

signals:
    /// A frame was drawn without this sample, which has not arrived.
    void SampleMissing(std::int64_t sample);

protected:
    void Draw(QPainter& painter) final;
    /// The user has changed the colours.
    [[nodiscard]] bool IsOutdated() const override;
    /// Draws a frame of the document.
    virtual void DrawFrame(QPainter& painter) = 0;
    [[nodiscard]] const DisplayColors& Colors() const noexcept { return colors_; }
    /// Tells of a sample that a frame was drawn without.
    void Report(std::optional<std::int64_t> missing);

    [[nodiscard]] std::int64_t RowCount() const;
    /// The sample of a row, or of the last row where there are fewer.
    [[nodiscard]] std::int64_t SampleOfRow(std::int64_t row) const;

    /// Is no second click, which would clear the marker that the first has set.
    void mouseDoubleClickEvent(QMouseEvent* /*event*/) override {}

    [[nodiscard]] std::uint32_t SampleRoom() const override;
    void SignalAdded(CSignal& signal) override;
    void SignalsChanged() override;

    CTesselDoc* document_ = nullptr;
    bool isZoom_ = false; // of the Power Zoom samples

private:
    const Settings& settings_;
    const char* name_;
    DisplayColors colors_;
};

} // namespace busquill
