#include "performance/result_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Position = ResultStore::Position;

/// A reading whose items are n, n + 1, ...
PerformanceResults Reading(std::int64_t n) {
    PerformanceResults results;
    for (std::size_t item = 0; item < results.size(); ++item) {
        results[item] = static_cast<std::int32_t>(n) + static_cast<std::int32_t>(item);
    }
    return results;
}

void AddUpTo(ResultStore& store, std::int64_t count) {
    for (std::int64_t n = store.Count(); n < count; ++n) {
        store.Add(Reading(n));
    }
}

TEST(ResultStore, TheBoardsNumbersHaveTheirLowByteFirst) {
    std::array<std::uint8_t, 32> bytes{};
    bytes[0] = 0x78;
    bytes[1] = 0x56;
    bytes[2] = 0x34;
    bytes[3] = 0x12;
    bytes[28] = bytes[29] = bytes[30] = bytes[31] = 0xFF;
    EXPECT_EQ(ParsePerformanceResults(bytes),
              (PerformanceResults{0x12345678, 0, 0, 0, 0, 0, 0, -1}));
}

TEST(ResultStore, HasTheResultsThatWereAdded) {
    ResultStore store;
    EXPECT_FALSE(store.Has(0));
    EXPECT_EQ(store.At(0), PerformanceResults{});
    AddUpTo(store, 2);
    EXPECT_EQ(store.Where(), (Position{2, 2, false}));
    EXPECT_TRUE(store.Has(1));
    EXPECT_FALSE(store.Has(2));
    EXPECT_FALSE(store.Has(-1));
    EXPECT_EQ(store.At(1), Reading(1));
    EXPECT_EQ(store.At(2), PerformanceResults{});
    EXPECT_EQ(store.At(-1), PerformanceResults{});
}

TEST(ResultStore, WrapsWhenTheRingsAreFull) {
    ResultStore store;
    AddUpTo(store, 159999);
    EXPECT_EQ(store.Where(), (Position{159999, 159999, false}));
    AddUpTo(store, 160000);
    EXPECT_EQ(store.Where(), (Position{160000, 0, true}));
    EXPECT_EQ(store.At(0), Reading(0));
    EXPECT_EQ(store.At(159999), Reading(159999));
    EXPECT_EQ(store.OldestHeld(), 0);
}

TEST(ResultStore, AResultOlderThanTheRingsIsZero) {
    ResultStore store;
    AddUpTo(store, 160001);
    EXPECT_EQ(store.Where(), (Position{160001, 1, true}));
    EXPECT_TRUE(store.Has(0));
    EXPECT_EQ(store.At(0), PerformanceResults{}) << "its place holds the newest";
    EXPECT_EQ(store.At(1), Reading(1));
    EXPECT_EQ(store.At(160000), Reading(160000));
    EXPECT_EQ(store.OldestHeld(), 1);
}

TEST(ResultStore, AnHourOfReadingsLeavesTheNewest) {
    ResultStore store;
    constexpr std::int64_t count = 3'600'000;
    AddUpTo(store, count);
    EXPECT_EQ(store.Where(), (Position{count, count % 160000, true}));
    EXPECT_EQ(store.At(count - 160001), PerformanceResults{});
    int wrong = 0;
    for (std::int64_t n = store.OldestHeld(); n < count; ++n) {
        wrong += store.At(n) == Reading(n) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(store.OldestHeld(), count - 160000);
}

TEST(ResultStore, ClearForgetsEverything) {
    ResultStore store;
    AddUpTo(store, 160005);
    store.Clear();
    EXPECT_EQ(store.Where(), Position{});
    EXPECT_EQ(store.Row(0), PerformanceResults{});
    EXPECT_EQ(store.Row(159999), PerformanceResults{});
}

TEST(ResultStore, RowsAreTheRingsFromTheirBeginning) {
    ResultStore store;
    AddUpTo(store, 160001);
    EXPECT_EQ(store.Row(0), Reading(160000));
    EXPECT_EQ(store.Row(1), Reading(1));
    // Past its end a ring goes on in the next; the last one ends.
    EXPECT_EQ(store.Row(160001), (PerformanceResults{2, 3, 4, 5, 6, 7, 8, 0}));
    EXPECT_EQ(store.Row(8 * 160000), PerformanceResults{});
    store.SetRow(3, Reading(70));
    EXPECT_EQ(store.Row(3), Reading(70));
    store.SetRow(160000, Reading(70));
    store.SetRow(-1, Reading(70));
    EXPECT_EQ(store.Row(160000)[0], store.Row(0)[1]);
}

TEST(ResultStore, APositionOutsideTheRingsIsTheirBeginning) {
    ResultStore store;
    store.SetWhere({-1, 160000, true});
    EXPECT_EQ(store.Where(), (Position{0, 0, true}));
    store.SetWhere({2147483647, -2147483647, false});
    EXPECT_EQ(store.Where(), (Position{2147483647, 0, false}));
    for (const std::int64_t index :
         {std::int64_t{0}, store.OldestHeld(), std::int64_t{2147483646},
          std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(store.At(index), PerformanceResults{}) << index;
    }
    AddUpTo(store, 0);
    store.Add(Reading(5));
    EXPECT_EQ(store.At(2147483647), Reading(5)) << "the count goes on past 31 bits";
}

} // namespace
} // namespace busquill::test
