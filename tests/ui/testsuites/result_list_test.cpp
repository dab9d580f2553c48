#include "support/recording_paint_device_qt.h"
#include "ui/testsuites/result_list.h"

#include <QAbstractItemDelegate>
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleOptionViewItem>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

CTestResult Named(const std::string& name, TestOutcome outcome = TestOutcome::Passed) {
    return {{'C', 'F', 'G', 1, 0}, name, outcome, 3};
}

class ResultListTest : public testing::Test {
protected:
    ResultListTest() {
        list.resize(500, 400);
        list.show();
    }
    int RowHeight(int row) {
        QApplication::processEvents();
        return list.visualItemRect(list.item(row)).height();
    }
    /// Pixels of pure red in a row.
    int RedIn(int row) {
        QApplication::processEvents();
        const QImage image = list.viewport()->grab().toImage();
        const QRect place = list.visualItemRect(list.item(row));
        int count = 0;
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                const QColor color = image.pixelColor(x, y);
                count += color.red() > 200 && color.green() < 80 && color.blue() < 80 ? 1 : 0;
            }
        }
        return count;
    }

    /// The texts of the only row, drawn with a height.
    std::vector<Recording::Text> Drawn(const CTestResult& test, int height,
                                       QStyle::State selected = QStyle::State_None) {
        list.Clear();
        list.Append(test);
        QStyleOptionViewItem option;
        option.initFrom(&list);
        option.state |= selected;
        option.rect = QRect(0, 0, list.viewport()->width(), height);
        RecordingPaintDevice device(option.rect.size());
        QPainter painter(&device);
        list.itemDelegate()->paint(&painter, option, list.indexFromItem(list.item(0)));
        painter.end();
        return device.Recorded().texts;
    }
    /// The colours of the result's text, without and with the selection.
    std::vector<QColor> ResultColors(TestOutcome outcome) {
        return {Drawn(Named("Title", outcome), 20).back().color,
                Drawn(Named("Title", outcome), 20, QStyle::State_Selected).back().color};
    }

    CResultList list{nullptr};
    const std::string longTitle = "A title that needs more than one line since it has many words "
                                  "and the list is not wide enough for all of them";
};

TEST_F(ResultListTest, ARowIsAsHighAsItsTitle) {
    list.Append(Named("Short"));
    list.Append(Named(longTitle));
    const int line = list.fontMetrics().height();
    EXPECT_EQ(RowHeight(0), line);
    const int wrapped = RowHeight(1);
    EXPECT_GE(wrapped, 2 * line);
    EXPECT_EQ(wrapped % line, 0);
    list.Append(Named("Last"));
    list.resize(1400, 400);
    EXPECT_EQ(RowHeight(1), line) << "wraps anew";
    EXPECT_EQ(list.visualItemRect(list.item(2)).top(), 2 * line);
    list.resize(500, 400);
    list.Append(Named(std::string(5000, 'x')));
    EXPECT_EQ(RowHeight(3), 255);
}

TEST_F(ResultListTest, TheColumnsAreAsWideAsTheirSamples) {
    const auto texts = Drawn(Named("Title", TestOutcome::Failed), 20);
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0].text, "CFG1.");
    EXPECT_LT(texts[0].rect.left(), 4);
    EXPECT_EQ(texts[1].text, "Title");
    EXPECT_NEAR(texts[1].rect.left(), list.fontMetrics().horizontalAdvance("MMMMM"), 1);
    EXPECT_EQ(texts[2].text, "Failed(3) ");
    EXPECT_NEAR(texts[2].rect.right(), list.viewport()->width(), 2);
    const auto full = Drawn(Named(std::string(500, 'i')), 20);
    EXPECT_NEAR(full[1].rect.right(),
                list.viewport()->width() - list.fontMetrics().horizontalAdvance("MMMMMMMMMM"), 15)
        << "the title fills the middle";
}

TEST_F(ResultListTest, ATitleThatIsCutEndsInAnEllipsis) {
    const int line = list.fontMetrics().height();
    const QString ellipsis(QChar(0x2026));
    const auto whole = Drawn(Named(longTitle), 2 * line);
    ASSERT_EQ(whole.size(), 4U);
    EXPECT_FALSE(whole[2].text.endsWith(ellipsis));
    const auto cut = Drawn(Named(longTitle), line);
    ASSERT_EQ(cut.size(), 3U);
    EXPECT_TRUE(cut[1].text.endsWith(ellipsis));
    EXPECT_LE(cut[1].rect.right(),
              list.viewport()->width() - list.fontMetrics().horizontalAdvance("MMMMMMMMMM"));
}

TEST_F(ResultListTest, OnlyFailuresAreRed) {
    list.Append(Named("One", TestOutcome::Failed));
    list.Append(Named("Two", TestOutcome::Passed));
    list.Append(Named("Three", TestOutcome::Skipped));
    list.setCurrentRow(-1);
    EXPECT_GT(RedIn(0), 20);
    EXPECT_EQ(RedIn(1), 0);
    EXPECT_EQ(RedIn(2), 0);
}

TEST_F(ResultListTest, TheSelectionLeavesTheColorsOfResults) {
    const QColor red(0xFF, 0, 0);
    EXPECT_EQ(ResultColors(TestOutcome::Failed), std::vector({red, red}));
    const QColor text = list.palette().color(QPalette::Text);
    ASSERT_EQ(text, QColor(Qt::black));
    EXPECT_EQ(ResultColors(TestOutcome::Passed), std::vector({text, text}));
    EXPECT_EQ(ResultColors(TestOutcome::Skipped), std::vector({text, text}));
}

TEST_F(ResultListTest, TheLastTestIsReplacedAndSelected) {
    list.Append(Named("One"));
    list.Append(Named("Two", TestOutcome::None));
    EXPECT_EQ(list.item(1)->text(), "CFG1. Two");
    list.ReplaceLast(Named("Two", TestOutcome::Failed));
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(list.item(1)->text(), "CFG1. Two Failed(3)");
    EXPECT_EQ(list.currentRow(), 1);
    list.Clear();
    EXPECT_EQ(list.count(), 0);
    list.ReplaceLast(Named("Three"));
    EXPECT_EQ(list.count(), 0);
}

} // namespace
} // namespace busquill::test
