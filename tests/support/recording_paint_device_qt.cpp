#include "support/recording_paint_device_qt.h"

#include <QFontMetrics>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <span>
#include <stdexcept>

namespace busquill::test {

class RecordingPaintDevice::Engine final : public QPaintEngine {
public:
    explicit Engine(Recording& recording)
        : QPaintEngine(QPaintEngine::AllFeatures), recording_(recording) {}

    bool begin(QPaintDevice* /*device*/) override {
        clip_ = recording_.bounds;
        return true;
    }
    bool end() override { return true; }
    [[nodiscard]] Type type() const override { return User; }

    void updateState(const QPaintEngineState& now) override {
        const DirtyFlags dirty = now.state();
        if (dirty & DirtyTransform) {
            if (now.transform().type() > QTransform::TxTranslate) {
                throw std::logic_error("only translations are recorded");
            }
            moved_ = QPoint(static_cast<int>(std::lround(now.transform().dx())),
                            static_cast<int>(std::lround(now.transform().dy())));
        }
        if (dirty & DirtyPen) {
            pen_ = now.pen();
        }
        if (dirty & DirtyBrush) {
            brush_ = now.brush();
        }
        if (dirty & DirtyClipPath) {
            Clip(QRegion(now.clipPath().boundingRect().toAlignedRect()), now.clipOperation());
        }
        if (dirty & DirtyClipRegion) {
            Clip(now.clipRegion(), now.clipOperation());
        }
        if (dirty & DirtyClipEnabled) {
            clipping_ = now.isClipEnabled();
        }
    }

    void drawRects(const QRectF* rects, int count) override {
        for (const QRectF& rect : std::span(rects, static_cast<std::size_t>(count))) {
            const QRect area = rect.toRect().translated(moved_);
            recording_.fills.push_back({area, Visible(area), brush_.color()});
        }
    }
    void drawRects(const QRect* rects, int count) override {
        for (const QRect& rect : std::span(rects, static_cast<std::size_t>(count))) {
            const QRect area = rect.translated(moved_);
            recording_.fills.push_back({area, Visible(area), brush_.color()});
        }
    }
    void drawLines(const QLineF* lines, int count) override {
        for (const QLineF& line : std::span(lines, static_cast<std::size_t>(count))) {
            recording_.lines.push_back({line.toLine().translated(moved_), pen_.color()});
        }
    }
    void drawLines(const QLine* lines, int count) override {
        for (const QLine& line : std::span(lines, static_cast<std::size_t>(count))) {
            recording_.lines.push_back({line.translated(moved_), pen_.color()});
        }
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
        QPolygonF polygon;
        for (const QPointF& point : std::span(points, static_cast<std::size_t>(count))) {
            polygon << point;
        }
        AddPolygon(polygon.toPolygon(), mode);
    }
    void drawPolygon(const QPoint* points, int count, PolygonDrawMode mode) override {
        QPolygon polygon;
        for (const QPoint& point : std::span(points, static_cast<std::size_t>(count))) {
            polygon << point;
        }
        AddPolygon(polygon, mode);
    }
    void drawEllipse(const QRectF& rect) override {
        recording_.ellipses.push_back({rect.translated(moved_), pen_, brush_});
    }
    void drawEllipse(const QRect& rect) override { drawEllipse(QRectF(rect)); }
    void drawTextItem(const QPointF& at, const QTextItem& item) override {
        const int ascent = static_cast<int>(std::lround(item.ascent()));
        const int descent = static_cast<int>(std::lround(item.descent()));
        const QRect rect(moved_ + QPoint(static_cast<int>(std::lround(at.x())),
                                         static_cast<int>(std::lround(at.y())) - ascent),
                         QSize(static_cast<int>(std::lround(item.width())), ascent + descent));
        recording_.texts.push_back(
            {item.text(), rect, Visible(rect), pen_.color(), item.font().bold()});
    }
    void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/,
                    const QRectF& /*from*/) override {
        throw std::logic_error("pixmaps are not recorded");
    }

private:
    void AddPolygon(const QPolygon& polygon, PolygonDrawMode mode) {
        const QPolygon points = polygon.translated(moved_);
        if (mode == PolylineMode) {
            recording_.polylines.push_back({points, pen_});
        } else {
            recording_.polygons.push_back({points, brush_.color()});
        }
    }
    void Clip(const QRegion& clip, Qt::ClipOperation operation) {
        const QRegion region = clip.translated(moved_);
        clipping_ = operation != Qt::NoClip;
        clip_ = operation == Qt::IntersectClip ? clip_.intersected(region) : region;
    }
    [[nodiscard]] QRect Visible(const QRect& rect) const {
        QRegion left = QRegion(rect).intersected(recording_.bounds);
        if (clipping_) {
            left = left.intersected(clip_);
        }
        return left.boundingRect();
    }

    Recording& recording_;
    QPen pen_;
    QBrush brush_;
    QRegion clip_;
    QPoint moved_; // by the translation
    bool clipping_ = false;
};

RecordingPaintDevice::RecordingPaintDevice(QSize size)
    : engine_(std::make_unique<Engine>(recording_)) {
    recording_.bounds = QRect(QPoint(0, 0), size);
}

RecordingPaintDevice::~RecordingPaintDevice() = default;

QPaintEngine* RecordingPaintDevice::paintEngine() const {
    return engine_.get();
}

int RecordingPaintDevice::metric(PaintDeviceMetric metric) const {
    constexpr int dpi = 96;
    switch (metric) {
    case PdmWidth:
        return recording_.bounds.width();
    case PdmHeight:
        return recording_.bounds.height();
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return dpi;
    case PdmDepth:
        return 32;
    case PdmNumColors:
        return 0;
    case PdmDevicePixelRatio:
        return 1;
    case PdmDevicePixelRatioScaled:
        return static_cast<int>(devicePixelRatioFScale());
    default:
        return QPaintDevice::metric(metric);
    }
}

std::size_t Recording::Calls() const noexcept {
    return fills.size() + texts.size() + lines.size() + polygons.size() + polylines.size() +
           ellipses.size();
}

int Recording::FillsOf(const QColor& color) const {
    return static_cast<int>(std::count_if(fills.begin(), fills.end(), [&](const Fill& fill) {
        return fill.color == color && !fill.visible.isEmpty();
    }));
}

int Recording::LinesOf(const QColor& color) const {
    return static_cast<int>(std::count_if(lines.begin(), lines.end(),
                                          [&](const Line& line) { return line.color == color; }));
}

QColor Recording::ColorAt(QPoint point) const {
    const auto last = std::find_if(fills.rbegin(), fills.rend(),
                                   [&](const Fill& fill) { return fill.visible.contains(point); });
    return last == fills.rend() ? QColor() : last->color;
}

std::vector<Recording::Text> Recording::TextsBetween(int top, int bottom) const {
    std::vector<Text> found;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(found), [&](const Text& text) {
        return text.rect.center().y() >= top && text.rect.center().y() <= bottom;
    });
    std::sort(found.begin(), found.end(),
              [](const Text& a, const Text& b) { return a.rect.left() < b.rect.left(); });
    return found;
}

} // namespace busquill::test
