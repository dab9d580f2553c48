#include "signals/signal.h"
#include "support/board_tables.h"
#include "support/signal_definitions.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Words = std::vector<std::uint32_t>;
using Bytes = std::vector<std::uint8_t>;

CSignal SignalAt(std::int32_t dataIndex, std::uint32_t numSamples) {
    CSignal signal;
    signal.dataIndex = dataIndex;
    signal.ResizeSamples(numSamples);
    return signal;
}

TEST(SampleRecord, TakesBitNFromByteNDividedByEight) {
    SampleRecord record;
    record.bytes[9] = 0x10;
    EXPECT_TRUE(record.Bit(76));
    EXPECT_FALSE(record.Bit(75));
    EXPECT_FALSE(record.Bit(77));
}

TEST(Signal, HasTheDefaultsOfABlankRow) {
    const CSignal signal;
    EXPECT_EQ(signal.bitIndex, -1);
    EXPECT_EQ(signal.dataIndex, -1);
    EXPECT_EQ(signal.height, 20);
    EXPECT_EQ(signal.width, 30);
    EXPECT_EQ(signal.radix, 1);
    EXPECT_EQ(signal.numSamples, 0U);
    EXPECT_TRUE(signal.data.empty());
}

TEST(Signal, ShowsItsHeightUnlessHiddenOrALaterMember) {
    CSignal signal;
    signal.height = 24;
    signal.width = 60;
    EXPECT_EQ(signal.VisibleHeight(), 24);
    EXPECT_EQ(signal.VisibleWidth(), 60);

    signal.grouped = true;
    EXPECT_EQ(signal.VisibleHeight(), 0);
    EXPECT_EQ(signal.VisibleWidth(), 0);

    signal.groupAttribute = GroupAttribute::Start;
    EXPECT_EQ(signal.VisibleHeight(), 24);
    EXPECT_EQ(signal.VisibleWidth(), 60);

    signal.hidden = true;
    EXPECT_EQ(signal.VisibleHeight(), 0);
    EXPECT_EQ(signal.VisibleWidth(), 0);
}

TEST(Signal, HasNoBitWithoutData) {
    CSignal signal;
    signal.numSamples = 7;
    EXPECT_FALSE(signal.Bit(0));
    EXPECT_EQ(signal.Room(), 0U);
}

TEST(Signal, ResizesToZeroedWords) {
    CSignal signal;
    SetSamples(signal, Words{0xFFFFFFFF}, 32);
    signal.ResizeSamples(33);
    EXPECT_EQ(signal.data, (Words{0, 0}));
    EXPECT_EQ(signal.numSamples, 33U);
    signal.ResizeSamples(0);
    EXPECT_TRUE(signal.data.empty());
}

TEST(Signal, ResizesTheRowsOfAGroupAndTheLabelsButNotTheMask) {
    CSignal signal;
    signal.grouped = true;
    signal.groupAttribute = GroupAttribute::Start;
    signal.groupWidth = 9;
    signal.groupData = {1, 2};
    signal.mask = {0x3};
    signal.decoded = std::make_shared<CDecodedSignalDef>();
    signal.labelTable = {1};
    signal.ResizeSamples(3);
    EXPECT_EQ(signal.groupData, Bytes(6, 0));
    EXPECT_EQ(signal.labelTable, Bytes(3, 0));
    EXPECT_EQ(signal.mask, Words{0x3});
}

TEST(Signal, DoesNotResizeRowsOfALaterMember) {
    CSignal signal;
    signal.grouped = true;
    signal.groupWidth = 9;
    signal.ResizeSamples(3);
    EXPECT_TRUE(signal.groupData.empty());
}

/// The words of a lone signal after each run of records has been loaded at its first sample.
struct Loaded {
    std::uint32_t first;
    std::vector<SampleRecord> records;
};
ZeroedArray<std::uint32_t> LoadedWords(std::int32_t dataIndex, std::uint32_t numSamples,
                                       const std::vector<Loaded>& runs) {
    CSignalList list(NoTables());
    CSignal& signal = *list.InsertBlank(nullptr);
    signal.dataIndex = dataIndex;
    signal.ResizeSamples(numSamples);
    for (const Loaded& run : runs) {
        list.LoadSamples(run.first, run.records);
    }
    EXPECT_EQ(signal.VisibleHeight(), 20);
    return signal.data;
}

TEST(LoadedSignal, TakesItsBitOfEachRecord) {
    const std::vector<SampleRecord> records = {RecordOf({76}), RecordOf({75, 77}), RecordOf({76})};
    EXPECT_EQ(LoadedWords(76, 40, {{31, records}}), (Words{0x80000000, 0x2}));
}

TEST(LoadedSignal, OnlySetsBits) {
    EXPECT_EQ(LoadedWords(0, 32, {{3, {RecordOf({0})}}, {3, {RecordOf({1})}}}), Words{0x8});
}

TEST(LoadedSignal, LoadsNothingWithoutADataIndexOrSamples) {
    const std::vector<SampleRecord> records = {RecordOf({0})};
    EXPECT_TRUE(LoadedWords(0, 0, {{0, records}}).empty());
    EXPECT_EQ(LoadedWords(-1, 32, {{0, records}}), Words{0});
    EXPECT_EQ(LoadedWords(0, 32, {{0, {}}, {32, records}, {0xFFFFFFFF, records}}), Words{0});
}

TEST(LoadedSignal, LoadsNothingForABitOutsideTheRecord) {
    for (const std::int32_t index : {144, 147, 100000, -2}) {
        EXPECT_EQ(LoadedWords(index, 32, {{0, {RecordOf({0, 143})}}}), Words{0}) << index;
    }
}

TEST(LoadedSignal, IgnoresRecordsAfterItsSamples) {
    const std::vector<SampleRecord> records(50, RecordOf({0}));
    EXPECT_EQ(LoadedWords(0, 3, {{1, records}}), Words{0x6});
}

TEST(Signal, CopiesItsBuffersAndSharesItsDefinition) {
    CSignal signal = SignalAt(5, 32);
    signal.name = "AD[5]";
    signal.mask = {1};
    signal.groupData = {7};
    signal.groupMask = {3};
    signal.labelTable = {2};
    signal.decoded = std::make_shared<CDecodedSignalDef>();
    CSignal copy;
    copy.CopyFrom(signal);
    signal.data[0] = signal.mask[0] = 9;
    signal.groupData[0] = signal.groupMask[0] = signal.labelTable[0] = 9;
    EXPECT_EQ(copy.name, "AD[5]");
    EXPECT_EQ(copy.data, Words{0});
    EXPECT_EQ(copy.mask, Words{1});
    EXPECT_EQ(copy.groupData, Bytes{7});
    EXPECT_EQ(copy.groupMask, Bytes{3});
    EXPECT_EQ(copy.labelTable, Bytes{2});
    EXPECT_EQ(copy.decoded, signal.decoded);
}

TEST(Signal, HasNoRowAndNoLabelOutsideItsSamples) {
    CSignal signal;
    signal.grouped = true;
    signal.groupAttribute = GroupAttribute::Start;
    signal.groupWidth = 12;
    signal.ResizeSamples(2);
    EXPECT_EQ(signal.GroupRow(1).size(), 2U);
    EXPECT_TRUE(signal.GroupRow(2).empty());
    EXPECT_TRUE(signal.GroupMaskRow(0).empty());
    EXPECT_EQ(signal.Label(0), nullptr);
    EXPECT_EQ(signal.Label(5), nullptr);
}

TEST(Signal, UsesTheGroupsNameForItsRow) {
    CSignal signal;
    signal.name = "AD[0]";
    signal.groupName = "AD[31:0]";
    EXPECT_EQ(signal.RowName(), "AD[0]");
    signal.grouped = true;
    EXPECT_EQ(signal.RowName(), "AD[31:0]");
}

} // namespace
} // namespace busquill::test
