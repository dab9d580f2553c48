#pragma once

#include "ui/display/state_painter.h"
#include "ui/display/trace_display.h"

namespace busquill {

/// The listing: a row for each sample, a column for each signal.
class CStateWnd final : public TraceDisplay {
    Q_OBJECT
public:
    /// Without prompts there is no menu on the columns.
    CStateWnd(QWidget* parent, const Settings& settings, Prompts* prompts = nullptr);

    /// Also fits every column to its texts.
    void Attach(CTesselDoc& document, CSignalList& list, bool zoom) override;

    [[nodiscard]] int VisibleRowCount() const;
    [[nodiscard]] std::int64_t TopRow() const noexcept { return topRow_; }
    [[nodiscard]] int SampleColumnWidth() const noexcept { return header_.fixedEnd; }
    /// Width of all columns together.
    [[nodiscard]] int ColumnsWidth() const { return Columns().TotalWidth(); }

    [[nodiscard]] std::int64_t FirstSample() const override { return topSample_; }
    [[nodiscard]] std::int64_t LastSample() const override;
    [[nodiscard]] std::int64_t LastClickableSample() const override;
    [[nodiscard]] std::int64_t LastDrawnSample() const override;
    [[nodiscard]] std::int64_t CenterSample() const override;
    [[nodiscard]] std::int64_t VisibleSampleCount() const override { return VisibleRowCount(); }
    void ScrollToSample(std::int64_t sample) override;
    [[nodiscard]] BarState SampleBar() const override;
    void StepSamples(bool forward) override { StepRows(forward ? 1 : -1); }
    void PageSamples(bool forward) override {
        StepRows(forward ? VisibleRowCount() : -VisibleRowCount());
    }
    void MoveSamplesTo(int position) override;
    [[nodiscard]] PrintFailure Print(QPrinter& printer, const PrintJob& job) override;

    /// The rows that can be copied at once; more would be slow to paste.
    static constexpr std::int64_t mostCopiedRows = 100'000;
    /// Whether a marker is set.
    [[nodiscard]] bool CanCopy() const override;
    /// The rows between the markers as text, or the row of the one that is set.
    [[nodiscard]] std::string Copy() override;

protected:
    void DrawFrame(QPainter& painter) override;
    void RenderNames() override;
    [[nodiscard]] PlaceTip CellTip(const QPoint& place) override;
    /// Sets a marker on the row at a place, or clears it if it is already there.
    void PressCell(const QPoint& place, Qt::MouseButton button) override;
    [[nodiscard]] std::uint32_t OfferMode() const override;

private:
    /// Rows from `first` to `last`.
    struct RowSpan {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };
    /// Those with the markers and between them, without markers none.
    [[nodiscard]] std::optional<RowSpan> MarkedRows() const;
    /// The row at a height in the window, below the header.
    [[nodiscard]] std::int64_t RowAt(int y) const;
    void SetTopRow(std::int64_t row);
    void StepRows(std::int64_t rows);
    [[nodiscard]] StateFrame Frame();

    std::int64_t topRow_ = 0;
    std::int64_t topSample_ = 0;
};

} // namespace busquill
