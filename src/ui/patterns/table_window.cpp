#include "ui/patterns/table_window.h"

#include "signals/signal_list.h"
#include "ui/framework/wheel_turns.h"

#include <QFontMetrics>
#include <QMouseEvent>

#include <algorithm>

namespace busquill {

namespace {

constexpr int smallestColumnDigits = 3;

} // namespace

HeaderControl::Layout ColumnLayout() {
    return {.extent = &CSignal::width,
            .visible = &CSignal::VisibleWidth,
            .smallest = smallestColumnDigits * ScreenFonts().DigitWidth()};
}

TableWindow::TableWindow(QWidget* parent, Prompts* prompts, const HeaderControl::Layout& layout)
    : PaintedWindow(parent), fonts_(ScreenFonts()), header_(layout), prompts_(prompts) {}

void TableWindow::AttachList(CSignalList& list) {
    list_ = &list;
    header_.Attach(list);
}

void TableWindow::MeasureColumns() {
    for (const auto& signal : list_->All()) {
        if (signal->VisibleWidth() > 0) {
            SignalReshaped(*signal);
        }
    }
}

// Along the signals.

TableColumns TableWindow::Columns() const {
    return {list_ == nullptr ? std::vector<int>() : ColumnWidths(*list_), header_.fixedEnd,
            header_.offset, width()};
}

BarState TableWindow::SignalBar() const {
    return Columns().Bar();
}

void TableWindow::SetOffset(int offset) {
    header_.offset = offset;
    Render();
}

void TableWindow::StepSignals(bool forward) {
    SetOffset(Columns().Stepped(forward ? 1 : -1));
}

void TableWindow::PageSignals(bool forward) {
    const TableColumns columns = Columns();
    const int page = std::max(columns.Room(), 1);
    SetOffset(columns.Stepped(forward ? page : -page));
}

void TableWindow::MoveSignalsTo(int position) {
    SetOffset(std::clamp(position, 0, Columns().Limit()));
}

void TableWindow::TurnSignals(int notches) {
    MoveSignalsTo(SignalBar().position + notches * wheelColumnStep);
}

void TableWindow::SelectSignal(bool forward) {
    Show(header_.SelectNeighbour(forward));
    ScrollToCurrent();
}

void TableWindow::ScrollToCurrent() {
    const HeaderControl::Span current = header_.Current();
    const int page = SignalBar().page;
    const int offset = NamesOffset();
    const int end = current.start + current.size;
    if (current.start < offset || current.size > page) {
        MoveSignalsTo(current.start);
    } else if (end > offset + page) {
        MoveSignalsTo(end - page);
    }
    emit LayoutChanged();
}

void TableWindow::OpenSignalMenu() {
    if (header_.Current().signal == nullptr) {
        SelectSignal(true);
    }
    const HeaderControl::Span current = header_.Current();
    if (current.signal == nullptr || prompts_ == nullptr) {
        return;
    }
    if (!current.signal->selected) {
        header_.SelectOnly(current.signal);
        RenderNames();
    }
    ScrollToCurrent();
    const int along = header_.fixedEnd + 1 + current.start - NamesOffset();
    ShowSignalMenu(*this, mapToGlobal(NamePlace(along)), *current.signal, *this, *prompts_);
}

QPoint TableWindow::NamePlace(int along) const {
    return {along, tableHeaderLine};
}

void TableWindow::KeepOffset() {
    header_.offset = std::min(header_.offset, Columns().Limit());
}

void TableWindow::resizeEvent(QResizeEvent* event) {
    KeepOffset();
    PaintedWindow::resizeEvent(event);
}

// The mouse.

void TableWindow::Show(HeaderControl::Redraw redraw) {
    if (redraw == HeaderControl::Redraw::All) {
        KeepOffset();
        Render();
        emit LayoutChanged();
    } else if (redraw == HeaderControl::Redraw::Header) {
        RenderNames();
    }
}

bool TableWindow::AimAtNames(const QPoint& place) {
    return place.y() < tableHeaderLine;
}

PlaceTip TableWindow::NameTip(const CSignal& signal, int start) const {
    const QRect title = TableColumn{0, start, signal.VisibleWidth()}.Title();
    return IsTitleCut(signal, title, {fonts_, {}})
               ? PlaceTip{QString::fromStdString(signal.RowName()), title}
               : PlaceTip{};
}

PlaceTip TableWindow::TipAt(const QPoint& place) {
    if (list_ == nullptr || !AimAtNames(place)) {
        return {};
    }
    const HeaderControl::Hit hit = header_.HitColumn(header_.Along(place));
    return hit.signal == nullptr ? PlaceTip{} : NameTip(*hit.signal, hit.start);
}

void TableWindow::ShowCursor(const QPoint& place) {
    const bool onNames = header_.IsActive() || AimAtNames(place);
    setCursor(onNames ? header_.CursorAt(header_.Along(place)) : Qt::ArrowCursor);
}

void TableWindow::mousePressEvent(QMouseEvent* event) {
    const bool left = event->button() == Qt::LeftButton;
    if (list_ == nullptr || (!left && event->button() != Qt::RightButton)) {
        return;
    }
    const QPoint place = event->pos();
    if (AimAtNames(place)) {
        const int along = header_.Along(place);
        Show(left ? header_.Press(along, event->modifiers()) : header_.SelectForMenu(along));
    } else {
        PressCell(place, event->button());
    }
    ShowCursor(place);
}

void TableWindow::mouseMoveEvent(QMouseEvent* event) {
    if (list_ != nullptr) {
        Show(header_.Move(header_.Along(event->pos())));
        ShowCursor(event->pos());
    }
}

void TableWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (list_ == nullptr) {
        return;
    }
    const QPoint place = event->pos();
    if (event->button() == Qt::LeftButton) {
        Show(header_.Release(header_.Along(place)));
        setCursor(Qt::ArrowCursor);
    } else if (event->button() == Qt::RightButton && prompts_ != nullptr && AimAtNames(place)) {
        const HeaderControl::Hit hit = header_.HitColumn(header_.Along(place));
        if (hit.signal != nullptr) {
            ShowSignalMenu(*this, event->globalPosition().toPoint(), *hit.signal, *this, *prompts_);
        }
    }
}

void TableWindow::SignalReshaped(CSignal& signal) {
    signal.width = NeededWidth(signal, fonts_.body);
}

} // namespace busquill
