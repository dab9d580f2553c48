#include "performance/result_statistics.h"
#include "platform/memory_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace busquill::test {
namespace {

/// A setup whose rows A and B are on.
PerformanceSetup TwoRows() {
    PerformanceSetup setup;
    setup.items[0].item = 1;
    setup.items[1].item = 2;
    return setup;
}

TEST(ItemStatistics, TruncatesTheAverage) {
    ItemStatistics statistics;
    EXPECT_EQ(statistics.Average(), 0);
    EXPECT_EQ(statistics.minimum, -1);
    EXPECT_EQ(statistics.maximum, -1);
    EXPECT_TRUE(statistics.Add(5));
    EXPECT_TRUE(statistics.Add(2));
    EXPECT_TRUE(statistics.Add(10));
    EXPECT_FALSE(statistics.Add(3));
    EXPECT_EQ(statistics.minimum, 2);
    EXPECT_EQ(statistics.maximum, 10);
    EXPECT_EQ(statistics.count, 4);
    EXPECT_DOUBLE_EQ(statistics.sum, 20);
    statistics.Add(3);
    EXPECT_EQ(statistics.Average(), 4) << "23 / 5";
}

TEST(ItemStatistics, TheSumOfAnHourDoesNotOverflow) {
    ItemStatistics statistics;
    for (int i = 0; i < 3'600'000; ++i) {
        statistics.Add(2'000'000'000);
    }
    EXPECT_EQ(statistics.Average(), 2'000'000'000);
    EXPECT_EQ(statistics.count, 3'600'000);
}

TEST(RangeStatistics, CountsValuesAboveTheScaleAsItsMaximum) {
    RangeStatistics range;
    range.SetMaximum(100);
    range.Clear(TwoRows());
    EXPECT_TRUE(range.Add({40, 1000, 7}));
    EXPECT_TRUE(range.Add({60, 2000, 7}));
    EXPECT_FALSE(range.Add({50, 100, 700})) << "no minimum or maximum has moved";
    const RangeStatistics::Items items = range.Current();
    EXPECT_EQ(items[0].minimum, 40);
    EXPECT_EQ(items[0].maximum, 60);
    EXPECT_EQ(items[0].Average(), 50);
    EXPECT_EQ(items[1].minimum, 100);
    EXPECT_EQ(items[1].maximum, 100);
    EXPECT_DOUBLE_EQ(items[1].sum, 300);
    EXPECT_FALSE(items[2].enabled);
    EXPECT_EQ(items[2].minimum, -1);
    EXPECT_EQ(items[2].count, 0);
}

TEST(RangeStatistics, ClearTurnsAllItemsOff) {
    RangeStatistics range;
    range.SetMaximum(100);
    range.Enable(3);
    range.Enable(8);
    EXPECT_TRUE(range.Add({1, 1, 1, 1}));
    range.Clear();
    EXPECT_FALSE(range.Add({1, 1, 1, 1}));
    EXPECT_FALSE(range.Current()[3].enabled);
    range.Enable(3);
    EXPECT_TRUE(range.Add({0, 0, 0, 500}));
    EXPECT_EQ(range.Current()[3].maximum, 100) << "the scale stays";
    EXPECT_EQ(range.Current()[3].count, 1);
}

TEST(RangeStatistics, AddsWhatTheRingsHold) {
    ResultStore store;
    for (std::int32_t n = 1; n <= 160010; ++n) {
        store.Add({n});
    }
    RangeStatistics range;
    range.SetMaximum(1'000'000);
    range.Clear(TwoRows());
    range.AddAll(store);
    EXPECT_EQ(range.Current()[0].count, 160000);
    EXPECT_EQ(range.Current()[0].minimum, 11) << "older ones are gone, and not zero";
    EXPECT_EQ(range.Current()[0].maximum, 160010);
    store.SetWhere({2147483647, 0, true});
    range.Clear(TwoRows());
    range.AddAll(store);
    EXPECT_EQ(range.Current()[0].count, 160000);
}

TEST(RangeStatistics, MayBeReadWhileItIsAddedTo) {
    RangeStatistics range;
    range.SetMaximum(1000);
    range.Enable(0);
    std::thread timer([&] {
        for (int n = 0; n < 2000; ++n) {
            static_cast<void>(range.Add({n % 1000}));
        }
    });
    for (int n = 0; n < 200; ++n) {
        const RangeStatistics::Items items = range.Current();
        EXPECT_LE(items[0].Average(), 1000);
    }
    timer.join();
    EXPECT_EQ(range.Current()[0].count, 2000);
}

TEST(RowStatistics, ShowWhatTheDisplayAsksFor) {
    RowStatistics rows;
    rows.Clear(TwoRows());
    EXPECT_EQ(rows.Shown(0, ValueDisplay::Instantaneous), std::nullopt);
    rows.Add({10, 5000, 3});
    rows.Add({20, 1, 3});
    rows.Add({15, 2, 3});
    EXPECT_EQ(rows.Shown(0, ValueDisplay::Instantaneous), 15);
    EXPECT_EQ(rows.Shown(0, ValueDisplay::Average), 15);
    EXPECT_EQ(rows.Shown(0, ValueDisplay::Min), 10);
    EXPECT_EQ(rows.Shown(0, ValueDisplay::Max), 20);
    EXPECT_EQ(rows.Shown(1, ValueDisplay::Max), 5000) << "the fields show the true value";
    EXPECT_EQ(rows.Shown(1, ValueDisplay::Average), 1667);
    EXPECT_EQ(rows.Shown(2, ValueDisplay::Max), std::nullopt) << "the row is off";
    EXPECT_EQ(rows.Shown(8, ValueDisplay::Max), std::nullopt);
    rows.Clear(TwoRows());
    EXPECT_EQ(rows.Shown(0, ValueDisplay::Max), std::nullopt);
}

TEST(ValueDisplay, IsKeptInTheSettings) {
    MemorySettings settings;
    EXPECT_EQ(ReadValueDisplay(settings), ValueDisplay::Instantaneous);
    WriteValueDisplay(settings, ValueDisplay::Max);
    EXPECT_EQ(settings.GetProfileInt("Display", "PerfValueDisplay", -1), 3);
    EXPECT_EQ(ReadValueDisplay(settings), ValueDisplay::Max);
    for (const int wrong : {4, -1}) {
        settings.WriteProfileInt("Display", "PerfValueDisplay", wrong);
        EXPECT_EQ(ReadValueDisplay(settings), ValueDisplay::Instantaneous);
    }
}

} // namespace
} // namespace busquill::test
