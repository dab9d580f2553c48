#include "support/recording_paint_device_qt.h"
#include "ui/framework/painting.h"
#include "ui/performance/graph_painter.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

constexpr PerformanceScale percent{0, 10, 11};
constexpr PerformanceScale thousand{0, 100, 11};
constexpr std::uint32_t blue = 0xFF0000;
constexpr std::uint32_t red = 0x0000FF;
constexpr QSize usual{475, 420};

/// Graphs of 475 by 420 pixels whose labels are 27 pixels wide: the plot is from (31, 20) to
/// (475, 396).
class GraphPainter : public testing::Test {
protected:
    using Paint = std::function<void(QPainter&, const GraphFrame&)>;

    GraphFrame Frame(const PerformanceScale& scale = percent, const QString& unit = "%") const {
        return {{size, 27, scale}, style, unit};
    }
    Recording Record(const GraphFrame& frame, const Paint& paint) const {
        RecordingPaintDevice device(size);
        QPainter painter(&device);
        paint(painter, frame);
        return device.Recorded();
    }
    Recording Time(const std::vector<TimeLine>& lines = {}) const {
        return Record(Frame(), [&](QPainter& painter, const GraphFrame& frame) {
            DrawTimeGraph(painter, frame, lines);
        });
    }
    Recording Ranges(const std::vector<ValueRange>& ranges = {}) const {
        return Record(Frame(), [&](QPainter& painter, const GraphFrame& frame) {
            DrawMinMaxAverageGraph(painter, frame, ranges);
        });
    }
    QImage Picture(const GraphFrame& frame, int ratio, const Paint& paint) const {
        QImage image(size * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        paint(painter, frame);
        return image;
    }

    static std::vector<QRect> FillsOf(const Recording& drawn, const QColor& color) {
        std::vector<QRect> rects;
        for (const auto& fill : drawn.fills) {
            if (fill.color == color) {
                rects.push_back(fill.rect);
            }
        }
        return rects;
    }
    static std::vector<QString> Texts(const Recording& drawn) {
        std::vector<QString> texts;
        for (const auto& text : drawn.texts) {
            texts.push_back(text.text);
        }
        return texts;
    }
    static Recording::Text TextOf(const Recording& drawn, const QString& wanted) {
        for (const auto& text : drawn.texts) {
            if (text.text == wanted) {
                return text;
            }
        }
        ADD_FAILURE() << "no text " << wanted.toStdString();
        return {};
    }

    QSize size = usual;
    GraphStyle style = ScreenGraphStyle();
};

TEST_F(GraphPainter, TheScreenIsGreyWithBlackInk) {
    EXPECT_EQ(style.background, QColor(0xC0, 0xC0, 0xC0));
    EXPECT_EQ(style.ink, QColor(Qt::black));
    EXPECT_EQ(style.lineWidth, 1);
    const QFontMetrics metrics(style.font);
    EXPECT_EQ(metrics.ascent() + metrics.descent(), 14);
    EXPECT_EQ(style.LabelWidth(), metrics.horizontalAdvance("1000"));
}

TEST_F(GraphPainter, AxesHaveTicksLabelsUnitAndTitle) {
    for (const auto& [drawn, title] :
         {std::pair{Time(), QString("Time Graph")}, {Ranges(), QString("Min/Max/Average Graph")}}) {
        EXPECT_EQ(drawn.fills.front().rect, QRect(QPoint(0, 0), usual));
        EXPECT_EQ(drawn.fills.front().color, style.background);
        const auto ink = FillsOf(drawn, style.ink);
        EXPECT_THAT(ink, Contains(QRect(31, 20, 1, 376)));
        EXPECT_THAT(ink, Contains(QRect(31, 396, 444, 1)));
        for (const int y : {396, 359, 321, 284, 246, 208, 171, 133, 96, 58, 20}) {
            EXPECT_THAT(ink, Contains(QRect(27, y, 4, 1)));
        }
        EXPECT_THAT(Texts(drawn), IsSupersetOf<QString>({"0", "10", "20", "30", "40", "50", "60",
                                                         "70", "80", "90", "100", "%"}));
        const QRect titleRect = TextOf(drawn, title).rect;
        EXPECT_NEAR(titleRect.center().x(), 237, 1);
        EXPECT_NEAR(titleRect.center().y(), 9, 1);
        const QRect label = TextOf(drawn, "50").rect;
        EXPECT_EQ(label.right(), 25) << "a pixel, with the digit's blank two, before the tick";
        EXPECT_NEAR(label.center().y(), 208, 1);
        EXPECT_LT(TextOf(drawn, "%").rect.center().y(), TextOf(drawn, "100").rect.top());
    }
}

TEST_F(GraphPainter, OfALowGraphSomeLabelsAreMissingButNoTicks) {
    size = {475, 44 + 60};
    const Recording drawn = Time();
    EXPECT_THAT(Texts(drawn), ElementsAre("Time Graph", "0", "20", "40", "60", "80", "100", "%"));
    const auto ink = FillsOf(drawn, style.ink);
    EXPECT_EQ(
        std::count_if(ink.begin(), ink.end(), [](const QRect& rect) { return rect.left() == 27; }),
        11);
}

TEST_F(GraphPainter, TheTimeAxisHasThirtyTicks) {
    const auto ink = FillsOf(Time(), style.ink);
    int ticks = 0;
    for (int k = 1; k <= 30; ++k) {
        ticks += std::count(ink.begin(), ink.end(), QRect(31 + 444 * k / 30, 392, 1, 4)) == 1;
    }
    EXPECT_EQ(ticks, 30);
    EXPECT_THAT(FillsOf(Ranges(), style.ink), Not(Contains(QRect(45, 392, 1, 4))));
}

TEST_F(GraphPainter, EachItemIsALineInItsColorAndStyle) {
    const auto drawn = Time({{blue, 0, {0, 50, 100, 200}}, {red, 3, {10, 20}}});
    ASSERT_EQ(drawn.polylines.size(), 2U);
    EXPECT_EQ(drawn.polylines[0].points, (QPolygon{{31, 395}, {45, 208}, {60, 20}, {75, 20}}));
    EXPECT_EQ(drawn.polylines[0].pen.color(), QColor(Qt::blue));
    EXPECT_EQ(drawn.polylines[0].pen.style(), Qt::SolidLine);
    EXPECT_EQ(drawn.polylines[1].points, (QPolygon{{31, 359}, {45, 321}}));
    EXPECT_EQ(drawn.polylines[1].pen.color(), QColor(Qt::red));
    EXPECT_EQ(drawn.polylines[1].pen.style(), Qt::DashDotLine);
    EXPECT_THAT(Time().polylines, IsEmpty());
    EXPECT_THAT(Time({{blue, 0, {}}}).polylines, IsEmpty());
}

TEST_F(GraphPainter, StylesAreTheFiveOfAPen) {
    constexpr std::pair<int, Qt::PenStyle> table[] = {
        {0, Qt::SolidLine},      {1, Qt::DashLine},  {2, Qt::DotLine},    {3, Qt::DashDotLine},
        {4, Qt::DashDotDotLine}, {5, Qt::SolidLine}, {-1, Qt::SolidLine},
    };
    for (const auto& [index, expected] : table) {
        EXPECT_EQ(GraphPen(red, index, 1).style(), expected) << index;
    }
}

TEST_F(GraphPainter, ASingleValueIsAPoint) {
    const auto paint = [&](QPainter& painter, const GraphFrame& frame) {
        DrawTimeGraph(painter, frame, {{red, 1, {50}}});
    };
    for (const int ratio : {1, 2}) {
        const QImage image = Picture(Frame(), ratio, paint);
        int points = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == Qt::red) {
                    EXPECT_NEAR(x, 31 * ratio, 1);
                    EXPECT_NEAR(y, 208 * ratio, 1);
                    ++points;
                }
            }
        }
        EXPECT_EQ(points, ratio * ratio);
    }
}

TEST_F(GraphPainter, ALineIsAPixelWideAtItsPlaces) {
    const QImage image = Picture(Frame(), 1, [&](QPainter& painter, const GraphFrame& frame) {
        DrawTimeGraph(painter, frame, {{red, 0, std::vector<std::int32_t>(30, 50)}});
    });
    for (int x = 31; x < 460; ++x) {
        EXPECT_EQ(image.pixelColor(x, 208), QColor(Qt::red)) << x;
        EXPECT_NE(image.pixelColor(x, 207), QColor(Qt::red));
        EXPECT_NE(image.pixelColor(x, 209), QColor(Qt::red));
    }
    EXPECT_EQ(image.pixelColor(462, 208), style.background) << "behind the last value";
}

TEST_F(GraphPainter, ARangeHasCapsAndAMarkOfTheAverage) {
    EXPECT_THAT(
        FillsOf(Ranges({{.item = 1, .color = blue, .minimum = 10, .maximum = 90, .average = 50}}),
                Qt::blue),
        ElementsAre(QRect(129, 58, 1, 302),                      // the line
                    QRect(126, 359, 7, 1), QRect(126, 58, 7, 1), // the caps
                    QRect(126, 208, 7, 1), QRect(126, 209, 7, 1)));
    EXPECT_THAT(FillsOf(Ranges({{.item = 0, .color = blue, .minimum = 0, .maximum = 0}}), Qt::blue),
                ElementsAre(QRect(80, 395, 1, 1), QRect(77, 395, 7, 1), QRect(77, 395, 7, 1)))
        << "without an average";
    EXPECT_EQ(
        Ranges({{.item = 7, .color = blue, .minimum = 500, .maximum = 900}}).ColorAt({425, 20}),
        QColor(Qt::blue))
        << "above the scale";
}

TEST_F(GraphPainter, EachItemHasItsLetter) {
    const Recording drawn = Ranges();
    for (int item = 0; item < 8; ++item) {
        const QRect letter = TextOf(drawn, QString(QChar('A' + item))).rect;
        EXPECT_NEAR(letter.center().x(), 31 + 444 * (item + 1) / 9, 1);
        EXPECT_GT(letter.top(), 396);
        EXPECT_LE(letter.bottom(), 412);
    }
    EXPECT_THAT(Texts(Time()), Not(Contains(QString("A"))));
}

TEST_F(GraphPainter, APieIsACircleAlone) {
    const auto drawn = Record(Frame(), DrawMinMaxAveragePie);
    ASSERT_EQ(drawn.ellipses.size(), 1U);
    EXPECT_EQ(drawn.ellipses[0].rect, QRectF(65.5, 20.5, 375, 375));
    EXPECT_EQ(drawn.ellipses[0].brush.style(), Qt::NoBrush);
    EXPECT_THAT(Texts(drawn), ElementsAre("Min/Max/Average Graph"));
    EXPECT_THAT(FillsOf(drawn, style.ink), IsEmpty());
}

TEST_F(GraphPainter, WithoutRoomThereIsOnlyTheTitle) {
    size = {475, 44};
    for (const Recording& drawn : {Time({{blue, 0, {1, 2}}}), Ranges({{.item = 0, .color = blue}}),
                                   Record(Frame(), DrawMinMaxAveragePie)}) {
        EXPECT_EQ(drawn.Calls(), 2U) << "background and title";
    }
}

TEST_F(GraphPainter, PaperHasItsOwnColorsAndWidths) {
    style = {style.font, Qt::white, Qt::darkGreen, 3};
    const auto drawn = Time({{blue, 0, {0, 50}}});
    EXPECT_EQ(drawn.fills.front().color, QColor(Qt::white));
    EXPECT_THAT(FillsOf(drawn, Qt::darkGreen), Contains(QRect(31, 20, 3, 376)));
    EXPECT_EQ(drawn.polylines[0].pen.widthF(), 3);
    for (const auto& text : drawn.texts) {
        EXPECT_EQ(text.color, QColor(Qt::darkGreen));
    }
    EXPECT_THAT(FillsOf(drawn, Qt::black), IsEmpty());
    EXPECT_EQ(Record(Frame(), DrawMinMaxAveragePie).ellipses[0].pen.widthF(), 3);
    EXPECT_THAT(
        FillsOf(Ranges({{.item = 0, .color = blue, .minimum = 10, .maximum = 90}}), Qt::blue),
        Contains(QRect(80, 58, 3, 302)));
}

TEST_F(GraphPainter, DrawsNothingOutsideAndLeavesThePainterAlone) {
    QImage image(600, 500, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::red);
    painter.translate(50, 40);
    DrawTimeGraph(painter, Frame(), {{blue, 0, {0, 50, 100}}});
    EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
    EXPECT_FALSE(painter.hasClipping());
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!QRect(QPoint(50, 40), usual).contains(x, y)) {
                ASSERT_EQ(image.pixelColor(x, y), QColor(Qt::white)) << x << ", " << y;
            }
        }
    }
}

TEST_F(GraphPainter, AtTwiceTheScaleEveryPixelOfARangeIsFour) {
    const auto paint = [](QPainter& painter, const GraphFrame& frame) {
        DrawMinMaxAverageGraph(
            painter, frame,
            {{.item = 3, .color = red, .minimum = 13, .maximum = 57, .average = 31}});
    };
    const QImage once = Picture(Frame(), 1, paint);
    const QImage twice = Picture(Frame(), 2, paint);
    for (int y = 0; y < twice.height(); ++y) {
        for (int x = 0; x < twice.width(); ++x) {
            ASSERT_EQ(twice.pixelColor(x, y) == Qt::red, once.pixelColor(x / 2, y / 2) == Qt::red)
                << x << ", " << y;
        }
    }
}

TEST_F(GraphPainter, TheWidestLabelIsWhole) {
    for (const int ratio : {1, 2}) {
        GraphFrame frame = Frame(thousand, "MB/s");
        frame.geometry.labelWidth = style.LabelWidth();
        const int tick = frame.geometry.Plot().left - 4;
        const QImage drawn = Picture(frame, ratio, [](QPainter& painter, const GraphFrame& all) {
            DrawTimeGraph(painter, all, {});
        });
        // The same text, where it has room.
        const QImage whole = Picture(frame, ratio, [&](QPainter& painter, const GraphFrame&) {
            painter.fillRect(QRect(QPoint(0, 0), usual), style.background);
            painter.setFont(style.font);
            painter.drawText(frame.geometry.LabelRect(10).translated(100, 0),
                             Qt::AlignRight | Qt::AlignVCenter, "1000");
        });
        const auto inkBetween = [&](const QImage& image, int left, int right) {
            int dark = 0;
            for (int y = 14 * ratio; y < 27 * ratio; ++y) {
                for (int x = left * ratio; x < right * ratio; ++x) {
                    dark += 0xC0 - image.pixelColor(x, y).red();
                }
            }
            return dark;
        };
        const int all = inkBetween(whole, 90, 100 + tick);
        EXPECT_GE(inkBetween(drawn, 0, tick), all * 99 / 100);
        EXPECT_EQ(inkBetween(drawn, tick - 1, tick), 0) << "a gap before the tick";
        EXPECT_LE(inkBetween(drawn, tick - 2, tick), all * 3 / 100) << "of two pixels, smoothed";
    }
}

} // namespace
} // namespace busquill::test
