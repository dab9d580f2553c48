/// The rows of a table, compared with what the transactions themselves tell.
#include "analysis/bus_traffic.h"
#include "analysis/transaction_table.h"
#include "boardsim/deeds.h"
#include "support/board_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <variant>

namespace busquill::test {

namespace {

class TransactionTables : public testing::Test {
protected:
    TransactionTables() {
        const auto recording =
            boardsim::RecordDeeds(boardsim::Family::PciX, 7, sampleCount, sampleCount / 2, 0);
        for (const auto& sample : recording.samples) {
            records.push_back({sample});
        }
        TransactionFollower follower(bus.board, bus.tables);
        follower.KeepWords(1);
        for (std::size_t i = 0; i < sampleCount; ++i) {
            const auto ended = follower.Add(static_cast<std::int64_t>(i) - 5000, records[i]);
            all.insert(all.end(), ended.begin(), ended.end());
        }
        if (const auto open = follower.Unfinished()) {
            all.push_back(*open);
        }
    }
    [[nodiscard]] CapturedSamples Samples() const { return {records, -5000, {}}; }
    [[nodiscard]] TransactionTable TableOf(const TransactionQuery& query) const {
        TransactionTable table(bus.board, bus.tables, query);
        while (!table.Continue(Samples(), 777)) {
        }
        return table;
    }
    [[nodiscard]] static std::vector<std::size_t> RowsOf(const TransactionTable& table) {
        std::vector<std::size_t> rows;
        for (std::size_t row = 0; row < table.Size(); ++row) {
            rows.push_back(table.TransactionAt(row));
        }
        return rows;
    }
    static TransactionCondition Condition(const char* text) {
        return std::get<TransactionCondition>(TransactionCondition::Parse(text, {}));
    }

    static constexpr std::size_t sampleCount = 20000;
    std::vector<SampleRecord> records;
    std::vector<Transaction> all;
    BoardTables bus{"PCIKite", BusPciX, 1};
};

} // namespace

TEST_F(TransactionTables, HaveAllTransactionsInTheirOrder) {
    ASSERT_GT(all.size(), 500U);
    const TransactionTable table = TableOf({});
    ASSERT_EQ(table.Size(), all.size());
    EXPECT_EQ(table.TransactionAt(0), 0U);
    EXPECT_EQ(table.TransactionAt(all.size() - 1), all.size() - 1);
    EXPECT_EQ(table.Totals().Transactions(), all.size());
    EXPECT_EQ(table.RowOf(17), 17U);
    EXPECT_EQ(table.RowOf(all.size()), std::nullopt);
}

TEST_F(TransactionTables, AreCompleteAfterTheLastSampleOnly) {
    TransactionTable table(bus.board, bus.tables, {});
    EXPECT_FALSE(table.Continue(Samples(), sampleCount - 1));
    EXPECT_EQ(table.Passed(), sampleCount - 1);
    EXPECT_TRUE(table.Continue(Samples(), 1));
    EXPECT_TRUE(table.Continue(Samples(), 1));
    EXPECT_EQ(table.Size(), all.size());
}

TEST_F(TransactionTables, HaveOnlyWhatFulfilsTheCondition) {
    const TransactionTable table = TableOf({Condition("bytes >= 16 and end != retry")});
    std::vector<std::size_t> wanted;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].bytes >= 16 && all[i].end != TransactionEnd::Retry) {
            wanted.push_back(i);
            bytes += all[i].bytes;
        }
    }
    ASSERT_GT(wanted.size(), 10U);
    ASSERT_LT(wanted.size(), all.size());
    EXPECT_EQ(RowsOf(table), wanted);
    EXPECT_EQ(table.RowOf(wanted[3]), 3U);
    EXPECT_EQ(table.RowOf(wanted[3] + 1),
              wanted[4] == wanted[3] + 1 ? std::optional<std::size_t>(4) : std::nullopt);
    std::uint64_t sum = 0;
    const TransactionFollower follower(bus.board, bus.tables);
    for (const auto& each : table.Totals().Commands(*follower.Traffic())) {
        sum += each.bytes;
    }
    EXPECT_EQ(sum, bytes);
}

TEST_F(TransactionTables, AreSortedByEachFieldBothWays) {
    const TransactionFollower follower(bus.board, bus.tables);
    const TransactionFields fields(*follower.Traffic());
    for (const FieldColumn& column : FieldColumns()) {
        for (const bool descending : {false, true}) {
            SCOPED_TRACE(column.title);
            const TransactionTable table = TableOf({std::nullopt, column.field, descending});
            std::vector<std::size_t> rows(all.size());
            for (std::size_t i = 0; i < rows.size(); ++i) {
                rows[i] = i;
            }
            std::ranges::stable_sort(rows, [&](std::size_t a, std::size_t b) {
                const auto first = fields.SortKey(all[a], column.field);
                const auto second = fields.SortKey(all[b], column.field);
                return descending ? first > second : first < second;
            });
            EXPECT_EQ(RowsOf(table), rows);
            EXPECT_EQ(table.RowOf(rows[100]), 100U);
        }
    }
}

TEST_F(TransactionTables, SortByWhatTheFieldsMean) {
    const auto sorted = [&](TransactionField field, bool descending) {
        return TableOf({std::nullopt, field, descending});
    };
    const auto at = [&](const TransactionTable& table, std::size_t row) -> const Transaction& {
        return all[table.TransactionAt(row)];
    };
    const TransactionTable bytes = sorted(TransactionField::Bytes, true);
    EXPECT_EQ(at(bytes, 0).bytes, std::ranges::max_element(all, {}, &Transaction::bytes)->bytes);
    const TransactionTable samples = sorted(TransactionField::Sample, false);
    EXPECT_LT(at(samples, 0).sample, 0) << "negative numbers come first";
    EXPECT_EQ(samples.TransactionAt(5), 5U);
    const TransactionTable latency = sorted(TransactionField::Latency, false);
    EXPECT_EQ(at(latency, 0).Latency(), std::nullopt) << "what it does not have comes first";
    EXPECT_TRUE(at(latency, all.size() - 1).Latency().has_value());
    const TransactionTable slowest = sorted(TransactionField::Latency, true);
    EXPECT_EQ(at(slowest, all.size() - 1).Latency(), std::nullopt);
}

} // namespace busquill::test
