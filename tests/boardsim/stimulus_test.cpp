#include "boardsim/board.h"
#include "boardsim/stimulus.h"
#include "boardsim/traffic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace boardsim {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t any = 15;
constexpr std::uint8_t stop = 15;

struct LevelBytes {
    std::uint8_t condition = 0;
    std::uint8_t pattern = 0;
    std::uint8_t onSuccess = 0;
    std::uint8_t onFailure = 0;
    std::uint8_t occurs = 1;
    std::uint8_t duration = 1;
    std::uint8_t wait = 1;
};

/// The 80 bytes of the levels, as they go over the wire.
Bytes ControlOf(const std::vector<LevelBytes>& levels) {
    Bytes bytes;
    for (const LevelBytes& level : levels) {
        bytes.push_back(static_cast<std::uint8_t>(level.pattern << 4 | level.condition));
        bytes.push_back(static_cast<std::uint8_t>(level.onFailure << 4 | level.onSuccess));
        bytes.insert(bytes.end(), {level.occurs, level.duration, level.wait});
    }
    bytes.resize(stimulusControlBytes);
    return bytes;
}

/// Row n - 1 compares or drives the first byte of a sample: it is n.
Bytes Rows(std::size_t size, std::size_t count) {
    Bytes bytes(size);
    for (std::size_t row = 0; row < count; ++row) {
        bytes[30 * row] = static_cast<std::uint8_t>(row + 1);
        bytes[30 * row + 1] = 0xFF;
    }
    return bytes;
}

/// Runs a program over a bus whose first byte has these values, up to its end. Returns the values
/// with what is driven.
std::vector<int> Drive(const std::vector<LevelBytes>& levels, const std::vector<int>& bus) {
    Stimulus stimulus;
    stimulus.Start(Rows(stimulusEventBytes, 8), Rows(stimulusPatternBytes, 15), ControlOf(levels));
    std::vector<int> driven;
    for (const int value : bus) {
        if (!stimulus.IsRunning()) {
            break;
        }
        Record record{};
        record[0] = static_cast<std::uint8_t>(value);
        driven.push_back(stimulus.Feed(record)[0]);
    }
    return driven;
}

TEST(Stimulus, DrivesAPatternAfterAnEventAndStops) {
    EXPECT_THAT(Drive({{.condition = 3, .pattern = 9, .onSuccess = stop}}, {0, 1, 3, 50, 51, 52}),
                ElementsAre(0, 1, 3, 9, 51));
}

TEST(Stimulus, TakesTheTimeOfDurationAndWait) {
    EXPECT_THAT(
        Drive({{.condition = any, .pattern = 15, .onSuccess = stop, .duration = 3, .wait = 2}},
              std::vector<int>(20, 77)),
        ElementsAre(77, 15, 15, 15, 77, 77));
}

TEST(Stimulus, WaitsForAllOccurrences) {
    EXPECT_THAT(Drive({{.condition = 2, .pattern = 1, .onSuccess = stop, .occurs = 2, .wait = 0}},
                      {2, 0, 0, 2, 40, 41}),
                ElementsAre(2, 0, 0, 2, 1));
}

TEST(Stimulus, NoOccurrencesAre256) {
    EXPECT_THAT(
        Drive({{.condition = any, .onSuccess = stop, .occurs = 0}}, std::vector<int>(1000, 7)),
        SizeIs(256 + 2));
}

TEST(Stimulus, WithoutAPatternNothingIsDriven) {
    EXPECT_THAT(Drive({{.condition = any, .onSuccess = stop}}, {5, 6, 7, 8}), ElementsAre(5, 6, 7));
}

TEST(Stimulus, ASampleWithoutTheEventTakesTheElseBranch) {
    EXPECT_THAT(Drive({{.condition = 1, .onSuccess = stop, .onFailure = 1},
                       {.condition = 4, .pattern = 6, .onSuccess = stop, .onFailure = 0}},
                      {9, 4, 50, 51, 52}),
                ElementsAre(9, 4, 6, 51));
    EXPECT_THAT(Drive({{.condition = 1, .onFailure = stop}}, {9, 9}), ElementsAre(9));
}

TEST(Stimulus, AnotherLevelBeginsWithoutOccurrences) {
    EXPECT_THAT(
        Drive({{.condition = 1, .pattern = 2, .onSuccess = stop, .onFailure = 1, .occurs = 2},
               {.condition = 0, .onFailure = 0}},
              {1, 9, 9, 1, 1, 50, 51, 52}),
        ElementsAre(1, 9, 9, 1, 1, 2, 51));
}

TEST(Stimulus, DrivesOnlyTheLinesOfThePattern) {
    Bytes patterns(stimulusPatternBytes);
    patterns[0] = 0b0000'1010;
    patterns[1] = 0b0000'1111;
    Stimulus stimulus;
    stimulus.Start(Bytes(stimulusEventBytes), patterns,
                   ControlOf({{.condition = any, .pattern = 1}}));
    Record record{};
    record[0] = 0b1100'1100;
    static_cast<void>(stimulus.Feed(record));
    EXPECT_EQ(stimulus.Feed(record)[0], 0b1100'1010);
}

TEST(Stimulus, OutsideARunNothingIsDriven) {
    Stimulus stimulus;
    Record record{};
    record[0] = 1;
    EXPECT_EQ(stimulus.Feed(record)[0], 1);
    EXPECT_FALSE(stimulus.IsRunning());
}

class StimulusOfABoard : public testing::Test {
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
        Send({4, static_cast<std::uint8_t>(address), 6, static_cast<std::uint8_t>(address >> 8), 8,
              0, 10, static_cast<std::uint8_t>(length), 12,
              static_cast<std::uint8_t>(length >> 8)});
    }
    void Write(std::uint32_t address, const Bytes& bytes) {
        Registers(address, bytes.size());
        Send({2, 2});
        Send(bytes);
    }
    std::uint8_t Status() {
        Registers(929, 1);
        return Send({2, 1}).at(1);
    }
    void Start(const std::vector<LevelBytes>& levels) {
        Write(1410, ControlOf(levels));
        EXPECT_EQ(Send({2, 25}), Bytes{'*'});
    }

    Board board{{}, 9600, {}, 0, {}, MakeTraffic(Family::Pci32, 1), Comparators(Family::Pci32)};
};

TEST_F(StimulusOfABoard, ClearsItsRunningBitAtTheEnd) {
    EXPECT_EQ(Status(), 0);
    Start({{.condition = any, .onSuccess = stop, .occurs = 0}});
    EXPECT_EQ(Status(), 0); // within one reading
    Start({{.condition = any, .onSuccess = 1, .occurs = 0, .duration = 255, .wait = 255},
           {.condition = any, .onSuccess = 2, .occurs = 0, .duration = 255, .wait = 255},
           {.condition = any, .onSuccess = 3, .occurs = 0, .duration = 255, .wait = 255},
           {.condition = any, .onSuccess = stop, .occurs = 0, .duration = 255, .wait = 255}});
    EXPECT_EQ(Status(), 0x80); // 4 x 766 samples are more than 2048
    EXPECT_EQ(Status(), 0);
}

TEST_F(StimulusOfABoard, RunsWithoutStopUntilTheHostStopsIt) {
    Start({{.condition = any}});
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(Status(), 0x80);
    }
    EXPECT_EQ(Send({2, 26}), Bytes{'*'});
    EXPECT_EQ(Status(), 0);
}

TEST_F(StimulusOfABoard, ACaptureSeesWhatIsDriven) {
    Bytes patterns(480);
    patterns[28] = 0x80; // bit 119
    patterns[29] = 0x80;
    Write(930, patterns);
    Start({{.condition = any, .pattern = 1, .duration = 255, .wait = 0}});
    Bytes everything(160);
    std::fill(everything.begin(), everything.begin() + 16, 0xFF); // level 1: if All, store All
    everything[16] = 1;
    everything[18] = 8; // trigger
    Write(260, everything);
    EXPECT_EQ(Send({2, 11}), Bytes{'*'});
    board.SampleBus(40);
    Registers(20, 1);
    const Bytes sample = Send({2, 5});
    ASSERT_THAT(sample, SizeIs(20));
    EXPECT_NE(sample[1 + 14] & 0x80, 0);
}

} // namespace
} // namespace boardsim
