#include "capture/trace_document.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class RecordingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* object) override {
        hints.push_back(hint);
        if (const auto* block = dynamic_cast<const CBlockUpdate*>(object)) {
            blocks.push_back({block->first, block->count});
        }
    }
    std::vector<int> hints;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> blocks;
};

class TraceDocument : public testing::Test {
protected:
    void LoadSamples(int first, int last) {
        std::string text =
            "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\"," +
            std::to_string(first) + "," + std::to_string(last) + "\n";
        for (int i = first; i <= last; ++i) {
            text += std::to_string(i) + ",1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n";
        }
        ASSERT_TRUE(document.OnOpenDocument(dir.Write("a.tra", text)));
    }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
    CTesselDoc document{context, prompts};
    RecordingView view;
};

TEST_F(TraceDocument, NewOneIsEmptyAndHasItsLists) {
    ASSERT_TRUE(document.OnNewDocument());
    EXPECT_EQ(document.RowCount(false), 0);
    EXPECT_EQ(document.Marker(0, false), -1);
    EXPECT_EQ(document.setupName, "<New>");
    EXPECT_EQ(document.stateList.mode, ModeState);
    EXPECT_EQ(document.waveformList.mode, ModeWaveform);
    EXPECT_EQ(document.RowCount(true), 511);
    EXPECT_EQ(document.GetSample(0, false), std::nullopt);
}

TEST_F(TraceDocument, CloneTakesListsAndSetupAndForgetsTheSource) {
    ASSERT_TRUE(document.OnNewDocument());
    document.stateList.InsertBlank(nullptr)->name = "mine";
    document.setup.name = "setup";
    context.cloneSource = &document;
    context.newDocRealTime = true;
    CTesselDoc clone(context, prompts);
    ASSERT_TRUE(clone.OnNewDocument());
    EXPECT_TRUE(clone.IsRealTime());
    EXPECT_EQ(clone.stateList[clone.stateList.Size() - 1].name, "mine");
    EXPECT_EQ(clone.setup.name, "setup");
    ASSERT_TRUE(clone.OnNewDocument()); // the link to the source is gone
    EXPECT_NE(clone.stateList[clone.stateList.Size() - 1].name, "mine");
}

TEST_F(TraceDocument, TheTriggerMarkerIsOneBeforeWhereNoSampleFollowsIt) {
    LoadSamples(-10, 0);
    EXPECT_EQ(document.Marker(0, false), 9);
}

TEST_F(TraceDocument, TheTriggerMarkerIsTheLastSampleWhereAllLieBeforeIt) {
    LoadSamples(-20, -10);
    EXPECT_EQ(document.Marker(0, false), 10);
}

TEST_F(TraceDocument, MarkersAfterTheCaptureAreIgnored) {
    LoadSamples(-5, 5);
    document.AddView(&view);
    document.SetMarker(1, 11);
    document.SetMarker(3, 4);
    EXPECT_TRUE(view.hints.empty());
    document.SetMarker(1, 10);
    document.SetMarker(2, 0);
    document.SetZoomMarker(1, 510);
    document.SetZoomMarker(2, 511);
    EXPECT_EQ(view.hints, (std::vector<int>{HintMarker1, HintMarker2, HintZoomMarker1}));
    EXPECT_EQ(document.Marker(1, false), 10);
    document.SetMarker(1, -1);
    EXPECT_EQ(document.Marker(1, false), -1);
    EXPECT_FALSE(document.IsModified());
    document.RemoveView(&view);
}

TEST_F(TraceDocument, AMarkerStepsToItsNeighboursAndStopsAtTheEnds) {
    LoadSamples(-5, 5);
    document.StepMarker(1, true, false);
    EXPECT_EQ(document.Marker(1, false), -1) << "it is not set";
    document.SetMarker(1, 9);
    document.StepMarker(1, true, false);
    document.StepMarker(1, true, false);
    EXPECT_EQ(document.Marker(1, false), 10) << "the last sample";
    document.StepMarker(1, false, false);
    EXPECT_EQ(document.Marker(1, false), 9);
    document.SetMarker(2, 0);
    document.StepMarker(2, false, false);
    EXPECT_EQ(document.Marker(2, false), 0);
    EXPECT_EQ(document.Marker(1, false), 9) << "the other marker stays";
    document.SetZoomMarker(1, 3);
    document.StepMarker(1, true, true);
    EXPECT_EQ(document.Marker(1, true), 4);
    EXPECT_EQ(document.Marker(1, false), 9);
}

TEST_F(TraceDocument, TriggerMarkerSendsNoHint) {
    LoadSamples(-5, 5);
    document.AddView(&view);
    document.SetMarker(0, 2);
    EXPECT_TRUE(view.hints.empty());
    document.RemoveView(&view);
}

TEST_F(TraceDocument, BlocksAreReportedWhenTheyAreFlushed) {
    LoadSamples(-32, 32);
    document.AddView(&view);
    const std::vector<SampleRecord> records(32);
    document.AddBlock(32, records, false);
    document.AddBlock(0, records, false);
    EXPECT_TRUE(view.hints.empty());
    document.FlushBlockUpdates();
    EXPECT_EQ(view.hints, (std::vector<int>{HintBlockArrived, HintBlockArrived}));
    EXPECT_EQ(view.blocks,
              (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{32, 32}, {0, 32}}));
    document.FlushBlockUpdates();
    EXPECT_EQ(view.hints.size(), 2U);
    document.RemoveView(&view);
}

TEST_F(TraceDocument, LoadingReportsToTheViewsThatDataAreComplete) {
    document.AddView(&view);
    LoadSamples(0, 3);
    EXPECT_EQ(view.hints, std::vector<int>{HintDataComplete});
    EXPECT_TRUE(document.IsValidSample(3, false));
    EXPECT_FALSE(document.IsValidSample(4, false));
    EXPECT_FALSE(document.IsValidSample(-1, false));
    document.RemoveView(&view);
}

} // namespace
} // namespace busquill::test
