#include "ui/patterns/pattern_grid.h"

#include "signals/signal_list.h"
#include "ui/framework/painting.h"
#include "ui/patterns/command_dialog.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/patterns/value_dialog.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace busquill {

namespace {

constexpr int labelDigits = 9;
constexpr std::uint32_t background = 0xD0D0D0;

/// One packed row, writable; empty if there is none.
std::span<std::uint8_t> RowOf(std::span<std::uint8_t> rows, const CSignal& signal, int row) {
    const std::size_t bytes = signal.RowBytes();
    const std::size_t first = bytes * static_cast<std::size_t>(row);
    return bytes == 0 || first + bytes > rows.size() ? std::span<std::uint8_t>()
                                                     : rows.subspan(first, bytes);
}

} // namespace

CPatternGrid::Cell CPatternGrid::hot;
CPatternGrid::Cell CPatternGrid::pressed;
QPointer<CPatternGrid> CPatternGrid::hotGrid;

CPatternGrid::CPatternGrid(QWidget* parent, Prompts& prompts)
    : TableWindow(parent, &prompts, ColumnLayout()), style_{fonts_, ColorOf(background)} {
    ShowLabels(true);
}

void CPatternGrid::ShowLabels(bool show) {
    header_.fixedEnd = show ? labelDigits * fonts_.DigitWidth() : 0;
    header_.SetFixedResizes(show);
}

void CPatternGrid::SetText(const char* heading, const char* rowFormat) {
    heading_ = heading;
    rowFormat_ = rowFormat;
}

void CPatternGrid::SetList(CSignalList& list, std::uint32_t mode) {
    mode_ = mode;
    hot = pressed = {};
    AttachList(list);
    MeasureColumns();
    Render();
}

PatternGeometry CPatternGrid::Geometry() const {
    return {Columns(), rowCount_, topRow_, height()};
}

void CPatternGrid::StepRows(int rows) {
    topRow_ = Geometry().StepTopRow(rows);
    Render();
    emit LayoutChanged();
}

void CPatternGrid::MoveRowsTo(int row) {
    if (row != topRow_) {
        StepRows(row - topRow_);
    }
}

BarState CPatternGrid::RowBar() const {
    const PatternGeometry geometry = Geometry();
    const int limit = geometry.TopRowLimit();
    return {limit, geometry.VisibleRows(), topRow_, limit > 0};
}

void CPatternGrid::KeepOffset() {
    TableWindow::KeepOffset();
    topRow_ = Geometry().StepTopRow(0);
}

// Drawing.

PatternFrame CPatternGrid::Frame() const {
    return {*list_, Geometry(), style_, heading_, rowFormat_, PlaceOf(hot)};
}

void CPatternGrid::Draw(QPainter& painter) {
    if (list_ == nullptr) {
        painter.fillRect(rect(), style_.background);
    } else {
        DrawPatterns(painter, Frame());
    }
}

void CPatternGrid::RenderNames() {
    RenderPart({0, 0, width(), tableHeaderLine},
               [&](QPainter& painter) { DrawPatternHeader(painter, Frame()); });
}

// The mouse.

std::optional<PatternCell> CPatternGrid::PlaceOf(const Cell& cell) const {
    if (list_ == nullptr) {
        return std::nullopt;
    }
    const std::size_t column = list_->IndexOf(cell.signal);
    return column < list_->Size() ? std::optional(PatternCell{cell.row, column}) : std::nullopt;
}

CPatternGrid::Cell CPatternGrid::CellAt(const QPoint& place) const {
    const auto cell = Geometry().CellAt(place);
    return cell ? Cell{cell->row, &(*list_)[cell->column]} : Cell();
}

void CPatternGrid::SetHot(const Cell& cell) {
    if (hot == cell) {
        return;
    }
    hot = cell;
    if (hotGrid != this && hotGrid != nullptr) {
        hotGrid->Render(); // it has lost the cell
    }
    hotGrid = this;
    Render();
}

void CPatternGrid::PressCell(const QPoint& place, Qt::MouseButton button) {
    if (button == Qt::LeftButton) {
        pressed = CellAt(place);
        SetHot(pressed);
    }
}

void CPatternGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void CPatternGrid::mouseMoveEvent(QMouseEvent* event) {
    TableWindow::mouseMoveEvent(event);
    const bool onNames = header_.IsActive() || AimAtNames(event->pos());
    SetHot(onNames ? Cell() : CellAt(event->pos()));
}

void CPatternGrid::mouseReleaseEvent(QMouseEvent* event) {
    TableWindow::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton) {
        if (const auto cell = PlaceOf(std::exchange(pressed, {}))) {
            Edit(*cell);
        }
    }
}

/// If all rows show, the wheel scrolls the columns even without Shift.
void CPatternGrid::wheelEvent(QWheelEvent* event) {
    event->accept();
    const WheelTurns::Turn turn = wheel_.Take(*event);
    if (turn.sideways || Geometry().TopRowLimit() == 0) {
        TurnSignals(turn.notches);
        emit LayoutChanged();
    } else {
        StepRows(turn.notches);
    }
}

// Editing.

void CPatternGrid::Edit(const PatternCell& cell) {
    CSignal& signal = (*list_)[cell.column];
    const auto changes = [&] {
        switch (KindOfPattern(signal)) {
        case PatternKind::Command:
            return EditCommand(signal, cell.row);
        case PatternKind::Label:
            return EditLabel(signal, cell.row);
        case PatternKind::Number:
            return EditNumber(signal, cell.row);
        case PatternKind::Bit:
            break;
        }
        return CycleBit(*list_, signal, cell.row);
    };
    if (changes()) {
        if (modified_) {
            modified_();
        }
        Render();
    }
}

bool CPatternGrid::EditCommand(CSignal& signal, int row) {
    const auto at = static_cast<std::size_t>(row);
    const std::size_t label = at < signal.labelTable.size() ? signal.labelTable[at] : 0;
    CCommandDialog dialog(this, *signal.decoded,
                          label == 0 ? std::nullopt : std::optional(label - 1),
                          !list_->Tables().Board().IsVmeFamily());
    if (dialog.exec() != QDialog::Accepted || !dialog.Chosen()) {
        return false;
    }
    list_->ApplyDecodedValue(&signal, static_cast<std::uint32_t>(row), *dialog.Chosen());
    return true;
}

bool CPatternGrid::EditLabel(CSignal& signal, int row) {
    QMenu menu(this);
    const std::string present = PatternText(signal, row);
    for (const CDecodedValue& value : signal.decoded->values) {
        QAction* entry = menu.addAction(QString(value.label).replace('&', "&&"));
        entry->setCheckable(true);
        entry->setChecked(value.label != nullptr && present == value.label);
    }
    const QAction* chosen = menu.exec(QCursor::pos());
    if (chosen == nullptr) {
        return false;
    }
    const qsizetype index = menu.actions().indexOf(chosen);
    list_->ApplyDecodedValue(&signal, static_cast<std::uint32_t>(row),
                             static_cast<std::size_t>(index));
    return true;
}

bool CPatternGrid::EditNumber(CSignal& signal, int row) {
    const auto value = RowOf(signal.groupData, signal, row);
    const auto mask = RowOf(signal.groupMask, signal, row);
    if (value.empty() || mask.empty() ||
        CValueDlg(this, value, mask, signal.groupWidth, signal.radix).exec() != QDialog::Accepted) {
        return false;
    }
    signal.decoded ? list_->UnpackDecoded(&signal) : list_->UnpackGroup(&signal);
    return true;
}

// The menu on a column.

std::uint32_t CPatternGrid::SampleCapacity() const {
    return static_cast<std::uint32_t>(rowCount_);
}

void CPatternGrid::SignalsChanged() {
    hot = pressed = {};
    if (modified_) {
        modified_();
    }
    KeepOffset();
    Render();
    emit LayoutChanged();
}

} // namespace busquill
