// Bookmarks of a capture from the board: while it runs, after it has been saved, and after the next
// run.

#include "support/live_frame_fixture_qt.h"
#include "support/save_trace_qt.h"
#include "ui/analysis/bookmark_dialog.h"
#include "ui/capture/position_gauge.h"

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>

namespace busquill::test {
namespace {

class BookmarksOfRuns : public LiveFrameFixture {
protected:
    /// Panels follow before the program waits for an event.
    void Settle() {
        QApplication::processEvents();
        Frame().RefreshCommands();
        QApplication::processEvents();
    }
    void Add(const QString& note) {
        ChooseDialog<BookmarkDialog>("Analyze/Add Bookmark...", [&](BookmarkDialog& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>(), note);
            QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
        });
        Settle();
    }
    QDockWidget& Dock() { return *Frame().findChild<QDockWidget*>("Bookmarks"); }
    QAbstractItemModel& Model() { return *Dock().findChild<QTableView*>("BookmarkTable")->model(); }
    std::string Note() { return Dock().findChild<QLabel*>("BookmarkNote")->text().toStdString(); }
    Bookmarks InFile(const std::string& capture) {
        return ReadBookmarks(BookmarkPathOf(dir.File(capture))).bookmarks;
    }
};

TEST_F(BookmarksOfRuns, BeginWithTheSamplesAndEndWithThem) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    Choose("Analyze/Bookmarks");
    Settle();
    EXPECT_EQ(Note(), "There are no samples yet.");
    EXPECT_FALSE(Entry("Analyze/Add Bookmark...").isEnabled());
    Go();
    ASSERT_TRUE(Complete());
    Add("first run");
    EXPECT_EQ(Model().rowCount(), 1);
    EXPECT_TRUE(Trace().IsModified());
    EXPECT_EQ(frame->GetGauge().State().bookmarks.size(), 1U);
    Go();
    Settle();
    EXPECT_EQ(Model().rowCount(), 0) << "its samples are gone";
    EXPECT_FALSE(Entry("Analyze/Add Bookmark...").isEnabled());
    ASSERT_TRUE(Complete());
    Settle();
    EXPECT_EQ(Model().rowCount(), 0);
    EXPECT_TRUE(frame->GetGauge().State().bookmarks.empty());
    Add("second run");
    EXPECT_EQ(Model().rowCount(), 1);
    prompts.AnswerNext(Answer::No); // it need not be saved
}

TEST_F(BookmarksOfRuns, AreSavedWithTheCaptureAndStayWithItsFile) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    Go();
    ASSERT_TRUE(Complete());
    Add("live");
    const std::int64_t number = Trace().GetBookmarks().begin()->first;
    SaveTraceUnder(dir.File("live.tra"), [&] { Entry("File/Save").trigger(); });
    ASSERT_EQ(InFile("live.tra"), (Bookmarks{{number, "live"}}));
    EXPECT_FALSE(Trace().IsModified());

    // The file in a window of its own, beside the live one.
    CChildFrame& live = *frame;
    auto* document =
        dynamic_cast<CTesselDoc*>(program->App().OpenDocumentFile(dir.File("live.tra")));
    ASSERT_NE(document, nullptr);
    ASSERT_NE(document, &live.Trace());
    EXPECT_EQ(document->GetBookmarks(), live.Trace().GetBookmarks());
    document->SetBookmark(number + 1, "file");
    EXPECT_EQ(live.Trace().GetBookmarks().size(), 2U) << "they share one list";
    live.Trace().SetBookmark(number, "changed");
    EXPECT_EQ(document->GetBookmarks().at(number), "changed");
    EXPECT_FALSE(live.Trace().IsModified());

    Go();
    ASSERT_TRUE(Complete());
    EXPECT_TRUE(live.Trace().GetBookmarks().empty());
    EXPECT_EQ(document->GetBookmarks().size(), 2U);
    EXPECT_EQ(InFile("live.tra").size(), 2U) << "the run before is still in its file";
    Frame().Area().setActiveSubWindow(&live);
    Settle();
    Add("next run");
    EXPECT_EQ(InFile("live.tra").size(), 2U);
    prompts.AnswerNext(Answer::No);
}

} // namespace
} // namespace busquill::test
