// Bookmarks in the windows, used as a user does: through the menu, with mouse and keys, in real
// files.

#include "capture/trace_document.h"
#include "platform/bits.h"
#include "support/panel_fixture_qt.h"
#include "support/save_trace_qt.h"
#include "ui/analysis/bookmark_dialog.h"
#include "ui/analysis/bookmark_model.h"
#include "ui/analysis/bookmark_panel.h"
#include "ui/capture/position_gauge.h"
#include "ui/display/trace_display.h"
#include "ui/display/trace_view.h"
#include "ui/shell/help_window.h"
#include "ui/shell/manual_browser.h"
#include "ui/trace/child_frame.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTimer>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <gmock/gmock.h>

#include <filesystem>

namespace busquill::test {
namespace {

using testing::HasSubstr;

class BookmarkPanels : public PanelFixture<StoredCaptureFixture, BookmarkModel> {
protected:
    BookmarkPanels() : PanelFixture(bookmarkNames) {}

    /// Bookmarks beside a stored capture.
    void WriteBeside(const std::string& capture, const Bookmarks& bookmarks) {
        ASSERT_TRUE(WriteBookmarks(BookmarkPathOf(dir.File(capture)), bookmarks));
    }
    Bookmarks InFile(const std::string& capture = "Trigger2.tra") {
        return ReadBookmarks(BookmarkPathOf(dir.File(capture))).bookmarks;
    }
    std::string Note() { return Dock().findChild<QLabel*>("BookmarkNote")->text().toStdString(); }
    QPoint PlaceOf(int row, int column = 2) {
        return Table().visualRect(Table().model()->index(row, column)).center();
    }
    void ClickRow(int row, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, keys, PlaceOf(row));
        Settle();
    }
    /// Types over the note that is being edited.
    void TypeNote(const QString& text, Qt::Key end = Qt::Key_Return) {
        auto* field = Table().findChild<QLineEdit*>();
        ASSERT_NE(field, nullptr) << "no note is being edited";
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, end);
        Settle();
    }
    /// Chooses Add Bookmark, by its key, and answers with a note.
    void Add(CChildFrame& frame, const QString& note, const QString& button = "OK") {
        Frame().activateWindow();
        Settle();
        frame.TraceView().setFocus();
        AnswerDialog<BookmarkDialog>(
            [&] { QTest::keyClick(&frame.TraceView(), Qt::Key_B, Qt::ControlModifier); },
            [&](BookmarkDialog& dialog) {
                title = dialog.windowTitle().toStdString();
                auto* field = dialog.findChild<QLineEdit*>();
                old = field->text().toStdString();
                field->selectAll();
                QTest::keyClicks(field, note);
                Press(dialog, button);
            });
        Settle();
    }
    static std::int64_t CenterNumber(CChildFrame& frame) {
        return Center(frame) + frame.Trace().FirstSampleNumber(false);
    }

    std::string title;
    std::string old;
};

/// Counts the changes of a capture's bookmarks.
struct ChangeCounter : DocumentView {
    void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) override {
        count += hint == HintBookmarks ? 1 : 0;
    }
    int count = 0;
};

TEST_F(BookmarkPanels, TheKeyOpensAndClosesThePanel) {
    CChildFrame& frame = Open("Trigger2.tra");
    EXPECT_FALSE(Dock().isVisible());
    QTest::keyClick(&frame.TraceView(), Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Dock().isVisible());
    EXPECT_TRUE(Entry("Analyze/Bookmarks").isChecked());
    EXPECT_TRUE(Table().hasFocus());
    Settle();
    EXPECT_EQ(Note(), "There are no bookmarks. Analyze > Add Bookmark (Ctrl+B) puts one on the "
                      "sample of marker 1, or in the middle of the window.");
    QTest::keyClick(&Table(), Qt::Key_Escape);
    EXPECT_TRUE(frame.TraceView().hasFocus());
    QTest::keyClick(&frame.TraceView(), Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(Dock().isVisible());
}

TEST_F(BookmarkPanels, ABookmarkIsPutOnMarker1AndKeptBesideTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const std::string before = ReadWholeFile(dir.File("Trigger2.tra"));
    const std::int64_t marker = frame.TraceView().TopSample() + 3;
    frame.Trace().SetMarker(1, marker);
    Add(frame, "First read");
    const std::int64_t number = marker + frame.Trace().FirstSampleNumber(false);
    EXPECT_EQ(title, "Add Bookmark");
    EXPECT_EQ(InFile(), (Bookmarks{{number, "First read"}}));
    EXPECT_EQ(Column(0), std::vector{std::to_string(number)});
    EXPECT_EQ(Column(2), std::vector<std::string>{"First read"});
    EXPECT_EQ(Note(), "");
    EXPECT_EQ(ReadWholeFile(dir.File("Trigger2.tra")), before);
    EXPECT_FALSE(frame.Trace().IsModified());
    // Where one is, its note is changed.
    Add(frame, "Second thought");
    EXPECT_EQ(title, "Bookmark");
    EXPECT_EQ(old, "First read");
    EXPECT_EQ(InFile(), (Bookmarks{{number, "Second thought"}}));
    Add(frame, "no", "Cancel");
    EXPECT_EQ(InFile(), (Bookmarks{{number, "Second thought"}}));
    Add(frame, "", "Remove");
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.File("Trigger2.tra.bookmarks")));
}

TEST_F(BookmarkPanels, WithoutMarker1InSightTheBookmarkIsInTheMiddle) {
    CChildFrame& frame = Open("Trigger2.tra");
    frame.Trace().SetMarker(1, 5);
    frame.TraceView().ShowSample(400);
    const std::int64_t number = CenterNumber(frame);
    Add(frame, "middle");
    EXPECT_EQ(InFile(), (Bookmarks{{number, "middle"}}));
}

TEST_F(BookmarkPanels, AreThereWhenTheCaptureIsOpenedAgain) {
    WriteBeside("Trigger2.tra", {{-100, "before"}, {0, "trigger"}, {57, ""}});
    Open("Trigger2.tra");
    OpenPanel();
    EXPECT_EQ(Column(0), (std::vector<std::string>{"-100", "0", "57"}));
    EXPECT_EQ(Column(1)[0].front(), '-') << "its time is before the trigger";
    EXPECT_EQ(Column(1)[2].find('-'), std::string::npos);
    EXPECT_EQ(Column(2), (std::vector<std::string>{"before", "trigger", ""}));
    EXPECT_TRUE(prompts.Texts().empty());
}

TEST_F(BookmarkPanels, ClosingThePanelLeavesTheWindowActive) {
    Open("Trigger1.tra").showMaximized();
    CChildFrame& frame = Open("Trigger2.tra");
    for (const char* panel : {"Analyze/Interval", "Analyze/Bookmarks"}) {
        Choose(panel);
        Choose(panel);
        Settle();
        EXPECT_EQ(&ActiveFrame(), &frame) << panel;
        EXPECT_TRUE(frame.TraceView().hasFocus()) << panel;
    }
}

TEST_F(BookmarkPanels, OpeningThePanelMovesNothing) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {600, "c"}});
    CChildFrame& frame = Open("Trigger2.tra");
    const std::int64_t top = frame.TraceView().TopSample();
    OpenPanel();
    EXPECT_TRUE(Table().hasFocus());
    EXPECT_EQ(frame.TraceView().TopSample(), top);
    QTest::keyClick(&Table(), Qt::Key_Return);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), -300, 1);
}

TEST_F(BookmarkPanels, ChoosingARowTakesAllWindowsOfTheCaptureThere) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {0, "b"}, {600, "c"}});
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(2);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), 600, 1);
    EXPECT_EQ(frame.Trace().Marker(1, false), -1) << "no marker moves";
    frame.SwitchDisplay(false);
    Settle();
    QTest::keyClick(&Table(), Qt::Key_Home);
    EXPECT_EQ(CurrentRow(), 0);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), -300, 2);
    QTest::keyClick(&Table(), Qt::Key_Down);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), 0, 2);
    frame.TraceView().GoTo(GoToTarget::End);
    QTest::keyClick(&Table(), Qt::Key_Return);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), 0, 2) << "Enter goes there again";
}

TEST_F(BookmarkPanels, NextAndPreviousGoFromOneToTheOther) {
    const Bookmarks all{{-300, "a"}, {-299, "b"}, {600, "c"}, {99999, "not in the capture"}};
    WriteBeside("Trigger2.tra", all);
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    CTraceView& view = frame.TraceView();
    view.setFocus();
    const auto next = [&] {
        Frame().RefreshCommands();
        QTest::keyClick(&view, Qt::Key_F2, Qt::ControlModifier);
        Settle();
        return CurrentRow();
    };
    const auto previous = [&] {
        Frame().RefreshCommands();
        QTest::keyClick(&view, Qt::Key_F2, Qt::ControlModifier | Qt::ShiftModifier);
        Settle();
        return CurrentRow();
    };
    view.GoTo(GoToTarget::Start);
    EXPECT_FALSE(Entry("Analyze/Previous Bookmark").isEnabled());
    EXPECT_EQ(next(), 0);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), -300, 1);
    EXPECT_EQ(next(), 1) << "it was in sight already";
    EXPECT_EQ(next(), 2);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), 600, 1);
    EXPECT_FALSE(Entry("Analyze/Next Bookmark").isEnabled()) << "the last one of the capture";
    EXPECT_EQ(previous(), 1);
    EXPECT_EQ(previous(), 0);
    EXPECT_FALSE(Entry("Analyze/Previous Bookmark").isEnabled());
    // After the user has gone elsewhere, from there.
    view.ShowSample(frame.Trace().SampleNumbered(500).value());
    EXPECT_EQ(previous(), 1);
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(BookmarkPanels, NextPassesThoseThatAFilterHides) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {-299, "b"}, {600, "c"}});
    CChildFrame& frame = Open("Trigger2.tra");
    CTesselDoc& trace = frame.Trace();
    const auto first = static_cast<std::size_t>(trace.SampleNumbered(-300).value());
    std::vector<std::uint32_t> shown((static_cast<std::size_t>(trace.SampleCount(false)) + 31) /
                                     32);
    SetBit(shown, first);
    SetBit(shown, first + 200);
    trace.ApplyFilter("a few", shown, 0);
    EXPECT_EQ(trace.BookmarkBeside(-400, true), -300);
    EXPECT_EQ(trace.BookmarkBeside(-300, true), std::nullopt);
    EXPECT_EQ(trace.BookmarkBeside(700, false), -300);
    // Marker 1 is hidden too.
    trace.SetMarker(1, static_cast<std::int64_t>(first) + 100);
    EXPECT_TRUE(trace.IsRowSample(frame.TraceView().CurrentSample(), false));
}

TEST_F(BookmarkPanels, ALongNoteIsNotCutByALook) {
    const std::string note(3000, 'x');
    WriteBeside("Trigger2.tra", {{-300, note}, {0, "b"}});
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_F2);
    QTest::keyClick(Table().findChild<QLineEdit*>(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(InFile()[-300], note);
    frame.Trace().SetMarker(1, frame.Trace().SampleNumbered(-300).value());
    Settle();
    AnswerDialog<BookmarkDialog>([&] { Choose("Analyze/Add Bookmark..."); },
                                 [](BookmarkDialog& dialog) { Press(dialog, "OK"); });
    EXPECT_EQ(InFile()[-300], note);
}

TEST_F(BookmarkPanels, TheKeyForTheNextOneDoesNotEditTheLastOne) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {0, "b"}});
    Open("Trigger2.tra");
    OpenPanel();
    ClickRow(1);
    QTest::keyClick(&Table(), Qt::Key_F2, Qt::ControlModifier);
    QTest::keyClick(&Table(), Qt::Key_Delete, Qt::ControlModifier);
    Settle();
    EXPECT_EQ(Table().findChild<QLineEdit*>(), nullptr);
    EXPECT_EQ(InFile().size(), 2U);
}

TEST_F(BookmarkPanels, NotesAreChangedInTheTable) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {0, "b"}});
    Open("Trigger2.tra");
    OpenPanel();
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_F2);
    TypeNote("by the key; F7 and B are letters");
    EXPECT_EQ(InFile()[-300], "by the key; F7 and B are letters");
    EXPECT_TRUE(Table().hasFocus());
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, {}, PlaceOf(1, 0));
    QTest::mouseDClick(Table().viewport(), Qt::LeftButton, {}, PlaceOf(1, 0));
    TypeNote("by the mouse");
    EXPECT_EQ(InFile()[0], "by the mouse");
    QTest::keyClick(&Table(), Qt::Key_F2);
    TypeNote("not this", Qt::Key_Escape);
    EXPECT_EQ(InFile()[0], "by the mouse");
    EXPECT_EQ(Column(2),
              (std::vector<std::string>{"by the key; F7 and B are letters", "by the mouse"}));
    EXPECT_EQ(CurrentRow(), 1);
}

TEST_F(BookmarkPanels, DeleteRemovesTheSelectedRows) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {0, "b"}, {10, "c"}, {20, "d"}});
    Open("Trigger2.tra");
    OpenPanel();
    ClickRow(1);
    ClickRow(2, Qt::ShiftModifier);
    ChangeCounter changes;
    ActiveFrame().Trace().AddView(&changes);
    QTest::keyClick(&Table(), Qt::Key_Delete);
    ActiveFrame().Trace().RemoveView(&changes);
    EXPECT_EQ(changes.count, 1) << "the file is written once";
    Settle();
    EXPECT_EQ(InFile(), (Bookmarks{{-300, "a"}, {20, "d"}}));
    EXPECT_EQ(Column(0), (std::vector<std::string>{"-300", "20"}));
    EXPECT_EQ(CurrentRow(), 1) << "the one after them";
    QTest::keyClick(&Table(), Qt::Key_Delete);
    QTest::keyClick(&Table(), Qt::Key_Delete);
    Settle();
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.File("Trigger2.tra.bookmarks")));
    QTest::keyClick(&Table(), Qt::Key_Delete);
    QTest::keyClick(&Table(), Qt::Key_F2);
    EXPECT_TRUE(prompts.Texts().empty());
}

TEST_F(BookmarkPanels, RowsAreCopiedWithTheirTitles) {
    WriteBeside("Trigger2.tra", {{0, "b"}, {1, "two\nlines"}});
    Open("Trigger2.tra");
    OpenPanel();
    ClickRow(1);
    QTest::keyClick(&Table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              "Sample\tTime\tNote\n1\t" + Cell(1, 1) + "\ttwo lines\n");
}

TEST_F(BookmarkPanels, TheMenuOfTheTableIsItsOwn) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {0, "b"}});
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const QStringList entries{"&Go to Sample", "&Edit Note", "&Remove", "&Copy"};
    ClickRow(0);
    frame.TraceView().GoTo(GoToTarget::End);
    const auto byKey = [&] { QTest::keyClick(&Table(), Qt::Key_F10, Qt::ShiftModifier); };
    const auto comeBack = [&] {
        Frame().activateWindow();
        Table().setFocus();
        Settle();
    };
    EXPECT_EQ(AnswerMenu(byKey, "&Go to Sample"), entries);
    EXPECT_NEAR(static_cast<double>(CenterNumber(frame)), -300, 1);
    comeBack();
    AnswerMenu(byKey, "&Edit Note");
    TypeNote("changed");
    EXPECT_EQ(InFile()[-300], "changed");
    const auto byMouse = [&] {
        QTest::mouseClick(Table().viewport(), Qt::RightButton, {}, PlaceOf(1));
        QContextMenuEvent event(QContextMenuEvent::Mouse, PlaceOf(1),
                                Table().viewport()->mapToGlobal(PlaceOf(1)));
        QApplication::sendEvent(Table().viewport(), &event);
    };
    comeBack();
    ClickRow(1);
    EXPECT_EQ(AnswerMenu(byMouse, "&Remove"), entries);
    EXPECT_EQ(InFile(), (Bookmarks{{-300, "changed"}}));
}

TEST_F(BookmarkPanels, LettersAndTheWheelDoNotReachTheDisplay) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {0, "b"}, {1, "c"}});
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(1);
    const std::int64_t top = frame.TraceView().TopSample();
    QTest::keyClicks(&Table(), "3-1abc");
    QWheelEvent wheel(PlaceOf(1), Table().viewport()->mapToGlobal(PlaceOf(1)), {}, {0, -1200},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(Table().viewport(), &wheel);
    Settle();
    EXPECT_EQ(CurrentRow(), 1);
    EXPECT_EQ(frame.TraceView().TopSample(), top);
    EXPECT_EQ(InFile().size(), 3U);
}

TEST_F(BookmarkPanels, FollowTheActiveWindow) {
    WriteBeside("Trigger1.tra", {{1, "one"}});
    WriteBeside("Trigger2.tra", {{2, "two"}, {3, "three"}});
    CChildFrame& first = Open("Trigger1.tra"); // with a window of Power Zoom samples
    OpenPanel();
    EXPECT_EQ(Column(2), std::vector<std::string>{"one"});
    EXPECT_TRUE(Entry("Analyze/Add Bookmark...").isEnabled());
    Frame().Area().setActiveSubWindow(Windows().last());
    Settle();
    EXPECT_EQ(Column(2), std::vector<std::string>{"one"}) << "the Power Zoom window's capture";
    EXPECT_FALSE(Entry("Analyze/Add Bookmark...").isEnabled()) << "its samples are others";
    EXPECT_FALSE(Entry("Analyze/Next Bookmark").isEnabled());
    Open("Trigger2.tra");
    EXPECT_EQ(Rows(), 2);
    Choose("File/New/Performance/Utilization");
    Settle();
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Note(), "The active window shows no capture.");
    EXPECT_FALSE(Entry("Analyze/Add Bookmark...").isEnabled());
    Frame().Area().setActiveSubWindow(&first);
    Settle();
    EXPECT_EQ(Column(2), std::vector<std::string>{"one"});
    while (!Windows().isEmpty()) {
        Windows().first()->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Table().viewport()->repaint(); // before the panel follows
        Settle();
    }
    EXPECT_EQ(Rows(), 0);
}

TEST_F(BookmarkPanels, AreTheSameInTwoWindowsOfOneFile) {
    for (int i = 0; i < 2; ++i) { // in Demo Mode each is a document of its own
        Choose("File/New/Capture/State");
        Settle();
    }
    auto& first = dynamic_cast<CChildFrame&>(*Windows().first());
    CChildFrame& second = ActiveFrame();
    ASSERT_NE(&first.Trace(), &second.Trace());
    OpenPanel();
    Add(second, "mine");
    Frame().Area().setActiveSubWindow(&first);
    Settle();
    EXPECT_EQ(Column(2), std::vector<std::string>{"mine"});
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_F2);
    TypeNote("ours");
    EXPECT_EQ(second.Trace().GetBookmarks(), first.Trace().GetBookmarks());
    EXPECT_EQ(InFile(), first.Trace().GetBookmarks());
}

TEST_F(BookmarkPanels, AreTheSameInWindowsOfOneFileUnderTwoNames) {
    std::filesystem::create_symlink("Trigger2.tra", dir.File("link.tra"));
    CChildFrame& second = Open("link.tra");
    Choose("File/New/Capture/State"); // Demo Mode opens Trigger2.tra in a window of its own
    CChildFrame& first = ActiveFrame();
    ASSERT_NE(&first.Trace(), &second.Trace());
    Frame().Area().setActiveSubWindow(&second);
    Add(second, "by the link");
    EXPECT_EQ(first.Trace().GetBookmarks(), second.Trace().GetBookmarks());
    EXPECT_EQ(InFile(), first.Trace().GetBookmarks());
    EXPECT_FALSE(std::filesystem::exists(dir.File("link.tra.bookmarks")));
}

TEST_F(BookmarkPanels, OfACaptureThatIsSavedOverStayInItsWindow) {
    std::filesystem::copy_file(dir.File("Trigger2.tra"), dir.File("other.tra"));
    WriteBeside("Trigger2.tra", {{2, "two"}});
    WriteBeside("other.tra", {{3, "three"}});
    CChildFrame& other = Open("other.tra");
    Open("Trigger2.tra");
    SaveTraceUnder(dir.File("other.tra"), [&] { Entry("File/Save As...").trigger(); });
    EXPECT_EQ(InFile("other.tra"), (Bookmarks{{2, "two"}}));
    EXPECT_EQ(other.Trace().GetBookmarks(), (Bookmarks{{3, "three"}}));
    prompts.Forget();
    OpenPanel();
    Frame().Area().setActiveSubWindow(&other);
    Settle();
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_Delete);
    ASSERT_EQ(prompts.Texts().size(), 1U);
    EXPECT_THAT(prompts.Texts()[0], HasSubstr("another capture has been saved to the file"));
    EXPECT_EQ(Column(2), std::vector<std::string>{"three"});
    EXPECT_EQ(InFile("other.tra"), (Bookmarks{{2, "two"}}));
}

TEST_F(BookmarkPanels, AWindowThatClosesTakesTheQuestionForTheNoteWithIt) {
    CChildFrame& frame = Open("Trigger2.tra");
    bool isAsked = false;
    bool isLeft = false;
    QTimer late;
    QObject::connect(&late, &QTimer::timeout, [&] {
        isLeft = true;
        qobject_cast<QDialog*>(QApplication::activeModalWidget())->reject();
    });
    late.start(3000);
    QTimer::singleShot(0, &frame, [&] {
        isAsked = QApplication::activeModalWidget() != nullptr;
        frame.close();
        QApplication::sendPostedEvents(&frame, QEvent::DeferredDelete);
    });
    Choose("Analyze/Add Bookmark...");
    EXPECT_TRUE(isAsked);
    EXPECT_FALSE(isLeft);
    EXPECT_TRUE(Windows().isEmpty());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(InFile().empty());
}

TEST_F(BookmarkPanels, GoWithACopyThatIsSaved) {
    WriteBeside("Trigger2.tra", {{2, "two"}, {3, "three"}});
    Open("Trigger2.tra");
    SaveTraceUnder(dir.File("copy.tra"), [&] { Entry("File/Save As...").trigger(); });
    EXPECT_EQ(InFile("copy.tra"), (Bookmarks{{2, "two"}, {3, "three"}}));
    Open("copy.tra");
    OpenPanel();
    EXPECT_EQ(Column(2), (std::vector<std::string>{"two", "three"}));
}

TEST_F(BookmarkPanels, OfSamplesThatTheCaptureDoesNotHaveAreKeptAndTold) {
    WriteBeside("Trigger2.tra", {{-300, "a"}, {5000000, "far"}});
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    EXPECT_EQ(Note(),
              "1 of 2 bookmarks are about samples that the capture does not have. They are kept.");
    EXPECT_EQ(Cell(1, 1), "not in the capture");
    const std::int64_t top = frame.TraceView().TopSample();
    ClickRow(1);
    EXPECT_EQ(frame.TraceView().TopSample(), top);
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_Delete);
    EXPECT_EQ(InFile(), (Bookmarks{{5000000, "far"}}));
}

TEST_F(BookmarkPanels, OfAFileThatIsNotUnderstoodAreNotChanged) {
    const std::string content = "Busquill bookmarks 1\n-300\ta\nodd\n";
    dir.Write("Trigger2.tra.bookmarks", content);
    Open("Trigger2.tra");
    ASSERT_EQ(prompts.Texts().size(), 1U);
    EXPECT_NE(prompts.Texts()[0].find("Line 3: "), std::string::npos);
    OpenPanel();
    ClickRow(0);
    QTest::keyClick(&Table(), Qt::Key_F2);
    TypeNote("changed");
    QTest::keyClick(&Table(), Qt::Key_Delete);
    EXPECT_EQ(prompts.Texts().size(), 3U);
    EXPECT_EQ(Column(2), std::vector<std::string>{"a"});
    EXPECT_EQ(ReadWholeFile(dir.File("Trigger2.tra.bookmarks")), content);
}

TEST_F(BookmarkPanels, F1OpensTheirPageOfTheManual) {
    Open("Trigger2.tra");
    OpenPanel();
    QTest::keyClick(&Table(), Qt::Key_F1);
    auto* help = Frame().findChild<HelpWindow*>();
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->isVisible());
    EXPECT_EQ(help->findChild<ManualBrowser*>()->Page(), "bookmarks.md");
    EXPECT_TRUE(help->findChild<ManualBrowser*>()->toPlainText().contains("Ctrl+B"));
}

TEST_F(BookmarkPanels, ShowInTheGaugeOfEachWindow) {
    WriteBeside("Trigger1.tra", {{-20, "a"}, {30, "b"}, {5000000, "far"}});
    CChildFrame& frame = Open("Trigger1.tra");
    const auto samples = [](CChildFrame& of) { return of.GetGauge().State().bookmarks; };
    const std::int64_t first = frame.Trace().FirstSampleNumber(false);
    EXPECT_EQ(samples(frame), (std::vector{-20 - first, 30 - first}));
    EXPECT_TRUE(samples(dynamic_cast<CChildFrame&>(*Windows().last())).empty()) << "Power Zoom";
    frame.Trace().SetBookmark(30, std::nullopt);
    EXPECT_EQ(samples(frame), std::vector{-20 - first});
    frame.SwitchDisplay(true);
    EXPECT_EQ(samples(frame), std::vector{-20 - first});
}

} // namespace
} // namespace busquill::test
