#include "support/temp_dir.h"
#include "ui/trace/reading_progress.h"

#include <QApplication>
#include <QStatusBar>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class ReadingAFile : public testing::Test {
protected:
    ReadingAFile() {
        QObject::connect(&bar, &QStatusBar::messageChanged,
                         [this](const QString& text) { texts << text; });
    }

    const TempDir dir;
    const std::string path = dir.Write("long.tra", std::string(1000, 'x'));
    QStatusBar bar;
    QStringList texts;
};

TEST_F(ReadingAFile, ShowsEachPercentOnce) {
    ReadingProgress progress(&bar, 0);

    for (const std::uint64_t bytes : {100U, 105U, 109U, 500U, 1000U}) {
        progress.At(path, bytes);
    }

    EXPECT_EQ(texts, QStringList({"Reading long.tra: 10 %", "Reading long.tra: 50 %",
                                  "Reading long.tra: 100 %"}));
}

TEST_F(ReadingAFile, ShowsNothingOfAFileThatIsSoonRead) {
    constexpr int anHour = 3'600'000;
    ReadingProgress progress(&bar, anHour);

    progress.At(path, 500);
    progress.At(path, 1000);

    EXPECT_TRUE(texts.isEmpty());
}

TEST_F(ReadingAFile, TakesTheTextAwayWhenTheProgramIsReadyAgain) {
    ReadingProgress progress(&bar, 0);
    progress.At(path, 1000);
    ASSERT_EQ(bar.currentMessage(), "Reading long.tra: 100 %");

    QElapsedTimer waiting;
    waiting.start();
    while (!bar.currentMessage().isEmpty() && waiting.elapsed() < 30'000) {
        QApplication::processEvents();
    }

    EXPECT_EQ(bar.currentMessage(), "");
}

} // namespace
} // namespace busquill::test
