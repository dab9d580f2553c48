#include "support/link_fixture.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A link on COM1 whose board answers at 9600 baud.
class RequestQueueTest : public LinkFixture {
protected:
    RequestQueueTest() {
        board.baud = 9600;
        OpenLink();
        board.baud = 0;
    }

    /// The board's answers, except for one frame.
    void AnswerFrame(const Bytes& frame, const Bytes& answer) {
        line->SetAnswer([this, frame, answer](const Bytes& sent, int baud) {
            return sent == frame ? answer : board.Answer(sent, baud);
        });
    }
    /// Seconds between the sends of a request that nobody answers. The first is left out: the clock
    /// may move between the moment at which the main thread reads it and the moment of the log.
    std::vector<std::time_t> SecondsBetweenTries() const {
        std::vector<std::time_t> seconds;
        const auto log = line->Log();
        for (std::size_t i = 2; i < log.size(); ++i) {
            seconds.push_back(log[i].time - log[i - 1].time);
        }
        return seconds;
    }
    /// Seconds from the unanswered last frame of a command to its restart.
    std::time_t SecondsUntilRestart(std::span<std::uint8_t> buffer, const Bytes& lastFrame) {
        AnswerFrame(lastFrame, {});
        auto done = Start(ReadRegisters(0, buffer));
        EXPECT_TRUE(Eventually([&] { return line->Log().size() > 12; }));
        UseBoard();
        EXPECT_EQ(done.get().result, LinkOk);
        const auto log = line->Log();
        EXPECT_EQ(log[5].bytes, lastFrame);
        return log[6].time - log[5].time;
    }
    std::size_t CountOf(const Bytes& frame) const {
        const auto written = line->Written();
        return static_cast<std::size_t>(std::ranges::count(written, frame));
    }
};

TEST_F(RequestQueueTest, TraceParametersAreSentInSixFramesAndThreeBytes) {
    EXPECT_TRUE(link->Exchange(WritePayload(CmdTraceParams, [] { return Bytes{3, 3, 1}; })));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0xA4}, Bytes{6, 1}, Bytes{8, 0}, Bytes{10, 3},
                                             Bytes{12, 0}, Bytes{2, 2}, Bytes{3, 3, 1}));
}

TEST_F(RequestQueueTest, AReadOfTheStatusBlockExpectsTwentyBytes) {
    Bytes expected(18);
    expected[0] = 'X';
    expected[17] = 9;
    board.contents[0] = expected;
    Bytes block(18);
    const LinkRequest done = Run(ReadRegisters(0, block));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(done.replyLength, 20);
    EXPECT_EQ(done.state, 39);
    EXPECT_EQ(block, expected);
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0}, Bytes{6, 0}, Bytes{8, 0}, Bytes{10, 18},
                                             Bytes{12, 0}, Bytes{2, 1}));
}

TEST_F(RequestQueueTest, AReadOfSamplesExpectsEighteenBytesForEach) {
    Bytes samples(std::size_t{32} * 18);
    const LinkRequest done = Run(ReadSamples(CmdReadSamplesBefore, 64, samples));
    EXPECT_EQ(done.replyLength, 578);
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 64}, Bytes{6, 0}, Bytes{8, 0}, Bytes{10, 32},
                                             Bytes{12, 0}, Bytes{2, 3}));
}

TEST_F(RequestQueueTest, TheLargestReplyIs4610Bytes) {
    Bytes samples(std::size_t{256} * 18);
    const LinkRequest done = Run(ReadSamples(CmdReadSamplesAfter, 0, samples));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(done.replyLength, 4610);
}

TEST_F(RequestQueueTest, EveryReadCommandSendsItsFunctionAndFillsItsBuffer) {
    constexpr std::uint32_t address = 0x123456;
    Bytes bytes(2);
    Bytes samples(std::size_t{2} * 18);
    struct Row {
        LinkRequestPtr request;
        Bytes& buffer;
        std::uint8_t function;
    };
    std::array rows{
        Row{ReadRegisters(address, bytes), bytes, 1},
        Row{ReadSamples(CmdReadSamplesBefore, address, samples), samples, 3},
        Row{ReadSamples(CmdReadSamplesAfter, address, samples), samples, 5},
        Row{ReadSamples(CmdReadZoomBefore, address, samples), samples, 35},
        Row{ReadSamples(CmdReadZoomAfter, address, samples), samples, 36},
        Row{ReadTarget(address, bytes), bytes, 9},
    };
    for (auto& [request, buffer, function] : rows) {
        line->ForgetLog();
        std::ranges::fill(buffer, std::uint8_t{0});
        const Bytes expected(buffer.size(), 0x5A);
        board.contents[address] = expected;
        const LinkRequest done = Run(std::move(request));
        EXPECT_EQ(done.result, LinkOk);
        EXPECT_EQ(buffer, expected) << LinkCommandName(done.command);
        EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0x56}, Bytes{6, 0x34}, Bytes{8, 0x12},
                                                 Bytes{10, 2}, Bytes{12, 0}, Bytes{2, function}));
    }
}

TEST_F(RequestQueueTest, FunctionsWithoutDataAreOneFrame) {
    struct Row {
        FunctionCommand command;
        std::uint8_t function;
    };
    const std::vector<Row> rows{
        {CmdStartTrace, 11},       {CmdStopTrace, 12},       {CmdStartSearch, 13},
        {CmdStartPerformance, 15}, {CmdStopPerformance, 16}, {CmdStartAnomaly, 17},
        {CmdStopAnomaly, 18},      {CmdStartConfigScan, 21}, {CmdStopConfigScan, 22},
        {CmdStartCompliance, 19},  {CmdStopCompliance, 20},  {CmdExerciserGo, 23},
        {CmdExerciserStop, 24},    {CmdStartStimulus, 25},   {CmdStopStimulus, 26},
        {CmdStartBackplane, 39},   {CmdStopBackplane, 40}};
    for (const auto& [command, function] : rows) {
        line->ForgetLog();
        EXPECT_TRUE(link->Exchange(RunCommand(command)));
        EXPECT_THAT(line->Written(), ElementsAre(Bytes{2, function})) << LinkCommandName(command);
    }
}

TEST_F(RequestQueueTest, AFirmwareRecordIsSentByItsFunction) {
    const Bytes record{0xDE, 0xAD, 0xBE};
    EXPECT_TRUE(link->Exchange(WriteMemory(CmdDownloadRecord, 0x10203, [&] { return record; })));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 3}, Bytes{6, 2}, Bytes{8, 1}, Bytes{10, 3},
                                             Bytes{12, 0}, Bytes{2, 30}, Bytes{0xDE, 0xAD, 0xBE}));
}

TEST_F(RequestQueueTest, TargetDataAreSentByTheirFunction) {
    const Bytes data{1, 2};
    const LinkRequest done = Run(WriteMemory(CmdTargetData, 0x40, [&] { return data; }));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_TRUE(done.payload.empty()) << "the copy is dropped once it is sent";
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0x40}, Bytes{6, 0}, Bytes{8, 0}, Bytes{10, 2},
                                             Bytes{12, 0}, Bytes{2, 10}, Bytes{1, 2}));
}

TEST_F(RequestQueueTest, ARowCommandUsesItsOwnPairOfStates) {
    EXPECT_TRUE(link->Exchange(WritePayload(CmdSearchSample, [] { return Bytes(30, 7); })));
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{445, Bytes(30, 7)}));
}

TEST_F(RequestQueueTest, AKeepAliveIsOneFrameThatEndsAtItsAcknowledgement) {
    const LinkRequest done = Run(RunCommand(CmdUsbKeepAlive));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(done.state, 39);
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0}));
}

TEST_F(RequestQueueTest, AReadOfNoBytesExpectsTheTwoAcknowledgements) {
    const LinkRequest done = Run(ReadRegisters(5, {}));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(done.replyLength, 2);
}

TEST_F(RequestQueueTest, UnexpectedBytesAreDiscardedAtTheStart) {
    line->Arrive({'x', '?', 0});
    ASSERT_TRUE(Eventually([&] { return line->AllTaken(); }));
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(CountOf({2, 11}), 1U);
}

TEST_F(RequestQueueTest, ARequestWithoutACompletionEndsInTheLink) {
    link->Submit(RunCommand(CmdStartTrace));
    link->WaitIdle();
    EXPECT_THAT(board.functions, ElementsAre(11));
}

TEST_F(RequestQueueTest, NewRequestIsZeroExceptForItsArguments) {
    const LinkRequestPtr request = NewRequest(CmdReadMemory);
    EXPECT_EQ(request->command, 3);
    EXPECT_EQ(request->completion, nullptr);
    EXPECT_EQ(request->makePayload, nullptr);
    EXPECT_EQ(request->result, LinkPending);
    EXPECT_EQ(request->address, 0U);
    EXPECT_EQ(request->length, 0U);
    EXPECT_TRUE(request->reply.empty());
    EXPECT_TRUE(request->payload.empty());
}

TEST_F(RequestQueueTest, ASilentBoardGetsACommandFiveTimes) {
    UseSilence();
    const LinkRequest done = Run(RunCommand(CmdStartTrace));
    EXPECT_EQ(done.result, LinkTimeout);
    EXPECT_EQ(done.retries, 4);
    EXPECT_EQ(done.bytesSeen, 0);
    EXPECT_EQ(CountOf({2, 11}), 5U);
    EXPECT_THAT(prompts.Texts(), IsEmpty()) << "the feature reports it";
}

TEST_F(RequestQueueTest, MoreThanTwoSecondsMustPass) {
    UseSilence();
    Run(RunCommand(CmdStartTrace));
    EXPECT_THAT(SecondsBetweenTries(), ElementsAre(3, 3, 3));
}

TEST_F(RequestQueueTest, ASearchHasAMinute) {
    UseSilence();
    Run(RunCommand(CmdStartSearch));
    EXPECT_THAT(SecondsBetweenTries(), ElementsAre(61, 61, 61));
}

TEST_F(RequestQueueTest, AtAnUnknownRateASearchDoesNotHaveAMinute) {
    board.baud = 1;
    OpenLink();
    UseSilence();
    Run(RunCommand(CmdStartSearch));
    EXPECT_THAT(SecondsBetweenTries(), ElementsAre(3, 3, 3));
}

TEST_F(RequestQueueTest, AVmeBoardHasMoreThanFourSeconds) {
    OpenBoard("VMEKite");
    link->PollLiveStatus(); // leaves the phase of identification, which allows fewer tries
    link->WaitIdle();
    line->ForgetLog();
    UseSilence();
    Run(RunCommand(CmdStartTrace));
    EXPECT_THAT(SecondsBetweenTries(), ElementsAre(5, 5, 5));
}

// 11000 x 436 / 9600 is 499, so that 2999 / 1000 is 2.
TEST_F(RequestQueueTest, TheBytesOfAReplyTakeTheirTimeByIntegerDivision) {
    Bytes buffer(434);
    EXPECT_EQ(SecondsUntilRestart(buffer, {2, 1}), 3);
}

// 11000 x 437 / 9600 is 500, so that 3000 / 1000 is 3.
TEST_F(RequestQueueTest, OneByteMoreCrossesTheNextSecond) {
    Bytes buffer(435);
    EXPECT_EQ(SecondsUntilRestart(buffer, {2, 1}), 4);
}

TEST_F(RequestQueueTest, BytesTakeNoTimeWhenTheRateIsUnknown) {
    board.baud = 1;
    OpenLink();
    board.baud = 0;
    Bytes buffer(4000);
    EXPECT_EQ(SecondsUntilRestart(buffer, {2, 1}), 3);
}

TEST_F(RequestQueueTest, ACommandThatFailsAtALaterStateIsRestartedIndefinitely) {
    AnswerFrame({2, 1}, {});
    Bytes buffer(4);
    auto done = Start(ReadRegisters(0x10, buffer));
    EXPECT_TRUE(Eventually([&] { return CountOf({2, 1}) >= 12; }));
    EXPECT_EQ(done.wait_for(0s), std::future_status::timeout);
    UseBoard();
    EXPECT_EQ(done.get().result, LinkOk);
}

TEST_F(RequestQueueTest, ARestartBeginsWithTheFirstFrameAndCreatesThePayloadAgain) {
    int makes = 0;
    line->SetAnswer([&, dropped = false](const Bytes& sent, int baud) mutable {
        const bool drop = sent.size() == 240 && !dropped;
        dropped = dropped || drop;
        const Bytes answer = board.Answer(sent, baud);
        return drop ? Bytes{} : answer;
    });
    EXPECT_TRUE(link->Exchange(WritePayload(
        CmdTraceEvents, [&] { return Bytes(240, static_cast<std::uint8_t>(++makes)); })));
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{20, Bytes(240, 1)},
                                          WireBoard::Write{20, Bytes(240, 2)}));
}

TEST_F(RequestQueueTest, AWrongByteIsABadReplyAtOnce) {
    AnswerFrame({2, 11}, {'?'});
    const LinkRequest done = Run(RunCommand(CmdStartTrace));
    EXPECT_EQ(done.result, LinkBadReply);
    EXPECT_EQ(CountOf({2, 11}), 5U);
    EXPECT_THAT(SecondsBetweenTries(), Each(testing::Le(1)));
}

TEST_F(RequestQueueTest, AWrongFirstByteIsFoundWhenTheReplyIsComplete) {
    Bytes buffer(2);
    line->SetClockRuns(false);
    AnswerFrame({2, 1}, {'?', 1, 2});
    auto done = Start(ReadRegisters(0, buffer));
    ASSERT_TRUE(Eventually([&] { return CountOf({2, 1}) == 1 && line->AllTaken(); }));
    EXPECT_EQ(CountOf({4, 0}), 1U) << "three bytes of four";
    UseBoard();
    line->Arrive({'*'});
    EXPECT_EQ(done.get().result, LinkOk);
    EXPECT_EQ(CountOf({4, 0}), 2U) << "the restart discards the rest of the bad reply";
}

// Bytes that arrive together are checked as if each had arrived alone: a restart discards the reply
// that was wrong, and not what follows it.
TEST_F(RequestQueueTest, BytesAfterAReplyInTheSameReadBelongToTheNextOne) {
    line->SetClockRuns(false);
    AnswerFrame({2, 11}, {'?', '*'});
    const LinkRequest done = Run(RunCommand(CmdStartTrace));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(CountOf({2, 11}), 2U);
}

TEST_F(RequestQueueTest, AcknowledgementsThatArriveTogetherAdvanceTheRequestOneByOne) {
    Bytes buffer(2);
    line->SetClockRuns(false);
    line->SetAnswer([&](const Bytes& sent, int) {
        return sent == Bytes{4, 0}   ? Bytes{'*', '*', '*', '*', '*'}
               : sent == Bytes{2, 1} ? Bytes{'*', 7, 8, '*'}
                                     : Bytes{};
    });
    EXPECT_EQ(Run(ReadRegisters(0, buffer)).result, LinkOk);
    EXPECT_EQ(buffer, (Bytes{7, 8}));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0}, Bytes{6, 0}, Bytes{8, 0}, Bytes{10, 2},
                                             Bytes{12, 0}, Bytes{2, 1}));
}

TEST_F(RequestQueueTest, AReplyInPiecesIsJoined) {
    Bytes buffer(4);
    line->SetClockRuns(false);
    AnswerFrame({2, 1}, {'*', 1});
    auto done = Start(ReadRegisters(0, buffer));
    for (const Bytes& piece : {Bytes{2, 3}, Bytes{4, '*'}}) {
        ASSERT_TRUE(Eventually([&] { return CountOf({2, 1}) == 1 && line->AllTaken(); }));
        line->Arrive(piece);
    }
    EXPECT_EQ(done.get().result, LinkOk);
    EXPECT_EQ(buffer, (Bytes{1, 2, 3, 4}));
}

TEST_F(RequestQueueTest, TheExcessOfAReplyLongerThanItsSpanIsDropped) {
    board.contents[0] = {1, 2, 3, 4};
    Bytes buffer(4, 0x77);
    LinkRequestPtr request = ReadRegisters(0, std::span(buffer).first(2));
    request->length = 4;
    EXPECT_EQ(Run(std::move(request)).result, LinkOk);
    EXPECT_EQ(buffer, (Bytes{1, 2, 0x77, 0x77}));
}

TEST_F(RequestQueueTest, AWrongLastByteIsFoundAfterTheDataAreStored) {
    Bytes buffer(2);
    Bytes atRestart;
    int reads = 0;
    line->SetAnswer([&](const Bytes& sent, int baud) {
        if (sent == Bytes{4, 0} && reads == 1) {
            atRestart = buffer;
        }
        if (sent == Bytes{2, 1} && ++reads == 1) {
            return Bytes{'*', 0xAA, 0xBB, '?'};
        }
        return board.Answer(sent, baud);
    });
    const LinkRequest done = Run(ReadRegisters(0, buffer));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(atRestart, (Bytes{0xAA, 0xBB}));
    EXPECT_EQ(buffer, (Bytes{0, 0}));
}

/// A data state that fails is restarted indefinitely, so the counters of its time-out are observed
/// by using up the tries at that moment.
class TimeoutDetailTest : public RequestQueueTest {
protected:
    LinkRequest TimeOutWith(const Bytes& reply, std::size_t length) {
        buffer_.resize(length);
        AnswerFrame({2, 1}, reply);
        LinkRequestPtr request = ReadRegisters(0, buffer_);
        line->OnClearErrors([running = request.get()] { running->retries = 4; });
        line->SetLineErrors(0x1A);
        LinkRequest result = Run(std::move(request));
        line->OnClearErrors(nullptr);
        return result;
    }
    /// Moves the ring's indexes to `place`.
    void MoveRing(std::size_t place) {
        line->Arrive(Bytes(place - link->ReadRingRaw().size(), 0x55));
        ASSERT_TRUE(Eventually([&] { return line->AllTaken(); }));
    }

private:
    Bytes buffer_;
};

TEST_F(TimeoutDetailTest, AReplyOneByteShortReportsWhatHadArrived) {
    const LinkRequest done = TimeOutWith({'*', 1, 2, 3}, 3);
    EXPECT_EQ(done.result, LinkTimeout);
    EXPECT_EQ(done.state, 11);
    EXPECT_EQ(done.replyLength, 5);
    EXPECT_EQ(done.bytesSeen, 4);
    EXPECT_EQ(done.firstByte, '*');
    EXPECT_EQ(done.lastByte, 3);
    EXPECT_EQ(done.commErrors, 0x1AU);
    EXPECT_EQ(done.ringReadAtFail, 5) << "after five acknowledgements";
    EXPECT_EQ(done.ringWriteAtFail, 9);
}

TEST_F(TimeoutDetailTest, NothingArrivedLeavesTheLastByteAtZero) {
    const LinkRequest done = TimeOutWith({}, 3);
    EXPECT_EQ(done.bytesSeen, 0);
    EXPECT_EQ(done.lastByte, 0);
    EXPECT_EQ(done.ringReadAtFail, done.ringWriteAtFail);
}

TEST_F(TimeoutDetailTest, TheLastByteAfterTheWrapIsFound) {
    MoveRing(99990);
    // Read index 99995; seven bytes end at 100001, which is index 1.
    const LinkRequest done = TimeOutWith({'*', 1, 2, 3, 4, 5, 6}, 20);
    EXPECT_EQ(done.ringReadAtFail, 99995);
    EXPECT_EQ(done.ringWriteAtFail, 2);
    EXPECT_EQ(done.bytesSeen, 7);
    EXPECT_EQ(done.lastByte, 6);
}

TEST_F(TimeoutDetailTest, TheLastByteExactlyAtTheWrapIsTheByteAfterTheRing) {
    MoveRing(99990);
    const LinkRequest done = TimeOutWith({'*', 1, 2, 3, 4, 5}, 20);
    EXPECT_EQ(done.bytesSeen, 6);
    EXPECT_EQ(done.lastByte, 0);
}

TEST_F(RequestQueueTest, AReplyAcrossTheWrapIsComplete) {
    line->Arrive(Bytes(99990, 0x55));
    ASSERT_TRUE(Eventually([&] { return line->AllTaken(); }));
    board.contents[0] = {1, 2, 3, 4, 5, 6, 7, 8};
    Bytes buffer(8);
    EXPECT_TRUE(link->Exchange(ReadRegisters(0, buffer)));
    EXPECT_EQ(buffer, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(RequestQueueTest, AnUnknownCommandIsReportedAtEachTryAndEndsInABadState) {
    const LinkRequest done = Run(NewRequest(99));
    EXPECT_EQ(done.result, LinkBadState);
    EXPECT_EQ(done.state, 0);
    EXPECT_THAT(line->Written(), IsEmpty());
    EXPECT_THAT(
        prompts.Texts(),
        testing::AllOf(SizeIs(5), Each("Error finding initial state for serial command 99.")));
    EXPECT_TRUE(prompts.Boxes().front().topmost);
}

using PayloadDeathTest = RequestQueueTest;

TEST_F(PayloadDeathTest, AWriteCommandWithoutAPayloadMakerStopsTheProgramOrIsNeverSent) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    LinkResult result = LinkBadState;
    EXPECT_DEBUG_DEATH(
        { result = static_cast<LinkResult>(Run(NewRequest(CmdMasterSetup)).result); },
        "no maker of its payload");
    EXPECT_EQ(result, LinkBadState);
    EXPECT_THAT(line->Written(), IsEmpty());
}

TEST_F(RequestQueueTest, AStateWithoutARowIsReportedAndRunsIntoItsTimeout) {
    line->SetClockRuns(false);
    UseSilence();
    LinkRequestPtr request = RunCommand(CmdStartTrace);
    LinkRequest* running = request.get();
    auto done = Start(std::move(request));
    running->state = 10; // not a state of this command
    line->Arrive({'*'});
    ASSERT_TRUE(Eventually([&] { return !prompts.Boxes().empty(); }));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error finding next state for serial command 9, current state 10."));
    EXPECT_TRUE(prompts.Boxes().front().topmost);
    EXPECT_EQ(CountOf({2, 11}), 1U) << "nothing more is sent";
    UseBoard();
    line->SetClockRuns(true);
    EXPECT_EQ(done.get().result, LinkOk) << "after the time-out, from the first state";
    EXPECT_EQ(CountOf({2, 11}), 2U);
}

TEST_F(RequestQueueTest, AFailedWriteIsReportedAndRetriedAfterItsTimeouts) {
    line->SetErrors({.write = 5});
    const LinkRequest done = Run(RunCommand(CmdStartTrace));
    EXPECT_EQ(done.result, LinkTimeout);
    EXPECT_FALSE(link->IsBoardGone()) << "a write may fail for other reasons";
    EXPECT_EQ(CountOf({2, 11}), 5U);
    EXPECT_THAT(SecondsBetweenTries(), ElementsAre(3, 3, 3));
    EXPECT_THAT(prompts.Texts(), testing::AllOf(SizeIs(5), Each("Error writing to COM1, err 5")));
    EXPECT_TRUE(prompts.Boxes().front().topmost);
}

TEST_F(RequestQueueTest, ASecondRequestIsSentAfterTheCompletionOfTheFirst) {
    std::promise<std::vector<Bytes>> inCompletion;
    line->SetClockRuns(false);
    UseSilence();
    link->Submit(NewRequest(CmdStartTrace, [&](const LinkRequestPtr&) {
        std::this_thread::sleep_for(20ms); // time for a send that would be too early
        inCompletion.set_value(line->Written());
    }));
    auto second = Start(RunCommand(CmdStopTrace));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{2, 11}));
    UseBoard();
    line->Arrive({'*'});
    EXPECT_EQ(second.get().result, LinkOk);
    EXPECT_THAT(inCompletion.get_future().get(), ElementsAre(Bytes{2, 11}));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{2, 11}, Bytes{2, 12}));
}

TEST_F(RequestQueueTest, RequestsKeepTheirOrder) {
    std::vector<std::future<LinkRequest>> all;
    for (const std::int32_t command : {CmdStartTrace, CmdStopTrace, CmdStartSearch, CmdStopTrace}) {
        all.push_back(Start(NewRequest(command)));
    }
    for (auto& one : all) {
        EXPECT_EQ(one.get().result, LinkOk);
    }
    EXPECT_THAT(board.functions, ElementsAre(11, 12, 13, 12));
}

TEST_F(RequestQueueTest, ACompletionMaySubmitTheNextRequest) {
    struct Chain {
        CAnalyzerLink& link;
        int left = 50;
        std::promise<void> done;
        void Submit() {
            link.Submit(NewRequest(CmdStartTrace, [this](const LinkRequestPtr& finished) {
                EXPECT_EQ(finished->result, LinkOk);
                if (--left == 0) {
                    done.set_value();
                } else {
                    Submit();
                }
            }));
        }
    } chain{*link, 50, {}};
    chain.Submit();
    chain.done.get_future().get();
    EXPECT_EQ(CountOf({2, 11}), 50U);
}

TEST_F(RequestQueueTest, WaitIdleGivesUpAfterFiveSeconds) {
    line->SetClockRuns(false);
    UseSilence();
    auto done = Start(RunCommand(CmdStartTrace));
    const auto waited = ShortestTimeOf([&] { link->WaitIdle(); }, 5s);
    EXPECT_GE(waited, 5s);
    EXPECT_LT(waited, 5300ms);
    line->Arrive({'*'});
    EXPECT_EQ(done.get().result, LinkOk);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(RequestQueueTest, AnExchangeReportsFailure) {
    UseSilence();
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    UseBoard();
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(RequestQueueTest, RequestsThatWaitWhenTheLinkIsDestroyedAreDropped) {
    line->SetClockRuns(false);
    UseSilence();
    std::atomic<int> completions = 0;
    for (int i = 0; i < 3; ++i) {
        link->Submit(NewRequest(CmdStartTrace, [&](const LinkRequestPtr&) { ++completions; }));
    }
    analyzer.reset();
    EXPECT_EQ(completions, 0);
    EXPECT_EQ(line->OpenPorts(), 0);
}

TEST_F(RequestQueueTest, APortThatDisappearsIsNotReadAnyMoreAndRequestsTimeOut) {
    line->Unplug();
    ASSERT_TRUE(Eventually([&] { return line->ReadsAfterUnplug() == 1; }));
    line->SetErrors({.write = 5});
    auto done = Start(RunCommand(CmdStartTrace));
    while (done.wait_for(10ms) != std::future_status::ready) {
        clock.Advance(1s);
    }
    EXPECT_EQ(done.get().result, LinkTimeout);
    EXPECT_EQ(line->ReadsAfterUnplug(), 1);
    EXPECT_TRUE(link->IsBoardGone());
    const Box box = prompts.Boxes().front();
    EXPECT_EQ(box.text, "Error writing to COM1, err 5");
    EXPECT_EQ(box.hint, "COM1 (/dev/ttyS0) was unplugged. Plug it in again and accept the "
                        "Utilities/Board Setup dialog to connect again.");
    EXPECT_EQ(link->UnpluggedHint(), box.hint);
    link->SendRaw(Bytes{1});
    link->SendRaw(Bytes{2});
    EXPECT_EQ(std::ranges::count(prompts.Texts(), box.text), 1) << "once, not at each write";
}

TEST_F(RequestQueueTest, EachFailureOfAPortThatIsThereIsReported) {
    line->SetErrors({.write = 5});
    link->SendRaw(Bytes{1});
    link->SendRaw(Bytes{2});
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>(2, "Error writing to COM1, err 5"));
    EXPECT_EQ(link->UnpluggedHint(), "");
}

TEST_F(RequestQueueTest, AFailureOfAPortThatIsThereHasNoHint) {
    line->SetErrors({.write = 5});
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(prompts.Boxes().front().hint, "");
}

TEST_F(RequestQueueTest, RawBytesBypassTheQueueAndTheRingIsDrainedAsItIs) {
    UseSilence();
    link->SendRaw(Bytes{0x2A, 0x00, 0xFF});
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{0x2A, 0x00, 0xFF}));
    static_cast<void>(link->ReadRingRaw());
    line->Arrive({'*', 'a', 0});
    ASSERT_TRUE(Eventually([&] { return line->AllTaken(); }));
    EXPECT_EQ(link->ReadRingRaw(), (Bytes{'*', 'a', 0}));
    EXPECT_EQ(link->ReadRingRaw(), Bytes{});
    line->SetErrors({.write = 6});
    link->SendRaw(Bytes{1});
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error writing to COM1, err 6"));
}

} // namespace
} // namespace busquill::test
