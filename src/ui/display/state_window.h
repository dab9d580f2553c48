#pragma once

#include "ui/display/state_painter.h"
#include "ui/display/trace_display.h"
#include "ui/patterns/header_control.h"
#include "ui/patterns/signal_menu.h"

namespace busquill {

/// The listing: a row for each sample, a column for each signal. Draws nothing until it is
/// attached to a document.
class CStateWnd final : public TraceDisplay, private SignalMenuHost {
    Q_OBJECT
public:
    /// Without prompts there is no menu on the columns.
    CStateWnd(QWidget* parent, const Settings& settings, Prompts* prompts = nullptr);

    /// Gives every column the width that its texts need.
    void Attach(CTesselDoc& document, CSignalList& list, bool zoom) override;

    [[nodiscard]] int VisibleRowCount() const;
    [[nodiscard]] std::int64_t TopRow() const noexcept { return topRow_; }
    [[nodiscard]] int SampleColumnWidth() const noexcept { return header_.fixedEnd; }
    /// Width of all columns together.
    [[nodiscard]] int ColumnsWidth() const;
    /// The width that a signal's title and values need.
    [[nodiscard]] int MeasureColumn(const CSignal& signal) const;
    [[nodiscard]] int Offset() const noexcept { return header_.offset; }

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
    [[nodiscard]] BarState SignalBar() const override;
    void StepSignals(bool forward) override { StepColumns(forward ? 1 : -1); }
    void PageSignals(bool forward) override;
    void MoveSignalsTo(int position) override;
    void Render(bool blit) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] std::int64_t RowCount() const;
    /// The sample of a row, or of the last row where there are fewer.
    [[nodiscard]] std::int64_t SampleOfRow(std::int64_t row) const;
    /// The row at a height below the header.
    [[nodiscard]] std::int64_t RowAt(int y) const;
    [[nodiscard]] int ColumnsRoom() const;
    [[nodiscard]] int OffsetLimit() const;
    void SetTopRow(std::int64_t row);
    void SetOffset(int offset);
    void StepRows(std::int64_t rows);
    void StepColumns(int pixels);
    void KeepOffset();
    [[nodiscard]] StateFrame Frame();
    void Show(HeaderControl::Redraw redraw);
    void SetMarkerAt(int y, int which);

    [[nodiscard]] CSignalList& MenuList() override { return *list_; }
    [[nodiscard]] HeaderControl& MenuHeader() override { return header_; }
    [[nodiscard]] std::uint32_t OfferMode() const override;
    [[nodiscard]] std::uint32_t SampleRoom() const override;
    void SignalAdded(CSignal& signal) override;
    void SignalReshaped(CSignal& signal) override;
    void SignalsChanged() override;

    Prompts* prompts_;
    QFont bodyFont_;
    QFont headerFont_;
    int digitWidth_;
    CTesselDoc* document_ = nullptr;
    CSignalList* list_ = nullptr;
    bool zoom_ = false;
    std::int64_t topRow_ = 0;
    std::int64_t topSample_ = 0;
    HeaderControl header_;
};

} // namespace busquill
