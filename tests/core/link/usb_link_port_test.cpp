#include "link/link_port.h"
#include "support/link_fixture.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string openFailed = "Error opening usb device, path usb-path";
const std::string selectFailed = "Error from DeviceIoControl - IOCTL_ADAPT_SELECT_INTERFACE";
const std::string resetFailed = "Error from DeviceIoControl - IOCTL_ADAPT_RESET_PIPE";
const std::string transferFailed = "Error from DeviceIoControl - IOCTL_ADAPT_SEND_NON_EP0_DIRECT";

class UsbLinkTest : public LinkFixture {
protected:
    UsbLinkTest() { settings.WriteProfileString(setup, "ComPort", "USB"); }
};

TEST_F(UsbLinkTest, OpensTheDeviceInOrder) {
    settings.WriteProfileString(setup, "UsbDevice", "04b4:1002");
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(usb.Calls(),
                ElementsAre("find 04b4:1002", "open usb-path", "select", "reset 2", "reset 130"));
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(UsbLinkTest, TheSecondNameIsTheSamePortAndUsbIsTheDefault) {
    settings.WriteProfileString(setup, "ComPort", "USB2");
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_EQ(usb.OpenDevices(), 1);
    MemorySettings empty;
    CAnalyzerLink second({empty, prompts, clock, mainThread,
                          [](const std::string&) { return std::unique_ptr<SerialPort>(); }, usb});
    EXPECT_FALSE(second.Open(ReadPortSetting(empty)));
    EXPECT_EQ(usb.OpenDevices(), 2);
}

TEST_F(UsbLinkTest, TheRateOfAnEarlierSerialLineIsForgotten) {
    settings.WriteProfileString(setup, "ComPort", "COM1");
    board.baud = 19200;
    EXPECT_TRUE(link->Open(Port())) << "although the configured rate differs";
    settings.WriteProfileString(setup, "ComPort", "USB");
    EXPECT_FALSE(link->Open(Port()));
}

TEST_F(UsbLinkTest, WithoutADeviceItIsDemoMode) {
    usb.Set({.search = {UsbSearch::Outcome::NotFound, 0, ""}});
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(), ElementsAre(demoModeMessage));
    EXPECT_EQ(prompts.Boxes().front().hint,
              "No board is ready on USB.\nUtilities/Board Setup connects again without a restart.");
    EXPECT_TRUE(link->IsDemoMode());
    EXPECT_THAT(usb.Calls(), ElementsAre("find "));
}

TEST_F(UsbLinkTest, AFailedDetailIsReportedBeforeDemoMode) {
    usb.Set({.search = {UsbSearch::Outcome::DetailFailed, 87, ""}});
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error from SetupDiGetInterfaceDeviceDetail, err 87", demoModeMessage));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_TRUE(prompts.Boxes()[1].topmost);
    EXPECT_TRUE(link->IsDemoMode());
}

TEST_F(UsbLinkTest, AfterAFailedOpenTheOtherStepsStillRunAndReport) {
    usb.Set({.opens = false});
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(), ElementsAre(openFailed, demoModeMessage, selectFailed,
                                             demoModeMessage, resetFailed, resetFailed));
    EXPECT_THAT(prompts.Boxes()[0].hint, HasSubstr("permission"));
    EXPECT_TRUE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(UsbLinkTest, AFailedSelectionClosesTheDeviceAndBothResetsReport) {
    usb.Set({.selects = false});
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre(selectFailed, demoModeMessage, resetFailed, resetFailed));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_FALSE(prompts.Boxes()[2].topmost);
    EXPECT_EQ(usb.OpenDevices(), 0);
    EXPECT_TRUE(link->IsDemoMode());
}

TEST_F(UsbLinkTest, AFailedResetIsReportedAndIgnored) {
    usb.Set({.resets = false});
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_THAT(prompts.Texts(), ElementsAre(resetFailed, resetFailed));
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(UsbLinkTest, OpenWorksAfterAFailedOpenWhoseReaderWaits) {
    usb.Set({.opens = false});
    EXPECT_FALSE(link->Open(Port()));
    usb.Set({});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
    EXPECT_FALSE(link->IsDemoMode());
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(UsbLinkTest, OpenReplacesAnOpenDevice) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(link->Open(Port()));
        EXPECT_EQ(usb.OpenDevices(), 1);
        EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
    }
}

TEST_F(UsbLinkTest, DataArriveAloneAndFramesAreNotAcknowledged) {
    OpenUsbLink();
    usb.WithBoard([](WireBoard& far) { far.contents[0x30] = {7, 8, 9}; });
    Bytes buffer(3);
    const LinkRequest done = Run(ReadRegisters(0x30, buffer));
    EXPECT_EQ(done.result, LinkOk);
    EXPECT_EQ(done.replyLength, 5);
    EXPECT_EQ(done.bytesSeen, 0) << "counted on a serial port only";
    EXPECT_EQ(buffer, (Bytes{7, 8, 9}));
    EXPECT_THAT(usb.Calls(),
                ElementsAre("write 2: 4 48", "write 2: 6 0", "write 2: 8 0", "write 2: 10 3",
                            "write 2: 12 0", "write 2: 2 1", "read 130: 3"));
}

// On USB nothing else writes the counters of a serial port.
TEST_F(UsbLinkTest, ARequestIsPreparedWithoutTheCountersOfAnEarlierTry) {
    OpenUsbLink();
    LinkRequestPtr request = RunCommand(CmdStartTrace);
    request->state = 7;
    request->retries = 4;
    request->replyLength = 9;
    request->bytesSeen = 3;
    request->result = LinkTimeout;
    request->commErrors = 0x1A;
    request->ringReadAtFail = 5;
    request->ringWriteAtFail = 6;
    request->firstByte = '?';
    request->lastByte = '!';
    const LinkRequest sent = Run(std::move(request));
    EXPECT_EQ(sent.result, LinkOk);
    EXPECT_EQ(sent.bytesSeen, 0);
    EXPECT_EQ(sent.commErrors, 0U);
    EXPECT_EQ(sent.ringReadAtFail, 0);
    EXPECT_EQ(sent.firstByte, 0);
    EXPECT_EQ(sent.lastByte, 0);
    EXPECT_EQ(sent.retries, 4) << "of the command, not of one try";
    EXPECT_EQ(sent.ringWriteAtFail, 6);
    EXPECT_THAT(usb.Calls(), ElementsAre("write 2: 2 11"));
}

TEST_F(UsbLinkTest, AnUnknownCommandIsPreparedWithoutAReply) {
    OpenUsbLink();
    LinkRequestPtr request = NewRequest(99);
    request->replyLength = 9;
    link->Submit(std::move(request));
    link->WaitIdle();
    EXPECT_THAT(usb.Calls(), IsEmpty()) << "nothing is read";
}

TEST_F(UsbLinkTest, APayloadGoesOutOnTheOutputPipe) {
    OpenUsbLink();
    EXPECT_TRUE(link->Exchange(WritePayload(CmdMasterControl, OneByte(0x81))));
    EXPECT_THAT(usb.WithBoard([](WireBoard& far) { return far.writes; }),
                ElementsAre(WireBoard::Write{800, {0x81}}));
}

TEST_F(UsbLinkTest, AReadOfNoBytesEnds) {
    OpenUsbLink();
    EXPECT_TRUE(link->Exchange(ReadRegisters(1, {})));
}

TEST_F(UsbLinkTest, AFailedWriteIsNotRetried) {
    OpenUsbLink();
    usb.Set({.writes = false});
    const LinkRequest done = Run(RunCommand(CmdStartTrace));
    EXPECT_EQ(done.result, LinkTransferFailed);
    EXPECT_FALSE(link->IsBoardGone());
    EXPECT_THAT(usb.Calls(), ElementsAre("write 2: 2 11"));
    EXPECT_THAT(prompts.Texts(), ElementsAre(transferFailed));
    EXPECT_FALSE(prompts.Boxes().front().topmost);
    usb.Set({});
    EXPECT_TRUE(link->Exchange(RunCommand(CmdStartTrace)));
}

TEST_F(UsbLinkTest, AFailedReadShowsTwoBoxesAndIsNotRetried) {
    OpenUsbLink();
    usb.Set({.read = UsbDevice::Transfer{false, 31, 0}});
    Bytes buffer(3);
    const LinkRequest done = Run(ReadRegisters(0, buffer));
    EXPECT_EQ(done.result, LinkTransferFailed);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre(transferFailed, "Error reading from usb port, err 31"));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_FALSE(prompts.Boxes()[1].topmost);
    EXPECT_EQ(std::ranges::count(usb.Calls(), "read 130: 3"), 1);
}

TEST_F(UsbLinkTest, ABoardThatIsLostWhileItIsReadIsReportedOnce) {
    OpenUsbLink();
    usb.Set({.read = UsbDevice::Transfer{.ok = false, .error = 31, .gone = true}});
    Bytes buffer(3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(link->Exchange(ReadRegisters(0, buffer)));
    }
    EXPECT_TRUE(link->IsBoardGone());
    EXPECT_THAT(prompts.Texts(),
                ElementsAre(transferFailed, "Error reading from usb port, err 31"));
}

TEST_F(UsbLinkTest, AShortReadIsReportedWithItsCounts) {
    OpenUsbLink();
    usb.Set({.read = UsbDevice::Transfer{true, 0, 2}});
    Bytes buffer(3);
    const LinkRequest done = Run(ReadRegisters(0, buffer));
    EXPECT_EQ(done.result, LinkTransferFailed);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error reading from usb port, read 2 expected 3"));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
}

TEST_F(UsbLinkTest, AReadLargerThanTheRingFailsWithoutATransfer) {
    OpenUsbLink();
    Bytes samples(std::size_t{10000} * 18);
    const LinkRequest done = Run(ReadSamples(CmdReadSamplesAfter, 0, samples));
    EXPECT_EQ(done.result, LinkTransferFailed);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error reading from usb port, read 0 expected 180000"));
}

TEST_F(UsbLinkTest, AnUnknownCommandEndsInABadState) {
    OpenUsbLink();
    EXPECT_EQ(Run(NewRequest(99)).result, LinkBadState);
    EXPECT_EQ(prompts.Texts().size(), 5U);
}

TEST_F(UsbLinkTest, AFailedIdentityReadLeadsToDemoMode) {
    OpenUsbLink();
    usb.Set({.writes = false});
    link->ReadIdentity();
    ASSERT_TRUE(Eventually([&] { return link->IsDemoMode(); }));
    EXPECT_THAT(prompts.Texts(), ElementsAre(transferFailed, demoModeMessage));
    EXPECT_TRUE(Eventually([&] { return usb.OpenDevices() == 0; }));
}

TEST_F(UsbLinkTest, ConnectReadsIdentityAndBus) {
    usb.WithBoard([](WireBoard& far) {
        far.contents[0] = {'V', 'S', 'B', 'K', 'i', 't', 'e', ' ', 1};
        far.contents[18] = {0, 5};
    });
    link->Connect(Port());
    EXPECT_EQ(link->Identity().modelString, "VSBKite-1");
    EXPECT_EQ(link->Traits().bus, (BusConfig{BusVsb, 0, 0, 5, 0}));
}

TEST_F(UsbLinkTest, ThereIsNoRateToChange) {
    OpenUsbLink();
    link->SetBaudRate(19200);
    EXPECT_THAT(usb.WithBoard([](WireBoard& far) { return far.writes; }),
                ElementsAre(WireBoard::Write{15, {1}}));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error setting new baud rate, err 25"));
}

TEST_F(UsbLinkTest, AKeepAliveIsOneFrame) {
    OpenUsbLink();
    link->SendKeepAlive();
    link->WaitIdle();
    EXPECT_THAT(usb.Calls(), ElementsAre("write 2: 4 0"));
}

TEST_F(UsbLinkTest, ALostBoardIsReportedOnceAndKeptAliveNoMore) {
    OpenUsbLink();
    usb.Set({.present = false});
    link->SendKeepAlive();
    link->WaitIdle();
    EXPECT_TRUE(link->IsBoardGone());
    EXPECT_THAT(prompts.Texts(), ElementsAre(transferFailed));
    link->SendKeepAlive();
    link->WaitIdle();
    EXPECT_EQ(prompts.Texts().size(), 1U);
    EXPECT_EQ(usb.Calls().size(), 1U);
    std::array<std::uint8_t, 4> bytes{};
    EXPECT_FALSE(link->Exchange(RunCommand(CmdStartTrace)));
    EXPECT_FALSE(link->Exchange(ReadRegisters(RegisterStatusBlock, bytes)));
    EXPECT_EQ(prompts.Texts().size(), 1U) << "what is asked of the board reports its own failure";
    usb.Set({});
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_FALSE(link->IsBoardGone());
    usb.ForgetCalls();
    link->SendKeepAlive();
    link->WaitIdle();
    EXPECT_THAT(usb.Calls(), ElementsAre("write 2: 4 0"));
}

TEST_F(UsbLinkTest, NoKeepAliveIsSentInDemoMode) {
    usb.Set({.opens = false});
    EXPECT_FALSE(link->Open(Port()));
    usb.ForgetCalls();
    link->SendKeepAlive();
    EXPECT_THAT(usb.Calls(), IsEmpty());
}

TEST_F(UsbLinkTest, RawBytesAreATransferThatReportsItsFailure) {
    OpenUsbLink();
    link->SendRaw(Bytes{1, 2, 3});
    EXPECT_THAT(usb.Calls(), ElementsAre("write 2: 1 2 3"));
    usb.Set({.writes = false});
    link->SendRaw(Bytes{4});
    EXPECT_THAT(prompts.Texts(), ElementsAre(transferFailed));
}

TEST_F(UsbLinkTest, ARequestThatWaitsWhileTheDeviceIsReopenedContinuesThere) {
    OpenUsbLink();
    HeldCompletion held;
    link->Submit(held.Request(CmdStartTrace));
    auto second = Start(RunCommand(CmdStopTrace));
    held.AwaitStart();
    EXPECT_FALSE(link->Open(Port()));
    EXPECT_EQ(second.get().result, LinkOk);
    held.Release();
}

TEST(UsbLinkPortTest, ASendThatHasToReopenFailsAndTheNextIsSent) {
    ScriptedUsb usb;
    RecordingPrompts prompts;
    UsbLinkPort port(usb, "", prompts, UsbLinkPort::Device::ReopenAtSend);
    EXPECT_TRUE(port.IsOpen());
    const Bytes frame{2, 11};
    EXPECT_FALSE(port.Send(frame));
    EXPECT_THAT(usb.Calls(),
                ElementsAre("find ", "open usb-path", "select", "reset 2", "reset 130"));
    EXPECT_THAT(prompts.Texts(), ElementsAre(transferFailed));
    EXPECT_EQ(port.State(), UsbLinkPort::Device::Open);
    EXPECT_TRUE(port.Send(frame));
    EXPECT_EQ(usb.Calls().back(), "write 2: 2 11");
}

TEST(UsbLinkPortTest, AReopenThatFindsNoDeviceIsTriedAgain) {
    ScriptedUsb usb;
    usb.Set({.search = {UsbSearch::Outcome::NotFound, 0, ""}});
    RecordingPrompts prompts;
    UsbLinkPort port(usb, "", prompts, UsbLinkPort::Device::ReopenAtSend);
    EXPECT_FALSE(port.Send(Bytes{2, 11}));
    EXPECT_EQ(port.State(), UsbLinkPort::Device::ReopenAtSend);
    EXPECT_THAT(prompts.Texts(), ElementsAre(transferFailed)) << "Demo Mode is not mentioned";
}

} // namespace
} // namespace busquill::test
