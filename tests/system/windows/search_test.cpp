// Patterns, searches and the filter through the program's windows, against the simulated board.

#include "support/live_frame_fixture_qt.h"
#include "support/pattern_grid_qt.h"
#include "support/save_trace_qt.h"
#include "ui/capture/save_trace_dialog.h"
#include "ui/display/go_to_sample_dialog.h"
#include "ui/patterns/pattern_cell.h"
#include "ui/patterns/pattern_dialogs.h"

#include <QFileDialog>
#include <QPushButton>
#include <QSpinBox>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int frameBit = 72;

class LiveSearch : public LiveFrameFixture {
protected:
    void Capture() {
        OpenFrame("State");
        ChooseSetup("Read after 100 writes");
        Go();
        ASSERT_TRUE(Complete());
        ASSERT_GT(Trace().SampleCount(false), 500);
    }
    /// The second run ends without samples.
    void CaptureTwiceAndLoseTheSecond() {
        Connect({"--buffer", "4", "--rate", "1000"});
        Capture();
        Go();
        board->Fault("silence");
        ASSERT_TRUE(RunUntil([&] { return !Running(); }));
        ASSERT_EQ(Trace().SampleCount(false), 0);
    }
    /// Clicks a line's cell in the dialog of an entry until it shows `text`.
    template <class Dialog>
    void SetCell(const QString& entry, const std::string& line, const std::string& text) {
        ChooseDialog<Dialog>(entry, [&](Dialog& dialog) {
            CPatternGrid& grid = dialog.Grid();
            const CSignal& signal = dialog.Edited()[ColumnPlace(dialog.Edited(), line)];
            const auto cell = [&] { return CellRect(grid, dialog.Edited(), line, 0); };
            grid.MoveSignalsTo(cell().left() - 20);
            for (int i = 0; i < 3 && PatternText(signal, 0) != text; ++i) {
                QTest::mouseClick(&grid, Qt::LeftButton, {}, cell().center());
            }
            EXPECT_EQ(PatternText(signal, 0), text);
            dialog.accept();
        });
    }
    bool FrameIsLow(std::int64_t sample) {
        return !Trace().GetSample(sample, false)->Bit(frameBit);
    }
    std::int64_t Hit() { return Trace().Marker(1, false); }
    std::vector<std::string> Searches() {
        std::vector<std::string> found;
        for (const std::string& text : board->Functions()) {
            if (text.find("search") != std::string::npos) {
                found.push_back(text);
            }
        }
        return found;
    }
};

TEST_F(LiveSearch, TheBoardFindsTheSearchPattern) {
    Connect({"--buffer", "4", "--rate", "20000"});
    Capture();
    SetCell<CSearchPatternDlg>("Search/Find Pattern", "FRAME", "0");
    Trace().SetMarker(1, 10);
    for (int i = 0; i < 5; ++i) {
        std::int64_t expected = Hit() + 1;
        while (!FrameIsLow(expected)) {
            ++expected;
        }
        board->Fault("search-busy 2");
        Choose("Search/Find Next");
        EXPECT_EQ(Hit(), expected);
    }
    EXPECT_EQ(Searches().size(), 5U);
    std::int64_t expected = Hit() - 1;
    while (!FrameIsLow(expected)) {
        --expected;
    }
    Choose("Search/Find Previous");
    EXPECT_EQ(Hit(), expected);
    // From before the trigger to after it.
    const std::int64_t trigger = Trace().Marker(0, false);
    Trace().SetMarker(1, trigger - 1);
    Choose("Search/Find Next");
    EXPECT_GE(Hit(), trigger);
    EXPECT_TRUE(FrameIsLow(Hit()));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    Trace().SetMarker(1, Trace().SampleCount(false) - 1);
    Choose("Search/Find Next");
    EXPECT_THAT(prompts.Texts(), ElementsAre("No match found."));
}

TEST_F(LiveSearch, TheFilterHidesAndTheFilteredCaptureCanBeSaved) {
    Connect({"--buffer", "4", "--rate", "20000"});
    Capture();
    const std::int64_t all = Trace().SampleCount(false);
    std::int64_t low = 0;
    for (std::int64_t i = 0; i < all; ++i) {
        low += FrameIsLow(i) ? 1 : 0;
    }
    SetCell<CFilterPatternDlg>("Search/Filter", "FRAME", "0");
    EXPECT_EQ(Trace().RowCount(false), low);
    for (std::int64_t row = 0; row < low; ++row) {
        ASSERT_TRUE(FrameIsLow(Trace().RowToSample(row, false)));
    }
    Trace().SetPathName(dir.File("filtered.tra"));
    ChooseDialog<CSaveTraceDialog>("File/Save", [&](CSaveTraceDialog& dialog) {
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove('&') == "OK") {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
        EXPECT_TRUE(RunUntil([&] { return !dialog.isVisible(); }));
    });
    std::filesystem::copy(dir.File("filtered.tra"), dir.File("copy.tra"));
    auto* loaded = dynamic_cast<CTesselDoc*>(program->App().OpenDocumentFile(dir.File("copy.tra")));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->RowCount(false), low);
    // Another program gets the same rows, and is told that there were more.
    Frame().Area().setActiveSubWindow(frame);
    SaveTraceUnder(dir.File("filtered.csv"), [&] { Choose("File/Save As..."); });
    EXPECT_EQ(std::ranges::count(ReadWholeFile(dir.File("filtered.csv")), '\n'), 1 + low);
    EXPECT_THAT(prompts.Texts(), ElementsAre(HasSubstr("the filter hides some")));
    prompts.Forget();
    // All rows are shown again.
    SetCell<CFilterPatternDlg>("Search/Filter", "FRAME", "X");
    EXPECT_EQ(Trace().RowCount(false), all);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LiveSearch, AfterARunWithoutSamplesTheFilterHasNothingToShow) {
    ASSERT_NO_FATAL_FAILURE(CaptureTwiceAndLoseTheSecond());
    SetCell<CFilterPatternDlg>("Search/Filter", "FRAME", "0");
    EXPECT_EQ(Trace().RowCount(false), 0) << "the samples of the previous capture are gone";
    EXPECT_FALSE(Trace().IsFiltered());
}

TEST_F(LiveSearch, WithoutSamplesNothingIsExported) {
    ASSERT_NO_FATAL_FAILURE(CaptureTwiceAndLoseTheSecond());
    prompts.Forget();
    AnswerDialog<QFileDialog>([&] { Choose("File/Save As..."); },
                              [&](QFileDialog& files) { GiveFileName(files, dir.File("no.csv")); });
    EXPECT_THAT(prompts.Texts(), ElementsAre("There are no samples to save."));
    EXPECT_FALSE(std::filesystem::exists(dir.File("no.csv")));
}

TEST_F(LiveSearch, AFileIsSearchedOnTheHost) {
    Connect();
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    SetCell<CSearchPatternDlg>("Search/Find Pattern", "FRAME", "0");
    std::int64_t expected = frame->TraceView().TopSample();
    while (!FrameIsLow(expected)) {
        ++expected;
    }
    Choose("Search/Find Next");
    EXPECT_EQ(Hit(), expected);
    EXPECT_THAT(Searches(), IsEmpty());
}

TEST_F(LiveSearch, GoesToASampleByItsNumber) {
    Connect();
    ASSERT_NE(program->App().OpenDocumentFile(dir.File("Trigger2.tra")), nullptr);
    frame = &dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    const auto go = [&](int number) {
        ChooseDialog<CGoToSampleDlg>("Search/Go to/Sample #", [number](CGoToSampleDlg& dialog) {
            EXPECT_EQ(dialog.findChild<QSpinBox*>()->value(), 0);
            dialog.findChild<QSpinBox*>()->setValue(number);
            dialog.accept();
        });
    };
    go(300);
    EXPECT_EQ(frame->TraceView().CenterSample(), Trace().Marker(0, false) + 300);
    ChooseDialog<CGoToSampleDlg>("Search/Go to/Sample #", [](CGoToSampleDlg& dialog) {
        auto& field = *dialog.findChild<QSpinBox*>();
        QTest::keyClicks(&field, "500");
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        dialog.accept();
    });
    EXPECT_EQ(frame->TraceView().CenterSample(), Trace().Marker(0, false))
        << "an empty number is 0";
    go(-1000000);
    EXPECT_EQ(frame->TraceView().TopSample(), 0);
    go(1000000);
    EXPECT_GT(frame->TraceView().CenterSample(), Trace().SampleCount(false) - 100);
}

TEST_F(LiveSearch, SearchesAreUnavailableDuringACapture) {
    Connect({"--buffer", "1024", "--rate", "1000"});
    OpenFrame("State");
    Go();
    ASSERT_TRUE(Running());
    EXPECT_TRUE(Entry("Search/Find Pattern").isEnabled());
    for (const char* entry :
         {"Search/Find Next", "Search/Find Previous", "Search/Filter", "Search/Go to/Sample #"}) {
        EXPECT_FALSE(Entry(entry).isEnabled()) << entry;
    }
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_TRUE(Entry("Search/Filter").isEnabled());
}

} // namespace
} // namespace busquill::test
