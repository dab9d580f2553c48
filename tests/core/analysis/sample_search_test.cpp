#include "analysis/sample_search.h"
#include "platform/bits.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <gmock/gmock.h>

#include <random>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Samples of which some are absent, and the searches in them.
class SampleSearches : public testing::Test {
protected:
    explicit SampleSearches(std::size_t count = 200) : records(count), absent(count) {}

    [[nodiscard]] CapturedSamples Samples() const { return {records, -100, absent.Words()}; }
    /// An expression as a test, for the samples of a capture that begins with number -100.
    SampleSearch::Test Where(std::string_view text) {
        auto parsed = SampleCondition::Parse(text, board.tables, {&list});
        auto condition = std::get<SampleCondition>(std::move(parsed));
        return [condition](const SampleBlock& block) { return condition.MatchesOf(block); };
    }
    /// The indexes of what has been found.
    static std::vector<std::size_t> FoundBy(const SampleSearch& search) {
        std::vector<std::size_t> found;
        for (std::size_t word = 0; word < search.Found().size(); ++word) {
            for (const std::size_t bit : EachSetBit(search.Found()[word])) {
                found.push_back(word * wordBits + bit);
            }
        }
        return found;
    }
    std::vector<std::size_t> Finish(SampleSearch& search) {
        search.Follow(Samples());
        EXPECT_TRUE(search.Continue(Samples(), records.size() + wordBits));
        return FoundBy(search);
    }
    std::vector<std::size_t> Search(std::string_view text) {
        SampleSearch search(Where(text));
        return Finish(search);
    }
    void SetLine(std::size_t sample, bool value = true) {
        records[sample].SetBit(CaptureBuilder::Frame, value);
    }

    BoardTables board{"PCIKite-1"};
    CSignalList list{board.tables};
    std::vector<SampleRecord> records;
    Bits absent;
};

TEST_F(SampleSearches, FindAllSamplesThatFulfilACondition) {
    for (const std::size_t sample : {0U, 31U, 32U, 63U, 64U, 199U}) {
        SetLine(sample);
    }
    EXPECT_THAT(Search("FRAME == 1"), ElementsAre(0, 31, 32, 63, 64, 199));
    EXPECT_THAT(Search("sample in -69..-68"), ElementsAre(31, 32)) << "by their numbers";
}

TEST_F(SampleSearches, GoOnFromPieceToPiece) {
    SetLine(5);
    SetLine(150);
    SampleSearch search(Where("FRAME == 1"));
    search.Follow(Samples());
    EXPECT_EQ(search.Left(), 7 * wordBits);
    EXPECT_FALSE(search.Continue(Samples(), 64));
    EXPECT_THAT(FoundBy(search), ElementsAre(5));
    EXPECT_EQ(search.Left(), 5 * wordBits);
    EXPECT_FALSE(search.Continue(Samples(), 64));
    EXPECT_FALSE(search.Continue(Samples(), 64));
    EXPECT_TRUE(search.Continue(Samples(), 64));
    EXPECT_THAT(FoundBy(search), ElementsAre(5, 150));
    EXPECT_EQ(search.Left(), 0U);
}

TEST_F(SampleSearches, SamplesThatHaveNotArrivedAreNotFound) {
    absent.AssignIn(32, 96, true);
    EXPECT_EQ(Search("FRAME == 0").size(), 200U - 64);
    absent.Reset(200, true);
    EXPECT_THAT(Search("FRAME == 0"), IsEmpty());
}

TEST_F(SampleSearches, BlocksAreSearchedWhenTheyArrive) {
    SetLine(10);
    SetLine(40);
    SetLine(70);
    absent.AssignIn(32, 96, true);
    SampleSearch search(Where("FRAME == 1"));
    EXPECT_THAT(Finish(search), ElementsAre(10));
    absent.AssignIn(64, 96, false);
    search.Follow(Samples());
    EXPECT_EQ(search.Left(), 2 * wordBits) << "the block, and the one after it";
    EXPECT_THAT(Finish(search), ElementsAre(10, 70));
    absent.AssignIn(32, 64, false);
    EXPECT_THAT(Finish(search), ElementsAre(10, 40, 70));
    search.Follow(Samples());
    EXPECT_EQ(search.Left(), 0U) << "nothing is new";
}

TEST_F(SampleSearches, AnEdgeIsFoundWhenTheSampleBeforeItArrives) {
    for (std::size_t sample = 64; sample < 200; ++sample) {
        SetLine(sample);
    }
    absent.AssignIn(32, 64, true);
    SampleSearch search(Where("FRAME rises"));
    EXPECT_THAT(Finish(search), IsEmpty());
    absent.AssignIn(32, 64, false);
    EXPECT_THAT(Finish(search), ElementsAre(64));
}

TEST_F(SampleSearches, ThereIsNoEdgeAfterSamplesThatAFileLeavesOut) {
    SetLine(10);
    SetLine(20);
    absent.Set(9);
    absent.Set(15);
    EXPECT_THAT(Search("FRAME rises"), ElementsAre(20));
    EXPECT_THAT(Search("FRAME falls"), ElementsAre(11, 21));
    absent.Set(21);
    EXPECT_THAT(Search("FRAME falls"), ElementsAre(11));
}

TEST_F(SampleSearches, TimesSinceTheTriggerAreRenewedWhenSamplesArrive) {
    const auto withTimes = CaptureBuilder().Idle(200); // 30 ns each
    records = withTimes.Records();
    absent.AssignIn(32, 64, true);
    const SampleTime sampleTime;
    const auto sinceFirst = [&](std::size_t sample) {
        std::int64_t time = 0;
        for (std::size_t i = 1; i <= sample; ++i) {
            time += absent.Test(i) ? 0 : sampleTime.Of(records[i]);
        }
        return time;
    };
    SampleSearch search(Where("ACCUM in 3000..3060"), SampleSearch::Times{sinceFirst, sampleTime});
    EXPECT_THAT(Finish(search), ElementsAre(132, 133, 134)) << "32 samples are missing";
    absent.AssignIn(32, 64, false);
    EXPECT_THAT(Finish(search), ElementsAre(100, 101, 102));
}

TEST_F(SampleSearches, FindTheSameInAnyPiecesAndAnyOrderOfArrival) {
    std::mt19937 random(20260607);
    for (SampleRecord& record : records) {
        record.SetBit(CaptureBuilder::Frame, random() % 2 != 0);
        record.SetBit(CaptureBuilder::Irdy, random() % 3 != 0);
    }
    absent.Set(77);
    absent.Set(78);
    absent.Set(130);
    const char* const text = "FRAME rises or not IRDY changes";
    const auto all = Search(text);
    const Bits missing = absent;
    for (int round = 0; round < 50; ++round) {
        absent.Reset(200, true);
        SampleSearch search(Where(text));
        std::vector<std::size_t> blocks = {0, 1, 2, 3, 4, 5, 6};
        std::shuffle(blocks.begin(), blocks.end(), random);
        for (const std::size_t block : blocks) {
            for (std::size_t i = block * 32; i < std::min<std::size_t>(block * 32 + 32, 200); ++i) {
                absent.Assign(i, missing.Test(i));
            }
            search.Follow(Samples());
            static_cast<void>(search.Continue(Samples(), random() % 3 * 32));
        }
        EXPECT_EQ(Finish(search), all) << round;
    }
}

} // namespace
} // namespace busquill::test
