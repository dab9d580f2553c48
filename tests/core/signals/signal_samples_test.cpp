#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "support/signal_definitions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace busquill::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// AD, C/BE and FRAME as on PCI, with a command, a value field over AD and the time.
class LoadSamplesTest : public testing::Test {
protected:
    void SetUp() override {
        tables_.Bus("AD", 0, 63, 0);
        tables_.Bus("C/BE", 0, 7, 64);
        tables_.Bus("FRAME", 0, 0, 72);
        tables_.Bus("TIME", 0, 17, 110, flagPermanent);
        tables_.Decoded("COMMAND", HandMadeTables::Range(64, 71),
                        {{"All", "XXXXXXXX", 3},
                         {"Mem Rd", "XXXX0110"},
                         {"Mem Wr", "XXXX0111"},
                         {"DAC-Mem Rd", "01101101"}},
                        "AD[63:0]", DecodeKind::Command);
        tables_.Decoded("ADDRESS32", HandMadeTables::Range(0, 31),
                        {{"00000000", "XXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX"}}, "AD[63:0]",
                        DecodeKind::Address);
        list_.BuildFromTables(0, ModeState);
    }
    void Load(const std::vector<SampleRecord>& records) {
        list_.ResizeSamples(static_cast<std::uint32_t>(records.size()));
        list_.LoadSamples(0, records);
    }
    CSignal& Row(const char* name) { return *FindRow(list_, name); }
    Bytes RowOf(const char* name, std::size_t sample) {
        const auto row = Row(name).GroupRow(sample);
        return {row.begin(), row.end()};
    }
    HandMadeTables tables_;
    CSignalList list_{tables_.Tables()};
};

TEST_F(LoadSamplesTest, UnpacksACaptureIntoRowsBitsAndLabels) {
    Load(CaptureBuilder().Idle().Write(0x12345678, 0xAB).Read(0x1000, 0xCDEF).Records());

    // Idle, address, data, address, turnaround, data: FRAME# ~_~_~~
    EXPECT_EQ(Row("FRAME").data, std::vector<std::uint32_t>{0b110101});
    EXPECT_EQ(RowOf("AD[63:0]", 1), (Bytes{0x78, 0x56, 0x34, 0x12, 0, 0, 0, 0}));
    EXPECT_EQ(RowOf("ADDRESS32", 1), (Bytes{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(RowOf("ADDRESS32", 2), (Bytes{0xAB, 0, 0, 0}));
    EXPECT_EQ(RowOf("C/BE[7:0]", 1), Bytes{0xF7});
    EXPECT_EQ(RowOf("TIME[17:0]", 0), (Bytes{30 * 4, 0, 0}));
    EXPECT_STREQ(Row("COMMAND").Label(1), "Mem Wr");
    EXPECT_STREQ(Row("COMMAND").Label(3), "Mem Rd");
    EXPECT_EQ(Row("COMMAND").Label(0), nullptr) << "\"All\" is for pattern tables";
    EXPECT_STREQ(Row("ADDRESS32").Label(0), "00000000");
}

TEST_F(LoadSamplesTest, AddsABlockToEarlierSamples) {
    const auto records = CaptureBuilder().Write(0x100, 1).Idle(60).Write(0x200, 2).Records();
    list_.ResizeSamples(static_cast<std::uint32_t>(records.size()));
    const std::span all(records);
    list_.LoadSamples(32, all.subspan(32));
    EXPECT_EQ(RowOf("ADDRESS32", 0), (Bytes{0, 0, 0, 0}));
    list_.LoadSamples(0, all.first(32));
    EXPECT_EQ(RowOf("ADDRESS32", 0), (Bytes{0x00, 0x01, 0, 0}));
    EXPECT_EQ(RowOf("ADDRESS32", 62), (Bytes{0x00, 0x02, 0, 0}));
    EXPECT_STREQ(Row("COMMAND").Label(62), "Mem Wr");
}

TEST_F(LoadSamplesTest, IgnoresRecordsAfterTheSamples) {
    const auto records = CaptureBuilder().Write(0x100, 1).Idle(98).Records();
    list_.ResizeSamples(3);
    list_.LoadSamples(0, records);
    EXPECT_EQ(Row("FRAME").data, std::vector<std::uint32_t>{0b110});
    EXPECT_EQ(Row("ADDRESS32").groupData.size(), 12U);

    list_.LoadSamples(3, records);
    list_.LoadSamples(0xFFFFFFFF, records);
    list_.LoadSamples(0, {});
    EXPECT_EQ(Row("FRAME").data, std::vector<std::uint32_t>{0b110});
}

TEST_F(LoadSamplesTest, SkipsLongRunsOfAbsentSamples) {
    // Samples 600 to 1799 are absent; other absent samples lie between present ones.
    const auto records = CaptureBuilder().Write(0x100, 1).Idle(1997).Read(0x200).Records();
    std::vector<std::uint32_t> absent(WordsFor(static_cast<std::uint32_t>(records.size())), 0);
    for (std::size_t sample = 600; sample < 1800; ++sample) {
        absent[sample / 32] |= 1U << (sample % 32);
    }
    absent[1] = 0xFF;
    list_.ResizeSamples(static_cast<std::uint32_t>(records.size()));
    list_.LoadSamples(0, records, absent);
    CSignalList whole(tables_.Tables());
    whole.BuildFromTables(0, ModeState);
    whole.ResizeSamples(static_cast<std::uint32_t>(records.size()));
    whole.LoadSamples(0, records);
    for (std::size_t i = 0; i < whole.Size(); ++i) {
        for (std::size_t sample = 0; sample < records.size(); ++sample) {
            if (sample >= 600 && sample < 1800) {
                continue;
            }
            ASSERT_EQ(list_[i].Bit(sample), whole[i].Bit(sample)) << i << " " << sample;
            ASSERT_EQ(list_[i].Label(sample), whole[i].Label(sample)) << i << " " << sample;
            ASSERT_TRUE(std::ranges::equal(list_[i].GroupRow(sample), whole[i].GroupRow(sample)));
        }
    }
    EXPECT_EQ(RowOf("C/BE[7:0]", 1200),
              Bytes{0}); // the value of an idle clock, had the sample been present
    EXPECT_EQ(RowOf("C/BE[7:0]", 1900), Bytes{0xFF});
}

TEST_F(LoadSamplesTest, DoesNothingInAListWithoutSamples) {
    list_.LoadSamples(0, CaptureBuilder().Write(0x100, 1).Records());
    EXPECT_TRUE(Row("FRAME").data.empty());
    EXPECT_TRUE(Row("ADDRESS32").groupData.empty());
    CSignalList none(tables_.Tables());
    none.LoadSamples(0, CaptureBuilder().Idle().Records());
    EXPECT_TRUE(none.Empty());
}

TEST_F(LoadSamplesTest, ReloadsOneGroup) {
    const auto records = CaptureBuilder().Write(0x100, 1).Idle(98).Records();
    Load(records);
    const auto ad = tables_.Tables().busSignals.FindByName("AD");
    CSignal* group = list_.AddSignal(nullptr, ad, 5, 8, 15, 0, Radix::Hex, true);
    Row("FRAME").data[0] = 0x5;
    list_.LoadSignal(group, 0, records);
    EXPECT_EQ(group->numSamples, 100U);
    EXPECT_EQ(group->groupData.size(), 100U);
    EXPECT_EQ(group->groupData[0], 0x01);
    EXPECT_EQ(Row("FRAME").data[0], 0x5U) << "no other row is changed";

    list_.LoadSignal(group, 0, std::vector{RecordOf({8, 15})});
    EXPECT_EQ(group->groupData[0], 0x81) << "old bits are cleared";
    EXPECT_EQ(group->numSamples, 100U);
    list_.LoadSignal(nullptr, 0, records);
}

TEST_F(LoadSamplesTest, ReloadsOneDecodedSignalWithItsLabels) {
    const auto records = CaptureBuilder().Idle().Write(0x100, 1).Records();
    Load(records);
    const auto def = tables_.Tables().decodedSignals.FindByName("COMMAND");
    CSignal* command = list_.AddSignal(nullptr, def, 3, 0, 0, 0, Radix::Hex, true);
    list_.LoadSignal(command, 0, records);
    EXPECT_STREQ(command->Label(1), "Mem Wr");
    EXPECT_EQ(command->Label(0), nullptr);
}

TEST_F(LoadSamplesTest, RebuildsTheRowsOfWholeWordsFromTheMembers) {
    Load(CaptureBuilder().Idle(100).Records());
    CSignal& ad = Row("AD[63:0]");
    const std::size_t first = list_.IndexOf(&ad);
    for (std::size_t word = 0; word < 4; ++word) {
        list_[first + 9].data[word] = 0xFFFFFFFF;
    }
    list_.RebuildGroupRows(33, 2);
    EXPECT_EQ(RowOf("AD[63:0]", 31)[1], 0);
    EXPECT_EQ(RowOf("AD[63:0]", 32)[1], 0x02);
    EXPECT_EQ(RowOf("AD[63:0]", 63)[1], 0x02);
    EXPECT_EQ(RowOf("AD[63:0]", 64)[1], 0);
    list_.RebuildGroupRows(0, 0);
    list_.RebuildGroupRows(99, 0xFFFFFFFF);
    EXPECT_EQ(RowOf("AD[63:0]", 99)[1], 0x02);
}

// The same bit by bit, as simply as possible.

void LoadPlainly(CSignal& signal, std::size_t first, std::span<const SampleRecord> records) {
    for (std::size_t i = 0; i < records.size(); ++i) {
        const std::size_t sample = first + i;
        if (sample < signal.numSamples && signal.dataIndex >= 0 && signal.dataIndex < 144 &&
            records[i].Bit(signal.dataIndex)) {
            signal.data[sample / 32] |= 1U << sample % 32;
        }
    }
}

Bytes PlainRow(const CSignalList& list, std::size_t start, std::size_t sample) {
    Bytes row(list[start].RowBytes(), 0);
    for (std::size_t k = 0; k < list[start].groupWidth; ++k) {
        if (list[start + k].Bit(sample)) {
            row[k / 8] |= static_cast<std::uint8_t>(1 << k % 8);
        }
    }
    return row;
}

std::uint8_t PlainLabel(const CSignal& signal, const Bytes& row, std::uint32_t mode) {
    const auto& values = signal.decoded->values;
    for (std::size_t v = 0; v < values.size(); ++v) {
        std::size_t k = 0;
        bool matches = (values[v].skipModes & mode) == 0;
        for (const std::uint8_t code : values[v].pattern) {
            if (code != CodeUnused) {
                const bool bit = (row[k / 8] >> k % 8 & 1) != 0;
                matches = matches && (code == CodeAny || bit == (code == CodeOne));
                ++k;
            }
        }
        if (matches) {
            return static_cast<std::uint8_t>(v + 1);
        }
    }
    return 0;
}

void ExpectAsIfLoadedPlainly(const CSignalList& list, CSignalList& plain, std::size_t first,
                             std::span<const SampleRecord> records) {
    for (std::size_t i = 0; i < list.Size(); ++i) {
        LoadPlainly(plain[i], first, records);
        ASSERT_EQ(list[i].data, plain[i].data) << "signal " << i;
    }
    for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
        for (std::size_t sample = 0; list[i].grouped && sample < list[i].numSamples; ++sample) {
            const Bytes row = PlainRow(plain, i, sample);
            const auto packed = list[i].GroupRow(sample);
            ASSERT_TRUE(std::equal(row.begin(), row.end(), packed.begin(), packed.end()))
                << "group " << i << " sample " << sample;
            const bool loaded = sample >= first && sample < first + records.size();
            if (list[i].decoded && loaded) {
                ASSERT_EQ(list[i].labelTable[sample], PlainLabel(list[i], row, list.mode))
                    << "label of " << i << " sample " << sample;
            }
        }
    }
}

using Random = std::mt19937;

int Pick(Random& random, int first, int last) {
    return std::uniform_int_distribution<int>(first, last)(random);
}

std::vector<SampleRecord> RandomRecords(Random& random, std::size_t count) {
    std::vector<SampleRecord> records(count);
    for (SampleRecord& record : records) {
        for (std::uint8_t& byte : record.bytes) {
            byte = static_cast<std::uint8_t>(Pick(random, 0, 255));
        }
    }
    return records;
}

std::shared_ptr<CDecodedSignalDef> RandomDefinition(Random& random, int firstPosition, int width) {
    auto def = std::make_shared<CDecodedSignalDef>();
    for (int v = 0; v < Pick(random, 1, 12); ++v) {
        CDecodedValue value;
        value.label = "label";
        value.skipModes = Pick(random, 0, 4) == 0 ? ModeState : 0U;
        value.pattern.fill(CodeUnused);
        for (int k = 0; k < width; ++k) {
            // Mostly any, so that wide patterns match sometimes.
            constexpr std::array<std::uint8_t, 6> codes = {0, 1, 3, 3, 3, 3};
            value.pattern.at(static_cast<unsigned>(firstPosition + k)) =
                codes.at(static_cast<unsigned>(Pick(random, 0, 5)));
        }
        def->values.push_back(value);
    }
    return def;
}

/// A group anywhere in the record; or a reversed one; or one of any bits with blanks among them.
void AddRandomGroup(CSignalList& list, Random& random) {
    const int kind = Pick(random, 0, 3);
    const int width = Pick(random, 1, kind == 0 ? 18 : 70);
    const int first = Pick(random, 0, 143 - width);
    CSignal* start = nullptr;
    for (int k = 0; k < width; ++k) {
        CSignal* signal = list.InsertBlank(nullptr);
        signal->grouped = true;
        signal->dataIndex = kind == 1   ? first + width - k
                            : kind == 2 ? Pick(random, -2, 150)
                                        : first + k;
        start = k == 0 ? signal : start;
        if (k == width - 1) {
            signal->groupAttribute = GroupAttribute::End;
        }
    }
    start->groupAttribute |= GroupAttribute::Start;
    list.BuildGroup(start);
    if (Pick(random, 0, 1) == 0) {
        start->decoded = RandomDefinition(random, first, width);
    }
}

class RandomLists : public testing::TestWithParam<unsigned> {};

TEST_P(RandomLists, LoadLikeALoopOverSingleBits) {
    const unsigned seed = GetParam();
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    CSignalList list(NoTables());
    for (int i = Pick(random, 1, 8); i > 0; --i) {
        if (Pick(random, 0, 2) == 0) {
            list.InsertBlank(nullptr)->dataIndex = Pick(random, -2, 150);
        } else {
            AddRandomGroup(list, random);
        }
    }
    const int numSamples = Pick(random, 1, 1200);
    list.ResizeSamples(static_cast<std::uint32_t>(numSamples));
    for (const auto& signal : list.All()) {
        if (Pick(random, 0, 30) == 0) {
            signal->ResizeSamples(static_cast<std::uint32_t>(Pick(random, 0, numSamples)));
        }
    }
    CSignalList plain(NoTables());
    plain.CopyFrom(list);
    for (int round = 0; round < 3; ++round) {
        const int first = Pick(random, 0, numSamples + 10);
        const auto records = RandomRecords(random, static_cast<std::size_t>(Pick(random, 1, 700)));
        SCOPED_TRACE(std::to_string(records.size()) + " from " + std::to_string(first) + " of " +
                     std::to_string(numSamples));
        list.LoadSamples(static_cast<std::uint32_t>(first), records);
        ExpectAsIfLoadedPlainly(list, plain, static_cast<std::size_t>(first), records);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(LoadSamples, UnpacksAGroupOfAnyWidthAnywhereInTheRecord) {
    Random random(1);
    const auto records = RandomRecords(random, 3);
    for (int width : {1, 7, 8, 9, 16, 18, 31, 32, 33, 55, 56, 57, 58, 63, 64, 65, 72, 144}) {
        for (int first = 0; first + width <= 144; ++first) {
            CSignalList list(NoTables());
            for (int k = 0; k < width; ++k) {
                CSignal* signal = list.InsertBlank(nullptr);
                signal->dataIndex = first + k;
                signal->grouped = true;
            }
            list[0].groupAttribute = GroupAttribute::Start;
            list.BuildGroup(&list[0]);
            list.ResizeSamples(3);
            CSignalList plain(NoTables());
            plain.CopyFrom(list);
            list.LoadSamples(0, records);
            ExpectAsIfLoadedPlainly(list, plain, 0, records);
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << width << " bits from " << first;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomLists, testing::Range(1U, 41U));

} // namespace
} // namespace busquill::test
