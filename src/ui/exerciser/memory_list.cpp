#include "ui/exerciser/memory_list.h"

#include "exerciser/memory_dump.h"
#include "platform/demo_random.h"
#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QRandomGenerator>
#include <QScrollBar>

#include <cmath>

namespace busquill {

namespace {

constexpr int rowHeight = 16;

std::vector<std::uint8_t> RandomBytes(int count) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        bytes.push_back(DemoDumpByte(QRandomGenerator::global()->bounded(largestDemoRandom + 1)));
    }
    return bytes;
}

} // namespace

CMemoryListBox::CMemoryListBox(QWidget* parent, std::function<bool()> isDemo)
    : QAbstractScrollArea(parent), isDemo_(std::move(isDemo)),
      font_(FontOfCellHeight(rowHeight, QFont::Bold, FontFace::Fixed)),
      charWidth_(static_cast<int>(std::ceil(QFontMetricsF(font_).horizontalAdvance('0')))) {
    setAccessibleName("Memory");
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setSingleStep(1);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
}

void CMemoryListBox::SetMemory(const ReadMemory* memory) {
    memory_ = memory;
    Refresh();
}

QString CMemoryListBox::RowText(int row) const {
    const std::uint32_t base = memory_ != nullptr ? memory_->BaseAddress() : 0;
    if (isDemo_()) {
        const auto bytes = RandomBytes(bytesPerRow_);
        return QString::fromStdString(DumpRowText(base, row, bytesPerRow_, bytes));
    }
    std::span<const std::uint8_t> bytes;
    if (memory_ != nullptr) {
        bytes = DumpRowBytes(memory_->Bytes(), row, bytesPerRow_);
    }
    return QString::fromStdString(DumpRowText(base, row, bytesPerRow_, bytes));
}

/// Like a list, besides the keys of every scrolled window.
void CMemoryListBox::keyPressEvent(QKeyEvent* event) {
    QScrollBar& bar = *verticalScrollBar();
    if (event->key() == Qt::Key_Home) {
        bar.setValue(bar.minimum());
    } else if (event->key() == Qt::Key_End) {
        bar.setValue(bar.maximum());
    } else {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void CMemoryListBox::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    bytesPerRow_ = DumpBytesPerRow(viewport()->width(), charWidth_);
    const int page = std::max(viewport()->height() / rowHeight, 1);
    verticalScrollBar()->setRange(0, std::max(dumpRows - page, 0));
    verticalScrollBar()->setPageStep(page);
}

void CMemoryListBox::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setFont(font_);
    painter.setPen(palette().color(QPalette::Text));
    const int top = verticalScrollBar()->value();
    const int first = top + event->rect().top() / rowHeight;
    const int last = std::min(top + event->rect().bottom() / rowHeight, dumpRows - 1);
    for (int row = first; row <= last; ++row) {
        const QRect place(0, (row - top) * rowHeight, viewport()->width(), rowHeight);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine, RowText(row));
    }
}

} // namespace busquill
