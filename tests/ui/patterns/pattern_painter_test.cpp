#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/recording_paint_device_qt.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/patterns/pattern_painter.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class PatternPainter : public testing::Test {
protected:
    PatternPainter() {
        list.mode = ModeEvents;
        for (const char* line : {"FRAME", "IRDY", "TRDY"}) {
            list.AddSignal(nullptr, board.tables.busSignals.FindByName(line), 3, 0, 0, 0,
                           Radix::Hex, true);
        }
        for (const auto& signal : list.All()) {
            signal->width = 70;
        }
    }
    PatternFrame Frame() {
        return {list,
                {{ColumnWidths(list), labels, offset, 300}, 3, topRow, 90},
                {ScreenFonts(), Qt::cyan},
                "EVENT",
                "E%d:",
                hot};
    }
    Recording Draw(void (*draw)(QPainter&, const PatternFrame&) = DrawPatterns) {
        RecordingPaintDevice device({300, 90});
        QPainter painter(&device);
        draw(painter, Frame());
        return device.Recorded();
    }
    static QStringList Texts(const std::vector<Recording::Text>& texts) {
        QStringList list;
        for (const auto& text : texts) {
            list << text.text;
        }
        return list;
    }
    QStringList Row(const Recording& drawn, int row) {
        const int top = Frame().geometry.RowTop(row);
        return Texts(drawn.TextsBetween(top, top + patternRowPitch - 1));
    }
    static QStringList Header(const Recording& drawn) {
        return Texts(drawn.TextsBetween(0, tableHeaderLine - 1));
    }

    BoardTables board{"PCIKite-1"};
    CSignalList list{board.tables};
    int labels = 63;
    int offset = 0;
    int topRow = 0;
    std::optional<PatternCell> hot;
};

TEST_F(PatternPainter, DrawsTheTextsOfTheCellsInTheirRows) {
    ASSERT_TRUE(CycleBit(list, list[1], 1));
    const Recording drawn = Draw();
    EXPECT_EQ(Header(drawn), (QStringList{"EVENT", "FRAME", "IRDY", "TRDY"}));
    EXPECT_EQ(Row(drawn, 0), (QStringList{"E1:", "X", "X", "X"}));
    EXPECT_EQ(Row(drawn, 1), (QStringList{"E2:", "X", "0", "X"}));
    EXPECT_EQ(Row(drawn, 2), (QStringList{"E3:", "X", "X", "X"}));
}

TEST_F(PatternPainter, BeginsWithTheTopRowAndHasNoLabelsWithoutTheirColumn) {
    ASSERT_TRUE(CycleBit(list, list[0], 2));
    topRow = 1;
    labels = 0;
    const Recording drawn = Draw();
    EXPECT_EQ(Header(drawn), (QStringList{"FRAME", "IRDY", "TRDY"}));
    EXPECT_EQ(Row(drawn, 1), (QStringList{"X", "X", "X"}));
    EXPECT_EQ(Row(drawn, 2), (QStringList{"0", "X", "X"}));
    EXPECT_EQ(Row(drawn, 3), QStringList());
}

TEST_F(PatternPainter, CellsNeverOverlapTheLabels) {
    for (offset = 0; offset < 150; offset += 7) {
        const Recording drawn = Draw();
        for (const auto& text : drawn.texts) {
            const bool isLabel = text.text.startsWith('E');
            EXPECT_TRUE(text.visible.isEmpty() || (text.visible.right() < labels) == isLabel)
                << text.text.toStdString() << " " << offset;
        }
    }
}

TEST_F(PatternPainter, TheHotCellIsSunkenWithinItsBounds) {
    const Recording cold = Draw();
    hot = PatternCell{1, 2};
    const Recording drawn = Draw();
    const QRect edge = Frame().geometry.CellRect(*hot).adjusted(2, 2, -2, -2);
    EXPECT_EQ(edge.height(), 17);
    const QColor shadow(0x80, 0x80, 0x80);
    EXPECT_EQ(drawn.ColorAt(edge.topLeft()), shadow);
    EXPECT_EQ(drawn.ColorAt(edge.bottomRight()), QColor(Qt::white));
    EXPECT_EQ(drawn.fills.size(), cold.fills.size() + 8) << "two pixels on four sides, no more";
    for (const auto& fill : drawn.fills) {
        const bool isNew = edge.contains(fill.rect);
        EXPECT_EQ(isNew, fill.rect.top() >= edge.top() && fill.rect.width() < 200 &&
                             fill.rect.height() < 80)
            << fill.rect.x() << "," << fill.rect.y();
    }
}

TEST_F(PatternPainter, TheBackgroundFollowsTheStyleEverywhere) {
    list[0].selected = true;
    const Recording drawn = Draw();
    EXPECT_EQ(drawn.fills.front().rect, QRect(0, 0, 300, 90));
    EXPECT_EQ(drawn.fills.front().color, QColor(Qt::cyan));
    const auto middle = [&](std::size_t column) {
        return drawn.ColorAt(Frame().geometry.columns.At(column).Title().center());
    };
    EXPECT_EQ(middle(0), QColor(Qt::white)) << "a selected title";
    EXPECT_EQ(middle(1), QColor(Qt::cyan));
}

TEST_F(PatternPainter, PaintingTheHeaderAloneLeavesTheRows) {
    const Recording drawn = Draw(DrawPatternHeader);
    EXPECT_EQ(Header(drawn), Header(Draw()));
    EXPECT_EQ(drawn.texts.size(), 4U);
    for (const auto& fill : drawn.fills) {
        EXPECT_TRUE(fill.rect.bottom() <= tableHeaderLine || fill.rect.width() == 1)
            << "only the lines extend downwards";
    }
}

TEST_F(PatternPainter, AListWithoutColumnsShowsLabelsOnly) {
    list.RemoveAllSignals();
    const Recording drawn = Draw();
    EXPECT_EQ(Header(drawn), QStringList{"EVENT"});
    EXPECT_EQ(Row(drawn, 2), QStringList{"E3:"});
}

} // namespace
} // namespace busquill::test
