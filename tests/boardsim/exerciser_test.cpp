#include "boardsim/board.h"
#include "boardsim/traffic.h"

#include <gtest/gtest.h>

namespace boardsim {
namespace {

using Bytes = std::vector<std::uint8_t>;

enum class Command : std::uint8_t { Read = 1, Write = 2, Verify = 4, Test = 5, Compare = 6 };

class ExerciserTest : public testing::Test {
protected:
    Bytes Send(const Bytes& bytes) {
        Bytes reply;
        for (const std::uint8_t byte : bytes) {
            const Bytes part = board.Receive(byte);
            reply.insert(reply.end(), part.begin(), part.end());
        }
        return reply;
    }
    void Registers(std::uint32_t address, std::size_t length) {
        EXPECT_EQ(
            Send({4, static_cast<std::uint8_t>(address), 6, static_cast<std::uint8_t>(address >> 8),
                  8, static_cast<std::uint8_t>(address >> 16), 10,
                  static_cast<std::uint8_t>(length), 12, static_cast<std::uint8_t>(length >> 8)}),
            Bytes(5, '*'));
    }
    void WriteBytes(std::uint32_t address, const Bytes& bytes, std::uint8_t function = 2) {
        Registers(address, bytes.size());
        EXPECT_EQ(Send({2, function}), Bytes{'*'});
        EXPECT_EQ(Send(bytes), Bytes{'*'});
    }
    Bytes ReadBytes(std::uint32_t address, std::size_t length, std::uint8_t function = 1) {
        Registers(address, length);
        Bytes reply = Send({2, function});
        EXPECT_EQ(reply.size(), length + 2);
        return {reply.begin() + 1, reply.end() - 1};
    }
    /// Runs a step and returns its status.
    int Step(Command command, std::uint8_t address, std::uint8_t length, const Bytes& data = {}) {
        Bytes setup = {space, 2, address, 0x10, 0, 0, 0, 0, 0, 0, length, dataSize, 0, dataType};
        setup.insert(setup.end(), data.begin(), data.end());
        setup.resize(46);
        setup.push_back(modifier);
        setup.push_back(1);
        WriteBytes(802, setup);
        WriteBytes(800, {static_cast<std::uint8_t>(command)});
        EXPECT_EQ(Send({2, 23}), Bytes{'*'});
        return ReadBytes(801, 1)[0];
    }
    Bytes ReadStep(std::uint8_t address, std::uint8_t length) {
        EXPECT_EQ(Step(Command::Read, address, length), 1);
        return ReadBytes(816, length);
    }

    std::uint8_t space = 0;
    std::uint8_t modifier = 0;
    std::uint8_t dataSize = 2;
    std::uint8_t dataType = 1;
    std::vector<Record> samples = MakeRecords(Family::Pci32, 1, 100);
    Board board{{}, 9600, samples, 50, {}};
};

TEST_F(ExerciserTest, ReadsBackWhatWasWritten) {
    EXPECT_EQ(ReadStep(0x40, 4), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Step(Command::Write, 0x40, 4, {1, 2, 3, 4}), 1);
    EXPECT_EQ(ReadStep(0x3F, 6), (Bytes{0, 1, 2, 3, 4, 0}));
}

TEST_F(ExerciserTest, EachSpaceAndModifierHasItsMemory) {
    Step(Command::Write, 0, 1, {0x11});
    space = 1;
    EXPECT_EQ(ReadStep(0, 1), Bytes{0});
    Step(Command::Write, 0, 1, {0x22});
    modifier = 0x3D;
    EXPECT_EQ(ReadStep(0, 1), Bytes{0});
    modifier = 0;
    EXPECT_EQ(ReadStep(0, 1), Bytes{0x22});
    space = 0;
    EXPECT_EQ(ReadStep(0, 1), Bytes{0x11});
}

TEST_F(ExerciserTest, AValueRepeatsInTheWidthOfTheData) {
    dataType = 0;
    dataSize = 1;
    Step(Command::Write, 0, 5, {0xA1, 0xA2, 0xA3});
    EXPECT_EQ(ReadStep(0, 6), (Bytes{0xA1, 0xA2, 0xA1, 0xA2, 0xA1, 0}));
    dataSize = 3;
    Step(Command::Write, 0, 10, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(ReadStep(0, 11), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 0}));
}

TEST_F(ExerciserTest, CompareOnlyReads) {
    Step(Command::Write, 0, 3, {1, 2, 3});
    EXPECT_EQ(Step(Command::Compare, 0, 3, {1, 2, 3}), 1);
    EXPECT_EQ(Step(Command::Compare, 0, 3, {1, 2, 4}), 2);
    EXPECT_EQ(ReadStep(0, 3), (Bytes{1, 2, 3}));
}

TEST_F(ExerciserTest, VerifyWritesAndReadsBack) {
    EXPECT_EQ(Step(Command::Verify, 0, 2, {6, 8}), 1);
    EXPECT_EQ(ReadStep(0, 2), (Bytes{6, 8}));
    board.faults.master.stuck = 0x1001;
    EXPECT_EQ(Step(Command::Verify, 0, 2, {6, 8}), 2);
    EXPECT_EQ(Step(Command::Verify, 0, 2, {6, 9}), 1);
    EXPECT_EQ(ReadStep(0, 2), (Bytes{6, 9}));
}

TEST_F(ExerciserTest, TestFindsAStuckBit) {
    EXPECT_EQ(Step(Command::Test, 0, 32), 1);
    board.faults.master.stuck = 0x101F;
    EXPECT_EQ(Step(Command::Test, 0, 31), 1);
    EXPECT_EQ(Step(Command::Test, 0, 32), 2);
}

TEST_F(ExerciserTest, StatusOnDemand) {
    board.faults.master.status = 0x62;
    EXPECT_EQ(Step(Command::Write, 0, 1, {5}), 0x62);
    board.faults = {};
    EXPECT_EQ(Step(Command::Read, 0, 1), 1);
}

TEST_F(ExerciserTest, AStepMayTakeAWhile) {
    board.faults.master.busy = 2;
    EXPECT_EQ(Step(Command::Read, 0, 1), 0x81);
    EXPECT_EQ(ReadBytes(801, 1)[0], 0x81);
    EXPECT_EQ(ReadBytes(801, 1)[0], 0x01);
    EXPECT_EQ(Step(Command::Read, 0, 1), 0x01);
    board.faults.master.busy = 100;
    EXPECT_EQ(Step(Command::Read, 0, 1), 0x81);
    EXPECT_EQ(Send({2, 24}), Bytes{'*'});
    EXPECT_EQ(ReadBytes(801, 1)[0], 0x01) << "stopped";
}

TEST_F(ExerciserTest, AnUnknownCommandFails) {
    WriteBytes(800, {3});
    EXPECT_EQ(Send({2, 23}), Bytes{'*'});
    EXPECT_EQ(ReadBytes(801, 1)[0], 2);
}

TEST_F(ExerciserTest, TargetMemoryHas24BitsOfAddress) {
    WriteBytes(0xABCDEF, {1, 2, 3}, 10);
    EXPECT_EQ(ReadBytes(0xABCDEE, 5, 9), (Bytes{0, 1, 2, 3, 0}));
    EXPECT_EQ(ReadBytes(0xCDEF, 2, 9), (Bytes{0, 0}));
    WriteBytes(0xFFFFFF, {7, 8}, 10);
    EXPECT_EQ(ReadBytes(0, 1, 9), Bytes{8});
    EXPECT_EQ(ReadBytes(0, 1), Bytes{'P'}) << "the registers are others";
}

TEST_F(ExerciserTest, TheMasterMovesDataOfTheTarget) {
    WriteBytes(0x1000, {9, 8, 7}, 10);
    dataType = 2;
    Step(Command::Write, 0, 3);
    dataType = 1;
    EXPECT_EQ(ReadStep(0, 3), (Bytes{9, 8, 7}));
    Step(Command::Write, 0x20, 2, {0x44, 0x55});
    dataType = 2;
    EXPECT_EQ(ReadStep(0x20, 2), (Bytes{0x44, 0x55}));
    EXPECT_EQ(ReadBytes(0x1020, 2, 9), (Bytes{0x44, 0x55}));
}

} // namespace
} // namespace boardsim
