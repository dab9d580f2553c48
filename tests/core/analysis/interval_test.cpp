#include "analysis/interval.h"
#include "boardsim/deeds.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "waves.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

class Interval : public testing::Test {
protected:
    [[nodiscard]] CapturedSamples Samples() const { return {records, -5, absent.Words()}; }
    [[nodiscard]] IntervalFigures Figures(std::size_t from, std::size_t to,
                                          bool isBusClock = true) const {
        return FiguresOf(bus.board, bus.tables, Samples(), from, to, isBusClock);
    }
    void Take(std::vector<SampleRecord> taken) {
        records = std::move(taken);
        absent.Reset(records.size());
    }
    /// Two bursts of four words with idle time around them.
    void TakeTwoBursts() {
        Take(Waves(bus)
                 .Line("FRAME", "~~____~~~~____~~~~")
                 .Line("IRDY", "~~~____~~~~____~~~")
                 .Line("TRDY", "~~~____~~~~____~~~")
                 .Line("DEVSEL", "~~~____~~~~____~~~")
                 .Set("C/BE", 0xF0)
                 .At(2, "ADR/DATA", 1)
                 .At(10, "ADR/DATA", 1)
                 .At(2, "C/BE", 0xF7)
                 .At(10, "C/BE", 0xF7)
                 .Records());
    }
    /// The signal of a list that shows the samples, by its row's name.
    [[nodiscard]] EdgeCount Edges(const std::string& name, std::size_t from, std::size_t to) {
        CSignalList list(bus.tables);
        list.BuildFromTables(0, ModeWaveform);
        list.ResizeSamples(static_cast<std::uint32_t>(records.size()));
        list.LoadSamples(0, records);
        for (const auto& signal : list.All()) {
            if (signal->RowName() == name && (!signal->grouped || signal->IsGroupStart())) {
                return EdgesOf(*signal, Samples(), from, to);
            }
        }
        ADD_FAILURE() << "no row " << name;
        return {};
    }

    BoardTables bus{"PCIKite"};
    std::vector<SampleRecord> records;
    Bits absent;
};

TEST_F(Interval, IsTheSameInPiecesOfAnySize) {
    TakeTwoBursts();
    for (const std::size_t from : {0U, 1U, 3U, 9U, 17U}) {
        for (const std::size_t piece : {1U, 2U, 7U, 18U}) {
            IntervalWalk walk(bus.board, bus.tables, from, 17, true);
            int pieces = 0;
            while (!walk.IsDone()) {
                walk.Advance(Samples(), piece);
                ++pieces;
            }
            walk.Advance(Samples(), piece); // there are no more
            EXPECT_EQ(walk.Figures(), Figures(from, 17)) << from << ' ' << piece;
            EXPECT_EQ(pieces, static_cast<int>((18 - from + piece - 1) / piece));
        }
    }
}

TEST_F(Interval, CountsSamplesTimeClocksTransactionsAndBytes) {
    TakeTwoBursts();
    const IntervalFigures whole = Figures(0, 17);
    EXPECT_EQ(whole.samples, 17);
    EXPECT_EQ(whole.time, 170);
    EXPECT_EQ(whole.clocks, 17);
    EXPECT_EQ(whole.transactions, 2U);
    EXPECT_EQ(whole.bytes, 32U);
    EXPECT_FALSE(whole.hasGaps);
    EXPECT_NEAR(whole.Throughput().value(), 32 / 170e-9, 1);
    EXPECT_EQ(Figures(17, 0), whole) << "in either order";
}

TEST_F(Interval, FromAnAddressToTheNextIsOneTransaction) {
    TakeTwoBursts();
    const IntervalFigures one = Figures(2, 10);
    EXPECT_EQ(one.transactions, 1U);
    EXPECT_EQ(one.bytes, 16U);
    EXPECT_EQ(one.time, 80);
}

TEST_F(Interval, DoesNotCountATransactionThatBeganBefore) {
    TakeTwoBursts();
    const IntervalFigures rest = Figures(4, 10);
    EXPECT_EQ(rest.transactions, 0U);
    EXPECT_EQ(rest.bytes, 0U);
    EXPECT_EQ(Figures(4, 17).transactions, 1U);
    absent.Assign(3, true); // or among missing samples
    EXPECT_EQ(Figures(4, 17).transactions, 1U);
}

TEST_F(Interval, NeighboursAddUp) {
    const auto recording = boardsim::RecordDeeds(boardsim::Family::Pci32, 3, 5000, 2500, 0);
    records.clear();
    for (const auto& sample : recording.samples) {
        records.push_back({sample});
    }
    absent.Reset(records.size());
    std::vector<std::size_t> idle; // between transactions
    const TransactionFollower follower(bus.board, bus.tables);
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (follower.IsIdle(records[i])) {
            idle.push_back(i);
        }
    }
    ASSERT_GT(idle.size(), 100U);
    const std::size_t middle = idle[idle.size() / 2];
    const IntervalFigures whole = Figures(idle.front(), idle.back());
    const IntervalFigures first = Figures(idle.front(), middle);
    const IntervalFigures second = Figures(middle, idle.back());
    EXPECT_GT(first.transactions, 50U);
    EXPECT_EQ(*first.transactions + *second.transactions, whole.transactions);
    EXPECT_EQ(first.bytes + second.bytes, whole.bytes);
    EXPECT_EQ(first.time + second.time, whole.time);
    EXPECT_EQ(first.samples + second.samples, whole.samples);
}

TEST_F(Interval, HasNoClocksWhereSamplesAreNotAllOneClockApart) {
    TakeTwoBursts();
    EXPECT_EQ(Figures(0, 17, false).clocks, std::nullopt) << "another clock";
    records[4].bytes[14] ^= 0x02; // another time
    ASSERT_NE(Figures(0, 17).time, 170);
    EXPECT_EQ(Figures(0, 17).clocks, std::nullopt);
    EXPECT_EQ(Figures(5, 17).clocks, 12);
}

TEST_F(Interval, TellsThatSamplesAreMissing) {
    TakeTwoBursts();
    absent.Assign(8, true);
    EXPECT_TRUE(Figures(0, 17).hasGaps);
    EXPECT_EQ(Figures(0, 17).clocks, std::nullopt);
    EXPECT_EQ(Figures(0, 17).transactions, 2U);
    EXPECT_FALSE(Figures(9, 17).hasGaps);
}

TEST_F(Interval, OfOneSampleIsEmpty) {
    TakeTwoBursts();
    const IntervalFigures none = Figures(3, 3);
    EXPECT_EQ(none.samples, 0);
    EXPECT_EQ(none.time, 0);
    EXPECT_EQ(none.bytes, 0U);
    EXPECT_EQ(none.Throughput(), std::nullopt);
}

TEST(IntervalOfAConnector, HasNoTransactions) {
    const BoardTables bus{"VMEKiteP2", BusVmeP2};
    const std::vector<SampleRecord> records(10);
    const IntervalFigures figures = FiguresOf(bus.board, bus.tables, {records, 0, {}}, 0, 9, false);
    EXPECT_EQ(figures.transactions, std::nullopt);
    EXPECT_EQ(figures.samples, 9);
}

TEST_F(Interval, CountsTheEdgesOfALineAndTheChangesOfAGroup) {
    TakeTwoBursts();
    EXPECT_EQ(Edges("FRAME", 0, 17), (EdgeCount{4, 2, 2}));
    EXPECT_EQ(Edges("FRAME", 17, 0), (EdgeCount{4, 2, 2}));
    EXPECT_EQ(Edges("FRAME", 1, 6), (EdgeCount{2, 1, 1}));
    EXPECT_EQ(Edges("FRAME", 2, 6), (EdgeCount{1, 1, 0})) << "the edge into the first is not in it";
    absent.Assign(6, true);
    EXPECT_EQ(Edges("FRAME", 0, 17), (EdgeCount{3, 1, 2})) << "where it rises is not known";
}

} // namespace
} // namespace busquill::test
