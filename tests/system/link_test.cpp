// The link and the simulated board on the two ends of a real pseudo terminal.

#include "support/wire_fixture.h"

#include <gtest/gtest.h>

#include <thread>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;

TEST_F(LinkOverWire, FindsTheBoardAndReadsItsIdentity) {
    StartBoard({"--bus-byte", "0x14", "--mhz", "66"});
    link.Connect(Port());
    EXPECT_FALSE(link.IsDemoMode());
    const BoardIdentity identity = link.Identity();
    EXPECT_EQ(identity.modelString, "PCIKite-3");
    EXPECT_EQ(identity.bufferSizeK, 1024);
    EXPECT_EQ(identity.firmwareRevision, "1.7");
    EXPECT_EQ(identity.serialNumber, 1234);
    EXPECT_EQ(link.Traits().bus, (BusConfig{0, 1, 1, 66, 0}));
    EXPECT_EQ(board->Functions(),
              (std::vector<std::string>{"function 1 read memory, address 0 length 18",
                                        "function 1 read memory, address 18 length 2"}));
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(LinkOverWire, MovesABoardFromEveryRateToTheConfiguredOne) {
    for (const int rate : {9600, 19200, 28800, 38400, 57600}) {
        StartBoard({"--baud", std::to_string(rate)});
        settings.WriteProfileInt("Setup", "BaudRate", 38400);
        link.Connect(Port());
        EXPECT_EQ(link.Identity().modelString, "PCIKite-3") << rate;
        EXPECT_FALSE(link.IsDemoMode()) << rate;
        const auto functions = board->Functions();
        const bool moved =
            std::find(functions.begin(), functions.end(),
                      "function 29 apply new baud rate, address 15 length 1") != functions.end();
        EXPECT_EQ(moved, rate != 38400) << rate;
        std::uint8_t serial[2] = {};
        EXPECT_TRUE(link.Exchange(ReadRegisters(16, serial))) << rate;
        EXPECT_EQ(serial[0], 0x34) << rate;
    }
}

TEST_F(LinkOverWire, FindsABoardInTheMiddleOfAFrame) {
    StartBoard();
    board->Fault("half-frame");
    link.Connect(Port());
    EXPECT_EQ(link.Identity().modelString, "PCIKite-3");
}

TEST_F(LinkOverWire, KnowsEveryModel) {
    for (const char* model : {"PCIKite", "PCIWren", "VMEKite", "VMEWren", "VMELark", "PCFKite",
                              "PCFWren", "PMCKite", "PMCWren", "VSBKite"}) {
        StartBoard({"--model", model, "--suffix", "2"});
        link.Connect(Port());
        EXPECT_EQ(link.Identity().modelString, std::string(model) + "-2");
    }
}

TEST_F(LinkOverWire, BusConfigurationIsWrittenAndReadBack) {
    StartBoard();
    link.Connect(Port());
    link.WriteBusConfig({BusPciX, 1, 1, 133, 1});
    BusConfig read;
    link.ReadBusConfig(read);
    EXPECT_EQ(read, (BusConfig{BusPciX, 1, 1, 133, 1}));
    const auto log = board->Log();
    EXPECT_NE(std::find(log.begin(), log.end(), "host  95 85 payload for write memory"), log.end());
}

TEST_F(LinkOverWire, SavedBusConfigurationOverridesTheBoard) {
    StartBoard({"--model", "VMEKite", "--mhz", "10"});
    settings.WriteProfileInt("Setup", "SaveBusConfig", 1);
    settings.WriteProfileInt("Setup", "BusMode", 1);
    settings.WriteProfileInt("Setup", "BusFrequency", 16);
    link.Connect(Port());
    BusConfig read;
    link.ReadBusConfig(read);
    EXPECT_EQ(read, (BusConfig{BusVme, 0, 0, 16, 0}));
}

TEST_F(LinkOverWire, ALostAcknowledgementIsRecovered) {
    StartBoard();
    link.Connect(Port());
    board->Fault("drop-ack 3");
    std::uint8_t name[8] = {};
    EXPECT_TRUE(link.Exchange(ReadRegisters(0, name)));
    EXPECT_EQ(std::string(name, name + 7), "PCIKite");
    board->Fault("wrong-close");
    EXPECT_TRUE(link.Exchange(ReadRegisters(0, name)));
    board->Fault("wrong-ack 2");
    EXPECT_TRUE(link.Exchange(ReadRegisters(0, name)));
    board->Fault("delay 150");
    EXPECT_TRUE(link.Exchange(ReadRegisters(0, name)));
}

TEST_F(LinkOverWire, AShortReplyIsRequestedAgain) {
    StartBoard();
    link.Connect(Port());
    board->Fault("short-reply 2");
    std::uint8_t name[8] = {};
    EXPECT_TRUE(link.Exchange(ReadRegisters(0, name)));
    const auto functions = board->Functions();
    EXPECT_EQ(std::count(functions.begin(), functions.end(),
                         "function 1 read memory, address 0 length 8"),
              2);
}

TEST_F(LinkOverWire, SilentBoardLeadsToDemoMode) {
    StartBoard({"--fault", "silence"});
    clock.patient = true;
    link.Connect(Port());
    EXPECT_TRUE(link.IsDemoMode());
    EXPECT_EQ(link.Identity().modelString, "Demo Mode");
    ASSERT_EQ(prompts.Boxes().size(), 1U);
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
}

TEST_F(LinkOverWire, NoDeviceLeadsToDemoMode) {
    settings.WriteProfileString("Setup", "ComPort", "COM1");
    settings.WriteProfileString("Setup", "ComDevice1", "/nonexistent/tty");
    link.Connect(Port());
    EXPECT_TRUE(link.IsDemoMode());
    EXPECT_EQ(prompts.Boxes().size(), 1U);
}

TEST_F(LinkOverWire, APortThatDisappearsFailsTheRequestAndTheProgramGoesOn) {
    StartBoard();
    link.Connect(Port());
    board->Fault("go-away");
    std::uint8_t byte = 0;
    EXPECT_FALSE(link.Exchange(ReadRegisters(0, {&byte, 1})));
    StartBoard();
    link.Connect(Port());
    EXPECT_TRUE(link.Exchange(ReadRegisters(0, {&byte, 1})));
    EXPECT_EQ(byte, 'P');
}

TEST_F(LinkOverWire, SamplesAreAddressedByTheirDistanceFromTheTrigger) {
    StartBoard({"--samples", "256"});
    link.Connect(Port());
    std::vector<std::uint8_t> before(64 * 18);
    std::vector<std::uint8_t> after(32 * 18);
    ASSERT_TRUE(link.Exchange(ReadSamples(CmdReadSamplesBefore, 32, before)));
    ASSERT_TRUE(link.Exchange(ReadSamples(CmdReadSamplesAfter, 0, after)));
    // From 32 before the trigger on: the second half begins at the trigger.
    EXPECT_TRUE(std::equal(after.begin(), after.end(), before.begin() + 32 * 18));
}

TEST_F(LinkOverWire, RequestsOfTwoThreadsAllComplete) {
    StartBoard();
    link.Connect(Port());
    std::atomic<int> good = 0;
    std::thread other([&] {
        for (int i = 0; i < 50; ++i) {
            std::uint8_t byte = 0;
            good += link.Exchange(ReadRegisters(16, {&byte, 1})) && byte == 0x34 ? 1 : 0;
        }
    });
    for (int i = 0; i < 50; ++i) {
        std::uint8_t byte = 0;
        good += link.Exchange(ReadRegisters(17, {&byte, 1})) && byte == 0x12 ? 1 : 0;
        link.PollLiveStatus();
    }
    other.join();
    link.WaitIdle();
    EXPECT_EQ(good, 100);
    EXPECT_FALSE(link.CommLost());
}

} // namespace
} // namespace busquill::test
