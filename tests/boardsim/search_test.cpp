#include "boardsim/board.h"

#include <gtest/gtest.h>

namespace boardsim {
namespace {

/// A board whose samples hold their position: 10 lie before the trigger, 20 after it.
class BoardSearch : public testing::Test {
protected:
    static std::vector<Record> Samples() {
        std::vector<Record> records(31);
        for (std::size_t i = 0; i < records.size(); ++i) {
            records[i][0] = static_cast<std::uint8_t>(i);
        }
        return records;
    }
    void Frame(std::uint8_t opcode, std::uint8_t parameter) {
        static_cast<void>(board.Receive(opcode));
        reply = board.Receive(parameter);
    }
    void At(std::uint32_t address, std::size_t length) {
        Frame(opAddress0, static_cast<std::uint8_t>(address));
        Frame(opAddress1, static_cast<std::uint8_t>(address >> 8));
        Frame(opLength0, static_cast<std::uint8_t>(length));
    }
    void Write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) {
        At(address, bytes.size());
        Frame(opFunction, fnWriteMemory);
        for (const std::uint8_t byte : bytes) {
            reply = board.Receive(byte);
        }
    }
    std::vector<std::uint8_t> State() {
        At(regSearch, 4);
        Frame(opFunction, fnReadMemory);
        return {reply.begin() + 1, reply.end() - 1};
    }
    /// The state after a search for a first byte, starting at a distance.
    std::vector<std::uint8_t> Search(int first, int distance, bool forward) {
        const bool after = distance >= 0;
        Write(regSearch, {static_cast<std::uint8_t>(after ? 2 : 0),
                          static_cast<std::uint8_t>(after ? distance : -distance), 0, 0});
        std::vector<std::uint8_t> pattern(30);
        pattern[0] = static_cast<std::uint8_t>(first);
        pattern[1] = 0xFF;
        Write(regSearchPattern, pattern);
        Write(regSearchDirection, {static_cast<std::uint8_t>(forward ? 0 : 1)});
        Frame(opFunction, fnStartSearch);
        return State();
    }
    using State4 = std::vector<std::uint8_t>;

    Board board{Identity{}, 9600, Samples(), 10, {}};
    std::vector<std::uint8_t> reply;
};

TEST_F(BoardSearch, FindsOnBothSidesOfTheTrigger) {
    EXPECT_EQ(Search(25, -10, true), (State4{3, 15, 0, 0}));
    EXPECT_EQ(Search(4, 20, false), (State4{1, 6, 0, 0}));
    EXPECT_EQ(Search(10, 0, true), (State4{3, 0, 0, 0})) << "the trigger itself";
    EXPECT_EQ(Search(0, 3, false), (State4{1, 10, 0, 0})) << "the first sample";
}

TEST_F(BoardSearch, ReportsThatNothingMatches) {
    EXPECT_EQ(Search(25, 16, true)[0], 0);
    EXPECT_EQ(Search(25, 14, false)[0], 0);
    EXPECT_EQ(Search(0, 21, true)[0], 0) << "from after the last sample";
}

TEST_F(BoardSearch, CanBePolledWhileItRuns) {
    board.faults.searchBusy = 2;
    EXPECT_EQ(Search(25, 0, true)[0], 0x80);
    EXPECT_EQ(State()[0], 0x80);
    EXPECT_EQ(State(), (State4{3, 15, 0, 0}));
}

} // namespace
} // namespace boardsim
