#include "ui/display/state_window.h"

#include "capture/trace_document.h"
#include "signals/value_text.h"
#include "ui/display/state_geometry.h"
#include "ui/framework/painting.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace busquill {

namespace {

constexpr int sampleColumnDigits = 8;
constexpr int marginDigits = 2;
constexpr int widestTitle = 1000; // pixels

} // namespace

CStateWnd::CStateWnd(QWidget* parent, const Settings& settings)
    : QWidget(parent), settings_(settings),
      bodyFont_(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed)),
      headerFont_(FontOfCellHeight(15, QFont::Bold, FontFace::Proportional)),
      digitWidth_(QFontMetrics(bodyFont_).horizontalAdvance('0')),
      sampleColumn_(sampleColumnDigits * digitWidth_), colors_(LoadStateColors(settings)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CStateWnd::Attach(CTesselDoc& document, CSignalList& list, bool zoom) {
    document_ = &document;
    list_ = &list;
    zoom_ = zoom;
    for (const auto& signal : list.All()) {
        if (signal->VisibleWidth() > 0) {
            signal->width = MeasureColumn(*signal);
        }
    }
    SetTopRow(0);
}

int CStateWnd::MeasureColumn(const CSignal& signal) const {
    unsigned digits = 1;
    if (signal.decoded) {
        digits = signal.decoded->labelWidth;
    } else if (signal.grouped) {
        digits = DigitsFor(signal.groupWidth, signal.radix);
    }
    const int title = QFontMetrics(bodyFont_).horizontalAdvance(ColumnTitle(signal));
    return std::max(std::min(title, widestTitle), digitWidth_ * static_cast<int>(digits)) +
           marginDigits * digitWidth_;
}

int CStateWnd::VisibleRowCount() const {
    return VisibleRows(height());
}

int CStateWnd::ColumnsWidth() const {
    return list_ == nullptr ? 0 : TotalWidth(ColumnWidths(*list_));
}

void CStateWnd::SetTopRow(std::int64_t row) {
    topRow_ = row;
    topSample_ = document_ == nullptr ? 0 : document_->RowToSample(row, zoom_);
    Render(true);
}

void CStateWnd::SetOffset(int offset) {
    offset_ = offset;
    Render(true);
}

void CStateWnd::Render(bool blit) {
    if (document_ == nullptr || bitmap_.isNull()) {
        return;
    }
    colors_ = LoadStateColors(settings_);
    const StateFrame frame{*document_, *list_,    zoom_,         SignalTables::Current().Board(),
                           colors_,    size(),    sampleColumn_, topRow_,
                           offset_,    bodyFont_, headerFont_};
    QPainter painter(&bitmap_);
    const auto missing = DrawState(painter, frame);
    if (missing && document_->IsRealTime() && document_->GetStore().IsUploading()) {
        document_->GetStore().SetPriorityIndex(static_cast<std::uint32_t>(*missing));
    }
    if (blit) {
        update();
    }
}

void CStateWnd::paintEvent(QPaintEvent* /*event*/) {
    if (bitmap_.devicePixelRatio() != devicePixelRatioF()) {
        MakeBitmap(); // the window has come to another screen
    } else if (LoadStateColors(settings_) != colors_) {
        Render(false);
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, bitmap_);
}

void CStateWnd::resizeEvent(QResizeEvent* /*event*/) {
    MakeBitmap();
}

void CStateWnd::MakeBitmap() {
    const qreal ratio = devicePixelRatioF();
    bitmap_ = QPixmap(size() * ratio);
    bitmap_.setDevicePixelRatio(ratio);
    bitmap_.fill(ColorOf(colors_.background));
    Render(false);
}

} // namespace busquill
