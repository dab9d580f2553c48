// The port itself over a real pseudo terminal: download of firmware, rate of the line, its cable.

#include "link/firmware_download.h"
#include "support/link_fixture.h"
#include "support/temp_dir.h"
#include "support/wire_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

class FirmwareOverWire : public LinkOverWire {
protected:
    void SetUp() override {
        StartBoard();
        link.Connect(Port());
    }
    /// Downloads a file and waits until that has ended.
    FirmwareDownload::State Download(const std::string& text) {
        FirmwareDownload download(link, prompts);
        EXPECT_TRUE(download.Start(dir.Write("firmware.hex", text)));
        EXPECT_TRUE(
            Eventually([&] { return download.GetState() != FirmwareDownload::State::Running; }));
        return download.GetState();
    }

    const TempDir dir;
};

TEST_F(FirmwareOverWire, TheImageOfTheBoardHasTheBytesOfTheFile) {
    EXPECT_EQ(Download("\n"
                       ":10FFF000000102030405060708090A0B0C0D0E0F89\n"
                       "\n"
                       "text between the records\n"
                       ":020000021200EA\r\n"
                       ":04001000deadbeefb4\n" // of segment 1200, so at 12010
                       ":0100200055FF\n"       // a wrong checksum
                       ":00000001FF\n"),
              FirmwareDownload::State::Complete);
    EXPECT_EQ(board->Firmware(), ":10FFF000000102030405060708090A0B0C0D0E0F89\n"
                                 ":020000021000EC\n"
                                 ":04201000DEADBEEF94\n"
                                 ":01202000556A\n"
                                 ":00000001FF\n");
    EXPECT_THAT(board->Log(),
                IsSupersetOf({
                    "host  02 1e function 30 firmware record, address 65520 length 16",
                    "host  00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f payload for firmware "
                    "record",
                    "host  02 1e function 30 firmware record, address 73744 length 4",
                    "host  de ad be ef payload for firmware record",
                    "host  02 1e function 30 firmware record, address 73760 length 1",
                }));
    EXPECT_THAT(prompts.Texts(), testing::IsEmpty());
}

TEST_F(FirmwareOverWire, ARecordWhoseAcknowledgementIsWrongIsSentAgain) {
    board->Fault("wrong-ack 7"); // of the payload
    EXPECT_EQ(Download(":02000000AABB99\n:01000200CC31\n"), FirmwareDownload::State::Complete);
    EXPECT_EQ(board->Firmware(), ":03000000AABBCCCC\n"
                                 ":00000001FF\n");
    const auto log = board->Log();
    EXPECT_EQ(std::count(log.begin(), log.end(), "host  aa bb payload for firmware record"), 2);
}

TEST_F(FirmwareOverWire, ARefusedRecordEndsTheDownload) {
    ASSERT_EQ(Download(":02000000AABB99\n"), FirmwareDownload::State::Complete);
    board->Fault("refuse 8"); // from the first frame of the second record on
    EXPECT_EQ(Download(":01000200CC31\n:01000300DD1F\n"), FirmwareDownload::State::Idle);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Serial connection error sending firmware record 2."));
    EXPECT_EQ(board->Firmware(), ":03000000AABBCCCC\n"
                                 ":00000001FF\n");
}

class PortOverWire : public LinkOverWire {
protected:
    /// Opens the link at a rate and reads the identity. Returns whether the board answered at
    /// another rate.
    bool OpenAt(int rate) {
        settings.WriteProfileInt("Setup", "BaudRate", rate);
        const bool another = link.Open(Port());
        EXPECT_FALSE(link.IsDemoMode());
        return another;
    }
    /// Tells the board a new rate and leaves the line at its own.
    bool TellRate(int rate) {
        return link.Exchange(WritePayload(CmdSetBaudRate, OneByte(BaudCode(rate))));
    }
    [[nodiscard]] bool BoardAnswers() {
        std::uint8_t serial = 0;
        return link.Exchange(ReadRegisters(16, {&serial, 1})) && serial == 0x34;
    }
};

TEST_F(PortOverWire, AfterAChangeOfRateTheBoardAnswersOnlyAtTheNewOne) {
    StartBoard();
    ASSERT_FALSE(OpenAt(9600));
    ASSERT_TRUE(TellRate(57600));
    EXPECT_TRUE(OpenAt(9600)); // found elsewhere, though 9600 is probed first
    EXPECT_FALSE(OpenAt(57600));
    EXPECT_TRUE(BoardAnswers());
    EXPECT_THAT(board->Functions(),
                ElementsAre("function 2 write memory, address 15 length 1",
                            "function 29 apply new baud rate, address 15 length 1",
                            "function 1 read memory, address 16 length 1"));
}

TEST_F(PortOverWire, ARefusedRateFailsAndTheBoardStaysAtItsOwn) {
    StartBoard({"--refuse-rate"});
    ASSERT_FALSE(OpenAt(9600));
    EXPECT_FALSE(TellRate(57600));
    EXPECT_TRUE(BoardAnswers());
    EXPECT_FALSE(OpenAt(9600));
    EXPECT_TRUE(BoardAnswers());
    board->Fault("normal");
    EXPECT_TRUE(TellRate(38400));
    EXPECT_FALSE(OpenAt(38400));
}

TEST_F(PortOverWire, ABoardThatRefusesFromNowOnKeepsTheRateThatItHas) {
    StartBoard();
    ASSERT_FALSE(OpenAt(9600));
    ASSERT_TRUE(TellRate(19200));
    ASSERT_FALSE(OpenAt(19200));
    board->RefuseRate();
    EXPECT_FALSE(TellRate(57600));
    EXPECT_FALSE(OpenAt(19200));
    EXPECT_TRUE(BoardAnswers());
}

TEST_F(PortOverWire, APulledCableHangsUpAndItsNameIsGone) {
    StartBoard();
    auto port = OpenSerialPort(board->Terminal());
    ASSERT_NE(port, nullptr);
    port->SetReadTimeout(std::chrono::seconds(5));
    board->Unplug();
    std::uint8_t byte = 0;
    EXPECT_FALSE(port->Read({&byte, 1}).has_value());
    EXPECT_NE(port->Write({&byte, 1}), 0);
    EXPECT_EQ(OpenSerialPort(board->Terminal()), nullptr);
    EXPECT_FALSE(std::filesystem::is_symlink(board->Terminal()));
    board->PlugIn();
    EXPECT_FALSE(port->Read({&byte, 1}).has_value());
    EXPECT_NE(OpenSerialPort(board->Terminal()), nullptr);
}

TEST_F(PortOverWire, ABoardThatIsPluggedInAgainIsAsItWas) {
    StartBoard();
    ASSERT_FALSE(OpenAt(9600));
    link.ReadIdentity(); // the requests that follow are tried only twice
    link.WaitIdle();
    ASSERT_TRUE(TellRate(28800));
    ASSERT_FALSE(OpenAt(28800));
    board->Unplug();
    EXPECT_FALSE(BoardAnswers());
    EXPECT_TRUE(link.IsBoardGone());
    board->PlugIn();
    prompts.Forget();
    link.Connect(Port());
    EXPECT_FALSE(link.IsDemoMode());
    EXPECT_TRUE(link.IsIdentified());
    EXPECT_TRUE(BoardAnswers());
    EXPECT_THAT(prompts.Texts(), testing::IsEmpty());
    const auto functions = board->Functions();
    EXPECT_EQ(std::count(functions.begin(), functions.end(),
                         "function 29 apply new baud rate, address 15 length 1"),
              1); // still at the rate from before
}

} // namespace
} // namespace busquill::test
