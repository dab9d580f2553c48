#include "support/recording_paint_device_qt.h"
#include "ui/framework/painting.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

/// A small picture row by row, with a letter for each pixel.
std::string Letters(const QImage& image) {
    std::string text;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            switch (image.pixel(x, y) & 0xFFFFFF) {
            case 0xFFFFFF:
                text += 'W';
                break;
            case 0xE0E0E0:
                text += 'l';
                break;
            case 0x808080:
                text += 's';
                break;
            case 0x404040:
                text += 'D';
                break;
            default:
                text += '.';
            }
        }
        text += '\n';
    }
    return text;
}

std::string EdgeIn(QSize size, Edge edge) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(0xC0C0C0);
    QPainter painter(&image);
    DrawEdge(painter, image.rect(), edge);
    painter.end();
    return Letters(image);
}

TEST(DrawEdge, RaisedIsLitFromTheUpperLeft) {
    EXPECT_EQ(EdgeIn({7, 6}, Edge::Raised), "llllllD\n"
                                            "lWWWWsD\n"
                                            "lW...sD\n"
                                            "lW...sD\n"
                                            "lsssssD\n"
                                            "DDDDDDD\n");
}

TEST(DrawEdge, SunkenIsTheOpposite) {
    EXPECT_EQ(EdgeIn({7, 6}, Edge::Sunken), "ssssssW\n"
                                            "sDDDDlW\n"
                                            "sD...lW\n"
                                            "sD...lW\n"
                                            "slllllW\n"
                                            "WWWWWWW\n");
}

TEST(DrawEdge, ATooSmallRectangleIsHarmless) {
    RecordingPaintDevice sheet({10, 10});
    QPainter painter(&sheet);
    DrawEdge(painter, QRect(3, 3, 0, 0), Edge::Raised);
    DrawEdge(painter, QRect(3, 3, -5, 4), Edge::Sunken);
    EXPECT_EQ(sheet.Recorded().Calls(), 0U);
}

TEST(FontOfCellHeight, FixedFacesHaveOneWidth) {
    const QFontMetrics metrics(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed));
    for (const char c : {'0', 'W', 'i', '.', ' '}) {
        EXPECT_EQ(metrics.horizontalAdvance(c), metrics.horizontalAdvance('0')) << c;
    }
    EXPECT_TRUE(QFontInfo(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed)).fixedPitch());
}

TEST(FontOfCellHeight, WeightIsKept) {
    EXPECT_TRUE(FontOfCellHeight(15, QFont::Bold, FontFace::Proportional).bold());
    EXPECT_FALSE(FontOfCellHeight(15, QFont::Normal, FontFace::Proportional).bold());
}

class DrawCellTextIn : public testing::Test {
protected:
    static constexpr QRect cell{10, 20, 60, 14};

    static Recording Draw(const QString& text, CellAlign align, bool ellipsis,
                          const QRect& in = cell) {
        RecordingPaintDevice sheet({200, 100});
        QPainter painter(&sheet);
        painter.setFont(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed));
        DrawCellText(painter, in, text, align, ellipsis);
        return sheet.Recorded();
    }
};

TEST_F(DrawCellTextIn, IsAtTheBottomCentre) {
    const auto text = Draw("1A", CellAlign::Center, false).texts.at(0);
    EXPECT_EQ(text.rect.bottom(), cell.bottom());
    EXPECT_NEAR(text.rect.left() - cell.left(), cell.right() - text.rect.right(), 1);
    EXPECT_EQ(text.visible, text.rect);
}

TEST_F(DrawCellTextIn, IsAtTheLeft) {
    EXPECT_EQ(Draw("1A", CellAlign::Left, false).texts.at(0).rect.left(), cell.left());
}

TEST_F(DrawCellTextIn, IsOneLineWithEveryCharacterUnchanged) {
    const auto drawn = Draw("A&B C", CellAlign::Left, false);
    ASSERT_EQ(drawn.texts.size(), 1U);
    EXPECT_EQ(drawn.texts[0].text, "A&B C");
}

TEST_F(DrawCellTextIn, ATooLongTextIsCutAtTheCellOrEndsInAnEllipsis) {
    const QString text = "0123456789ABCDEF";
    const auto cut = Draw(text, CellAlign::Center, false).texts.at(0);
    EXPECT_EQ(cut.text, text);
    EXPECT_TRUE(cell.contains(cut.visible));
    EXPECT_NEAR(cut.rect.center().x(), cell.center().x(), 1);
    const auto elided = Draw(text, CellAlign::Left, true).texts.at(0);
    EXPECT_TRUE(elided.text.startsWith("012"));
    EXPECT_TRUE(elided.text.endsWith(QChar(0x2026)));
    EXPECT_LE(elided.rect.right(), cell.right());
}

TEST_F(DrawCellTextIn, AnEmptyTextDrawsNothing) {
    EXPECT_EQ(Draw("", CellAlign::Center, true).Calls(), 0U);
    EXPECT_EQ(Draw("1", CellAlign::Center, true, {10, 20, 0, 14}).Calls(), 0U);
}

} // namespace
} // namespace busquill::test
