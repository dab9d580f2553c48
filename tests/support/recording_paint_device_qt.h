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

/// What a painter did to a sheet. Coordinates are those of the sheet; `visible` is what clipping
/// and the sheet's edges leave of a thing.
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

    QRect bounds;
    std::vector<Fill> fills;
    std::vector<Text> texts;
    std::vector<Line> lines;
    std::vector<Polygon> polygons;

    /// Everything that was drawn.
    [[nodiscard]] std::size_t Calls() const noexcept;
    [[nodiscard]] int FillsOf(const QColor& color) const;
    [[nodiscard]] int LinesOf(const QColor& color) const;
    /// The colour that the last fill over a point left there; invalid where there was none.
    [[nodiscard]] QColor ColorAt(QPoint point) const;
    /// The texts whose middle lies between two lines of pixels, from left to right.
    [[nodiscard]] std::vector<Text> TextsBetween(int top, int bottom) const;
};

/// A sheet that remembers what is drawn instead of showing it.
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
