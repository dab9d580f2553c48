#include "capture/sample_upload.h"
#include "support/capture_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Read = WireBoard::SampleRead;

/// Records the blocks that it receives.
class Observer final : public BlockObserver {
public:
    struct Block {
        std::uint32_t first = 0;
        std::size_t count = 0;
        bool zoom = false;
        bool operator==(const Block&) const = default;
        friend void PrintTo(const Block& block, std::ostream* out) {
            *out << block.first << "+" << block.count << (block.zoom ? " zoom" : "");
        }
    };
    void AddBlock(std::uint32_t first, std::span<const SampleRecord> records, bool zoom) override {
        const std::lock_guard lock(mutex_);
        blocks_.push_back({first, records.size(), zoom});
        lastRecords_.assign(records.begin(), records.end());
    }
    std::vector<Block> Blocks() const {
        const std::lock_guard lock(mutex_);
        return blocks_;
    }
    std::vector<SampleRecord> LastRecords() const {
        const std::lock_guard lock(mutex_);
        return lastRecords_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Block> blocks_;
    std::vector<SampleRecord> lastRecords_;
};

class SampleUploadTest : public CaptureFixture {
protected:
    ~SampleUploadTest() override { upload.SetObserver(nullptr); }

    bool UploadEnds() {
        return Eventually([&] { return !upload.IsUploading(); });
    }

    Observer observer;
};

TEST_F(SampleUploadTest, BlocksArriveFromTheTriggerOutward) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    Upload();
    // The trigger is sample 100, in the block of 96.
    EXPECT_THAT(BlockOrder(), ElementsAre(96, 64, 128, 32, 160, 0, 192));
    EXPECT_EQ(Reads().front(), (Read{3, 4, 32}))
        << "the block reaches from 4 before the trigger past it";
    EXPECT_EQ(Reads()[2], (Read{5, 28, 32}));
    EXPECT_EQ(Reads().back(), (Read{5, 92, 29})) << "221 samples: the last block is short";
    for (std::uint32_t i = 0; i < 221; ++i) {
        ASSERT_TRUE(store.HasSample(i)) << i;
        ASSERT_EQ(store.GetSample(i), RecordAt(static_cast<std::int32_t>(i) - 100)) << i;
    }
    EXPECT_FALSE(store.HasSample(221));
    EXPECT_EQ(store.GetSample(221), std::nullopt);
}

TEST_F(SampleUploadTest, APciWrenBoardHasNoZoom) {
    OpenBoard("PCIWren");
    SetLive(0x20, 10, 10);
    Upload();
    EXPECT_FALSE(store.HasZoom());
    EXPECT_FALSE(store.GetZoomSample(0).has_value());
    EXPECT_THAT(Reads(), ElementsAre(Read{3, 10, 21}));
}

TEST_F(SampleUploadTest, ALarkBoardHasNoZoom) {
    OpenBoard("VMELark");
    SetLive(0x20, 10, 10);
    Upload();
    EXPECT_FALSE(store.HasZoom());
    EXPECT_THAT(Reads(), ElementsAre(Read{3, 10, 21}));
}

TEST_F(SampleUploadTest, ZoomIsReadFirstAndThenTheBlockAfterTheTriggers) {
    OpenBoard("PCIKite");
    SetLive(0x20, 100, 120);
    Upload();
    ASSERT_GE(Reads().size(), 2U);
    EXPECT_EQ(Reads()[0], (Read{35, 255, 255}));
    EXPECT_EQ(Reads()[1], (Read{36, 0, 256}));
    EXPECT_THAT(BlockOrder(), ElementsAre(128, 64, 160, 32, 192, 0, 96))
        << "the trigger's own block is found last, by the search";
    EXPECT_TRUE(store.HasZoom());
    EXPECT_EQ(store.GetZoomSample(0), RecordAt(-255));
    EXPECT_EQ(store.GetZoomSample(255), RecordAt(0));
    EXPECT_EQ(store.GetZoomSample(510), RecordAt(255));
    EXPECT_EQ(store.GetZoomSample(511), std::nullopt);
}

TEST_F(SampleUploadTest, TenBeforeAndNoneAfterAreElevenSamplesInOneBlock) {
    OpenBoard("PCIWren");
    SetLive(0, 10, 0);
    Upload();
    EXPECT_THAT(Reads(), ElementsAre(Read{3, 10, 11}));
    EXPECT_EQ(store.GetCount(false), 11U);
}

TEST_F(SampleUploadTest, ACaptureWithoutSamplesUploadsNothing) {
    OpenBoard("PCIKite");
    SetLive(0, 0, 5);
    Upload();
    SetLive(0, 0, 0);
    Upload();
    EXPECT_EQ(store.GetCount(false), 0U) << "the samples of the previous capture are gone";
    EXPECT_EQ(Reads().size(), 3U);
    EXPECT_FALSE(store.HasZoom());
}

TEST_F(SampleUploadTest, ATriggerInTheFirstBlockGoesForwardOnly) {
    OpenBoard("PCIWren");
    SetLive(0x20, 0, 100);
    Upload();
    EXPECT_THAT(BlockOrder(), ElementsAre(0, 32, 64, 96))
        << "the step before the start becomes the first missing block";
    EXPECT_EQ(Reads().front(), (Read{5, 0, 32}));
}

TEST_F(SampleUploadTest, AMultipleOf1024SamplesFillsTheLastWordOfBlocks) {
    OpenBoard("PCIWren");
    SetLive(0x20, 1024, 1023);
    Upload();
    EXPECT_EQ(store.GetCount(false), 2048U);
    EXPECT_EQ(BlockOrder().size(), 64U) << "each block once, and none beyond";
    for (std::uint32_t i = 0; i < 2048; i += 32) {
        EXPECT_TRUE(store.HasSample(i)) << i;
    }
    // One block more than a full word.
    SetLive(0x20, 1024, 1024);
    Upload();
    EXPECT_EQ(BlockOrder().size(), 64U + 65U);
    EXPECT_EQ(Reads().back().length, 1U);
}

TEST_F(SampleUploadTest, TheBlockOfARequestedSampleIsNextAndTheUploadContinuesThere) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    Gate gate;
    StopAt(gate, Read{3, 20, 32}); // the trigger's block, 480
    upload.BeginUpload();
    gate.AwaitReached();
    upload.SetPriorityIndex(100);
    gate.Open();
    ASSERT_TRUE(UploadEnds());
    const std::vector<int> order = BlockOrder();
    ASSERT_GE(order.size(), 4U);
    EXPECT_EQ(order[0], 480);
    EXPECT_EQ(order[1], 96) << "the block of sample 100";
    EXPECT_EQ(order[2], 448) << "backward from where the forward cursor stood";
    EXPECT_EQ(order[3], 128) << "forward from the wanted block";
    EXPECT_EQ(std::set<int>(order.begin(), order.end()).size(), 32U);
}

TEST_F(SampleUploadTest, ABlockThatHasArrivedIsFetchedAgainOnRequest) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    Gate gate;
    StopAt(gate, Read{3, 36, 32}); // 64, the second
    upload.BeginUpload();
    gate.AwaitReached();
    upload.SetPriorityIndex(96);
    gate.Open();
    ASSERT_TRUE(UploadEnds());
    EXPECT_THAT(BlockOrder(), ElementsAre(96, 64, 96, 0, 128, 32, 160, 192))
        << "the block before the backward cursor has arrived: the first missing one is 0";
}

TEST_F(SampleUploadTest, ASampleThatHasArrivedIsNeverWrittenAgain) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    upload.SetObserver(&observer);
    Gate gate;
    line->Do([&] {
        // The board delivers the second read late, and other samples after it.
        board.onSampleRead = [&gate, reads = 0](const Read& read) mutable {
            if (++reads == 2) {
                gate.Pass();
            }
            return reads <= 2 ? Records(read) : Bytes(read.length * sizeof(SampleRecord), 0xEE);
        };
    });
    upload.BeginUpload();
    gate.AwaitReached();
    upload.SetPriorityIndex(96);
    gate.Open();
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(BlockOrder()[2], 96) << "fetched again";
    EXPECT_EQ(store.GetSample(100), RecordAt(0));
    EXPECT_NE(store.GetSample(0), RecordAt(-100));
    EXPECT_THAT(observer.Blocks(), testing::Contains(Observer::Block{96, 32, false}).Times(2));
}

TEST_F(SampleUploadTest, ARunningUploadIsNotRestarted) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    line->SetClockRuns(false);
    Bytes owed; // the answer to the first frame of the second block
    line->SetAnswer([this, &owed](const Bytes& sent, int baud) {
        const Bytes answer = board.Answer(sent, baud);
        if (sent == Bytes{4, 36}) {
            owed = answer;
            return Bytes{};
        }
        return answer;
    });
    upload.BeginUpload();
    ASSERT_TRUE(Eventually([&] { return store.HasSample(96); }));
    upload.BeginUpload(); // returns after waiting five seconds for the link
    EXPECT_TRUE(store.HasSample(96)) << "samples that have arrived stay";
    line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
    line->Arrive(owed);
    ASSERT_TRUE(UploadEnds());
    EXPECT_THAT(BlockOrder(), ElementsAre(96, 64, 128, 32, 160, 0, 192));
}

TEST_F(SampleUploadTest, ASampleAfterTheCaptureIsNotRequested) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    Gate gate;
    StopAt(gate, Read{3, 36, 32});
    upload.BeginUpload();
    gate.AwaitReached();
    upload.SetPriorityIndex(221);
    gate.Open();
    ASSERT_TRUE(UploadEnds());
    EXPECT_THAT(BlockOrder(), ElementsAre(96, 64, 128, 32, 160, 0, 192));
}

TEST_F(SampleUploadTest, ACancelledUploadDropsThePendingBlock) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    upload.SetObserver(&observer);
    Gate gate;
    StopAt(gate, Read{3, 52, 32}); // 448, the second
    upload.BeginUpload();
    gate.AwaitReached();
    std::thread opener([&] {
        std::this_thread::sleep_for(50ms);
        gate.Open();
    });
    upload.CancelUpload();
    opener.join();
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_TRUE(store.HasSample(500)) << "samples that have arrived stay";
    EXPECT_FALSE(store.HasSample(448));
    link->WaitIdle();
    EXPECT_EQ(Reads().size(), 2U);
    EXPECT_EQ(observer.Blocks().size(), 1U) << "the observer is detached";
    // The next upload begins from the trigger again.
    Upload();
    EXPECT_EQ(BlockOrder().size(), 2U + 32U);
    EXPECT_EQ(BlockOrder()[2], 480);
}

TEST_F(SampleUploadTest, CancellingWaitsASecondAtMost) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    Gate gate;
    StopAt(gate, Read{3, 20, 32});
    upload.BeginUpload();
    gate.AwaitReached();
    upload.CancelUpload(); // returns although the board does not answer
    EXPECT_TRUE(upload.IsUploading());
    gate.Open();
    EXPECT_TRUE(UploadEnds());
    link->WaitIdle();
    EXPECT_EQ(Reads().size(), 1U);
}

TEST_F(SampleUploadTest, CancellingDetachesTheObserverInAnyCase) {
    OpenBoard("PCIWren");
    upload.SetObserver(&observer);
    upload.CancelUpload();
    SetLive(0x20, 10, 10);
    Upload();
    EXPECT_THAT(observer.Blocks(), IsEmpty());
}

TEST_F(SampleUploadTest, AFailedBlockIsReportedAndEndsTheUpload) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    line->SetLineErrors(0x12);
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return sent == Bytes{4, 36} ? Bytes{} : board.Answer(sent, baud);
    });
    Upload();
    ASSERT_EQ(prompts.Boxes().size(), 1U);
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(prompts.Texts()[0],
                testing::MatchesRegex(
                    "Error reading trace data for sample index 36, length 32\\.\n"
                    "Command 4 State 1 Expected 1 Read 0 Error 3 ComErrors 0x12\\.\n"
                    "Read Index ([0-9]+) Write Index [0-9]+ First 0x[0-9a-f]+ Last 0x0\\."));
    EXPECT_TRUE(store.HasSample(100));
    EXPECT_FALSE(store.HasSample(64));
    EXPECT_EQ(store.GetCount(false), 221U) << "samples that have not arrived stay missing";
}

TEST_F(SampleUploadTest, AFailedTransferIsNotReportedTwice) {
    OpenUsbLink();
    usb.WithBoard([](WireBoard& on) {
        on.contents[0] = {'P', 'C', 'I', 'W', 'r', 'e', 'n'};
        on.contents[425] = {0x20, 100, 0, 0, 120, 0, 0, 0, 0};
        on.onSampleRead = &CaptureFixture::Records;
    });
    link->ReadIdentity();
    link->WaitIdle();
    usb.Set({.failingRead = 29 * 18}); // the short block at the end
    upload.BeginUpload();
    ASSERT_TRUE(UploadEnds());
    EXPECT_TRUE(store.HasSample(191));
    EXPECT_FALSE(store.HasSample(192));
    const auto boxes = prompts.Texts();
    EXPECT_THAT(boxes, testing::Not(IsEmpty()));
    EXPECT_THAT(boxes, testing::Each(testing::Not(testing::HasSubstr("trace data"))));
}

TEST_F(SampleUploadTest, AnObserverReceivesEveryBlockAsItArrives) {
    OpenBoard("PCIKite");
    SetLive(0x20, 40, 30);
    upload.SetObserver(&observer);
    Upload();
    using Block = Observer::Block;
    EXPECT_THAT(observer.Blocks(),
                ElementsAre(Block{0, 255, true}, Block{255, 256, true}, Block{64, 7, false},
                            Block{0, 32, false}, Block{32, 32, false}));
    EXPECT_EQ(observer.LastRecords()[8], RecordAt(0));
}

TEST_F(SampleUploadTest, ANewObserverReceivesTheBlocksThatHaveArrived) {
    OpenBoard("PCIKite");
    SetLive(0x20, 40, 30);
    Upload();
    upload.SetObserver(&observer);
    using Block = Observer::Block;
    EXPECT_THAT(observer.Blocks(),
                ElementsAre(Block{0, 255, true}, Block{0, 256, true}, Block{0, 32, false},
                            Block{32, 32, false}, Block{64, 7, false}))
        << "the second part of the zoom is delivered at 0";
    EXPECT_EQ(observer.LastRecords()[0], RecordAt(24));
    upload.SetObserver(&observer);
    EXPECT_EQ(observer.Blocks().size(), 5U) << "the same one again";
}

TEST_F(SampleUploadTest, AnObserverReceivesTheZoomAsFarAsItHasArrived) {
    OpenBoard("PCIKite");
    SetLive(0x20, 40, 30);
    Gate gate;
    StopAt(gate, Read{36, 0, 256});
    upload.BeginUpload();
    gate.AwaitReached();
    upload.SetObserver(&observer);
    EXPECT_THAT(observer.Blocks(), ElementsAre(Observer::Block{0, 255, true}));
    EXPECT_FALSE(store.HasZoom());
    gate.Open();
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(observer.Blocks().size(), 5U);
}

TEST_F(SampleUploadTest, CopiesSamplesUpToTheFirstMissingOne) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    Gate gate;
    StopAt(gate, Read{5, 28, 32}); // 128, after 96 and 64
    upload.BeginUpload();
    gate.AwaitReached();
    std::array<SampleRecord, 100> copy;
    EXPECT_EQ(store.CopySamples(70, copy), 58U);
    EXPECT_EQ(copy[0], RecordAt(-30));
    EXPECT_EQ(copy[57], RecordAt(27));
    EXPECT_EQ(store.CopySamples(130, copy), 0U);
    gate.Open();
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(store.CopySamples(200, copy), 21U) << "to the end";
}

TEST_F(SampleUploadTest, AnUploadThatLosesItsPortEndsWithEmptySamples) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100, 120);
    line->SetClockRuns(false);
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return sent == Bytes{4, 36} ? Bytes{} : board.Answer(sent, baud); // the second block's
    });
    upload.BeginUpload();
    ASSERT_TRUE(Eventually([&] { return store.HasSample(96); }));
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(store.GetSample(96), RecordAt(-4));
    EXPECT_EQ(store.GetSample(64), SampleRecord()) << "not the data of another block";
}

} // namespace
} // namespace busquill::test
