#include "export/sample_period.h"
#include "support/capture_builder.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

SampleRows RowsOf(const std::vector<SampleRecord>& records) {
    SampleRows rows;
    for (const SampleRecord& record : records) {
        rows.Add(static_cast<std::int32_t>(rows.Size()), record);
    }
    return rows;
}

const SampleRows regular = RowsOf(CaptureBuilder().Idle(5).Records()); // 30 ns apart

/// The same with one sample later than the others.
SampleRows Irregular() {
    SampleRows rows = regular;
    const SampleTime time;
    while (time.Of(rows.records[3]) == time.Of(rows.records[2])) {
        // The lowest bit of TIME differs.
        for (int bit = 0; bit < SampleRecord::bitCount; ++bit) {
            SampleRecord changed = rows.records[3];
            changed.SetBit(bit, !changed.Bit(bit));
            if (time.Of(changed) != time.Of(rows.records[3])) {
                rows.records[3] = changed;
                break;
            }
        }
    }
    return rows;
}

TEST(SteadyPeriod, IsTheTimeBetweenSamplesIfItIsTheSameForAll) {
    SteadyPeriod steady;
    steady.Take(regular);
    steady.Take(regular);
    EXPECT_EQ(steady.Period(), 30'000);
    steady.Take(Irregular());
    EXPECT_EQ(steady.Period(), std::nullopt);
}

TEST(SteadyPeriod, IsUnknownForOneSample) {
    SteadyPeriod steady;
    EXPECT_EQ(steady.Period(), std::nullopt);
    steady.Take(RowsOf(CaptureBuilder().Idle().Records()));
    EXPECT_EQ(steady.Period(), std::nullopt);
}

TEST(PeriodCheck, AllowsForTimesInWholeNanoseconds) {
    const auto holds = [](std::int64_t period, const SampleRows& rows) {
        PeriodCheck check(period, false);
        check.Take(rows);
        return check.Holds();
    };
    EXPECT_TRUE(holds(30'000, regular));
    EXPECT_TRUE(holds(30'300, regular)); // a clock of 33 MHz
    EXPECT_FALSE(holds(31'000, regular));
    EXPECT_FALSE(holds(30'000, Irregular()));
}

TEST(SampleRate, IsRounded) {
    EXPECT_EQ(SampleRate(30'000), 33'333'333U);
    EXPECT_EQ(SampleRate(1'875), 533'333'333U);
    EXPECT_EQ(SampleRate(15'000), 66'666'667U);
}

} // namespace
} // namespace busquill::test
