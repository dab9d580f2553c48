#include "capture/capture_run.h"
#include "support/capture_fixture.h"
#include "support/manual_timer.h"
#include "support/temp_dir.h"
#include "tracesetup/setup_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) override {
        if (hint != HintPolled) { // those come with every poll
            hints.push_back(hint);
        }
    }
    std::vector<int> hints;
};

class CaptureRunTest : public CaptureFixture {
protected:
    /// The payload that was last written at a register.
    Bytes Written(std::uint32_t address) {
        Bytes bytes;
        line->Do([&] {
            for (const WireBoard::Write& write : board.writes) {
                if (write.address == address) {
                    bytes = write.bytes;
                }
            }
        });
        return bytes;
    }
    /// Sets one bit of an event and its compare bit.
    static void Expect(TraceSetup& in, std::int32_t dataIndex, unsigned event, bool value) {
        for (const auto& signal : in.events.All()) {
            if (signal->dataIndex == dataIndex) {
                signal->data[0] |= value ? 1U << event : 0;
                signal->mask[0] |= 1U << event;
                return;
            }
        }
        FAIL() << "no signal at data index " << dataIndex;
    }
    RunState Follow() {
        document->Run().Poll();
        return document->Run().State();
    }
    /// From here on the port is gone and its writes fail; time still passes.
    void TakeTheBoardAway() {
        line->Unplug();
        ASSERT_TRUE(Eventually([&] { return link->IsBoardGone(); }));
        line->SetErrors({.write = 5});
        line->ForgetLog();
        timePasses = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(1ms);
                clock.Advance(100ms);
            }
        });
    }
    std::jthread timePasses;
    bool Ends() {
        return Eventually([&] { return !capture.IsRunning() && !upload.IsUploading(); });
    }
};

TEST_F(CaptureRunTest, SendsTheDefaultSetupByteForByte) {
    OpenBoard("PCIKite");
    DownloadSetup(*link, TraceSetup(tables), prompts);
    EXPECT_EQ(Written(420), (Bytes{0, 0, 1})) << "Sync, 50%, 3.75 ns";
    EXPECT_EQ(Written(20), Bytes(240)) << "nothing is compared";
    Bytes control(160);
    std::fill(control.begin(), control.begin() + 16, 0xFF); // IF All, STORE All
    control[16] = 1;                                        // OCCURS 1
    control[18] = 0x08;                                     // THEN Goto L1, Trigger
    for (std::size_t level = 1; level < 8; ++level) {
        control[level * 20 + 16] = 1;
    }
    EXPECT_EQ(Written(260), control);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CaptureRunTest, SendsASetupOfTwoLevelsByteForByte) {
    OpenBoard("PCIKite");
    TraceSetup program(tables);
    program.clock = 16;            // 30.72 us
    program.triggerPosition = 1;   // 0%
    program.powerZoomClock = 8;    // 240 ns
    Expect(program, 0, 0, true);   // E1: AD[0] is 1 ...
    Expect(program, 72, 0, false); // ... and FRAME# is 0
    Expect(program, 64, 7, true);  // E8: C/BE[0] is 1
    program.levels[0].ifExpr = ParseExpression("E1.~E8");
    program.levels[0].storeExpr = expressionNone;
    program.levels[0].occurs = 0x12345;
    program.levels[0].thenGoto = 1;
    program.levels[0].thenTrigger = false;
    program.levels[1].ifExpr = ParseExpression("(E1xE8)+E2");
    program.levels[1].storeExpr = expressionAll;
    program.levels[1].thenGoto = 7;
    program.levels[1].thenTrigger = true;
    program.levels[1].elseGoto = 2;
    program.levels[1].elseTrigger = true;
    DownloadSetup(*link, program, prompts);

    EXPECT_EQ(Written(420), (Bytes{15, 3, 7}));
    Bytes events(240);
    events[0] = 0x01;           // value and ...
    events[1] = 0x01;           // ... compare bit of AD[0]
    events[19] = 0x01;          // FRAME#, bit 72, is compared with 0
    events[7 * 30 + 16] = 0x01; // C/BE[0], bit 64
    events[7 * 30 + 17] = 0x01;
    EXPECT_EQ(Written(20), events);

    Bytes control(160);
    // "E1.~E8": 1 9 11 8 from the highest nibble down.
    control[7] = 0x19;
    control[6] = 0xB8;
    control[16] = 0x45; // the low two bytes of 0x12345
    control[17] = 0x23;
    control[18] = 0x01;
    // "(E1xE8)+E2": 13 1 12 8 14 10 2.
    control[27] = 0xD1;
    control[26] = 0xC8;
    control[25] = 0xEA;
    control[24] = 0x20;
    std::fill(control.begin() + 28, control.begin() + 36, 0xFF);
    control[36] = 1;
    control[38] = 0x0F;
    control[39] = 0x0A;
    for (std::size_t level = 2; level < 8; ++level) {
        control[level * 20 + 16] = 1;
    }
    EXPECT_EQ(Written(260), control);
}

TEST_F(CaptureRunTest, ABoardWithFourEventsGetsFourRowsAndZeros) {
    OpenBoard("VMELark");
    BoardTables lark("VMELark-1", BusVme);
    EXPECT_EQ(EventCount(link->Traits()), 4);
    TraceSetup program(lark.tables);
    for (unsigned event = 0; event < 4; ++event) {
        Expect(program, 0, event, true);
    }
    // As in a file from another board.
    program.events.All().front()->data[0] |= 0xF0;
    program.events.All().front()->mask[0] |= 0xF0;
    DownloadSetup(*link, program, prompts);
    const Bytes events = Written(20);
    ASSERT_EQ(events.size(), 240U);
    for (std::size_t row = 0; row < 4; ++row) {
        EXPECT_NE(Bytes(events.begin() + static_cast<std::ptrdiff_t>(row * 30),
                        events.begin() + static_cast<std::ptrdiff_t>(row * 30 + 30)),
                  Bytes(30))
            << row;
    }
    EXPECT_EQ(Bytes(events.begin() + 120, events.end()), Bytes(120));
}

TEST_F(CaptureRunTest, EveryFailedStepIsReportedAndTheNextFollows) {
    OpenBoard("PCIKite");
    line->SetAnswer([this](const Bytes& sent, int baud) {
        // The first frame of a write, whatever it writes.
        return sent.size() == 2 && sent[0] == 4 ? Bytes{} : board.Answer(sent, baud);
    });
    DownloadSetup(*link, TraceSetup(tables), prompts);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error sending trace parameter data to analyzer.",
                            "Error sending trace event setup data to analyzer.",
                            "Error sending trace control setup data to analyzer."));
    for (const Box& box : prompts.Boxes()) {
        EXPECT_TRUE(box.topmost);
    }
}

TEST_F(CaptureRunTest, NothingMoreIsSentToALostBoardAndTheCaptureStays) {
    OpenBoard("PCIWren");
    SetLive(0x20, 10, 10);
    Upload();
    NewDocument();
    document->OnCaptureStopped();
    document->FlushBlockUpdates();
    ASSERT_EQ(document->SampleCount(false), 21);
    TakeTheBoardAway();
    document->Run().Go(document->setup, "");
    // The first command is tried several times.
    EXPECT_THAT(prompts.Texts(),
                testing::ElementsAre("Error writing to COM1, err 5",
                                     "Error sending trace parameter data to analyzer."));
    EXPECT_GT(line->Written().size(), 1U);
    EXPECT_THAT(line->Written(), testing::Each(Bytes{4, 0xA4}));
    EXPECT_FALSE(document->CaptureActive());
    EXPECT_FALSE(capture.IsRunning());
    EXPECT_EQ(document->SampleCount(false), 21);
}

TEST_F(CaptureRunTest, AStopSendsNothingMoreToALostBoard) {
    OpenBoard("PCIWren");
    NewDocument();
    SetLive(0x80, 0, 0);
    document->Run().Go(document->setup, "");
    capture.ShutDown(); // the monitor's poll would end the run
    link->WaitIdle();
    document->OnCaptureStarted();
    TakeTheBoardAway();
    document->Run().Stop();
    link->WaitIdle();
    EXPECT_THAT(line->Written(), testing::Each(Bytes{2, 12}));
}

TEST_F(CaptureRunTest, LeavingTheBoardDuringTheUploadInventsNoSamples) {
    OpenBoard("PCIWren");
    NewDocument();
    SetLive(0xA0, 1000, 1000);
    line->Do([&] {
        board.onSampleRead = [this, reads = 0](const WireBoard::SampleRead& read) mutable {
            silent = ++reads == 4;
            return Records(read);
        };
    });
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return silent ? Bytes{} : board.Answer(sent, baud);
    });
    line->SetClockRuns(false);
    document->Run().Go(document->setup, "");
    document->Run().Stop();
    ASSERT_TRUE(Eventually([&] { return Reads().size() == 4; }));
    settings.WriteProfileString(setup, "ComPort", "<None>");
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(Ends());
    static_cast<void>(Follow());
    EXPECT_TRUE(document->IsValidSample(1000, false));
    EXPECT_FALSE(document->IsValidSample(0, false));
    EXPECT_FALSE(document->IsValidSample(2000, false));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CaptureRunTest, ARunGoesFromSetupToSamples) {
    OpenBoard("PCIKite");
    SetLive(0x80, 0, 0);
    NewDocument();
    RecordingView view;
    document->AddView(&view);
    EXPECT_EQ(Follow().indicator, RunIndicator::Idle);
    document->Run().Go(document->setup, "");
    EXPECT_TRUE(document->CaptureActive());
    EXPECT_TRUE(document->HasData());
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(document->SampleCount(false), 0);
    EXPECT_EQ(document->Marker(0, false), -1);
    EXPECT_THAT(view.hints, ElementsAre(HintCaptureStarted));

    SetLive(0xA3, 40, 7, 12);
    ASSERT_TRUE(Eventually([&] { return Follow().level == 3; }));
    const RunState running = Follow();
    EXPECT_EQ(running.indicator, RunIndicator::Running);
    EXPECT_EQ(running.before, 40);
    EXPECT_EQ(running.after, 7);
    EXPECT_EQ(running.occurrences, 12);
    EXPECT_TRUE(running.triggered);
    EXPECT_FALSE(running.bufferFull);

    SetLive(0x20, 40, 30);
    ASSERT_TRUE(Ends());
    EXPECT_TRUE(document->CaptureActive()) << "until it is polled";
    view.hints.clear();
    EXPECT_EQ(Follow().indicator, RunIndicator::Idle);
    EXPECT_FALSE(document->CaptureActive());
    EXPECT_EQ(view.hints.front(), HintCaptureStopped);
    EXPECT_EQ(std::count(view.hints.begin(), view.hints.end(), HintBlockArrived), 5);
    EXPECT_EQ(document->SampleCount(false), 71);
    EXPECT_EQ(document->FirstSampleNumber(false), -40);
    EXPECT_EQ(document->Marker(0, false), 40);
    EXPECT_EQ(document->Marker(0, true), 255);
    EXPECT_TRUE(document->IsValidSample(70, false));
    EXPECT_EQ(document->GetSample(41, false), RecordAt(1));
    document->RemoveView(&view);
}

TEST_F(CaptureRunTest, TheDocumentPollsItWithAndWithoutViews) {
    OpenBoard("PCIWren");
    const auto timer = std::make_shared<TimerState>();
    context.makeTimer = [&] { return std::make_unique<ManualTimer>(timer); };
    NewDocument();
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 200ms);
    SetLive(0xA0, 40, 30);
    document->Run().Go(document->setup, "");
    document->Run().Stop();
    ASSERT_TRUE(Ends());
    timer->tick();
    EXPECT_TRUE(document->IsValidSample(70, false)) << "even if no window shows it";

    struct LookedAt final : DocumentView {
        void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) override {
            polls += hint == HintPolled ? 1 : 0;
        }
        int polls = 0;
    } first, second;
    document->AddView(&first);
    document->AddView(&second);
    timer->tick();
    EXPECT_EQ(first.polls, 1);
    EXPECT_EQ(second.polls, 1) << "one poll for all views";
    document->RemoveView(&first);
    document->RemoveView(&second);
    document.reset();
    EXPECT_FALSE(timer->runs);
}

TEST_F(CaptureRunTest, BlocksThatArriveLaterAreUnpackedAtTheNextPoll) {
    OpenBoard("PCIWren");
    NewDocument();
    SetLive(0xA0, 3000, 3000);
    document->Run().Go(document->setup, "");
    document->Run().Stop();
    EXPECT_FALSE(document->CaptureActive());
    EXPECT_EQ(document->SampleCount(false), 6001);
    ASSERT_TRUE(Ends());
    EXPECT_FALSE(document->IsValidSample(0, false));
    static_cast<void>(Follow());
    for (std::int64_t i = 0; i < 6001; ++i) {
        ASSERT_TRUE(document->IsValidSample(i, false)) << i;
    }
    // AD[0] is bit 0 of the distance.
    const auto& all = document->stateList.All();
    const auto ad0 = std::find_if(all.begin(), all.end(),
                                  [](const auto& signal) { return signal->dataIndex == 0; });
    ASSERT_NE(ad0, all.end());
    EXPECT_TRUE((*ad0)->Bit(3001));
    EXPECT_FALSE((*ad0)->Bit(3002));
}

TEST_F(CaptureRunTest, ZoomBlocksThatAreDeliveredAgainOverlapAtTheStart) {
    OpenBoard("PCIKite");
    SetLive(0x20, 10, 10);
    Upload();
    NewDocument();
    document->OnCaptureStopped();
    document->FlushBlockUpdates();
    const auto& all = document->zoomList.All();
    const auto ad0 = std::find_if(all.begin(), all.end(),
                                  [](const auto& signal) { return signal->dataIndex == 0; });
    ASSERT_NE(ad0, all.end());
    EXPECT_TRUE((*ad0)->Bit(0)) << "-255 is odd";
    EXPECT_TRUE((*ad0)->Bit(1)) << "the first part's 0 and the second part's 1";
    EXPECT_FALSE((*ad0)->Bit(257)) << "not loaded";
    EXPECT_EQ(document->GetSample(257, true), RecordAt(2)) << "the records are right";
}

TEST_F(CaptureRunTest, BlocksOfThePreviousCaptureAreForgottenAtTheStart) {
    OpenBoard("PCIWren");
    NewDocument();
    const std::vector<SampleRecord> old(32, RecordAt(-1));
    document->AddBlock(0, old, false);
    document->OnCaptureStarted();
    document->RebuildMaps(40, 40);
    document->FlushBlockUpdates();
    EXPECT_FALSE(document->IsValidSample(0, false));
}

TEST_F(CaptureRunTest, AClearedTraceStaysEmpty) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    Upload();
    NewDocument();
    document->OnCaptureStarted();
    document->OnCaptureStopped();
    document->FlushBlockUpdates();
    ASSERT_TRUE(document->IsValidSample(500, false));
    document->SetMarker(1, 3);
    document->SetMarker(2, 4);
    document->OnCaptureStarted(); // another run, whose end has not been polled yet
    document->filterPattern.RemoveAllSignals();
    struct View final : DocumentView {
        void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) override {
            hints.push_back(hint);
        }
        std::vector<int> hints;
    } view;
    document->AddView(&view);
    document->ClearData();
    document->RemoveView(&view);
    EXPECT_EQ(view.hints, (std::vector<int>{HintCaptureStarted, HintCaptureStopped}));
    EXPECT_FALSE(document->CaptureActive());
    EXPECT_FALSE(document->HasData());
    EXPECT_EQ(document->SampleCount(false), 0);
    EXPECT_EQ(store.GetCount(false), 0U);
    EXPECT_FALSE(document->filterPattern.Empty());
    for (int marker = 0; marker < 3; ++marker) {
        EXPECT_EQ(document->Marker(marker, false), -1);
    }
    Follow(); // a window's timer
    EXPECT_EQ(document->SampleCount(false), 0);
}

TEST_F(CaptureRunTest, ASignalAddedDuringTheUploadGetsAllSamples) {
    OpenBoard("PCIWren");
    SetLive(0x20, 500, 500);
    Gate gate;
    StopAt(gate, WireBoard::SampleRead{5, 12, 32}); // 512, after 480 and 448
    upload.BeginUpload();
    gate.AwaitReached();
    NewDocument();
    document->OnCaptureStopped();
    document->FlushBlockUpdates();
    CSignalList& list = document->stateList;
    CSignal* added = list.AddSignal(&list[0], tables.busSignals.FindByName("AD"), 1001, 0, 7, 0,
                                    Radix::Hex, true);
    document->LoadSignal(list, *added, false);
    gate.Open();
    ASSERT_TRUE(Ends());
    static_cast<void>(Follow());
    for (const std::size_t sample : {448U, 500U, 512U, 1000U, 0U}) {
        ASSERT_EQ(added->GroupRow(sample).size(), 1U);
        EXPECT_EQ(added->GroupRow(sample)[0], RecordAt(static_cast<int>(sample) - 500).bytes[0])
            << sample;
    }
}

TEST_F(CaptureRunTest, ARunWithoutSamplesEndsIdle) {
    OpenBoard("PCIKite");
    NewDocument();
    SetLive(0x80, 0, 0);
    document->Run().Go(document->setup, "");
    document->Run().Stop();
    EXPECT_FALSE(upload.IsUploading());
    EXPECT_EQ(document->SampleCount(false), 0);
    EXPECT_EQ(Follow().indicator, RunIndicator::Idle);
    EXPECT_TRUE(document->IsModified());
}

TEST_F(CaptureRunTest, AfterARunWithoutSamplesTheFilterFindsNothing) {
    OpenBoard("PCIKite");
    NewDocument();
    SetLive(0x20, 40, 20);
    document->Run().Go(document->setup, "");
    ASSERT_TRUE(Ends());
    Follow();
    document->ApplyFilter(0);
    ASSERT_EQ(document->RowCount(false), 61);
    SetLive(0x80, 0, 0);
    document->Run().Go(document->setup, "");
    ASSERT_TRUE(Eventually([&] { // so no poll has failed yet
        std::int32_t before = 0;
        std::int32_t after = 0;
        return link->GetLiveStatus(before, after) == 0x80;
    }));
    line->SetAnswer([](const Bytes&, int) { return Bytes{}; }); // the board disappears
    ASSERT_TRUE(Ends());
    Follow();
    ASSERT_EQ(document->SampleCount(false), 0);
    document->ApplyFilter(0);
    EXPECT_EQ(document->RowCount(false), 0) << "the previous capture is gone";
    EXPECT_FALSE(document->IsFiltered());
}

TEST_F(CaptureRunTest, StopDoesNothingWhenNoCaptureIsActive) {
    OpenBoard("PCIKite");
    NewDocument();
    document->Run().Stop();
    EXPECT_THAT(board.functions, testing::Not(testing::Contains(12)));
}

TEST_F(CaptureRunTest, AChosenSetupIsLoadedAndSent) {
    OpenBoard("PCIKite");
    NewDocument();
    SetLive(0x80, 0, 0);
    const TempDir dir;
    TraceSetup program(tables);
    program.name = "mine";
    program.clock = 1;
    ASSERT_TRUE(SaveSetupFile(program, dir.File("mine.tsp"), prompts));
    document->Run().Go(document->setup, dir.File("mine.tsp"));
    EXPECT_EQ(document->setup.name, "mine");
    EXPECT_EQ(Written(420)[0], 2);
    document->Run().Stop();
}

TEST_F(CaptureRunTest, AnUnreadableSetupLeavesTheBoardItsOwn) {
    OpenBoard("PCIKite");
    NewDocument();
    SetLive(0x80, 0, 0);
    document->Run().Go(document->setup, "/nonexistent/a.tsp");
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file /nonexistent/a.tsp."));
    EXPECT_THAT(Written(420), IsEmpty());
    EXPECT_TRUE(document->CaptureActive()) << "the run goes on";
    document->Run().Stop();
}

TEST_F(CaptureRunTest, ClosingATraceEndsTheUploadOfTheBoard) {
    OpenBoard("PCIWren");
    SetLive(0x20, 100000, 100000);
    upload.BeginUpload();
    context.newDocRealTime = false;
    NewDocument();
    document.reset(); // the document of a file
    EXPECT_FALSE(upload.IsUploading());
}

TEST_F(CaptureRunTest, ADocumentClosedDuringTheRunLeavesTheBoardRunning) {
    OpenBoard("PCIWren");
    NewDocument();
    SetLive(0x80, 0, 0);
    document->Run().Go(document->setup, "");
    document.reset();
    EXPECT_TRUE(capture.IsRunning());
    SetLive(0x20, 10, 10);
    ASSERT_TRUE(Ends());
    EXPECT_EQ(store.GetCount(false), 21U);
}

TEST_F(CaptureRunTest, ALinkLostDuringTheUploadKeepsTheSamplesThatArrived) {
    OpenBoard("PCIWren");
    NewDocument();
    SetLive(0xA0, 1000, 1000);
    line->Do([&] {
        board.onSampleRead = [this, reads = 0](const WireBoard::SampleRead& read) mutable {
            silent = ++reads == 4;
            return Records(read);
        };
    });
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return silent ? Bytes{} : board.Answer(sent, baud);
    });
    document->Run().Go(document->setup, "");
    document->Run().Stop();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(Follow().indicator, RunIndicator::Idle);
    ASSERT_EQ(prompts.Texts().size(), 1U);
    EXPECT_THAT(prompts.Texts()[0],
                testing::StartsWith("Error reading trace data for sample index"));
    EXPECT_TRUE(document->IsValidSample(1000, false));
    EXPECT_FALSE(document->IsValidSample(0, false));
    EXPECT_EQ(document->SampleCount(false), 2001);
}

TEST(TriggerSample, FollowsTheTriggerPosition) {
    BoardTables board("PCIKite-1");
    TraceSetup program(board.tables);
    const std::int64_t expected[] = {0, 0, 256, 512, 768, 1023, 0};
    for (std::int32_t position = 0; position < 7; ++position) {
        program.triggerPosition = position;
        EXPECT_EQ(TriggerSampleOf(program, 1024), expected[position]) << position;
    }
    program.triggerPosition = 4;
    EXPECT_EQ(TriggerSampleOf(program, 1023), 767) << "multiplied by three first";
}

} // namespace
} // namespace busquill::test
