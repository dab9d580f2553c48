#pragma once

#include "ui/display/state_painter.h"
#include "ui/patterns/header_control.h"
#include "ui/patterns/signal_menu.h"

#include <QPixmap>
#include <QWidget>

namespace busquill {

/// The listing: a row for each sample, a column for each signal. Paints into a bitmap, which goes
/// to the screen as it is; draws nothing until it is attached to a document.
class CStateWnd final : public QWidget, private SignalMenuHost {
    Q_OBJECT
public:
    /// Without prompts there is no menu on the columns.
    CStateWnd(QWidget* parent, const Settings& settings, Prompts* prompts = nullptr);

    /// Attaches to a document's list and gives every column the width that its texts need.
    void Attach(CTesselDoc& document, CSignalList& list, bool zoom);

    [[nodiscard]] int VisibleRowCount() const;
    [[nodiscard]] std::int64_t TopRow() const noexcept { return topRow_; }
    /// The sample that stood in the top row when it was set; outlives a change of the rows.
    [[nodiscard]] std::int64_t TopSample() const noexcept { return topSample_; }
    [[nodiscard]] int SampleColumnWidth() const noexcept { return header_.fixedEnd; }
    /// Width of all columns together.
    [[nodiscard]] int ColumnsWidth() const;
    /// The width that a signal's title and values need.
    [[nodiscard]] int MeasureColumn(const CSignal& signal) const;
    [[nodiscard]] int Offset() const noexcept { return header_.offset; }
    void SetTopRow(std::int64_t row);
    void SetOffset(int offset);

    /// Samples have come or the list has changed.
    void ForgetTimes() { timeSums_.Forget(); }
    /// Draws the frame into the bitmap, and to the screen if asked.
    void Render(bool blit);

signals:
    /// Columns have another width or order.
    void ColumnsChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    /// Is no second click, which would clear the marker that the first has set.
    void mouseDoubleClickEvent(QMouseEvent* /*event*/) override {}
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void MakeBitmap();
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

    const Settings& settings_;
    Prompts* prompts_;
    QFont bodyFont_;
    QFont headerFont_;
    int digitWidth_;
    CTesselDoc* document_ = nullptr;
    CSignalList* list_ = nullptr;
    bool zoom_ = false;
    StateColors colors_;
    std::int64_t topRow_ = 0;
    std::int64_t topSample_ = 0;
    HeaderControl header_;
    TimeSums timeSums_;
    QPixmap bitmap_;
};

} // namespace busquill
