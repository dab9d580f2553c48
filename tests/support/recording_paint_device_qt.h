#pragma once

#include <QColor>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPolygon>
#include <QRect>
#include <QString>

#include <memory>
#include <vector>

namespace busquill::test {

/// A sheet that remembers what a painter does to it instead of showing it. Coordinates are those
/// of the device; `visible` is what clipping and the device's edges leave of a thing.
class RecordingPaintDevice final : public QPaintDevice {
public:
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

    explicit RecordingPaintDevice(QSize size);
    ~RecordingPaintDevice() override;

    [[nodiscard]] QPaintEngine* paintEngine() const override;

    [[nodiscard]] QRect Bounds() const { return {QPoint(0, 0), size_}; }
    [[nodiscard]] const std::vector<Fill>& Fills() const noexcept { return fills_; }
    [[nodiscard]] const std::vector<Text>& Texts() const noexcept { return texts_; }
    [[nodiscard]] const std::vector<Line>& Lines() const noexcept { return lines_; }
    [[nodiscard]] const std::vector<Polygon>& Polygons() const noexcept { return polygons_; }

    /// Everything that was drawn.
    [[nodiscard]] std::size_t Calls() const noexcept;
    [[nodiscard]] int FillsOf(const QColor& color) const;
    /// The colour that the last fill over a point left there; invalid where there was none.
    [[nodiscard]] QColor ColorAt(QPoint point) const;
    /// The texts whose middle lies between two lines of pixels, from left to right.
    [[nodiscard]] std::vector<Text> TextsBetween(int top, int bottom) const;

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;

    QSize size_;
    std::unique_ptr<Engine> engine_;
    std::vector<Fill> fills_;
    std::vector<Text> texts_;
    std::vector<Line> lines_;
    std::vector<Polygon> polygons_;
};

} // namespace busquill::test
