// The table of transactions while a capture runs and uploads, and with other buses.

#include "analysis/transaction_follower.h"
#include "support/live_frame_fixture_qt.h"
#include "support/panel_fixture_qt.h"
#include "ui/analysis/transaction_model.h"

#include <QDockWidget>
#include <QLabel>
#include <QScrollBar>
#include <QTableView>

namespace busquill::test {
namespace {

class TransactionUploads : public PanelFixture<LiveFrameFixture, TransactionModel> {
protected:
    TransactionUploads() : PanelFixture(transactionNames) {}

    void OpenTable() {
        Frame().resize(1100, 800);
        SwitchPanel();
    }
    void ExpectAllTransactions() {
        TransactionFollower follower(program->Link().Traits(), program->Tables());
        follower.KeepWords(4);
        std::vector<Transaction> all;
        std::int64_t number = Trace().FirstSampleNumber(false);
        for (const SampleRecord& record : Trace().GetStore().GetData(false)) {
            const auto ended = follower.Add(number++, record);
            all.insert(all.end(), ended.begin(), ended.end());
        }
        if (const auto open = follower.Unfinished()) {
            all.push_back(*open);
        }
        ASSERT_GT(all.size(), 10U);
        ASSERT_EQ(Rows(), static_cast<int>(all.size()));
        for (std::size_t i = 0; i < all.size(); i += 1 + all.size() / 200) {
            EXPECT_EQ(Model().At(static_cast<int>(i)), all[i]) << i;
        }
    }
};

TEST_F(TransactionUploads, TheTableFillsWhileSamplesArriveAndKeepsItsPlace) {
    Connect({"--buffer", "64", "--rate", "50000"});
    OpenFrame("State");
    OpenTable();
    EXPECT_EQ(Reason(), "There are no samples yet.");
    Go();
    EXPECT_EQ(Reason(), "The capture has not ended yet.");
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_GT(Rows(), 0);
    StopALongRun();
    ASSERT_TRUE(RunUntil([&] { return Rows() > 30; }));
    ASSERT_TRUE(Trace().IsUploading());
    const int rows = Rows();
    Table().scrollTo(Table().model()->index(20, 0), QAbstractItemView::PositionAtTop);
    ClickCell(22, 1);
    const std::int64_t sample = Model().SampleOf(22);
    ASSERT_TRUE(RunUntil([&] { return Rows() > rows + 20; }));
    ASSERT_TRUE(Trace().IsUploading());
    const QModelIndex current = Table().currentIndex();
    EXPECT_EQ(Model().SampleOf(current.row()), sample);
    EXPECT_TRUE(Table().selectionModel()->isRowSelected(current.row()));
    EXPECT_EQ(current.row() - Table().verticalScrollBar()->value(), 2) << "it has not moved";
    board->Fault("delay 0");
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(RunUntil([&] { return !Model().IsWorking(); }));
    ExpectAllTransactions();
    EXPECT_EQ(Model().SampleOf(Table().currentIndex().row()), sample);
    // The next run forgets them.
    Go();
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The capture has not ended yet.");
    Stop();
    ASSERT_TRUE(Complete());
}

TEST_F(TransactionUploads, ARunForgetsTheChosenRow) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    OpenTable();
    Go();
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(RunUntil([&] { return Rows() > 1 && !Model().IsWorking(); }));
    Table().setCurrentIndex(Model().index(1, 0));
    EXPECT_TRUE(Trace().MarkedSamples());
    Go();
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(Trace().MarkedSamples());
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(RunUntil([&] { return Rows() > 1 && !Model().IsWorking(); }));
    EXPECT_FALSE(Table().currentIndex().isValid()) << "that row was of the run before";
    EXPECT_FALSE(Trace().MarkedSamples());
}

TEST_F(TransactionUploads, AHiddenTableFollowsWhenItIsShown) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    OpenTable();
    SwitchPanel();
    Go();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Rows(), 0);
    SwitchPanel();
    ASSERT_TRUE(RunUntil([&] { return !Model().IsWorking(); }));
    ExpectAllTransactions();
}

TEST_F(TransactionUploads, ACaptureThatRunsWhileAnotherWindowIsActiveIsFollowedAfterwards) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    OpenTable();
    Go();
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(RunUntil([&] { return !Model().IsWorking(); }));
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(Rows(), 0);
    frame->Trace().Run().Go(Trace().setup, "");
    ASSERT_TRUE(Complete());
    Frame().Area().setActiveSubWindow(frame);
    ASSERT_TRUE(RunUntil([&] { return Rows() > 0 && !Model().IsWorking(); }));
    ExpectAllTransactions();
}

} // namespace
} // namespace busquill::test
