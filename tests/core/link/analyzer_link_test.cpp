#include "support/link_fixture.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <thread>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class AnalyzerLinkTest : public LinkFixture {
protected:
    void SetModel(const std::string& model) {
        Bytes block(model.begin(), model.end());
        block.resize(18);
        board.contents[0] = block;
    }
    bool Identified() {
        return Eventually([&] { return !link->Identity().modelString.empty(); });
    }
    /// The bytes written at a rate.
    Bytes WrittenAt(int baud) const {
        Bytes bytes;
        for (const ScriptedLine::Sent& sent : line->Log()) {
            if (sent.baud == baud) {
                bytes.insert(bytes.end(), sent.bytes.begin(), sent.bytes.end());
            }
        }
        return bytes;
    }
};

// Opening.

TEST_F(AnalyzerLinkTest, BeforeTheFirstOpenEveryRequestSucceedsAtOnce) {
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_THAT(line->Written(), IsEmpty());
}

TEST_F(AnalyzerLinkTest, NoPortShowsNoMessageAndTheModelIsThatOfAZeroBlock) {
    settings.WriteProfileString(setup, "ComPort", "<None>");
    link->Connect(Port());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_EQ(link->Identity().modelString, "-0");
    EXPECT_THAT(openedDevices, IsEmpty());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(AnalyzerLinkTest, InvalidPortNamesShowNoMessageEither) {
    for (const char* name : {"", "COM", "com1", "LPT1", "USB1", "usb", "XCOM1"}) {
        settings.WriteProfileString(setup, "ComPort", name);
        EXPECT_FALSE(link->Open(Port()));
        EXPECT_FALSE(link->IsDemoMode()) << name;
    }
    EXPECT_THAT(openedDevices, IsEmpty());
    EXPECT_THAT(usb.Calls(), IsEmpty());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnalyzerLinkTest, AfterABoardNoPortReadsTheZeroBlockAgain) {
    OpenBoard("PCIKite");
    settings.WriteProfileString(setup, "ComPort", "<None>");
    link->Connect(Port());
    EXPECT_EQ(link->Identity().modelString, "-0");
    EXPECT_EQ(link->Identity().modelId, ModelPciKite) << "an unknown name, so the id stays";
    EXPECT_EQ(line->OpenPorts(), 0);
}

TEST_F(AnalyzerLinkTest, AfterABoardNoPortHasTheBusOfAZeroBlock) {
    OpenBoard("PCIKite");
    board.contents[18] = {0x95, 66};
    BusConfig bus;
    link->ReadBusConfig(bus);
    ASSERT_EQ(bus, (BusConfig{1, 1, 1, 66, 1}));
    settings.WriteProfileString(setup, "ComPort", "<None>");
    link->Connect(Port());
    EXPECT_EQ(link->Traits().bus, BusConfig{});
}

TEST_F(AnalyzerLinkTest, APortHasADefaultDeviceASettingAndAnEnvironmentVariable) {
    portOpens = false;
    settings.WriteProfileString(setup, "ComPort", "COM3");
    static_cast<void>(link->Open(Port()));
    settings.WriteProfileString(setup, "ComDevice3", "/dev/pts/7");
    static_cast<void>(link->Open(Port()));
    ::setenv("BUSQUILL_COM3", "/tmp/board", 1);
    static_cast<void>(link->Open(Port()));
    ::unsetenv("BUSQUILL_COM3");
    settings.WriteProfileString(setup, "ComPort", "COMX");
    static_cast<void>(link->Open(Port()));
    EXPECT_THAT(openedDevices, ElementsAre("/dev/ttyS2", "/dev/pts/7", "/tmp/board", "COMX"));
}

TEST_F(AnalyzerLinkTest, AnUnknownPortNeedsNoSettingAndIsCalledByItsName) {
    const PortSetting port{PortSetting::Kind::Serial, "the left one", "/dev/pts/9", 9600};
    static_cast<void>(link->Open(port));
    EXPECT_THAT(openedDevices, ElementsAre("/dev/pts/9"));
    EXPECT_FALSE(link->IsDemoMode());
    line->SetErrors({.write = 5});
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(prompts.Texts().front(), "Error writing to the left one, err 5");
}

TEST_F(AnalyzerLinkTest, APortThatCannotBeOpenedLeadsToDemoMode) {
    portOpens = false;
    openError = EBUSY;
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(), ElementsAre(demoModeMessage));
    EXPECT_EQ(prompts.Boxes().front().hint,
              "The port COM1 (/dev/ttyS0) is in use by another program. The manual page "
              "\"Connecting a board\" tells more.\nUtilities/Board Setup connects again without a "
              "restart.");
    EXPECT_TRUE(prompts.Boxes().front().topmost);
    EXPECT_TRUE(link->IsDemoMode());
    const BoardIdentity identity = link->Identity();
    EXPECT_EQ(identity.modelString, "Demo Mode");
    EXPECT_EQ(identity.modelId, 1);
    EXPECT_EQ(identity.bufferSizeK, 0);
    EXPECT_EQ(identity.serialNumber, 0);
    EXPECT_EQ(identity.firmwareRevision, "");
    EXPECT_EQ(identity.hardwareRevision, "");
}

TEST_F(AnalyzerLinkTest, FailuresOfTheLineSettingsAreReportedAndIgnored) {
    line->SetErrors({.readConfiguration = 3, .configure = 4, .setTimeout = 5});
    EXPECT_TRUE(link->Open(Port())) << "the board answers at the supposed 9600 baud";
    // The read limit is set before the negotiation and after it.
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error reading COM1 configuration, err 3",
                                             "Error setting COM1 configuration, err 4",
                                             "Error setting COM1 timeouts, err 5",
                                             "Error setting COM1 timeouts, err 5"));
    for (const Box& box : prompts.Boxes()) {
        EXPECT_TRUE(box.topmost) << box.text;
    }
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

// Negotiation.

TEST_F(AnalyzerLinkTest, NegotiationProbesTheFiveRatesUpwards) {
    board.baud = 57600;
    EXPECT_FALSE(link->Open(Port())) << "the configured rate";
    EXPECT_THAT(line->Rates(), ElementsAre(57600, 9600, 19200, 28800, 38400, 57600));
    for (const int rate : {9600, 19200, 28800, 38400}) {
        EXPECT_EQ(WrittenAt(rate), (Bytes{0x0A, 0, 0x0A, 0, 0x0A, 0})) << rate;
    }
    EXPECT_EQ(WrittenAt(57600), (Bytes{0x0A, 0}));
}

TEST_F(AnalyzerLinkTest, OpenIsTrueWhenTheBoardAnswersAtAnotherRate) {
    board.baud = 19200;
    EXPECT_TRUE(link->Open(Port()));
    EXPECT_THAT(line->Rates(), ElementsAre(57600, 9600, 19200));
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace))) << "at the rate that was found";
}

TEST_F(AnalyzerLinkTest, AProbeWaitsATenthOfASecondForItsAnswer) {
    UseSilence();
    EXPECT_FALSE(link->Open(Port()));
    const auto log = line->Log();
    ASSERT_EQ(log.size(), 30U);
    for (std::size_t probe = 0; probe < log.size(); ++probe) {
        EXPECT_EQ(log[probe].time - log[0].time, static_cast<std::time_t>(probe / 10)) << probe;
    }
}

TEST_F(AnalyzerLinkTest, OpenIsFalseWhenNothingAnswers) {
    UseSilence();
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_EQ(line->Written().size(), 30U);
    EXPECT_FALSE(link->IsDemoMode()) << "the identity read decides that";
}

TEST_F(AnalyzerLinkTest, ABoardInTheMiddleOfAFrameIsRealigned) {
    static_cast<void>(board.Answer({4}, 0)); // half a frame has reached the board
    EXPECT_TRUE(link->Open(Port()));
    EXPECT_EQ(WrittenAt(9600), (Bytes{0x0A}));
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(AnalyzerLinkTest, OnlyASingleAcknowledgementIsAnAnswer) {
    line->SetAnswer([](const Bytes&, int baud) {
        return baud == 9600 ? Bytes{'*', '*'} : baud == 19200 ? Bytes{'?'} : Bytes{};
    });
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_EQ(line->Rates().size(), 6U);
}

// The connection sequence.

TEST_F(AnalyzerLinkTest, ConnectIdentifiesTheBoardAndReadsItsBus) {
    SetModel("PCIKite");
    board.baud = 57600;
    board.contents[18] = {0x95, 66};
    const auto begin = clock.Elapsed();
    link->Connect(Port());
    EXPECT_EQ(link->Identity().modelString, "PCIKite-0");
    EXPECT_EQ(link->Traits().bus, (BusConfig{1, 1, 1, 66, 1}));
    EXPECT_GE(clock.Elapsed() - begin, 2000ms);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_THAT(board.writes, IsEmpty());
}

TEST_F(AnalyzerLinkTest, TheBusIsReadTwoSecondsAfterTheIdentity) {
    settings.WriteProfileInt(setup, "BaudRate", 9600);
    line->SetClockRuns(false); // so that only pauses move it
    link->Connect(Port());
    const auto log = line->Log();
    const auto bus = std::ranges::find(log, Bytes{4, 18}, &ScriptedLine::Sent::bytes);
    ASSERT_NE(bus, log.end());
    ASSERT_EQ((bus - 1)->bytes, (Bytes{2, 1}));
    EXPECT_EQ(bus->time - (bus - 1)->time, 2);
}

TEST_F(AnalyzerLinkTest, ConnectMovesABoardThatAnsweredAtAnotherRate) {
    SetModel("PCIWren");
    board.baud = 9600;
    line->SetAnswer([this](const Bytes& sent, int baud) {
        Bytes answer = board.Answer(sent, baud);
        if (sent == Bytes{2, 29}) {
            board.baud = 19200; // after the acknowledgement at the old rate
        }
        return answer;
    });
    settings.WriteProfileInt(setup, "BaudRate", 19200);
    link->Connect(Port());
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{15, {1}}));
    EXPECT_EQ(line->Rates().back(), 19200);
    EXPECT_EQ(link->Identity().modelId, ModelPciWren);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(AnalyzerLinkTest, SetBaudRateSendsCodeAndFunctionAtTheOldRate) {
    OpenLink();
    const auto begin = clock.Elapsed();
    link->SetBaudRate(9600);
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 15}, Bytes{6, 0}, Bytes{8, 0}, Bytes{10, 1},
                                             Bytes{12, 0}, Bytes{2, 2}, Bytes{0}, Bytes{2, 29}));
    EXPECT_THAT(line->Rates(), ElementsAre(9600));
    EXPECT_GE(clock.Elapsed() - begin, 2000ms);
}

TEST_F(AnalyzerLinkTest, ARefusedRateIsReported) {
    OpenLink();
    line->SetErrors({.configure = 22});
    link->SetBaudRate(19200);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error setting new baud rate, err 22"));
    EXPECT_TRUE(prompts.Boxes().front().topmost);
    line->SetErrors({.readConfiguration = 7});
    link->SetBaudRate(19200);
    EXPECT_EQ(prompts.Texts().back(), "Error setting new baud rate, err 7");
}

TEST_F(AnalyzerLinkTest, SetBaudRateWithoutAPortDoesNothing) {
    const auto begin = clock.Elapsed();
    link->SetBaudRate(19200);
    EXPECT_EQ(clock.Elapsed(), begin);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

// 4000 bytes take 4584 ms at 9600 baud and 764 ms at 57600: limits of 7 and 3 seconds.
TEST_F(AnalyzerLinkTest, TheTimeOfAByteRemainsThatOfTheNegotiatedRate) {
    OpenLink();
    link->SetBaudRate(57600);
    line->ForgetLog();
    Bytes buffer(4000);
    line->SetAnswer([this](const Bytes& sent, int baud) {
        return sent == Bytes{2, 1} ? Bytes{} : board.Answer(sent, baud);
    });
    auto done = Start(ReadRegisters(0, buffer));
    ASSERT_TRUE(Eventually([&] { return line->Log().size() > 12; }));
    UseBoard();
    EXPECT_EQ(done.get().result, LinkOk);
    const auto log = line->Log();
    EXPECT_EQ(log[6].time - log[5].time, 8);
}

// Identity and Demo Mode.

TEST_F(AnalyzerLinkTest, ASilentBoardIsAskedTwiceForItsIdentityAndThenItIsDemoMode) {
    UseSilence();
    OpenLink();
    link->ReadIdentity();
    ASSERT_TRUE(Eventually([&] { return link->IsDemoMode(); }));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0}, Bytes{4, 0}));
    EXPECT_THAT(prompts.Texts(), ElementsAre(demoModeMessage));
    EXPECT_EQ(prompts.Boxes().front().hint,
              "No board answers on COM1 (/dev/ttyS0). Check its power and its "
              "cable.\nUtilities/Board Setup connects again without a restart.");
    EXPECT_TRUE(prompts.Boxes().front().topmost);
    EXPECT_EQ(link->Identity().modelString, "Demo Mode");
    EXPECT_TRUE(Eventually([&] { return line->OpenPorts() == 0; }));
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(line->Written().size(), 2U) << "no frame is sent in Demo Mode";
}

TEST_F(AnalyzerLinkTest, RequestsThatWaitWhenDemoModeBeginsFail) {
    OpenLink();
    line->SetClockRuns(false);
    UseSilence();
    link->ReadIdentity();
    auto waiting = Start(RunCommand(CmdStartTrace));
    line->SetClockRuns(true);
    EXPECT_EQ(waiting.get().result, LinkTransferFailed);
    EXPECT_TRUE(link->IsDemoMode());
    link->WaitIdle();
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace))) << "submitted in Demo Mode";
}

TEST_F(AnalyzerLinkTest, AFeaturesFailureNeverLeadsToDemoMode) {
    OpenBoard("PCIKite");
    UseSilence();
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_FALSE(link->IsDemoMode());
}

TEST_F(AnalyzerLinkTest, TheNumberOfTriesDependsOnTheLastLinkOperation) {
    OpenBoard("PCIKite");
    UseSilence();
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(line->Written().size(), 2U) << "the phase is still identification";
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->CommLost(); }));
    line->ForgetLog();
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(line->Written().size(), 5U);
}

TEST_F(AnalyzerLinkTest, NoIdentityIsReadInDemoMode) {
    portOpens = false;
    link->Connect(Port()); // requests it as always
    EXPECT_EQ(link->Identity().modelString, "Demo Mode");
    EXPECT_EQ(link->Identity().firmwareRevision, "");
}

// Observed by the number of tries, which depends on the last operation of the link.
TEST_F(AnalyzerLinkTest, TheBusConfigurationOfDemoModeIsNotAnOperationOfTheLink) {
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    link->ReadIdentity();
    link->WriteBusConfig({.busMode = BusVme});
    BusConfig bus;
    link->ReadBusConfig(bus);
    portOpens = true;
    OpenLink();
    UseSilence();
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_EQ(line->Written().size(), 2U) << "the phase is still identification";
}

TEST_F(AnalyzerLinkTest, OpenLeavesDemoMode) {
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    portOpens = true;
    static_cast<void>(link->Open(Port()));
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_THAT(board.functions, ElementsAre(11));
}

TEST_F(AnalyzerLinkTest, OpenAfterDemoModeBeganOnTheLinksThreadWorks) {
    UseSilence();
    OpenLink();
    link->ReadIdentity();
    ASSERT_TRUE(Eventually([&] { return link->IsDemoMode(); }));
    UseBoard();
    link->Connect(Port());
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_EQ(line->OpenPorts(), 1);
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(AnalyzerLinkTest, OpenReplacesAnOpenPort) {
    OpenLink();
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
    for (int i = 0; i < 3; ++i) {
        static_cast<void>(link->Open(Port()));
        EXPECT_EQ(line->OpenPorts(), 1);
        EXPECT_TRUE(link->Exchange(RunCommand(CmdStopTrace)));
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnalyzerLinkTest, ARequestThatRunsWhileThePortIsReopenedContinuesThere) {
    OpenLink();
    line->SetClockRuns(false);
    UseSilence();
    auto running = Start(RunCommand(CmdStartTrace));
    auto waiting = Start(RunCommand(CmdStopTrace));
    UseBoard();
    line->SetClockRuns(true);
    static_cast<void>(link->Open(Port()));
    EXPECT_EQ(running.get().result, LinkOk);
    EXPECT_EQ(waiting.get().result, LinkOk);
}

TEST_F(AnalyzerLinkTest, ARequestOfAnotherThreadWaitsWhileThePortIsOpenedAgain) {
    OpenLink();
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    std::array<std::uint8_t, 9> live{};
    std::future<LinkRequest> read;
    whenPortOpens = [&] { std::thread([&] { read = Start(ReadRegisters(425, live)); }).join(); };
    static_cast<void>(link->Open(Port()));
    EXPECT_EQ(read.get().result, LinkOk);
    EXPECT_EQ(live[0], 0xB2);
}

TEST_F(AnalyzerLinkTest, ARequestOfAnotherThreadFailsIfThePortDoesNotOpenAgain) {
    OpenLink();
    portOpens = false;
    std::array<std::uint8_t, 9> live{};
    std::future<LinkRequest> read;
    const auto readElsewhere = [&] {
        std::thread([&] { read = Start(ReadRegisters(425, live)); }).join();
    };
    whenPortOpens = readElsewhere;
    static_cast<void>(link->Open(Port()));
    EXPECT_EQ(read.get().result, LinkTransferFailed);
    ASSERT_TRUE(link->IsDemoMode());
    readElsewhere();
    EXPECT_EQ(read.get().result, LinkOk);
}

/// An unanswered read, and another that waits for it, when the link leaves the port.
class LeavingTest : public AnalyzerLinkTest {
protected:
    void SetUp() override {
        OpenLink();
        line->SetClockRuns(false);
        UseSilence();
        onTheWire = Start(ReadRegisters(0, {&byte, 1}));
        waiting = Start(ReadRegisters(0, {&byte, 1}));
    }
    void ExpectFailed() {
        EXPECT_EQ(onTheWire.get().result, LinkTransferFailed);
        EXPECT_EQ(waiting.get().result, LinkTransferFailed);
        EXPECT_EQ(line->OpenPorts(), 0);
    }
    std::uint8_t byte = 0x77;
    std::future<LinkRequest> onTheWire;
    std::future<LinkRequest> waiting;
};

TEST_F(LeavingTest, ForNoPortFailsAllRequests) {
    settings.WriteProfileString(setup, "ComPort", "<None>");
    static_cast<void>(link->Open(Port()));
    ExpectFailed();
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace))) << "submitted with no port";
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(LeavingTest, ForAPortThatDoesNotOpenFailsAllRequests) {
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ExpectFailed();
    EXPECT_TRUE(link->IsDemoMode());
}

TEST_F(LeavingTest, ByClosingFailsAllRequests) {
    link->Close();
    ExpectFailed();
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace))) << "submitted with no port";
    link->Close();
    static_cast<void>(link->Open(Port()));
    EXPECT_EQ(line->OpenPorts(), 1);
}

TEST_F(AnalyzerLinkTest, AnIdentityThatIsPendingWhenTheLinkLeavesDoesNotLeadToDemoMode) {
    OpenLink();
    line->SetClockRuns(false);
    UseSilence();
    link->ReadIdentity();
    settings.WriteProfileString(setup, "ComPort", "<None>");
    static_cast<void>(link->Open(Port()));
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_EQ(link->Identity().modelString, "");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnalyzerLinkTest, ABusThatIsPendingWhenTheLinkLeavesIsNotReported) {
    OpenLink();
    line->SetClockRuns(false);
    UseSilence();
    BusConfig bus;
    link->ReadBusConfig(bus); // gets no answer
    settings.WriteProfileString(setup, "ComPort", "<None>");
    static_cast<void>(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnalyzerLinkTest, ALiveStatusThatIsPendingWhenTheLinkLeavesIsLost) {
    OpenLink();
    line->SetClockRuns(false);
    UseSilence();
    link->PollLiveStatus();
    link->Close();
    EXPECT_TRUE(link->CommLost());
}

// Shutting down.

TEST_F(AnalyzerLinkTest, AnExchangeEndsWhenTheProgramShutsDown) {
    OpenLink();
    // The board acknowledges the first frame of the command and no other.
    line->SetAnswer([](const Bytes& sent, int) {
        return sent == Bytes{4, 15} ? Bytes{'*'} : Bytes{};
    });
    std::chrono::milliseconds longest{0};
    link->SetGiveUp([&](std::chrono::milliseconds waited) {
        EXPECT_GE(waited, longest);
        longest = waited;
        return waited >= 500ms;
    });
    std::uint8_t byte = 0;
    EXPECT_FALSE(link->Exchange(ReadRegisters(15, {&byte, 1})));
    EXPECT_GE(longest, 500ms);
    EXPECT_LT(longest, 5s);
    EXPECT_EQ(line->OpenPorts(), 0);
    UseBoard();
    OpenLink();
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace))) << "after another Open";
}

// Identity.

TEST_F(AnalyzerLinkTest, TheBoardIsIdentifiedUntilTheNextOpen) {
    OpenLink();
    EXPECT_FALSE(link->IsIdentified());
    OpenBoard("PCIKite");
    EXPECT_TRUE(link->IsIdentified());
    static_cast<void>(link->Open(Port()));
    EXPECT_FALSE(link->IsIdentified()) << "it may be another board";
}

TEST_F(AnalyzerLinkTest, AnIdentityThatArrivesTooLateIsIgnored) {
    SetModel("PCIKite");
    line->SetClockRuns(false);
    Bytes owed;
    line->SetAnswer([&, held = false](const Bytes& sent, int baud) mutable {
        Bytes answer = board.Answer(sent, baud);
        if (sent == Bytes{2, 1} && !held) {
            held = true;
            owed.swap(answer);
        }
        return answer;
    });
    const auto begin = clock.Elapsed();
    std::thread late([&] {
        // The board settles, and then the link waits for the bus.
        static_cast<void>(Eventually([&] { return clock.Elapsed() - begin >= 2000ms; }));
        std::this_thread::sleep_for(300ms);
        line->Arrive(owed);
    });
    link->Connect(Port());
    late.join();
    EXPECT_FALSE(link->IsIdentified());
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("The analyzer has not told what it is. Check its connections and "
                            "accept the\nUtilities/Board Setup dialog to connect again."));
}

TEST_F(AnalyzerLinkTest, UnreadBytesAreNotTakenAsAnAnswerToTheProbe) {
    settings.WriteProfileInt(setup, "BaudRate", 9600);
    line->Arrive({'*'});
    static_cast<void>(link->Open(Port()));
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartSearch)));
    EXPECT_THAT(board.functions, ElementsAre(13));
}

TEST_F(AnalyzerLinkTest, ACompletionThatOutlivesItsPortDoesNotAffectTheNextOne) {
    OpenLink();
    HeldCompletion held;
    UseSilence();
    line->SetClockRuns(false);
    link->Submit(held.Request(CmdStartTrace));
    auto second = Start(RunCommand(CmdStopTrace)); // waits for the first
    line->Arrive({'*'});
    held.AwaitStart();
    UseBoard();
    line->SetClockRuns(true);
    static_cast<void>(link->Open(Port())); // the old thread cannot end
    EXPECT_EQ(line->OpenPorts(), 1) << "the old port is closed even so";
    EXPECT_EQ(second.get().result, LinkOk);
    held.Release();
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartSearch)));
    EXPECT_THAT(board.functions, ElementsAre(12, 13)) << "the second went out once";
}

TEST_F(AnalyzerLinkTest, WaitIdleWaitsForTheLastCompletionToo) {
    OpenLink();
    HeldCompletion held;
    link->Submit(held.Request(CmdStartTrace));
    held.AwaitStart();
    std::thread releaser([&] {
        std::this_thread::sleep_for(50ms);
        held.Release();
    });
    link->WaitIdle();
    EXPECT_TRUE(held.Released());
    releaser.join();
}

TEST_F(AnalyzerLinkTest, TheDestructorClosesThePort) {
    OpenLink();
    EXPECT_EQ(line->OpenPorts(), 1);
    analyzer.reset();
    EXPECT_EQ(line->OpenPorts(), 0);
}

// Requests with no port.

TEST_F(AnalyzerLinkTest, WithNoPortTheCompletionRunsBeforeSubmitReturns) {
    std::uint8_t reply = 0x77;
    auto done = Start(ReadRegisters(0, {&reply, 1}));
    ASSERT_EQ(done.wait_for(0s), std::future_status::ready);
    EXPECT_EQ(done.get().result, LinkOk);
    EXPECT_EQ(reply, 0x77) << "no data are written";
}

TEST_F(AnalyzerLinkTest, EveryCommandSucceedsWithNoPort) {
    for (std::int32_t command = 0; command <= 53; ++command) {
        EXPECT_TRUE(link->Exchange(NewRequest(command))) << command;
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnalyzerLinkTest, ALongChainOfCompletionsDoesNotGrowTheStack) {
    struct Chain {
        CAnalyzerLink& link;
        int left;
        std::uintptr_t lowest;
        std::uintptr_t highest;
        void Next() {
            const int onStack = 0;
            const auto here = reinterpret_cast<std::uintptr_t>(&onStack);
            lowest = std::min(lowest, here);
            highest = std::max(highest, here);
            if (--left > 0) {
                Submit();
            }
        }
        void Submit() {
            link.Submit(NewRequest(CmdDownloadRecord, [this](const LinkRequestPtr&) { Next(); }));
        }
    } chain{*link, 100000, UINTPTR_MAX, 0};
    chain.Submit();
    EXPECT_EQ(chain.left, 0) << "the whole chain has run when the first Submit returns";
    EXPECT_EQ(chain.lowest, chain.highest);
}

TEST_F(AnalyzerLinkTest, AnExchangeInsideACompletionWithNoPortEnds) {
    std::vector<int> order;
    link->Submit(NewRequest(CmdStartTrace, [&](const LinkRequestPtr&) {
        link->Submit(NewRequest(CmdStopTrace, [&](const LinkRequestPtr&) { order.push_back(1); }));
        EXPECT_TRUE(link->Exchange(RunCommand(CmdStartSearch)));
        order.push_back(2);
    }));
    EXPECT_THAT(order, ElementsAre(1, 2));
}

// Bus configuration.

TEST_F(AnalyzerLinkTest, ReadBusConfigReadsTwoBytesAtRegister18) {
    OpenBoard("VMEKite");
    board.contents[18] = {0x83, 16};
    BusConfig bus;
    link->ReadBusConfig(bus);
    EXPECT_EQ(bus, (BusConfig{2, 0, 0, 16, 1}));
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 18}, Bytes{6, 0}, Bytes{8, 0}, Bytes{10, 2},
                                             Bytes{12, 0}, Bytes{2, 1}));
}

TEST_F(AnalyzerLinkTest, WriteBusConfigSendsTwoBytesToRegister18) {
    OpenBoard("PCIKite");
    link->WriteBusConfig({1, 1, 0, 133, 1});
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{18, {0x85, 133}}));
    EXPECT_EQ(link->Traits().bus, (BusConfig{1, 1, 0, 133, 1}));
}

TEST_F(AnalyzerLinkTest, ABusConfigRecordIsEncodedFromItsData) {
    OpenLink();
    const BusConfig bus{4, 0, 1, 300, 0};
    EXPECT_TRUE(link->Exchange(WritePayload(CmdSetBusConfig, [&] {
        const auto block = EncodeBusConfig(bus);
        return Bytes(block.begin(), block.end());
    })));
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{18, {0x12, 44}}));
}

TEST_F(AnalyzerLinkTest, AFailedBusReadOrWriteIsReportedAndTheFieldsStay) {
    OpenBoard("PCIKite");
    link->WriteBusConfig({1, 1, 0, 133, 0});
    UseSilence();
    BusConfig bus;
    link->ReadBusConfig(bus);
    ASSERT_TRUE(Eventually([&] { return prompts.Boxes().size() == 1; }));
    link->WriteBusConfig({0, 0, 0, 33, 0});
    ASSERT_TRUE(Eventually([&] { return prompts.Boxes().size() == 2; }));
    EXPECT_THAT(prompts.Texts(), ElementsAre(communicationsError, communicationsError));
    EXPECT_TRUE(prompts.Boxes().front().topmost);
    EXPECT_EQ(bus, (BusConfig{1, 1, 0, 133, 0}));
    EXPECT_FALSE(link->IsDemoMode());
}

TEST_F(AnalyzerLinkTest, AFailedChangeOfRateIsReported) {
    OpenLink();
    UseSilence();
    link->SetBaudRate(19200);
    ASSERT_TRUE(Eventually([&] { return !prompts.Boxes().empty(); }));
    EXPECT_THAT(prompts.Texts(), ElementsAre(communicationsError));
}

TEST_F(AnalyzerLinkTest, InDemoModeTheBusConfigIsTheLastOneWrittenAndDecidesTheFamily) {
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    int changes = 0;
    link->SetFamilyListener([&] { ++changes; });
    EXPECT_FALSE(link->Traits().IsVmeFamily());
    link->WriteBusConfig({.busMode = BusVme});
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(link->Traits().IsVmeFamily());
    BusConfig bus;
    link->ReadBusConfig(bus);
    EXPECT_EQ(bus, (BusConfig{.busMode = BusVme}));
}

TEST_F(AnalyzerLinkTest, WithABoardTheFamilyListenerIsNotCalled) {
    OpenBoard("PCIKite");
    int changes = 0;
    link->SetFamilyListener([&] { ++changes; });
    link->WriteBusConfig({.busMode = BusPciX});
    EXPECT_EQ(changes, 0);
}

TEST_F(AnalyzerLinkTest, ASavedBusConfigIsCorrectedByTheModelAndClearsTheMasterLock) {
    OpenBoard("VMEKite");
    board.contents[18] = {0x80, 0};
    BusConfig bus;
    link->ReadBusConfig(bus);
    ASSERT_EQ(bus.masterLock, 1);
    settings.WriteProfileInt(setup, "SaveBusConfig", 1);
    settings.WriteProfileInt(setup, "BusMode", 1);
    settings.WriteProfileInt(setup, "BusWidth", 1);
    settings.WriteProfileInt(setup, "BusVoltage", 1);
    settings.WriteProfileInt(setup, "BusFrequency", 40);
    link->LoadBusConfig();
    EXPECT_EQ(link->Traits().bus, (BusConfig{2, 1, 1, 40, 0}));
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{18, {0x14, 40}}));
}

TEST_F(AnalyzerLinkTest, ASavedBusConfigHasZerosForMissingEntries) {
    OpenBoard("PCIKite");
    settings.WriteProfileInt(setup, "SaveBusConfig", 1);
    link->LoadBusConfig();
    EXPECT_THAT(board.writes, ElementsAre(WireBoard::Write{18, {0, 0}}));
}

// Live status.

TEST_F(AnalyzerLinkTest, TheLiveStatusIsNineBytesAtRegister425) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    link->PollLiveStatus();
    link->WaitIdle();
    ASSERT_TRUE(Eventually([&] { return link->GetEventOccurrences() == 0x0807; }));
    std::int32_t before = 0;
    std::int32_t after = 0;
    EXPECT_EQ(link->GetLiveStatus(before, after), 0xB2);
    EXPECT_EQ(before, 0x030201);
    EXPECT_EQ(after, 0x060504);
    EXPECT_THAT(line->Written(), ElementsAre(Bytes{4, 0xA9}, Bytes{6, 1}, Bytes{8, 0}, Bytes{10, 9},
                                             Bytes{12, 0}, Bytes{2, 1}));
}

TEST_F(AnalyzerLinkTest, AStatusThatIsPendingWhenThePortIsOpenedAgainArrives) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    line->SetClockRuns(false);
    UseSilence();
    link->PollLiveStatus();
    static_cast<void>(link->Open(Port()));
    link->ReadIdentity();
    EXPECT_FALSE(link->IsIdentified());
    UseBoard();
    line->SetClockRuns(true); // both are sent again
    ASSERT_TRUE(Eventually([&] { return link->IsIdentified(); }));
    std::int32_t before = 0;
    std::int32_t after = 0;
    EXPECT_EQ(link->GetLiveStatus(before, after), 0xB2);
}

TEST_F(AnalyzerLinkTest, APollDoesNotTakeTheIdentityForItsReply) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    static_cast<void>(link->Open(Port()));
    line->SetClockRuns(false);
    UseSilence();
    link->ReadIdentity();
    link->PollLiveStatus();
    UseBoard();
    line->SetClockRuns(true);
    ASSERT_TRUE(Eventually([&] { return link->GetEventOccurrences() == 0x0807; }));
    EXPECT_TRUE(link->IsIdentified());
}

TEST_F(AnalyzerLinkTest, ClearingTheLiveStatusLeavesTheOccurrences) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->GetEventOccurrences() == 0x0807; }));
    link->ClearLiveStatus();
    std::int32_t before = 1;
    std::int32_t after = 1;
    EXPECT_EQ(link->GetLiveStatus(before, after), 0);
    EXPECT_EQ(before, 0);
    EXPECT_EQ(after, 0);
    EXPECT_EQ(link->GetEventOccurrences(), 0x0807);
}

TEST_F(AnalyzerLinkTest, ALostLiveStatusIsAFlagAndZerosWithoutAMessage) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->GetEventOccurrences() == 0x0807; }));
    UseSilence();
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->CommLost(); }));
    std::int32_t before = 1;
    std::int32_t after = 1;
    EXPECT_EQ(link->GetLiveStatus(before, after), 0);
    EXPECT_EQ(before, 0);
    EXPECT_EQ(after, 0);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    UseBoard();
    link->PollLiveStatus();
    EXPECT_FALSE(link->CommLost()) << "cleared when the next read is issued";
}

TEST_F(AnalyzerLinkTest, ClearingTheLiveStatusForgetsThatTheBoardWasLost) {
    OpenBoard("PCIKite");
    UseSilence();
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->CommLost(); }));
    link->ClearLiveStatus();
    EXPECT_FALSE(link->CommLost());
}

TEST_F(AnalyzerLinkTest, TheFallIntoDemoModeClearsTheLiveStatus) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->GetEventOccurrences() == 0x0807; }));
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    std::int32_t before = 1;
    std::int32_t after = 1;
    EXPECT_EQ(link->GetLiveStatus(before, after), 0);
    EXPECT_EQ(before, 0);
    EXPECT_EQ(after, 0);
    EXPECT_EQ(link->GetEventOccurrences(), 0);
}

TEST_F(AnalyzerLinkTest, InDemoModeTheLiveStatusReadsAsZero) {
    OpenBoard("PCIKite");
    board.contents[425] = {0xB2, 1, 2, 3, 4, 5, 6, 7, 8};
    link->PollLiveStatus();
    ASSERT_TRUE(Eventually([&] { return link->GetEventOccurrences() == 0x0807; }));
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    ASSERT_TRUE(link->IsDemoMode());
    link->PollLiveStatus();
    std::int32_t before = 1;
    std::int32_t after = 1;
    EXPECT_EQ(link->GetLiveStatus(before, after), 0);
    EXPECT_EQ(before, 0);
    EXPECT_EQ(after, 0);
    EXPECT_EQ(link->GetEventOccurrences(), 0);
}

TEST_F(AnalyzerLinkTest, ASerialPortNeedsNoKeepAlive) {
    OpenLink();
    link->SendKeepAlive();
    link->WaitIdle();
    EXPECT_THAT(line->Written(), IsEmpty());
}

} // namespace
} // namespace busquill::test
