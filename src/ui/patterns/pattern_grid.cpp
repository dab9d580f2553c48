#include "ui/patterns/pattern_grid.h"

#include "platform/text.h"
#include "signals/signal_list.h"
#include "signals/value_text.h"
#include "ui/framework/painting.h"
#include "ui/patterns/columns.h"
#include "ui/patterns/command_dialog.h"
#include "ui/patterns/value_dialog.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace busquill {

namespace {

constexpr int headerLine = 18; // y of the line below the header
constexpr int firstRow = 19;
constexpr int rowPitch = 21;
constexpr int cellEdgeHeight = 17;
constexpr int labelDigits = 9;
constexpr int smallestColumnDigits = 3;
constexpr std::uint32_t background = 0xD0D0D0;

/// Decoded signals whose cells are numbers.
bool IsNumber(const CSignal& signal) {
    return signal.decoded && signal.decoded->decodeKind >= DecodeKind::Tag &&
           signal.decoded->decodeKind <= DecodeKind::AddressVsb;
}

/// One packed row that can be written; empty where there is none.
std::span<std::uint8_t> RowOf(std::span<std::uint8_t> rows, const CSignal& signal, int row) {
    const std::size_t bytes = signal.RowBytes();
    const std::size_t first = bytes * static_cast<std::size_t>(row);
    return bytes == 0 || first + bytes > rows.size() ? std::span<std::uint8_t>()
                                                     : rows.subspan(first, bytes);
}

void SetBit(std::span<std::uint32_t> words, int row, bool value) {
    const auto at = static_cast<std::size_t>(row);
    if (at / 32 < words.size()) {
        const std::uint32_t bit = 1U << (at % 32);
        words[at / 32] = (words[at / 32] & ~bit) | (value ? bit : 0);
    }
}

} // namespace

CPatternGrid::Cell CPatternGrid::hot;
CPatternGrid::Cell CPatternGrid::pressed;

CPatternGrid::CPatternGrid(QWidget* parent, Prompts& prompts)
    : QWidget(parent), prompts_(prompts),
      bodyFont_(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed)),
      headerFont_(FontOfCellHeight(15, QFont::Bold, FontFace::Proportional)),
      digitWidth_(QFontMetrics(bodyFont_).horizontalAdvance('0')),
      header_({.extent = &CSignal::width,
               .visible = &CSignal::VisibleWidth,
               .smallest = smallestColumnDigits * digitWidth_}) {
    ShowLabels(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
}

void CPatternGrid::ShowLabels(bool show) {
    showLabels_ = show;
    header_.fixedEnd = show ? labelDigits * digitWidth_ : 0;
    header_.SetFixedResizes(show);
}

void CPatternGrid::SetText(const char* heading, const char* rowFormat) {
    heading_ = heading;
    rowFormat_ = rowFormat;
}

void CPatternGrid::SetList(CSignalList& list, std::uint32_t mode) {
    list_ = &list;
    mode_ = mode;
    header_.Attach(list);
    hot = pressed = {};
    for (const auto& signal : list.All()) {
        if (signal->VisibleWidth() > 0) {
            SignalReshaped(*signal);
        }
    }
    Render();
}

int CPatternGrid::HeightOf(int rows) {
    return firstRow + rows * rowPitch;
}

// Scrolling.

int CPatternGrid::ContentWidth() const {
    return list_ == nullptr ? 0 : TotalWidth(ColumnWidths(*list_));
}

int CPatternGrid::VisibleWidth() const {
    return width() - header_.fixedEnd - 1;
}

void CPatternGrid::SetOffset(int offset) {
    header_.offset = std::clamp(offset, 0, std::max(ContentWidth() - VisibleWidth(), 0));
    Render();
}

void CPatternGrid::StepColumn(bool right) {
    SetOffset(header_.offset + (right ? 1 : -1));
}

void CPatternGrid::PageColumns(bool right) {
    const int page = std::max(VisibleWidth(), 1);
    SetOffset(header_.offset + (right ? page : -page));
}

int CPatternGrid::VisibleRowCount() const {
    return std::max(height() - firstRow, 0) / rowPitch;
}

void CPatternGrid::StepRows(int rows) {
    topRow_ = std::clamp(topRow_ + rows, 0, std::max(rowCount_ - VisibleRowCount(), 0));
    Render();
}

// Drawing.

std::string CPatternGrid::CellText(const CSignal& signal, int row) {
    const auto at = static_cast<std::size_t>(row);
    if (IsNumber(signal) || (signal.IsGroupStart() && !signal.decoded)) {
        const auto value = signal.GroupRow(at);
        const auto mask = signal.GroupMaskRow(at);
        return value.empty() || mask.empty()
                   ? ""
                   : FormatValue(value, signal.groupWidth, signal.radix, mask, false);
    }
    if (signal.decoded) {
        const char* const label = signal.Label(at);
        return label == nullptr ? "" : label;
    }
    if (signal.data.empty()) {
        return "";
    }
    return !signal.MaskBit(at) ? "X" : signal.Bit(at) ? "1" : "0";
}

void CPatternGrid::Render() {
    if (bitmap_.isNull()) {
        return;
    }
    QPainter painter(&bitmap_);
    painter.fillRect(rect(), ColorOf(background));
    DrawHeader(painter);
    if (list_ != nullptr) {
        const QRect columns(header_.fixedEnd + 1, 0, VisibleWidth(), height());
        painter.setFont(bodyFont_);
        for (int row = topRow_, y = firstRow; row < rowCount_ && y < height();
             ++row, y += rowPitch) {
            painter.setClipping(false);
            if (showLabels_) {
                painter.drawText(QRect(0, y, header_.fixedEnd, rowPitch), Qt::AlignCenter,
                                 QString::asprintf(rowFormat_.c_str(), row + 1));
            }
            painter.setClipRect(columns);
            DrawRow(painter, row, y);
        }
    }
    update();
}

void CPatternGrid::RenderHeader() {
    QPainter painter(&bitmap_);
    DrawHeader(painter);
    update(0, 0, width(), headerLine);
}

void CPatternGrid::DrawHeader(QPainter& painter) const {
    painter.fillRect(0, headerLine, width(), 1, Qt::black);
    painter.setFont(headerFont_);
    painter.setPen(Qt::black);
    if (showLabels_) {
        const QRect cell(QPoint(1, 1), QPoint(header_.fixedEnd - 1, headerLine - 1));
        painter.fillRect(cell, ColorOf(background)); // the title is drawn over itself
        DrawEdge(painter, cell, Edge::Raised);
        DrawHeaderText(painter, cell, QString::fromStdString(heading_));
        painter.fillRect(header_.fixedEnd, 0, 1, height(), Qt::black);
    }
    if (list_ == nullptr) {
        return;
    }
    painter.setClipRect(QRect(header_.fixedEnd + 1, 0, VisibleWidth(), height()));
    for (const TableColumn& column :
         VisibleColumns(ColumnWidths(*list_), header_.fixedEnd, header_.offset, width())) {
        DrawColumnTitle(painter, (*list_)[column.signal], column, headerLine, height(),
                        ColorOf(background));
    }
}

void CPatternGrid::DrawRow(QPainter& painter, int row, int y) const {
    for (const TableColumn& column :
         VisibleColumns(ColumnWidths(*list_), header_.fixedEnd, header_.offset, width())) {
        const CSignal& signal = (*list_)[column.signal];
        const QRect cell = QRect(column.left + 1, y, column.width - 1, rowPitch);
        if (hot == Cell{row, &signal}) {
            DrawEdge(painter,
                     {cell.left() + 2, y + (rowPitch - cellEdgeHeight) / 2, cell.width() - 4,
                      cellEdgeHeight},
                     Edge::Sunken);
        }
        painter.setPen(Qt::black);
        painter.drawText(cell.adjusted(2, 0, -2, 0), Qt::AlignCenter,
                         QString::fromStdString(CellText(signal, row)));
    }
}

void CPatternGrid::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, bitmap_);
}

void CPatternGrid::resizeEvent(QResizeEvent* /*event*/) {
    const qreal ratio = devicePixelRatioF();
    bitmap_ = QPixmap(size() * ratio);
    bitmap_.setDevicePixelRatio(ratio);
    SetOffset(header_.offset);
}

// The mouse.

CPatternGrid::Cell CPatternGrid::CellAt(const QPoint& place) const {
    const int row = topRow_ + (place.y() - firstRow) / rowPitch;
    if (list_ == nullptr || place.y() < firstRow || row >= rowCount_ ||
        place.x() <= header_.fixedEnd) {
        return {};
    }
    for (const TableColumn& column :
         VisibleColumns(ColumnWidths(*list_), header_.fixedEnd, header_.offset, width())) {
        if (place.x() >= column.left && place.x() < column.left + column.width) {
            return {row, &(*list_)[column.signal]};
        }
    }
    return {};
}

void CPatternGrid::SetHot(const Cell& cell) {
    if (hot != cell) {
        hot = cell;
        Render();
    }
}

void CPatternGrid::Show(HeaderControl::Redraw redraw) {
    if (redraw == HeaderControl::Redraw::All) {
        SetOffset(header_.offset);
        emit ColumnsChanged();
    } else if (redraw == HeaderControl::Redraw::Header) {
        RenderHeader();
    }
}

void CPatternGrid::mousePressEvent(QMouseEvent* event) {
    const bool left = event->button() == Qt::LeftButton;
    if (list_ == nullptr || (!left && event->button() != Qt::RightButton)) {
        return;
    }
    if (event->pos().y() < headerLine) {
        Show(left ? header_.Press(event->pos().x(), event->modifiers())
                  : header_.SelectForMenu(event->pos().x()));
        setCursor(header_.CursorAt(event->pos().x()));
    } else if (left) {
        pressed = CellAt(event->pos());
        SetHot(pressed);
    }
}

void CPatternGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void CPatternGrid::mouseMoveEvent(QMouseEvent* event) {
    Show(header_.Move(event->pos().x()));
    const bool inHeader = event->pos().y() < headerLine;
    setCursor(inHeader || header_.IsActive() ? header_.CursorAt(event->pos().x())
                                             : Qt::ArrowCursor);
    SetHot(inHeader || header_.IsActive() ? Cell{} : CellAt(event->pos()));
}

void CPatternGrid::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        Show(header_.Release(event->pos().x()));
        setCursor(Qt::ArrowCursor);
        const Cell cell = std::exchange(pressed, {});
        Edit(cell);
    } else if (event->button() == Qt::RightButton && event->pos().y() < headerLine) {
        const HeaderControl::Hit hit = header_.HitColumn(event->pos().x());
        if (hit.signal != nullptr) {
            ShowSignalMenu(*this, event->globalPosition().toPoint(), *hit.signal, *this, prompts_);
        }
    }
}

/// Where all rows show, the wheel moves the columns without Shift too.
void CPatternGrid::wheelEvent(QWheelEvent* event) {
    event->accept();
    const auto [sideways, notches] = wheel_.Take(*event);
    if (sideways || VisibleRowCount() >= rowCount_) {
        SetOffset(header_.offset + notches * wheelColumnStep);
        emit ColumnsChanged();
    } else {
        StepRows(notches);
    }
}

// Editing.

void CPatternGrid::Edit(const Cell& cell) {
    if (cell.signal == nullptr || list_->IndexOf(cell.signal) >= list_->Size()) {
        return;
    }
    CSignal& signal = (*list_)[list_->IndexOf(cell.signal)];
    bool changed = false;
    if (signal.decoded && !IsNumber(signal)) {
        changed = signal.decoded->decodeKind == DecodeKind::Command ? EditCommand(signal, cell.row)
                                                                    : EditLabel(signal, cell.row);
    } else {
        changed = IsNumber(signal) || signal.IsGroupStart() ? EditValue(signal, cell.row)
                                                            : CycleBit(signal, cell.row);
    }
    if (changed) {
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
    const std::string present = CellText(signal, row);
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

bool CPatternGrid::EditValue(CSignal& signal, int row) {
    const auto value = RowOf(signal.groupData, signal, row);
    const auto mask = RowOf(signal.groupMask, signal, row);
    if (value.empty() || mask.empty() ||
        CValueDlg(this, value, mask, signal.groupWidth, signal.radix).exec() != QDialog::Accepted) {
        return false;
    }
    signal.decoded ? list_->UnpackDecoded(&signal) : list_->UnpackGroup(&signal);
    return true;
}

/// Anything, 0, 1, and again anything.
bool CPatternGrid::CycleBit(CSignal& signal, int row) {
    if (signal.data.empty() || signal.mask.empty()) {
        return false;
    }
    const auto at = static_cast<std::size_t>(row);
    const bool known = signal.MaskBit(at);
    const bool one = signal.Bit(at);
    SetBit(signal.mask, row, !known || !one);
    SetBit(signal.data, row, known && !one);
    list_->SpreadBit(&signal, static_cast<std::uint32_t>(row));
    return true;
}

// The menu on a column.

std::uint32_t CPatternGrid::SampleRoom() const {
    return static_cast<std::uint32_t>(rowCount_);
}

void CPatternGrid::SignalReshaped(CSignal& signal) {
    signal.width = NeededWidth(signal, bodyFont_);
}

void CPatternGrid::SignalsChanged() {
    hot = pressed = {};
    if (modified_) {
        modified_();
    }
    SetOffset(header_.offset);
    emit ColumnsChanged();
}

} // namespace busquill
