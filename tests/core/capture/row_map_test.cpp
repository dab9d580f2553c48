#include "capture/record_pattern.h"
#include "capture/row_map.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

TEST(RowMap, WithoutSamplesEveryRowIsTheFirst) {
    RowMap rows;
    rows.Reset(0, -5, {});
    EXPECT_EQ(rows.RowCount(), 0);
    EXPECT_EQ(rows.RowToSample(0), 0);
    EXPECT_EQ(rows.RowToSample(7), 0);
    EXPECT_FALSE(rows.IsRowSample(0));
    EXPECT_EQ(rows.FirstSampleNumber(), -5);
}

TEST(RowMap, RowsAreSamplesWhileNoneIsLeftOut) {
    RowMap rows;
    rows.Reset(33, 0, {});
    EXPECT_EQ(rows.RowCount(), 33);
    for (std::int64_t sample = 0; sample < 33; ++sample) {
        EXPECT_EQ(rows.RowToSample(sample), sample);
        EXPECT_EQ(rows.SampleToRow(sample), sample);
        EXPECT_TRUE(rows.IsRowSample(sample));
    }
    EXPECT_EQ(rows.RowToSample(33), -1);
    EXPECT_EQ(rows.RowToSample(-1), -1);
    EXPECT_FALSE(rows.IsRowSample(33));
    EXPECT_FALSE(rows.IsRowSample(-1));
}

TEST(RowMap, ExcludedSamplesHaveNoRow) {
    RowMap rows;
    const std::vector<std::uint32_t> excluded = {0x3, 0x1}; // 0, 1 and 32
    rows.Reset(34, 0, excluded);
    EXPECT_EQ(rows.RowCount(), 31);
    EXPECT_EQ(rows.RowToSample(0), 2);
    EXPECT_EQ(rows.RowToSample(30), 33);
    EXPECT_FALSE(rows.IsRowSample(32));
    EXPECT_EQ(rows.SampleToRow(0), 0) << "the first row, as there is none before it";
    EXPECT_EQ(rows.SampleToRow(32), 29) << "the row before";
    EXPECT_EQ(rows.SampleToRow(33), 30);
}

TEST(RowMap, AFilterKeepsWhatMatches) {
    std::vector<SampleRecord> records(70);
    for (const std::size_t odd : {3U, 31U, 32U, 69U}) {
        records[odd].bytes[0] = 1;
    }
    SampleRecord one;
    one.bytes[0] = 1;
    RowMap rows;
    rows.Reset(70, 0, {});
    const std::vector<std::uint32_t> excluded = {1U << 31, 0, 0};
    rows.Filter(records, RecordPattern(one, one), excluded);
    EXPECT_EQ(rows.RowCount(), 3);
    EXPECT_EQ(rows.SampleCount(), 70);
    EXPECT_EQ(rows.RowToSample(0), 3);
    EXPECT_EQ(rows.RowToSample(1), 32);
    EXPECT_EQ(rows.RowToSample(2), 69);
    EXPECT_EQ(rows.SampleToRow(40), 1);
    EXPECT_FALSE(rows.IsRowSample(31));
}

TEST(RowMap, KeepsSamplesWhoseBitIsSet) {
    RowMap rows;
    rows.Reset(70, 0, {});
    const std::vector<std::uint32_t> excluded = {1U << 31, 0, 0};
    rows.Keep(std::vector<std::uint32_t>{1U << 31 | 1U << 3, 1U}, excluded);
    EXPECT_EQ(rows.RowCount(), 2);
    EXPECT_EQ(rows.SampleCount(), 70);
    EXPECT_EQ(rows.RowToSample(0), 3);
    EXPECT_EQ(rows.RowToSample(1), 32);
    EXPECT_EQ(rows.SampleToRow(69), 1);
    EXPECT_TRUE(rows.IsRowSample(3));
    EXPECT_FALSE(rows.IsRowSample(31));
    EXPECT_EQ(rows.RowSamples().size(), 3U);
    EXPECT_EQ(rows.RowSamples()[0], 1U << 3);
}

} // namespace
} // namespace busquill::test
