#pragma once

#include "ui/framework/display_colors.h"
#include "ui/framework/printing.h"
#include "ui/patterns/table_window.h"

#include <cstdint>
#include <optional>
#include <string>

class QPrinter;

namespace busquill {

class CTesselDoc;
class Settings;
struct PrintJob;

/// The window inside a trace view that shows samples along one axis and signals along the other.
/// The view owns its scroll bars and notifies it of changes to the document. Until it is attached
/// to a document it shows only its background. Main thread.
class TraceDisplay : public TableWindow {
    Q_OBJECT
public:
    /// `colors` are its colours in the settings, which outlive the window. Without prompts
    /// there is no menu on the signals.
    TraceDisplay(QWidget* parent, const Settings& settings, const DisplaySettings& colors,
                 Prompts* prompts, const HeaderControl::Layout& layout);

    /// The document outlives the window. With `zoom` its Power Zoom samples are shown.
    virtual void Attach(CTesselDoc& document, CSignalList& list, bool zoom);

    /// The sample that was the first one when the position was set; a change of the rows does not
    /// change it.
    [[nodiscard]] virtual std::int64_t FirstSample() const = 0;
    /// The last sample that counts as visible; not a valid index if there are no rows.
    [[nodiscard]] virtual std::int64_t LastSample() const = 0;
    /// The last sample that a click can hit, even if little of it shows.
    [[nodiscard]] virtual std::int64_t LastClickableSample() const = 0;
    /// The last sample that shows at least partly.
    [[nodiscard]] virtual std::int64_t LastDrawnSample() const = 0;
    [[nodiscard]] virtual std::int64_t CenterSample() const = 0;
    [[nodiscard]] virtual std::int64_t VisibleSampleCount() const = 0;
    /// Makes a sample the first one shown, as far as the capture's end allows.
    virtual void ScrollToSample(std::int64_t sample) = 0;

    /// The scroll bar along the samples, and what its steps, pages and thumb do.
    [[nodiscard]] virtual BarState SampleBar() const = 0;
    virtual void StepSamples(bool forward) = 0;
    virtual void PageSamples(bool forward) = 0;
    virtual void MoveSamplesTo(int position) = 0;

    /// Prints samples as they are shown. The display is attached.
    [[nodiscard]] virtual PrintFailure Print(QPrinter& printer, const PrintJob& job) = 0;

    /// Whether there is something to copy.
    [[nodiscard]] virtual bool CanCopy() const = 0;
    /// Puts what is marked, or shown, on the clipboard. An error message if that cannot be done,
    /// empty on success.
    [[nodiscard]] virtual std::string Copy() = 0;

    /// Draws again what depends on the markers.
    virtual void RenderMarkers() { Render(); }
    /// Samples have arrived or the list has changed.
    virtual void SamplesChanged() {}

signals:
    /// A frame was drawn without this sample, which has not arrived yet.
    void SampleMissing(std::int64_t sample);

protected:
    void Draw(QPainter& painter) final;
    /// True after the user has changed the colours.
    [[nodiscard]] bool IsOutdated() const override;
    /// The names as in any table; elsewhere what CellTip says.
    [[nodiscard]] PlaceTip TipAt(const QPoint& place) final;
    /// The tip of a place outside the names, for a document that has rows.
    [[nodiscard]] virtual PlaceTip CellTip(const QPoint& place) = 0;
    /// Draws a frame of the document.
    virtual void DrawFrame(QPainter& painter) = 0;
    [[nodiscard]] const DisplayColors& Colors() const noexcept { return colors_; }
    /// Emits SampleMissing if a sample was missing.
    void ReportMissing(std::optional<std::int64_t> missing);

    [[nodiscard]] std::int64_t RowCount() const;
    /// The sample of a row, or of the last row if there are fewer.
    [[nodiscard]] std::int64_t SampleOfRow(std::int64_t row) const;

    /// A double click must not clear the marker that its first click has just set.
    void mouseDoubleClickEvent(QMouseEvent* /*event*/) override {}

    [[nodiscard]] std::uint32_t SampleCapacity() const override;
    void SignalAdded(CSignal& signal) override;
    void SignalsChanged() override;

    CTesselDoc* document_ = nullptr;
    bool isZoom_ = false; // of the Power Zoom samples

private:
    const Settings& settings_;
    const DisplaySettings colorSettings_;
    DisplayColors colors_;
};

} // namespace busquill
