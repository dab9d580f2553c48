#pragma once

#include "ui/display/display_colors.h"

#include <QPixmap>
#include <QWidget>

#include <cstdint>

namespace busquill {

class CSignalList;
class CTesselDoc;

/// How a scroll bar stands to its content.
struct BarState {
    int maximum = 0; // the last position
    int page = 0;
    int position = 0;
    bool needed = false; // the content does not fit
};

/// The window inside a trace view that shows samples along one axis and signals along the other.
/// The view has its scroll bars and tells it of the document. It paints into a bitmap, which goes
/// to the screen as it is. Main thread.
class TraceDisplay : public QWidget {
    Q_OBJECT
public:
    /// `name` is that of its colours in the settings, which outlive the window.
    TraceDisplay(QWidget* parent, const Settings& settings, const char* name);

    /// Shows nothing until then. The document outlives the window.
    virtual void Attach(CTesselDoc& document, CSignalList& list, bool zoom) = 0;

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
    /// The bar along the signals.
    [[nodiscard]] virtual BarState SignalBar() const = 0;
    virtual void StepSignals(bool forward) = 0;
    virtual void PageSignals(bool forward) = 0;
    virtual void MoveSignalsTo(int position) = 0;

    /// Draws the frame into the bitmap, and to the screen if asked.
    virtual void Render(bool blit) = 0;
    /// Draws what depends on the markers.
    virtual void RenderMarkers() { Render(true); }
    /// Samples have come or the list has changed.
    virtual void SamplesChanged() {}

signals:
    /// A frame was drawn without this sample, which has not arrived.
    void SampleMissing(std::int64_t sample);
    /// Signals take another room or order.
    void LayoutChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Is no second click, which would clear the marker that the first has set.
    void mouseDoubleClickEvent(QMouseEvent* /*event*/) override {}

    /// Takes the user's colours, which a frame is drawn in from here on.
    void LoadColors();
    [[nodiscard]] const DisplayColors& Colors() const noexcept { return colors_; }
    /// Null until the window has a size.
    [[nodiscard]] QPixmap& Bitmap() noexcept { return bitmap_; }

private:
    void MakeBitmap();

    const Settings& settings_;
    const char* name_;
    DisplayColors colors_;
    QPixmap bitmap_;
};

} // namespace busquill
