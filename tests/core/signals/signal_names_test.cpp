#include "signals/record_field.h"
#include "signals/signal_list.h"
#include "signals/signal_names.h"
#include "support/board_tables.h"

#include <gmock/gmock.h>

#include <random>

namespace busquill::test {
namespace {

using testing::ElementsAre;

std::vector<int> PositionsOf(const BoardTables& board, std::string_view name) {
    const auto found = FindSignal(name, board.tables, {});
    return found ? found->positions : std::vector<int>();
}

TEST(SignalNames, ABusItsLinesAndPartsOfIt) {
    const BoardTables board("PCIKite-1");
    EXPECT_EQ(PositionsOf(board, "AD").size(), 64U);
    EXPECT_THAT(PositionsOf(board, "AD[5]"), ElementsAre(5));
    EXPECT_THAT(PositionsOf(board, "C/BE[3:1]"), ElementsAre(65, 66, 67));
    EXPECT_THAT(PositionsOf(board, "c/be[1:3]"), ElementsAre(65, 66, 67));
    EXPECT_THAT(PositionsOf(board, "FRAME"), ElementsAre(72));
    for (const char* wrong : {"AD[64]", "AD[", "AD[]", "AD[5", "AD[a]", "AD[-1]", "AD[5:]", "ADX",
                              "FRAME[0]", "", "PARITY"}) {
        EXPECT_FALSE(FindSignal(wrong, board.tables, {})) << wrong;
    }
}

TEST(SignalNames, ABitReversedBus) {
    const BoardTables board("VMELark-1", BusVme);
    EXPECT_THAT(PositionsOf(board, "BG"), ElementsAre(83, 82, 81, 80));
    EXPECT_THAT(PositionsOf(board, "BG[0]"), ElementsAre(83));
    EXPECT_EQ(BitName(board.tables, 83), "BG[0]");
    EXPECT_EQ(BitName(board.tables, 80), "BG[3]");
}

TEST(SignalNames, DecodedSignalsOfTheCurrentBus) {
    const BoardTables pci("PCIKite-1");
    const auto command = FindSignal("Command", pci.tables, {});
    ASSERT_TRUE(command);
    EXPECT_EQ(command->name, "COMMAND");
    EXPECT_NE(command->decoded, nullptr);
    const BoardTables pciX("PCIKite-1", BusPciX, 1);
    EXPECT_EQ(FindSignal("COMMAND", pciX.tables, {})->name, "COMMAND(PCI-X)");
    EXPECT_EQ(FindSignal("TAG", pciX.tables, {})->name, "TAG(PCI-X)");
    EXPECT_FALSE(FindSignal("TAG", pci.tables, {}));
}

TEST(SignalNames, PlaceholdersAndComparisonsOfTheBoardAreNotSignals) {
    const BoardTables board("PCIKite-1");
    for (const char* name : {"DELTA", "ACCUM", "SAMPLE", "=<>"}) {
        EXPECT_FALSE(FindSignal(name, board.tables, {})) << name;
    }
}

TEST(SignalNames, AllSignalsAreFoundByTheirNames) {
    for (const auto& [model, mode] :
         std::initializer_list<std::pair<const char*, std::int32_t>>{{"PCIKite-1", BusPci},
                                                                     {"PCIKite-1", BusPciX},
                                                                     {"VMEKite-1", BusVme},
                                                                     {"VMELark-1", BusVme},
                                                                     {"VMEKiteP2-1", BusVmeP2},
                                                                     {"VMEKiteP0-1", BusVmeP0},
                                                                     {"VSBKite-1", BusVsb}}) {
        const BoardTables board(model, mode);
        const auto all = AllSignals(board.tables, {});
        EXPECT_GT(all.size(), 10U) << model;
        for (const NamedSignal& signal : all) {
            const auto found = FindSignal(signal.name, board.tables, {});
            ASSERT_TRUE(found) << signal.name;
            EXPECT_EQ(found->positions, signal.positions) << signal.name;
            EXPECT_EQ(found->decoded, signal.decoded) << signal.name;
        }
    }
}

TEST(SignalNames, LabelsAreThoseOfAListing) {
    const BoardTables board("PCIKite-1");
    const auto labels = [&](const char* name) {
        return LabelsOf(*FindSignal(name, board.tables, {})->decoded);
    };
    EXPECT_THAT(labels("COMMAND"), testing::IsSupersetOf({"Int Ack", "Mem Wr"}));
    EXPECT_THAT(labels("ADDRESS32"), testing::IsEmpty());
    EXPECT_THAT(labels("TIME"), testing::IsEmpty());
}

TEST(SignalNames, RowsOfAListTakePrecedence) {
    BoardTables board("PCIKite-1");
    CSignalList list(board.tables);
    for (const int position : {72, 74}) {
        CSignal* line = list.InsertBlank(nullptr);
        line->name = line->baseName = "AD";
        line->dataIndex = position;
        line->selected = true;
    }
    list.CollapseSelected();
    list[0].groupName = "AD";
    const auto found = FindSignal("ad", board.tables, {&list});
    ASSERT_TRUE(found);
    EXPECT_THAT(found->positions, ElementsAre(72, 74));
}

TEST(SignalNames, BitsWithoutANameAreNumbered) {
    const BoardTables board("PCIKite-1");
    EXPECT_EQ(BitName(board.tables, 5), "AD[5]");
    EXPECT_EQ(BitName(board.tables, 72), "FRAME");
    EXPECT_EQ(BitName(board.tables, 110), "TIME[0]"); // RANGE in a pattern
    EXPECT_EQ(BitName(board.tables, 140), "bit 140");
}

SampleRecord RandomRecord(std::mt19937& random) {
    SampleRecord record;
    for (auto& byte : record.bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return record;
}

TEST(RecordFields, CollectTheirBitsFromAnyPosition) {
    constexpr unsigned seed = 77;
    std::mt19937 random(seed);
    for (int first = 0; first < SampleRecord::bitCount; ++first) {
        for (const int width : {1, 2, 7, 8, 9, 18, 32, 63, 64, 65, 100}) {
            if (first + width > SampleRecord::bitCount) {
                continue;
            }
            std::vector<int> positions;
            for (int i = 0; i < width; ++i) {
                positions.push_back(first + i);
            }
            const SampleRecord record = RandomRecord(random);
            const RecordField field(positions);
            std::vector<std::uint8_t> value(field.Bytes() + 1, 0xEE);
            field.Take(record, value.data());
            for (int i = 0; i < static_cast<int>(8 * field.Bytes()); ++i) {
                const bool bit = i < width && record.Bit(first + i);
                ASSERT_EQ((value[static_cast<std::size_t>(i) / 8] >> (i % 8) & 1) != 0, bit)
                    << first << " " << width << " " << i;
                if (width <= 64 && i < 64) {
                    ASSERT_EQ((field.Word(record) >> i & 1) != 0, bit) << first << " " << width;
                }
            }
            ASSERT_EQ(value.back(), 0xEE); // nothing is written after the value
        }
    }
}

TEST(RecordFields, CollectBitsInAnyOrderAndIgnoreOthers) {
    std::mt19937 random(78);
    const SampleRecord record = RandomRecord(random);
    const RecordField field({143, 0, 71, -1, 500, 9, 8, 7, 6});
    std::array<std::uint8_t, 2> value{};
    field.Take(record, value.data());
    const int positions[] = {143, 0, 71, -1, -1, 9, 8, 7, 6};
    for (std::size_t i = 0; i < 9; ++i) {
        const bool bit = positions[i] >= 0 && record.Bit(positions[i]);
        EXPECT_EQ((value[i / 8] >> (i % 8) & 1) != 0, bit) << i;
        EXPECT_EQ((field.Word(record) >> i & 1) != 0, bit) << i;
    }
}

TEST(RecordFields, HaveNoTimeIfTheListHasNone) {
    BoardTables board("PCIKite-1");
    CSignalList list(board.tables);
    EXPECT_FALSE(SampleTime(list).Known());
    list.BuildFromTables(0, ModeState);
    const SampleTime time(list);
    ASSERT_TRUE(time.Known());
    SampleRecord record;
    record.bytes[13] = 0xC0; // unit 3: seconds
    record.bytes[14] = 0x05; // count 5
    EXPECT_EQ(time.Of(record), 5'000'000'000);
}

} // namespace
} // namespace busquill::test
