#include "support/trace_fixture_qt.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_painter.h"
#include "ui/display/state_window.h"
#include "ui/framework/painting.h"

#include <QPainter>

#include <set>

namespace busquill::test {
namespace {

/// The rows of the TIME field: shown as a decoded column, or hidden and permanent, which is what
/// times between samples are summed from.
std::string TimeRows(bool shown) {
    std::string rows;
    for (int bit = 0; bit < 18; ++bit) {
        const std::string attribute = bit == 0 ? "Start" : bit == 17 ? "End" : "";
        rows += "\"Signal\",\"TIME[" + std::to_string(bit) + "]\",\"TIME\",\"Grouped\",\"\",\"" +
                attribute + "\"," + std::to_string(bit) + "," + std::to_string(110 + bit) +
                ",0,20,60,0,\"Show\",\"Time\",\"\"," +
                (shown ? (bit == 0 ? "\"TIME\"\n" : "\"\"\n") : "\"\",\"Hidden\",\"Permanent\"\n");
    }
    return rows;
}

class StatePainter : public TraceFixture {
protected:
    StatePainter() { colors = {0xC0C0C0, 0xE0E0E0, 0x0000FF, 0x00FF00, 0xFF0000}; }
    StateFrame Frame(QSize size = {400, 200}) {
        return {*document,
                document->stateList,
                false,
                board.board,
                colors,
                size,
                60,
                0,
                offset,
                FontOfCellHeight(14, QFont::Normal, FontFace::Fixed),
                FontOfCellHeight(15, QFont::Bold, FontFace::Proportional)};
    }
    QImage Draw(QSize size = {400, 200}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        missing = DrawState(painter, Frame(size));
        return image;
    }
    /// The colour between the texts of a row, in the SAMPLE cell.
    static QRgb RowColor(const QImage& image, int row) {
        return image.pixel(2, stateFirstRow + row * stateRowPitch + 1) & 0xFFFFFF;
    }
    const CSignal& Column(const std::string& name) {
        for (const auto& signal : document->stateList.All()) {
            if (signal->RowName() == name) {
                return *signal;
            }
        }
        throw std::runtime_error("no column " + name);
    }
    std::string Text(const std::string& column, std::int64_t sample) {
        return CellText(Frame(), Column(column), sample, 0);
    }

    StateColors colors;
    int offset = 0;
    std::optional<std::int64_t> missing;
};

TEST_F(StatePainter, StripesGoBySample) {
    Load(-4, 20);
    const QImage image = Draw();
    EXPECT_EQ(RowColor(image, 0), 0xC0C0C0U);
    EXPECT_EQ(RowColor(image, 1), 0xE0E0E0U);
    EXPECT_EQ(RowColor(image, 2), 0xC0C0C0U);
}

TEST_F(StatePainter, StripesStayWithTheirSamplesUnderAFilter) {
    Load(0, 20, "", [](int number) { return number % 2 == 1; });
    document->SetMarker(0, 20);
    const QImage image = Draw();
    for (int row = 0; row < 5; ++row) {
        EXPECT_EQ(RowColor(image, row), 0xE0E0E0U) << row;
    }
}

TEST_F(StatePainter, TriggerOutranksMarkersAndMarkersOutrankStripes) {
    Load(-4, 20);
    document->SetMarker(1, 5);
    document->SetMarker(2, 7);
    QImage image = Draw();
    EXPECT_EQ(RowColor(image, 4), 0xFF0000U); // trigger, red
    EXPECT_EQ(RowColor(image, 5), 0x00FF00U);
    EXPECT_EQ(RowColor(image, 7), 0x0000FFU);
    document->SetMarker(2, 5);
    EXPECT_EQ(RowColor(Draw(), 5), 0x00FF00U);
    document->SetMarker(1, 4);
    EXPECT_EQ(RowColor(Draw(), 4), 0xFF0000U);
}

TEST_F(StatePainter, EmptyCaptureDrawsOnlyTheHeader) {
    Load(0, 9, "", [](int) { return false; });
    const QImage image = Draw();
    for (int y = stateFirstRow; y < 200; ++y) {
        EXPECT_EQ(image.pixel(30, y) & 0xFFFFFF, 0xC0C0C0U) << y;
    }
    EXPECT_EQ(image.pixel(100, stateHeaderLine) & 0xFFFFFF, 0U);
    EXPECT_FALSE(missing.has_value());
}

TEST_F(StatePainter, ColumnsNeverReachIntoTheSampleColumn) {
    Load(0, 99);
    const QImage still = Draw();
    for (const int scrolled : {1, 7, 50, 333}) {
        offset = scrolled;
        const QImage moved = Draw();
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x <= 60; ++x) {
                ASSERT_EQ(moved.pixel(x, y), still.pixel(x, y)) << scrolled << " " << x << "," << y;
            }
        }
    }
}

TEST_F(StatePainter, SelectedTitleIsWhite) {
    Load(0, 9);
    const_cast<CSignal&>(Column("COMMAND")).selected = true;
    const QImage image = Draw();
    std::set<QRgb> seen;
    for (int y = 4; y < 14; ++y) {
        seen.insert(image.pixel(60 + 5, y) & 0xFFFFFF);
    }
    EXPECT_TRUE(seen.contains(0xFFFFFF));
}

TEST_F(StatePainter, AnySizeIsDrawnToItsEdges) {
    Load(-50, 50);
    for (const QSize size : {QSize(1, 1), QSize(61, 20), QSize(90, 35), QSize(1601, 1003)}) {
        const QImage image = Draw(size);
        for (int x = 0; x < size.width(); x += 3) {
            for (int y = 0; y < size.height(); y += 3) {
                ASSERT_NE(image.pixel(x, y) & 0xFFFFFF, 0xFF00FFU) << x << "," << y;
            }
        }
    }
}

TEST_F(StatePainter, CellsByKind) {
    Load(0, 300);
    EXPECT_EQ(Text("AD[63:0]", 258), "00000000 00000102");
    EXPECT_EQ(Text("DATA32", 258), "00000102");
    EXPECT_EQ(Text("ADDRESS32", 258), ""); // a data sample
    EXPECT_EQ(Text("COMMAND", 258), "");
    EXPECT_EQ(Text("IRDY", 258), "0");
}

TEST_F(StatePainter, TimeIsThatOfTheSampleOrUnderAFilterThatSinceTheRowAbove) {
    const std::string list = "\"State Signals\"\n" + TimeRows(true) + TimeRows(false);
    Load(0, 99, list);
    EXPECT_EQ(Text("TIME", 5), "30ns");
    Load(0, 99, list, [](int number) { return number % 5 == 0; });
    EXPECT_EQ(CellText(Frame(), Column("TIME"), 20, 10), "60ns");
}

TEST_F(StatePainter, ColumnWidthsFitTitleAndDigits) {
    Load(0, 9);
    auto view = MakeView();
    const QFontMetrics metrics(FontOfCellHeight(14, QFont::Normal, FontFace::Fixed));
    const int digit = metrics.horizontalAdvance('0');
    const auto width = [&](const char* title, int digits) {
        return std::max(metrics.horizontalAdvance(title), digits * digit) + 2 * digit;
    };
    EXPECT_EQ(Column("AD[63:0]").width, width("AD[63:0]", 17)); // 16 digits and a blank
    EXPECT_EQ(Column("ADDRESS32").width, width("ADDRESS32", 8));
    EXPECT_EQ(Column("COMMAND").width, width("COMMAND", 16)); // "DAC-Mem Wr & Inv"
    EXPECT_EQ(Column("IRDY").width, width("IRDY", 1));
    EXPECT_EQ(view->findChild<CStateWnd*>()->SampleColumnWidth(), 8 * digit);
}

TEST(LoadStateColors, DefaultsAndTheUsersOwn) {
    MemorySettings settings;
    EXPECT_EQ(LoadStateColors(settings),
              (StateColors{0xC0C0C0, 0xC0C0C0, 0x0000FF, 0x00FF00, 0xFF0000}));
    settings.WriteProfileInt("Display", "StateBackgroundColor", 0x112233);
    settings.WriteProfileInt("Display", "StateAlternateBackgroundColor", 0x445566);
    EXPECT_EQ(LoadStateColors(settings).alternate, 0x112233U); // alternation is off
    settings.WriteProfileInt("Display", "StateAlternate", 1);
    EXPECT_EQ(LoadStateColors(settings).alternate, 0x445566U);
}

} // namespace
} // namespace busquill::test
