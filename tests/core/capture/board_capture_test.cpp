#include "capture/board_capture.h"
#include "support/capture_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Read = WireBoard::SampleRead;

class BoardCaptureTest : public CaptureFixture {
protected:
    bool UploadEnds() {
        return Eventually([&] { return !upload.IsUploading(); });
    }
    bool CaptureEnds() {
        return Eventually([&] { return !capture.IsRunning(); });
    }
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = board.functions; });
        return functions;
    }
    long Count(int function) {
        const auto functions = Functions();
        return std::count(functions.begin(), functions.end(), function);
    }
};

TEST_F(BoardCaptureTest, EndsWhenTheBoardIsNoLongerActive) {
    OpenBoard("PCIWren");
    SetLive(0x80, 3, 0);
    capture.StartCapture();
    EXPECT_TRUE(capture.IsRunning());
    EXPECT_EQ(store.SamplesBefore(), 0);
    SetLive(0x20, 10, 10);
    ASSERT_TRUE(CaptureEnds());
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(store.SamplesBefore(), 10);
    EXPECT_EQ(store.SamplesAfter(), 10);
    EXPECT_EQ(Count(11), 1);
    EXPECT_EQ(Count(12), 1);
    EXPECT_THAT(Reads(), ElementsAre(Read{3, 10, 21}));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BoardCaptureTest, AFullBufferEndsItEvenIfTheBoardIsActive) {
    OpenBoard("PCIWren");
    SetLive(0xB0, 10, 10);
    capture.StartCapture();
    ASSERT_TRUE(CaptureEnds());
    EXPECT_EQ(Count(12), 1);
    EXPECT_TRUE(UploadEnds());
    EXPECT_EQ(store.GetCount(false), 21U);
}

TEST_F(BoardCaptureTest, GoesOnWhileTheBoardIsActive) {
    OpenBoard("PCIWren");
    SetLive(0x81, 5, 0, 258);
    capture.StartCapture();
    EXPECT_TRUE(Eventually([&] { return Count(1) > 3; })) << "polls of the live status";
    EXPECT_TRUE(capture.IsRunning());
    EXPECT_EQ(link->GetEventOccurrences(), 258);
    capture.StopCapture();
    EXPECT_FALSE(capture.IsRunning());
    ASSERT_TRUE(UploadEnds());
    EXPECT_GE(Count(12), 1);
    EXPECT_EQ(store.GetCount(false), 6U);
}

TEST_F(BoardCaptureTest, ALostLinkEndsItWithoutAMessage) {
    OpenBoard("PCIWren");
    SetLive(0x80, 5, 0);
    capture.StartCapture();
    UseSilence();
    ASSERT_TRUE(CaptureEnds());
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_EQ(Count(12), 0);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_TRUE(link->CommLost());
}

TEST_F(BoardCaptureTest, StopAsTheBufferFillsIsHarmless) {
    OpenBoard("PCIWren");
    for (int i = 0; i < 5; ++i) {
        SetLive(0xB0, 10, 10);
        capture.StartCapture();
        capture.StopCapture();
        ASSERT_TRUE(CaptureEnds());
        ASSERT_TRUE(Eventually([&] { return store.HasSample(20) && !upload.IsUploading(); }));
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BoardCaptureTest, ASecondStartCancelsTheUpload) {
    OpenBoard("PCIWren");
    SetLive(0xB0, 100000, 100000);
    capture.StartCapture();
    ASSERT_TRUE(CaptureEnds());
    EXPECT_TRUE(upload.IsUploading());
    SetLive(0x80, 3, 0);
    capture.StartCapture();
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_TRUE(capture.IsRunning());
    EXPECT_EQ(Count(11), 2);
    EXPECT_NE(store.GetCount(false), 0U) << "the old samples stay until the next upload";
    capture.StopCapture();
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(store.GetCount(false), 4U);
}

TEST_F(BoardCaptureTest, ASecondStartWaitsForThePendingBlockAndRequestsNoMore) {
    OpenBoard("PCIWren");
    SetLive(0xB0, 100000, 100000);
    Gate gate;
    line->Do([&] {
        board.onSampleRead = [this, &gate](const Read& read) {
            if (read == Read{5, 0, 32}) {
                gate.Pass();
                board.contents[425] = {0x80, 3, 0, 0, 0, 0, 0, 0, 0}; // of the next capture
            }
            return Records(read);
        };
    });
    capture.StartCapture();
    gate.AwaitReached();
    std::thread opener([&] {
        std::this_thread::sleep_for(50ms);
        gate.Open();
    });
    capture.StartCapture();
    opener.join();
    EXPECT_EQ(Reads().size(), 1U);
    capture.StopCapture();
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(store.GetCount(false), 4U);
}

TEST_F(BoardCaptureTest, NoPollIsSentWhileOneIsUnanswered) {
    OpenBoard("PCIWren");
    SetLive(0x80, 5, 0);
    capture.StartCapture();
    ASSERT_TRUE(Eventually([&] { return Count(1) >= 2; })); // the first poll waits for its answer
    line->SetClockRuns(false);                              // so that the request does not time out
    Bytes owed;
    line->SetAnswer([this, &owed](const Bytes& sent, int baud) {
        owed = board.Answer(sent, baud);
        return Bytes{};
    });
    ASSERT_TRUE(Eventually([&] { return !link->IsIdle(); }));
    std::this_thread::sleep_for(1s); // the time of five polls
    const long before = Count(1);
    line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
    line->Arrive(owed);
    ASSERT_TRUE(Eventually([&] { return Count(1) > before; }));
    std::this_thread::sleep_for(100ms);
    EXPECT_LE(Count(1), before + 2) << "the unanswered one, and the next in its time";
    capture.ShutDown();
}

TEST_F(BoardCaptureTest, SamplesAreFetchedOnceEvenIfItIsStoppedAgain) {
    OpenBoard("PCIWren");
    SetLive(0x80, 10, 10);
    capture.StartCapture();
    capture.StopCapture();
    ASSERT_TRUE(UploadEnds());
    const std::span<const SampleRecord> samples = store.GetData(false);
    capture.StopCapture();
    ASSERT_TRUE(UploadEnds());
    EXPECT_EQ(Count(12), 2);
    EXPECT_EQ(Reads().size(), 1U);
    EXPECT_EQ(store.GetData(false).data(), samples.data()) << "another thread may be reading them";
}

TEST_F(BoardCaptureTest, ShuttingDownLeavesTheBoardRunning) {
    OpenBoard("PCIWren");
    SetLive(0x80, 5, 0);
    capture.StartCapture();
    capture.ShutDown();
    EXPECT_FALSE(capture.IsRunning());
    EXPECT_EQ(Count(12), 0);
}

TEST_F(BoardCaptureTest, InDemoModeItEndsAtTheFirstPollWithoutSamples) {
    settings.WriteProfileString(setup, "ComPort", "COM1");
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    prompts.Forget();
    capture.StartCapture();
    ASSERT_TRUE(CaptureEnds());
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_EQ(store.GetCount(false), 0U);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
