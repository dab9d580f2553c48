#include "boardsim/board.h"
#include "boardsim/trace_writer.h"
#include "boardsim/traffic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <set>

namespace boardsim {
namespace {

using Bytes = std::vector<std::uint8_t>;

class BoardTest : public testing::Test {
protected:
    Bytes Send(const Bytes& bytes) {
        Bytes reply;
        for (const std::uint8_t byte : bytes) {
            const Bytes part = board.Receive(byte);
            reply.insert(reply.end(), part.begin(), part.end());
        }
        return reply;
    }
    void Registers(std::uint32_t address, std::uint16_t length) {
        EXPECT_EQ(
            Send({4, static_cast<std::uint8_t>(address), 6, static_cast<std::uint8_t>(address >> 8),
                  8, static_cast<std::uint8_t>(address >> 16), 10,
                  static_cast<std::uint8_t>(length), 12, static_cast<std::uint8_t>(length >> 8)}),
            Bytes(5, '*'));
    }

    std::vector<Record> samples = MakeRecords(Family::Pci32, 1, 100);
    Board board{{}, 9600, samples, 50, MakeZoom(samples, 50)};
};

TEST_F(BoardTest, AnswersTheSecondByteOfAFrame) {
    EXPECT_EQ(Send({10}), Bytes());
    EXPECT_EQ(Send({0}), Bytes{'*'});
}

TEST_F(BoardTest, StatusBlockHasTheIdentity) {
    Registers(0, 18);
    EXPECT_EQ(Send({2, 1}), (Bytes{'*',  'P',  'C', 'I', 'K', 'i', 't', 'e',  ' ',  3,
                                   0x00, 0x04, 17,  10,  0,   0,   0,   0x34, 0x12, '*'}));
}

TEST_F(BoardTest, MemoryIsWrittenAndReadBack) {
    Registers(20, 3);
    EXPECT_EQ(Send({2, 2}), Bytes{'*'});
    EXPECT_EQ(Send({7, 8, 9}), Bytes{'*'});
    Registers(21, 3);
    EXPECT_EQ(Send({2, 1}), (Bytes{'*', 8, 9, 0, '*'}));
}

TEST_F(BoardTest, ReadOfNoBytesIsTwoStars) {
    Registers(0, 0);
    EXPECT_EQ(Send({2, 1}), (Bytes{'*', '*'}));
}

TEST_F(BoardTest, NewRateAppliesAfterTheAnswer) {
    Registers(15, 1);
    Send({2, 2});
    Send({4});
    EXPECT_EQ(board.Baud(), 9600);
    EXPECT_EQ(Send({2, 29}), Bytes{'*'});
    EXPECT_EQ(board.Baud(), 57600);
}

TEST_F(BoardTest, ARefusedRateFailsWithItsRepetitionsAndChangesNothing) {
    board.faults.refuseRate = true;
    Registers(15, 1);
    EXPECT_EQ(Send({2, 2, 4}), (Bytes{'*', '*'}));
    EXPECT_EQ(Send({2, 29}), Bytes{'#'});
    for (int repetition = 1; repetition <= 4; ++repetition) {
        EXPECT_EQ(Send({4, 15}), Bytes{'#'}) << repetition;
    }
    EXPECT_EQ(board.Baud(), 9600);
    EXPECT_EQ(Send({4, 16}), Bytes{'*'});
    EXPECT_EQ(Send({4, 15}), Bytes{'*'});
}

TEST_F(BoardTest, FirmwareRecordsAreInTheImageBeforeTheyAreAcknowledged) {
    std::vector<std::string> steps;
    board.log = [&](const std::string& line) { steps.push_back(line); };
    board.onFirmware = [&] { steps.push_back(board.Firmware().HexText()); };
    Registers(0x012345, 2);
    EXPECT_EQ(Send({2, 30, 0xAA, 0xBB}), (Bytes{'*', '*'}));
    EXPECT_THAT(
        std::vector(steps.end() - 5, steps.end()),
        testing::ElementsAre("host  02 1e function 30 firmware record, address 74565 length 2",
                             "board 2a ", "host  aa bb payload for firmware record",
                             ":020000021000EC\n:02234500AABB31\n:00000001FF\n", "board 2a "));
    EXPECT_EQ(board.Memory(0x2345), 0);
}

TEST_F(BoardTest, SamplesAreAddressedByDistanceFromTheTrigger) {
    Registers(2, 3);
    const Bytes reply = Send({2, 3});
    ASSERT_EQ(reply.size(), 56U);
    EXPECT_TRUE(std::equal(samples[48].begin(), samples[48].end(), reply.begin() + 1));
    Registers(1, 1);
    const Bytes after = Send({2, 5});
    EXPECT_TRUE(std::equal(samples[51].begin(), samples[51].end(), after.begin() + 1));
}

TEST_F(BoardTest, UnknownFunctionsGetNoAnswer) {
    EXPECT_EQ(Send({2, 99}), Bytes());
}

TEST_F(BoardTest, FaultsHitTheReplyThatTheyCount) {
    board.faults.dropAcknowledge = 2;
    EXPECT_EQ(Send({10, 2, 12, 0, 4, 0}), (Bytes{'*', '*'}));
    board.faults.wrongAcknowledge = 1;
    EXPECT_EQ(Send({10, 2}), Bytes{'#'});
    board.faults.wrongClose = true;
    EXPECT_EQ(Send({2, 1}), (Bytes{'*', 'P', 'C', '#'}));
    board.faults.shortReply = 2;
    EXPECT_EQ(Send({2, 1}), (Bytes{'*', 'P'}));
    board.faults.refuse = 2;
    EXPECT_EQ(Send({10, 2, 12, 0, 4, 0}), (Bytes{'*', '#', '#'}));
    board.faults.silence = true;
    EXPECT_EQ(Send({10, 2, 2, 1}), Bytes());
}

TEST_F(BoardTest, LogNamesFramesAndFunctions) {
    std::vector<std::string> lines;
    board.log = [&](const std::string& line) { lines.push_back(line); };
    Send({4, 16, 2, 1});
    EXPECT_EQ(lines,
              (std::vector<std::string>{"host  04 10 address low 16", "board 2a ",
                                        "host  02 01 function 1 read memory, address 16 length 0",
                                        "board 2a 2a "}));
}

TEST(Traffic, SameSeedGivesTheSameSamples) {
    for (const Family family : {Family::Pci32, Family::Pci64, Family::PciX, Family::Vme,
                                Family::Vsb, Family::Lark, Family::ConnectorP2}) {
        EXPECT_EQ(MakeRecords(family, 5, 500), MakeRecords(family, 5, 500));
        EXPECT_NE(MakeRecords(family, 5, 500), MakeRecords(family, 6, 500));
    }
}

TEST(Traffic, PciParityCoversThePreviousClock) {
    const auto records = MakeRecords(Family::Pci32, 3, 3000);
    for (std::size_t i = 1; i < records.size(); ++i) {
        const auto covered = std::popcount(GetField(records[i - 1], 0, 32)) +
                             std::popcount(GetField(records[i - 1], 64, 4));
        ASSERT_EQ(GetBit(records[i], 86), covered % 2 != 0) << i;
    }
}

TEST(Traffic, PciDataFollowAnAddressWithAllTheirSignals) {
    const auto records = MakeRecords(Family::Pci32, 3, 5000);
    bool addressed = false;
    std::set<std::uint64_t> commands;
    std::set<std::uint64_t> rules;
    for (const Record& record : records) {
        const bool address = GetBit(record, 95);
        if (address) {
            ASSERT_FALSE(GetBit(record, 72)); // FRAME asserted
            commands.insert(GetField(record, 64, 4));
            addressed = true;
        }
        if (!GetBit(record, 73)) { // TRDY asserted
            ASSERT_TRUE(addressed);
            ASSERT_FALSE(GetBit(record, 74)); // with IRDY
            ASSERT_FALSE(GetBit(record, 76)); // and DEVSEL
        }
        rules.insert(GetField(record, 128, 8));
        ASSERT_EQ(GetField(record, 110, 18), 30U << 2);
    }
    for (const unsigned command : {0x0U, 0x2U, 0x3U, 0x6U, 0x7U, 0xAU, 0xEU}) {
        EXPECT_TRUE(commands.contains(command)) << command;
    }
    EXPECT_TRUE(rules.contains(112)); // retries
    EXPECT_LE(*rules.rbegin(), 114U);
}

TEST(Traffic, VmeAcknowledgesOnlyStrobedData) {
    for (const auto& [family, as, ds, dtack] :
         {std::tuple{Family::Vme, 72, 73, 75}, {Family::Lark, 96, 85, 71}}) {
        for (const Record& record : MakeRecords(family, 9, 3000)) {
            if (!GetBit(record, dtack)) {
                ASSERT_FALSE(GetBit(record, as));
            }
            if (GetField(record, ds, 2) == 0) {
                ASSERT_FALSE(GetBit(record, as));
            }
            ASSERT_GT(GetField(record, 110, 18), 0U);
        }
    }
}

TEST(Zoom, HasSamplesAroundTheTrigger) {
    const auto records = MakeRecords(Family::Pci32, 1, 200);
    const auto zoom = MakeZoom(records, 100);
    ASSERT_EQ(zoom.size(), 511U);
    EXPECT_EQ(GetField(zoom[255], 0, 64), GetField(records[100], 0, 64));
    EXPECT_EQ(GetField(zoom[255], 110, 18), 3750U << 2);
}

TEST(TraceText, IsATraceFile) {
    Recording recording;
    recording.name = "N";
    recording.description = "D";
    recording.samples = MakeRecords(Family::Vme, 1, 3);
    recording.trigger = 1;
    const std::string text = TraceText(recording);
    EXPECT_TRUE(text.starts_with("\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                                 "\"Description\",\"D\"\n\n\"Trace Setup\"\n\"Name\",\"N\"\n"));
    EXPECT_NE(text.find("\n\"Trace Data\",-1,1\n-1,"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\"End of Trace Data\"\n"));
}

} // namespace
} // namespace boardsim
