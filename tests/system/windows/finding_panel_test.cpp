// The list of findings and hits while a capture runs and uploads, and with other buses.

#include "analysis/sample_findings.h"
#include "capture/sample_condition.h"
#include "support/capture_builder.h"
#include "support/live_frame_fixture_qt.h"
#include "support/panel_fixture_qt.h"
#include "ui/analysis/finding_model.h"

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>

namespace busquill::test {
namespace {

class FindingUploads : public PanelFixture<LiveFrameFixture, FindingModel> {
protected:
    FindingUploads() : PanelFixture(findingNames) {}

    void OpenList() {
        Frame().resize(1100, 800);
        SwitchPanel();
        Frame().RefreshCommands();
    }
    bool IsDone() {
        return RunUntil([&] { return !Model().IsWorking(); });
    }
    /// Compares the rows with the findings of all samples, and with those where FRAME has fallen.
    void ExpectAllRows() {
        const auto records = Trace().GetStore().GetData(false);
        const SampleFindings findings(program->Tables());
        std::vector<std::int64_t> keys;
        for (std::size_t i = 0; i < records.size(); ++i) {
            const auto sample = static_cast<std::int64_t>(i);
            if (findings.RuleOf(records[i]) != 0 || findings.IsAnomaly(records[i])) {
                keys.push_back(2 * sample);
            }
            if (i > 0 && records[i - 1].Bit(CaptureBuilder::Frame) &&
                !records[i].Bit(CaptureBuilder::Frame)) {
                keys.push_back(2 * sample + 1);
            }
        }
        ASSERT_GT(keys.size(), 30U);
        ASSERT_EQ(Rows(), static_cast<int>(keys.size()));
        for (int row = 0; row < Rows(); ++row) {
            ASSERT_EQ(Model().KeyOf(row), keys[static_cast<std::size_t>(row)]) << row;
        }
    }
};

TEST_F(FindingUploads, TheListFillsWhileSamplesArriveAndKeepsItsPlace) {
    Connect({"--buffer", "64", "--rate", "50000"});
    OpenFrame("State");
    OpenList();
    EXPECT_EQ(Reason(), "There are no samples yet.");
    Give("FRAME falls");
    Go();
    EXPECT_EQ(Reason(), "The capture has not ended yet.");
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_GT(Rows(), 0);
    StopALongRun();
    ASSERT_TRUE(RunUntil([&] { return Rows() > 30; }));
    ASSERT_TRUE(Trace().IsUploading());
    for (int row = 0; row < Rows(); ++row) {
        ASSERT_TRUE(Trace().IsValidSample(Model().SampleOf(row), false)) << "has not arrived";
    }
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isEnabled());
    const int rows = Rows();
    Table().scrollTo(Table().model()->index(20, 0), QAbstractItemView::PositionAtTop);
    ClickCell(22, FindingModel::Kind);
    ClickCell(23, FindingModel::Kind, Qt::ShiftModifier);
    const int below = 23 - Table().verticalScrollBar()->value();
    const std::int64_t first = Model().KeyOf(22);
    const std::int64_t second = Model().KeyOf(23);
    ASSERT_TRUE(RunUntil([&] { return Rows() > rows + 20; }));
    ASSERT_TRUE(Trace().IsUploading());
    const int current = Table().currentIndex().row();
    EXPECT_EQ(Model().KeyOf(current), second);
    EXPECT_EQ(current - Table().verticalScrollBar()->value(), below) << "it has not moved";
    std::vector<std::int64_t> selected;
    for (const QModelIndex& index : Table().selectionModel()->selectedRows()) {
        selected.push_back(Model().KeyOf(index.row()));
    }
    std::ranges::sort(selected);
    EXPECT_EQ(selected, (std::vector<std::int64_t>{first, second}));
    board->Fault("delay 0");
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(IsDone());
    ExpectAllRows();
    EXPECT_EQ(Model().KeyOf(Table().currentIndex().row()), second);
    // The windows can be filtered now.
    Choose("Analyze/Show Only Hits");
    EXPECT_EQ(Trace().RowCount(false), static_cast<std::int64_t>(Model().HitCount()));
    // The next run forgets all that.
    Go();
    EXPECT_EQ(Rows(), 0);
    EXPECT_EQ(Reason(), "The capture has not ended yet.");
    EXPECT_EQ(Trace().FilterExpression(), "");
    Stop();
    ASSERT_TRUE(Complete());
    EXPECT_FALSE(Trace().IsFiltered());
    EXPECT_EQ(Table().currentIndex().row(), -1);
}

TEST_F(FindingUploads, ARunForgetsTheChosenRow) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    OpenList();
    Give("sample in -9..9"); // the next run has the same rows
    Go();
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(IsDone());
    Table().setCurrentIndex(Table().model()->index(1, 0));
    Go();
    EXPECT_EQ(Rows(), 0);
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(IsDone());
    EXPECT_GT(Rows(), 1);
    EXPECT_FALSE(Table().currentIndex().isValid()) << "that row was of the run before";
    EXPECT_FALSE(Table().selectionModel()->hasSelection());
}

TEST_F(FindingUploads, AHiddenListSearchesWhenItIsShown) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    OpenList();
    Give("FRAME falls");
    SwitchPanel();
    Go();
    ASSERT_TRUE(Complete());
    EXPECT_EQ(Rows(), 0);
    EXPECT_FALSE(Entry("Analyze/Show Only Hits").isEnabled()) << "nothing has been searched";
    OpenList();
    ASSERT_TRUE(IsDone());
    ExpectAllRows();
}

TEST_F(FindingUploads, TheChosenRowStaysWhileTheListIsClosedForAWhile) {
    Connect({"--buffer", "64", "--rate", "50000"});
    OpenFrame("State");
    OpenList();
    Give("FRAME falls");
    StopALongRun();
    ASSERT_TRUE(RunUntil([&] { return Rows() > 100; }));
    const int rows = Rows();
    Table().setCurrentIndex(Table().model()->index(rows - 1, 0));
    const std::int64_t chosen = Model().KeyOf(rows - 1);
    SwitchPanel();
    QTest::qWait(500);
    EXPECT_EQ(Rows(), rows);
    ASSERT_TRUE(Trace().IsUploading());
    OpenList();
    ASSERT_TRUE(RunUntil([&] { return Rows() > rows + 20; }));
    EXPECT_EQ(Model().KeyOf(Table().currentIndex().row()), chosen);
    board->Fault("delay 0");
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(IsDone());
    ExpectAllRows();
    EXPECT_EQ(Model().KeyOf(Table().currentIndex().row()), chosen);
}

TEST_F(FindingUploads, ACaptureThatRunsWhileAnotherWindowIsActiveIsSearchedAfterwards) {
    Connect({"--buffer", "4"});
    OpenFrame("State");
    OpenList();
    Give("FRAME falls");
    Go();
    ASSERT_TRUE(Complete());
    ASSERT_TRUE(IsDone());
    Choose("File/New/Performance/Utilization");
    EXPECT_EQ(Rows(), 0);
    frame->Trace().Run().Go(Trace().setup, "");
    ASSERT_TRUE(Complete());
    Frame().Area().setActiveSubWindow(frame);
    ASSERT_TRUE(RunUntil([&] { return Rows() > 0 && !Model().IsWorking(); }));
    ExpectAllRows();
}

} // namespace
} // namespace busquill::test
