// The table of transactions beside the windows of a capture, used as a user does: through the menu,
// with mouse and keys.

#include "analysis/transaction_follower.h"
#include "capture/trace_document.h"
#include "support/program_fixture_qt.h"
#include "ui/analysis/transaction_panel.h"
#include "ui/display/trace_view.h"
#include "ui/trace/child_frame.h"

#include <QDockWidget>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QTableView>
#include <QtTest/QTest>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

/// The transactions of a file, followed without the windows.
std::vector<Transaction> TransactionsOf(const CTesselDoc& document, Program& program) {
    TransactionFollower follower(program.Link().Traits(), program.Tables());
    follower.KeepWords(4);
    std::vector<Transaction> all;
    std::int64_t number = document.FirstSampleNumber(false);
    for (const SampleRecord& record : document.GetStore().GetData(false)) {
        for (const Transaction& ended : follower.Add(number, record)) {
            all.push_back(ended);
        }
        ++number;
    }
    if (const auto open = follower.Unfinished()) {
        all.push_back(*open);
    }
    return all;
}

class TransactionPanels : public ProgramFixture {
protected:
    TransactionPanels() {
        StartDemo();
        Frame().resize(1100, 800);
        Frame().activateWindow();
    }
    CChildFrame& Open(const std::string& name) {
        if (program->App().OpenDocumentFile(dir.File(name)) == nullptr) {
            throw std::runtime_error("cannot open " + name);
        }
        QApplication::processEvents();
        return ActiveFrame();
    }
    CChildFrame& ActiveFrame() {
        return dynamic_cast<CChildFrame&>(*Frame().Area().activeSubWindow());
    }
    /// Opens the panel by the menu.
    void OpenPanel() {
        Choose("Analyze/Transactions");
        ASSERT_TRUE(Dock().isVisible());
        ASSERT_TRUE(Settled());
    }
    bool Settled() {
        return QTest::qWaitFor([&] { return Table().model() == nullptr || !Model().IsWorking(); });
    }
    QDockWidget& Dock() { return *Frame().findChild<QDockWidget*>("Transactions"); }
    QTableView& Table() { return *Dock().findChild<QTableView*>("TransactionTable"); }
    TransactionModel& Model() { return dynamic_cast<TransactionModel&>(*Table().model()); }
    int Rows() { return Table().model() == nullptr ? 0 : Table().model()->rowCount(); }
    static int ColumnOf(const char* title) {
        const auto columns = FieldColumns();
        const auto found = std::ranges::find(columns, std::string_view(title), &FieldColumn::title);
        return static_cast<int>(found - columns.begin());
    }
    std::string Cell(int row, const char* title) {
        const QModelIndex index = Table().model()->index(row, ColumnOf(title));
        return Table().model()->data(index, Qt::DisplayRole).toString().toStdString();
    }
    void ClickRow(int row) {
        Table().scrollTo(Table().model()->index(row, 0));
        const QRect cell = Table().visualRect(Table().model()->index(row, ColumnOf("Sample")));
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, {}, cell.center());
    }
    std::string Reason() {
        const auto& reason = *Dock().findChild<QLabel*>("TransactionReason");
        return reason.isVisible() ? reason.text().toStdString() : "";
    }
    int CurrentRow() { return Table().currentIndex().row(); }
    /// The sample in the middle of a window of the capture.
    static std::int64_t Center(CChildFrame& frame) { return frame.TraceView().CenterSample(); }
};

TEST_F(TransactionPanels, TheMenuIsThereForCapturesOnly) {
    const auto isShown = [&] {
        Frame().RefreshCommands();
        QStringList menus;
        for (const QAction* action : Frame().menuBar()->actions()) {
            if (action->isVisible()) {
                menus << action->text().remove('&');
            }
        }
        return menus.join(' ').toStdString();
    };
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Window Help");
    Open("Trigger2.tra");
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Analyze Window Help");
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Window Help");
    Open("Trigger1.tra");
    EXPECT_EQ(isShown(), "File Edit View Search Utilities Analyze Window Help");
}

TEST_F(TransactionPanels, TheKeyOpensAndClosesThePanel) {
    CChildFrame& frame = Open("Trigger2.tra");
    EXPECT_FALSE(Dock().isVisible());
    EXPECT_FALSE(Entry("Analyze/Transactions").isChecked());
    QTest::keyClick(&frame.TraceView(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Dock().isVisible());
    EXPECT_TRUE(Entry("Analyze/Transactions").isChecked());
    EXPECT_TRUE(Table().hasFocus());
    QTest::keyClick(&Table(), Qt::Key_Escape);
    EXPECT_TRUE(frame.TraceView().hasFocus());
    QTest::keyClick(&frame.TraceView(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(Dock().isVisible());
    EXPECT_FALSE(Entry("Analyze/Transactions").isChecked());
}

TEST_F(TransactionPanels, ShowsAllTransactionsOfTheCapture) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const auto expected = TransactionsOf(frame.Trace(), *program);
    ASSERT_GT(expected.size(), 100U);
    ASSERT_EQ(Rows(), static_cast<int>(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(Model().At(static_cast<int>(i)), expected[i]) << i;
    }
    EXPECT_EQ(Cell(137, "Number"), "138");
    EXPECT_EQ(Cell(137, "Sample"), "22");
    EXPECT_EQ(Cell(137, "Time"), "62.76us");
    EXPECT_EQ(Cell(137, "Command"), "I/O Wr");
    EXPECT_EQ(Cell(137, "Address"), "000003F8");
    EXPECT_EQ(Cell(137, "Words"), "1");
    EXPECT_EQ(Cell(137, "Bytes"), "4");
    EXPECT_EQ(Cell(137, "Wait"), "2");
    EXPECT_EQ(Cell(137, "Initiator Wait"), "0");
    EXPECT_EQ(Cell(137, "Latency"), "90ns");
    EXPECT_EQ(Cell(137, "End"), "complete");
    EXPECT_EQ(Cell(137, "Gap"), "180ns");
    EXPECT_EQ(Cell(137, "Findings"), "0");
    EXPECT_EQ(Cell(137, "Data"), "56410C87");
    EXPECT_TRUE(Table().isColumnHidden(ColumnOf("Tag"))) << "only PCI-X has it";
    EXPECT_FALSE(Table().isColumnHidden(ColumnOf("Initiator Wait")));
}

TEST_F(TransactionPanels, AClickTakesAllWindowsOfTheCaptureToTheFirstSample) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(200);
    const std::int64_t sample = Model().FirstSample(200);
    EXPECT_EQ(sample, TransactionsOf(frame.Trace(), *program)[200].sample -
                          frame.Trace().FirstSampleNumber(false));
    EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(sample), 1);
    EXPECT_EQ(&ActiveFrame(), &frame) << "the capture stays the active one";
    EXPECT_EQ(frame.Trace().Marker(1, false), -1) << "no marker moves";
}

TEST_F(TransactionPanels, KeysGoFromRowToRow) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    QTest::keyClick(&Table(), Qt::Key_End);
    EXPECT_EQ(CurrentRow(), Rows() - 1);
    QTest::keyClick(&Table(), Qt::Key_Up);
    QTest::keyClick(&Table(), Qt::Key_Up);
    EXPECT_EQ(CurrentRow(), Rows() - 3);
    EXPECT_NEAR(static_cast<double>(Center(frame)),
                static_cast<double>(Model().FirstSample(Rows() - 3)), 1);
    QTest::keyClick(&Table(), Qt::Key_Home);
    EXPECT_EQ(CurrentRow(), 0);
    EXPECT_EQ(frame.TraceView().TopSample(), 0);
}

TEST_F(TransactionPanels, Marker1ChoosesTheRowThatItStandsInAndMovesNothing) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    const std::int64_t inside = Model().FirstSample(30) + 1;
    ASSERT_GE(Model().LastSample(30), inside);
    frame.TraceView().ShowSample(inside + 6);
    const std::int64_t top = frame.TraceView().TopSample();
    frame.TraceView().Trace().ToggleMarker(1, inside, false);
    EXPECT_EQ(CurrentRow(), 30);
    EXPECT_EQ(Table().selectionModel()->selectedRows().size(), 1);
    EXPECT_TRUE(Table().viewport()->rect().contains(Table().visualRect(Table().currentIndex())))
        << "the row is scrolled to";
    EXPECT_EQ(frame.TraceView().TopSample(), top);
    EXPECT_EQ(frame.Trace().Marker(1, false), inside);
}

TEST_F(TransactionPanels, FollowsTheActiveWindow) {
    CChildFrame& first = Open("Trigger2.tra");
    OpenPanel();
    const int rows = Rows();
    ClickRow(50);
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
    CChildFrame& second = Open("Trigger1.tra");
    ASSERT_TRUE(Settled());
    const int others = static_cast<int>(TransactionsOf(second.Trace(), *program).size());
    EXPECT_EQ(Rows(), others);
    EXPECT_EQ(CurrentRow(), -1);
    Frame().Area().setActiveSubWindow(&first);
    QApplication::processEvents();
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(CurrentRow(), 50) << "the row is still chosen";
    first.close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    while (!Windows().isEmpty()) {
        Windows().first()->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents();
    }
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
}

TEST_F(TransactionPanels, StaysWithACaptureThatLosesOneOfItsWindows) {
    CChildFrame& frame = Open("Trigger1.tra"); // with a window of Power Zoom samples
    ASSERT_EQ(Windows().size(), 2);
    OpenPanel();
    ClickRow(3);
    const int rows = Rows();
    Frame().Area().setActiveSubWindow(Windows().last());
    QApplication::processEvents();
    ASSERT_TRUE(ActiveFrame().IsZoomFrame());
    EXPECT_EQ(Rows(), rows) << "of the capture, not of the Power Zoom samples";
    EXPECT_EQ(CurrentRow(), 3);
    frame.close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    ASSERT_EQ(Windows().size(), 1);
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(CurrentRow(), 3);
    Dock().findChild<TransactionPanel*>()->TakeKeyboard();
    QTest::keyClick(&Table(), Qt::Key_Down);
    EXPECT_EQ(CurrentRow(), 4);
}

TEST_F(TransactionPanels, StaysWhenTheOtherDisplayIsShown) {
    CChildFrame& frame = Open("Trigger2.tra");
    OpenPanel();
    ClickRow(40);
    frame.SwitchDisplay(false);
    QApplication::processEvents();
    EXPECT_EQ(CurrentRow(), 40);
    ClickRow(60);
    EXPECT_NEAR(static_cast<double>(Center(frame)), static_cast<double>(Model().FirstSample(60)),
                2);
}

TEST_F(TransactionPanels, OpensAgainAsItWasLeft) {
    Open("Trigger2.tra");
    OpenPanel();
    Frame().resizeDocks({&Dock()}, {331}, Qt::Vertical);
    QApplication::processEvents();
    const int height = Dock().height();
    Frame().close();
    program.reset();
    StartDemo();
    Frame().resize(1100, 800);
    QApplication::processEvents();
    EXPECT_TRUE(Dock().isVisible());
    EXPECT_NEAR(Dock().height(), height, 2);
    EXPECT_EQ(Reason(), "The active window shows no capture.");
    Open("Trigger2.tra");
    ASSERT_TRUE(Settled());
    EXPECT_GT(Rows(), 100);
    Choose("Analyze/Transactions");
    Frame().close();
    program.reset();
    StartDemo();
    EXPECT_FALSE(Dock().isVisible());
}

} // namespace
} // namespace busquill::test
