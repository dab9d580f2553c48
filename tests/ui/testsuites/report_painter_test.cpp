#include "support/recording_paint_device_qt.h"
#include "support/recording_printer_qt.h"
#include "ui/testsuites/report_painter.h"

#include <QPainter>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

CTestResult Named(int number, const std::string& name, TestOutcome outcome) {
    return {{'C', 'F', 'G', static_cast<std::uint8_t>(number), 0}, name, outcome, 3};
}

class ReportPainterTest : public testing::Test {
protected:
    Recording Drawn(const ReportPage& page) {
        RecordingPaintDevice device({1000, 1500});
        QPainter painter(&device);
        DrawReportPage(painter, geometry, page, 7,
                       {"Compliance Tests", "Mon Jan  1 00:00:00 2001"});
        painter.end();
        return device.Recorded();
    }
    static const Recording::Text& TextOf(const Recording& recording, const QString& text) {
        for (const Recording::Text& each : recording.texts) {
            if (each.text == text) {
                return each;
            }
        }
        throw std::runtime_error("not drawn: " + text.toStdString());
    }

    const ReportGeometry geometry{1000, 1500, PageOrientation::Portrait};
};

TEST_F(ReportPainterTest, TitleNumberAndTimeStandInTheirStrips) {
    const Recording recording = Drawn({});
    const auto& title = TextOf(recording, "Compliance Tests");
    EXPECT_TRUE(title.bold);
    EXPECT_NEAR(title.rect.center().x(), 500, 2);
    EXPECT_LT(title.rect.bottom(), 75);
    const auto& number = TextOf(recording, "Page 7");
    EXPECT_NEAR(number.rect.center().x(), 500, 2);
    EXPECT_GE(number.rect.top(), 1425);
    EXPECT_FALSE(number.bold);
    EXPECT_NEAR(TextOf(recording, "Mon Jan  1 00:00:00 2001").rect.right(), 1000, 3);
}

TEST_F(ReportPainterTest, ItemsAreDrawnInColumnsAndInBlack) {
    const ReportPage page = {{0, "CFG1.", {"First line", "second line"}, "Failed(3) "},
                             {2, "CFG2.", {"Next"}, "Passed "}};
    const Recording recording = Drawn(page);
    EXPECT_NEAR(TextOf(recording, "CFG1.").rect.left(), 0, 2);
    EXPECT_NEAR(TextOf(recording, "First line").rect.left(), 100, 2);
    EXPECT_NEAR(TextOf(recording, "Passed ").rect.right(), 1000, 3);
    EXPECT_EQ(TextOf(recording, "Failed(3) ").color, QColor(Qt::black));
    const int pitch = geometry.lineHeight;
    const int first = TextOf(recording, "First line").rect.top();
    EXPECT_EQ(TextOf(recording, "Failed(3) ").rect.top(), first);
    EXPECT_EQ(TextOf(recording, "second line").rect.top(), first + pitch);
    EXPECT_EQ(TextOf(recording, "Next").rect.top(), first + 2 * pitch);
}

TEST_F(ReportPainterTest, AFullPageStaysInItsBody) {
    std::vector<CTestResult> results(
        50, Named(255, "The title of a test that takes one line", TestOutcome::Failed));
    const auto pages = ComposeReport(results, geometry, [](std::string_view) { return 1; });
    ASSERT_EQ(pages.size(), 1U);
    for (const Recording::Text& text : Drawn(pages[0]).texts) {
        if (text.text.startsWith("The title")) {
            EXPECT_GE(text.rect.top(), geometry.body.top);
            EXPECT_LE(text.rect.bottom(), geometry.body.top + geometry.body.height);
        }
    }
}

TEST(PrintReport, PrintsThePagesThatWereAskedFor) {
    const std::vector<CTestResult> results(120, Named(1, "Title", TestOutcome::Passed));
    const auto numbers = [&results](int from, int to) {
        RecordingPrinter printer({1000, 1500}, QPageLayout::Portrait);
        printer.setFromTo(from, to);
        EXPECT_EQ(PrintReport(printer, results, {"Compliance Tests", "now"}), std::nullopt);
        std::vector<std::string> texts;
        for (const auto& page : printer.Pages()) {
            for (const Recording::Text& text : page) {
                if (text.text.startsWith("Page")) {
                    texts.push_back(text.text.toStdString());
                }
            }
        }
        return texts;
    };
    EXPECT_THAT(numbers(0, 0), testing::ElementsAre("Page 1", "Page 2", "Page 3"));
    EXPECT_THAT(numbers(2, 2), testing::ElementsAre("Page 2"));
    EXPECT_THAT(numbers(2, 9), testing::ElementsAre("Page 2", "Page 3"));
}

} // namespace
} // namespace busquill::test
