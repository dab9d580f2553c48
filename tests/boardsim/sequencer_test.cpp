#include "boardsim/sequencer.h"
#include "boardsim/traffic.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace boardsim {
namespace {

constexpr std::uint8_t allSamples = 0xFF;

/// A program written out as the bytes of its registers. Event n looks for bit n - 1 of a sample, so
/// the first byte of a sample determines which events it matches.
class SequencerTest : public testing::Test {
protected:
    struct Row {
        std::initializer_list<std::uint8_t> condition; // tokens, or one 0xFF for all samples
        unsigned occurs = 1;
        std::uint8_t onSuccess = 0;
        std::uint8_t onFailure = 0;
        std::initializer_list<std::uint8_t> store = {allSamples};
    };

    SequencerTest() {
        for (std::size_t e = 0; e < 8; ++e) {
            events[e * 30] = static_cast<std::uint8_t>(1U << e);
            events[e * 30 + 1] = static_cast<std::uint8_t>(1U << e);
        }
    }

    void SetLevel(std::size_t level, const Row& row) {
        std::uint8_t* bytes = &control[level * 20];
        PutExpression(bytes, row.condition);
        PutExpression(bytes + 8, row.store);
        bytes[16] = static_cast<std::uint8_t>(row.occurs);
        bytes[17] = static_cast<std::uint8_t>(row.occurs >> 8);
        bytes[18] = row.onSuccess;
        bytes[19] = row.onFailure;
    }
    static void PutExpression(std::uint8_t* bytes, std::initializer_list<std::uint8_t> tokens) {
        std::fill(bytes, bytes + 8, std::uint8_t{0});
        if (tokens.size() == 1 && *tokens.begin() == allSamples) {
            std::fill(bytes, bytes + 8, allSamples);
            return;
        }
        int nibble = 15;
        for (const std::uint8_t token : tokens) {
            bytes[nibble / 2] |= static_cast<std::uint8_t>(nibble % 2 != 0 ? token << 4 : token);
            --nibble;
        }
    }

    void Start(std::size_t buffer, std::uint8_t position = 0, bool zoom = false) {
        const std::array<std::uint8_t, 3> parameters = {0, position, 1};
        sequencer.Start(events, control, parameters, buffer, zoom);
    }
    /// Feeds samples whose first bytes are given, 30 ns apart.
    void Feed(std::initializer_list<int> firstBytes) {
        for (const int byte : firstBytes) {
            Record record{};
            record[0] = static_cast<std::uint8_t>(byte);
            SetField(record, bitTime, timeBits, TimeField(30));
            sequencer.Feed(record);
        }
    }
    int At(std::int64_t distance) { return sequencer.At(distance)[0]; }
    int Before() {
        const auto status = sequencer.LiveStatus();
        return status[1] | status[2] << 8 | status[3] << 16;
    }
    int After() {
        const auto status = sequencer.LiveStatus();
        return status[4] | status[5] << 8 | status[6] << 16;
    }
    int Status() { return sequencer.LiveStatus()[0]; }
    int Occurrences() {
        const auto status = sequencer.LiveStatus();
        return status[7] | status[8] << 8;
    }
    /// Whether an expression holds for a sample that matches the given events.
    bool Holds(std::initializer_list<std::uint8_t> tokens, int matches) {
        SetLevel(0, {.condition = tokens, .onSuccess = 8});
        Start(1024);
        Feed({matches});
        return (Status() & 0x20) != 0;
    }

    std::array<std::uint8_t, 240> events{};
    std::array<std::uint8_t, 160> control{};
    Sequencer sequencer{{}, 0, {}};
};

TEST_F(SequencerTest, AGivenMemoryIsReadByDistance) {
    Record old{}, trigger{};
    old[0] = 1;
    trigger[0] = 2;
    sequencer = Sequencer({old, trigger}, 1, {});
    EXPECT_EQ(At(-1), 1);
    EXPECT_EQ(At(0), 2);
    EXPECT_EQ(At(1), 0) << "nothing is held there";
    EXPECT_EQ(At(-2), 0);
    EXPECT_EQ(Before(), 0) << "no run has counted samples";
}

TEST_F(SequencerTest, TriggersAtAnEventAndFillsTheMemory) {
    SetLevel(0, {.condition = {1}, .onSuccess = 8});
    Start(8); // half before the trigger
    Feed({2, 4, 6, 8, 10, 12});
    EXPECT_EQ(Before(), 4) << "the oldest are dropped";
    EXPECT_EQ(Status(), 0x80);
    Feed({1, 20});
    EXPECT_EQ(Status(), 0xA0);
    EXPECT_EQ(After(), 1) << "the trigger's own sample is not counted";
    Feed({22, 24, 26});
    EXPECT_EQ(Status(), 0xB0) << "full: 4 before, the trigger, 3 after";
    EXPECT_EQ(After(), 3);
    EXPECT_FALSE(sequencer.WantsSamples());
    EXPECT_EQ(At(-4), 6);
    EXPECT_EQ(At(0), 1);
    EXPECT_EQ(At(3), 24);
    sequencer.Stop();
    EXPECT_EQ(Status(), 0x30);
}

TEST_F(SequencerTest, ThePositionDividesTheMemory) {
    const std::pair<std::uint8_t, int> befores[] = {{3, 0}, {4, 4}, {0, 8}, {1, 12}, {2, 15}};
    SetLevel(0, {.condition = {1}, .onSuccess = 8});
    for (const auto& [code, before] : befores) {
        Start(16, code);
        for (int i = 0; i < 40; ++i) {
            Feed({2});
        }
        Feed({1});
        for (int i = 0; i < 40; ++i) {
            Feed({2});
        }
        EXPECT_EQ(Before(), before) << int{code};
        EXPECT_EQ(After(), 15 - before) << int{code};
    }
}

TEST_F(SequencerTest, StoresTheSamplesOfTheLevelAndAlwaysTheTrigger) {
    SetLevel(0, {.condition = {1}, .onSuccess = 8, .store = {2}});
    Start(16);
    Feed({2, 4, 2, 8, 1, 4, 2});
    EXPECT_EQ(Before(), 2);
    EXPECT_EQ(After(), 1);
    EXPECT_EQ(At(0), 1);
    EXPECT_EQ(TimeOfField(GetField(sequencer.At(-1), bitTime, timeBits)), 60U)
        << "since the sample stored before it";
    EXPECT_EQ(TimeOfField(GetField(sequencer.At(1), bitTime, timeBits)), 60U);
}

TEST_F(SequencerTest, CountsOccurrencesAndGoesOn) {
    SetLevel(0, {.condition = {1}, .occurs = 3, .onSuccess = 1});
    SetLevel(1, {.condition = {2}, .onSuccess = 8, .onFailure = 1});
    Start(64);
    Feed({1, 4, 1});
    EXPECT_EQ(Status(), 0x80);
    EXPECT_EQ(Occurrences(), 2) << "a sample between them does not reset the count";
    Feed({1});
    EXPECT_EQ(Status(), 0x81) << "in the second level";
    EXPECT_EQ(Occurrences(), 0);
    Feed({1, 1});
    EXPECT_EQ(Status(), 0x81);
    Feed({2});
    EXPECT_EQ(Status(), 0xA0) << "triggered, and back in the first";
    EXPECT_EQ(Before(), 6);
}

TEST_F(SequencerTest, ElseGoesToItsLevelAndResetsTheCount) {
    SetLevel(0, {.condition = {1}, .occurs = 2, .onSuccess = 8, .onFailure = 2});
    SetLevel(2, {.condition = {2}, .onSuccess = 0, .onFailure = 8 | 2});
    Start(64);
    Feed({1, 4});
    EXPECT_EQ(Status(), 0x82);
    Feed({2});
    EXPECT_EQ(Status(), 0x80);
    Feed({1});
    EXPECT_EQ(Status(), 0x80) << "the first of two again";
    Feed({4, 4});
    EXPECT_EQ(Status(), 0xA2) << "an else branch may trigger too";
}

TEST_F(SequencerTest, TriggersOnce) {
    SetLevel(0, {.condition = {allSamples}, .onSuccess = 8});
    Start(16);
    Feed({1, 2, 3});
    EXPECT_EQ(Before(), 0);
    EXPECT_EQ(After(), 2);
    EXPECT_EQ(At(0), 1);
}

TEST_F(SequencerTest, AnExpressionOfNoneNeverHolds) {
    SetLevel(0, {.condition = {}, .onSuccess = 8, .store = {}});
    Start(16);
    Feed({1, 255});
    EXPECT_EQ(Status(), 0x80);
    EXPECT_EQ(Before(), 0);
}

TEST_F(SequencerTest, OperatorsHaveTheirPrecedence) {
    constexpr std::uint8_t And = 9, Or = 10, Not = 11, Xor = 12, open = 13, close = 14;
    EXPECT_TRUE(Holds({1, Or, 2, And, 3}, 0b001));
    EXPECT_FALSE(Holds({open, 1, Or, 2, close, And, 3}, 0b001));
    EXPECT_TRUE(Holds({1, Xor, 2, And, 3}, 0b001));
    EXPECT_TRUE(Holds({1, Xor, 2, And, 3}, 0b110));
    EXPECT_FALSE(Holds({1, Xor, 2, And, 3}, 0b111));
    EXPECT_TRUE(Holds({1, Or, 2, Xor, 3}, 0b111));
    EXPECT_FALSE(Holds({1, Or, 2, Xor, 3}, 0b110));
    EXPECT_TRUE(Holds({Not, 1, And, 2}, 0b010));
    EXPECT_TRUE(Holds({Not, 1, And, 2}, 0b110));
    EXPECT_FALSE(Holds({Not, open, 1, Or, 2, close}, 0b010));
    EXPECT_TRUE(Holds({Not, Not, 8}, 0x80));
}

TEST_F(SequencerTest, InvalidTokenSequencesNeverHold) {
    constexpr std::uint8_t And = 9, open = 13, close = 14;
    EXPECT_FALSE(Holds({1, And}, 0xFF));
    EXPECT_FALSE(Holds({open, 1}, 0xFF));
    EXPECT_FALSE(Holds({1, close}, 0xFF));
    EXPECT_FALSE(Holds({1, 2}, 0xFF));
}

TEST_F(SequencerTest, AnEventComparesOnlyItsCompareBits) {
    events.fill(0);
    events[2 * 14] = 0x80; // bit 119
    events[2 * 14 + 1] = 0x80;
    SetLevel(0, {.condition = {1}, .onSuccess = 8});
    Start(16);
    Record record{};
    record[14] = 0x7F;
    sequencer.Feed(record);
    EXPECT_EQ(Status(), 0x80);
    record[14] = 0x80;
    sequencer.Feed(record);
    EXPECT_EQ(Status(), 0xA0);
}

TEST_F(SequencerTest, ZoomHoldsTheBusAroundTheTrigger) {
    SetLevel(0, {.condition = {1}, .onSuccess = 8, .store = {}});
    Start(16, 0, true);
    Feed({2, 4, 1, 8, 16});
    EXPECT_EQ(sequencer.ZoomAt(0)[0], 0) << "the zoom memory is empty until the run ends";
    sequencer.Stop();
    EXPECT_EQ(sequencer.ZoomAt(0)[0], 1);
    EXPECT_EQ(sequencer.ZoomAt(7)[0], 1) << "30 ns are 8 steps of 3.75 ns";
    EXPECT_EQ(sequencer.ZoomAt(8)[0], 8);
    EXPECT_EQ(sequencer.ZoomAt(-1)[0], 4);
    EXPECT_EQ(sequencer.ZoomAt(255)[0], 16);
    EXPECT_EQ(sequencer.ZoomAt(256)[0], 0);
}

TEST_F(SequencerTest, AStoppedRunKeepsItsSamples) {
    SetLevel(0, {.condition = {1}, .onSuccess = 8});
    Start(16);
    Feed({2, 4});
    sequencer.Stop();
    Feed({8});
    EXPECT_EQ(Status(), 0);
    EXPECT_EQ(Before(), 2);
    EXPECT_EQ(After(), 0);
    EXPECT_EQ(At(-1), 4);
    EXPECT_EQ(At(0), 0) << "there was no trigger";
}

} // namespace
} // namespace boardsim
