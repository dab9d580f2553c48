#pragma once

#include <QBrush>
#include <QColor>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPen>
#include <QPolygon>
#include <QRect>
#include <QString>

#include <memory>
#include <vector>

namespace busquill::test {

/// What was painted. Coordinates are those of the device; `visible` is the part of an item that
/// remains after clipping to the clip region and the device.
struct Recording {
    struct Fill {
        QRect rect;
        QRect visible;
        QColor color;
    };
    struct Text {
        QString text;
        QRect rect; // from ascent to descent, as wide as the text advances
        QRect visible;
        QColor color;
        bool bold = false;
    };
    struct Line {
        QLine line;
        QColor color;
    };
    struct Polygon {
        QPolygon points;
        QColor color;
    };
    struct Polyline {
        QPolygon points;
        QPen pen;
    };
    struct Ellipse {
        QRectF rect;
        QPen pen;
        QBrush brush;
    };

    QRect bounds;
    std::vector<Fill> fills;
    std::vector<Text> texts;
    std::vector<Line> lines;
    std::vector<Polygon> polygons;
    std::vector<Polyline> polylines;
    std::vector<Ellipse> ellipses;

    /// Everything that was drawn.
    [[nodiscard]] std::size_t Calls() const noexcept;
    [[nodiscard]] int FillsOf(const QColor& color) const;
    [[nodiscard]] int LinesOf(const QColor& color) const;
    /// The colour of the last fill over a point; invalid where there is none.
    [[nodiscard]] QColor ColorAt(QPoint point) const;
    /// The texts whose middle lies between two rows of pixels, from left to right.
    [[nodiscard]] std::vector<Text> TextsBetween(int top, int bottom) const;
};

/// A paint device that records what is drawn instead of showing it.
class RecordingPaintDevice final : public QPaintDevice {
public:
    explicit RecordingPaintDevice(QSize size);
    ~RecordingPaintDevice() override;

    [[nodiscard]] const Recording& Recorded() const noexcept { return recording_; }

    [[nodiscard]] QPaintEngine* paintEngine() const override;

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;

    Recording recording_;
    std::unique_ptr<Engine> engine_;
};

} // namespace busquill::test
