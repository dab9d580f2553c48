#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "support/signal_definitions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::IsEmpty;
using Words = std::vector<std::uint32_t>;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t start = GroupAttribute::Start;
constexpr std::uint8_t end = GroupAttribute::End;
constexpr std::uint8_t noUngroup = GroupAttribute::NoUngroup;

TEST(SignalList, BuildsAGroupOfEachBusAndASignalOfEachLine) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 2, 8)->color = 0x123456;
    tables.Bus("FRAME", 0, 0, 72);
    CSignalList list(tables.Tables());
    list.BuildFromTables(0, ModeState);

    ASSERT_EQ(SignalNames(list), (std::vector<std::string>{"AD[0]", "AD[1]", "AD[2]", "FRAME"}));
    const std::uint8_t attributes[] = {start, 0, end, 0};
    for (std::int32_t i = 0; i < 3; ++i) {
        const CSignal& member = list[static_cast<std::size_t>(i)];
        EXPECT_EQ(member.baseName, "AD");
        EXPECT_EQ(member.bitIndex, i);
        EXPECT_EQ(member.dataIndex, 8 + i);
        EXPECT_EQ(member.color, 0x123456U);
        EXPECT_TRUE(member.grouped);
        EXPECT_TRUE(member.showValue);
        EXPECT_EQ(member.groupAttribute, attributes[i]);
        EXPECT_EQ(member.radix, Radix::Hex);
    }
    EXPECT_EQ(list[0].groupName, "AD[2:0]");
    EXPECT_EQ(list[0].groupWidth, 3U);
    EXPECT_EQ(list.mode, ModeState);
}

TEST(SignalList, ALineOfOneBitHasNoIndexNoBracketsAndNoRows) {
    HandMadeTables tables;
    tables.Bus("FRAME", 0, 0, 72);
    CSignalList list(tables.Tables());
    list.BuildFromTables(8, ModeState);
    ASSERT_EQ(list.Size(), 1U);
    EXPECT_EQ(list[0].name, "FRAME");
    EXPECT_EQ(list[0].bitIndex, -1);
    EXPECT_FALSE(list[0].grouped);
    EXPECT_FALSE(list[0].showValue);
    EXPECT_THAT(list[0].groupData, IsEmpty());
}

TEST(SignalList, ReversesABusWhoseFirstPositionIsAboveItsLast) {
    HandMadeTables tables;
    tables.Bus("BG", 3, 0, 80);
    CSignalList list(tables.Tables());
    list.BuildFromTables(0, ModeState);
    ASSERT_EQ(list.Size(), 4U);
    for (std::int32_t i = 0; i < 4; ++i) {
        const CSignal& member = list[static_cast<std::size_t>(i)];
        EXPECT_EQ(member.name, "BG[" + std::to_string(i) + "]");
        EXPECT_EQ(member.dataIndex, 83 - i);
        EXPECT_TRUE(member.bitReverse);
    }
    EXPECT_EQ(list[0].groupName, "BG[3:0]");
}

TEST(SignalList, HidesPermanentSignalsUnlessTheyAreShown) {
    HandMadeTables tables;
    tables.Bus("OFF", 0, 0, 1, 0);
    tables.Bus("NOT OFFERED", 0, 0, 2, flagNotOffered);
    tables.Bus("TIME", 0, 17, 110, flagPermanent | flagNotOffered);
    tables.Bus("BOTH", 0, 0, 3, flagPermanent | flagShown);
    tables.Bus("SHOWN", 0, 0, 4, flagShown);
    CSignalList list(tables.Tables());
    list.BuildFromTables(0, ModeState);
    ASSERT_EQ(RowNames(list), (std::vector<std::string>{"TIME[17:0]", "BOTH", "SHOWN"}));
    EXPECT_TRUE(list[0].permanent);
    EXPECT_TRUE(list[0].hidden);
    EXPECT_TRUE(list[17].hidden);
    EXPECT_EQ(list[0].VisibleHeight(), 0);
    const CSignal* both = FindRow(list, "BOTH");
    EXPECT_TRUE(both->permanent);
    EXPECT_FALSE(both->hidden);
    EXPECT_FALSE(FindRow(list, "SHOWN")->permanent);
}

TEST(SignalList, PrintsTheTimeBusAsATime) {
    HandMadeTables tables;
    tables.Bus("TIME", 0, 17, 110);
    CSignalList list(tables.Tables());
    list.BuildFromTables(0, ModeState);
    EXPECT_EQ(list[0].radix, Radix::Time);
    EXPECT_EQ(list[1].radix, Radix::Hex);
}

TEST(SignalList, AllocatesSamplesInWholeWords) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 1, 0);
    CSignalList list(tables.Tables());
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> sizes = {
        {0, 0}, {1, 32}, {5, 32}, {32, 32}, {33, 64}};
    for (const auto& [asked, given] : sizes) {
        list.BuildFromTables(asked, ModeState);
        EXPECT_EQ(list[0].numSamples, given);
        EXPECT_EQ(list[0].data, Words(given / 32, 0));
        EXPECT_EQ(list[0].groupData.size(), given);
        EXPECT_THAT(list[0].mask, IsEmpty());
    }
}

TEST(SignalList, CreatesMasksInPatternModesOnly) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 1, 0);
    CSignalList list(tables.Tables());
    for (const std::uint32_t mode : {ModeState, ModeWaveform, ModeEvents, ModeStimulus}) {
        list.BuildFromTables(15, mode);
        const bool masked = mode == ModeEvents || mode == ModeStimulus;
        EXPECT_EQ(list.mode, mode);
        EXPECT_EQ(list[1].mask, Words(masked ? 1 : 0, 0));
        EXPECT_EQ(list[0].groupMask, Bytes(masked ? 32 : 0, 0));
    }
}

TEST(SignalList, ADecodedDefinitionIsAGroupOfTheBitsOfItsFirstValue) {
    HandMadeTables tables;
    tables.Bus("CLK", 0, 0, 109);
    tables.Bus("WRITE", 0, 0, 78);
    tables.Bus("IRQ", 0, 6, 88);
    const auto def = tables.Decoded("COMMAND", {78, 90, 140}, {{"Read", "011"}}, "WRITE");
    def->color = 0xFF;
    CSignalList list(tables.Tables());
    list.BuildFromTables(5, ModeState);

    ASSERT_EQ(RowNames(list), (std::vector<std::string>{"CLK", "COMMAND", "WRITE", "IRQ[6:0]"}));
    // No definition covers bit 140.
    const CSignal& first = list[1];
    const CSignal& last = list[2];
    EXPECT_EQ(first.baseName, "WRITE");
    EXPECT_EQ(first.bitIndex, 0);
    EXPECT_EQ(first.dataIndex, 78);
    EXPECT_EQ(first.groupAttribute, start | noUngroup);
    EXPECT_EQ(first.groupName, "COMMAND");
    EXPECT_EQ(first.decoded, def);
    EXPECT_EQ(first.color, 0xFFU);
    EXPECT_EQ(first.radix, Radix::Hex);
    EXPECT_TRUE(first.showValue);
    EXPECT_EQ(first.groupWidth, 2U);
    EXPECT_EQ(first.labelTable.size(), 32U);
    EXPECT_EQ(last.name, "IRQ[2]");
    EXPECT_EQ(last.bitIndex, 2);
    EXPECT_EQ(last.dataIndex, 90);
    EXPECT_EQ(last.groupAttribute, end);
    EXPECT_EQ(last.decoded, nullptr);
}

TEST(SignalList, ADecodedDefinitionOfOneBitIsASignalOfThatName) {
    HandMadeTables tables;
    tables.Bus("LINES", 0, 7, 88);
    tables.Decoded("ANOMALY", {94}, {{"None", "X"}, {"Use Checklist", "1"}}, "LINES[7:0]");
    CSignalList list(tables.Tables());
    list.BuildFromTables(1, ModeState);
    EXPECT_EQ(list[0].name, "ANOMALY");
    EXPECT_EQ(list[0].baseName, "LINES");
    EXPECT_EQ(list[0].bitIndex, 6);
    EXPECT_FALSE(list[0].grouped);
    EXPECT_NE(list[0].decoded, nullptr);
    EXPECT_THAT(list[0].groupData, IsEmpty());
}

TEST(SignalList, DropsADecodedDefinitionWithoutAPlace) {
    HandMadeTables tables;
    tables.Bus("CLK", 0, 0, 109);
    tables.Bus("EXT", 0, 1, 96);
    tables.Decoded("SAMPLE", {96, 97}, {{"DUMMY", "XX"}}, "");
    tables.Decoded("LOST", {96, 97}, {{"DUMMY", "XX"}}, "AD[63:0]");
    tables.Decoded("UNCOVERED", {5, 6}, {{"DUMMY", "XX"}}, "CLK");
    tables.Decoded("EMPTY", {}, {}, "CLK");
    CSignalList list(tables.Tables());
    list.BuildFromTables(1, ModeState);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"CLK", "EXT[1:0]"}));
}

TEST(SignalList, PlacesADecodedSignalBeforeAnother) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 7, 0);
    tables.Decoded("DATA", {0, 1}, {{"00", "XX"}}, "AD[7:0]");
    tables.Decoded("=<>", {2, 3}, {{"=", "00"}}, "DATA");
    CSignalList list(tables.Tables());
    list.BuildFromTables(1, ModeState);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"=<>", "DATA", "AD[7:0]"}));
}

TEST(SignalList, AddsDecodedDefinitionsWhoseConditionHolds) {
    const std::vector<std::pair<BoardTraits, std::vector<std::string>>> boards = {
        {Board::Pci32(), {"ANY", "32", "NOT X", "AD[7:0]"}},
        {Board::Pci64(), {"ANY", "64", "NOT X", "AD[7:0]"}},
        {Board::PciX(), {"ANY", "X", "AD[7:0]"}},
    };
    for (const auto& [board, names] : boards) {
        HandMadeTables tables(board);
        tables.Bus("AD", 0, 7, 0);
        const auto add = [&](const char* name, DefCondition condition) {
            tables.Decoded(name, {0, 1}, {{"", "XX"}}, "AD[7:0]", DecodeKind::Label, condition);
        };
        add("ANY", DefCondition::Always);
        add("32", DefCondition::Pci32);
        add("64", DefCondition::Pci64);
        add("X", DefCondition::PciX);
        add("NOT X", DefCondition::NotPciX);
        CSignalList list(tables.Tables());
        list.BuildFromTables(0, ModeState);
        EXPECT_EQ(RowNames(list), names);
    }
}

TEST(SignalList, AStimulusHasNoAnomalyRow) {
    HandMadeTables tables;
    tables.Bus("CLK", 0, 0, 109);
    tables.Bus("LINE", 0, 0, 94, flagNotOffered);
    tables.Decoded("ANOMALY", {94}, {{"None", "X"}}, "CLK");
    CSignalList list(tables.Tables());
    list.BuildFromTables(15, ModeStimulus);
    EXPECT_EQ(RowNames(list), std::vector<std::string>{"CLK"});
    list.BuildFromTables(8, ModeEvents);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"ANOMALY", "CLK"}));
}

TEST(SignalList, AddsAPartOfABus) {
    HandMadeTables tables;
    const auto ad = tables.Bus("AD", 0, 31, 0);
    const auto clk = tables.Bus("CLK", 0, 0, 109);
    CSignalList list(tables.Tables());
    const CSignal* line = list.AddSignal(nullptr, clk, 5, 0, 0, 0x11, Radix::Hex, false);
    const CSignal* group = list.AddSignal(line, ad, 5, 4, 6, 0x22, Radix::Octal, true);
    const CSignal* bit = list.AddSignal(nullptr, ad, 5, 9, 9, 0x33, Radix::Binary, true);

    EXPECT_EQ(SignalNames(list),
              (std::vector<std::string>{"AD[4]", "AD[5]", "AD[6]", "CLK", "AD[9]"}));
    EXPECT_EQ(group, &list[0]);
    EXPECT_EQ(group->groupName, "AD[6:4]");
    EXPECT_EQ(group->groupAttribute, start);
    EXPECT_EQ(list[2].groupAttribute, end);
    EXPECT_EQ(group->color, 0x22U);
    EXPECT_EQ(group->radix, Radix::Octal);
    EXPECT_TRUE(list[1].showValue);
    EXPECT_FALSE(group->permanent);
    EXPECT_EQ(line->bitIndex, -1);
    EXPECT_EQ(line->numSamples, 32U);
    EXPECT_FALSE(bit->grouped);
    EXPECT_EQ(bit->bitIndex, 9);
    EXPECT_EQ(bit->radix, Radix::Binary);
}

TEST(SignalList, AddsNoPositionsOutsideABus) {
    HandMadeTables tables;
    const auto ad = tables.Bus("AD", 0, 7, 0);
    CSignalList list(tables.Tables());
    EXPECT_EQ(list.AddSignal(nullptr, ad, 1, 5, 4, 0, 1, true), nullptr);
    EXPECT_EQ(list.AddSignal(nullptr, ad, 1, 8, 2000000000, 0, 1, true), nullptr);
    EXPECT_EQ(list.AddSignal(nullptr, nullptr, 1, 0, 0, 0, 1, true), nullptr);
    EXPECT_TRUE(list.Empty());
    ASSERT_NE(list.AddSignal(nullptr, ad, 1, -3, 100, 0, 1, true), nullptr);
    EXPECT_EQ(RowNames(list), std::vector<std::string>{"AD[7:0]"});
}

struct Member {
    const char* baseName;
    std::int32_t bitIndex;
};

std::string GroupName(const std::vector<Member>& members) {
    CSignalList list(NoTables());
    for (const Member& member : members) {
        CSignal* signal = list.InsertBlank(nullptr);
        signal->baseName = member.baseName;
        signal->bitIndex = member.bitIndex;
    }
    list.BuildGroup(&list[0]);
    return list[0].groupName;
}

TEST(GroupName, ShowsRunsOfABusAsRanges) {
    EXPECT_EQ(GroupName({{"AD", 0}, {"AD", 1}, {"AD", 2}, {"AD", 3}}), "AD[3:0]");
    EXPECT_EQ(GroupName({{"AD", 5}}), "AD[5]");
    EXPECT_EQ(GroupName({{"CLK", -1}}), "CLK");
    EXPECT_EQ(GroupName({{"AD", 0}, {"AD", 1}, {"AD", 4}, {"AD", 5}}), "AD[1:0,5:4]");
    EXPECT_EQ(GroupName({{"AD", 0}, {"AD", 2}, {"AD", 4}}), "AD[0,2,4]");
    EXPECT_EQ(GroupName({{"AD", 3}, {"AD", 2}}), "AD[3,2]");
}

TEST(GroupName, ShowsSeveralBusesWithCommas) {
    EXPECT_EQ(GroupName({{"C/BE", 0}, {"C/BE", 1}, {"AD", 0}, {"AD", 1}}), "C/BE[1:0],AD[1:0]");
    EXPECT_EQ(GroupName({{"AD", 7}, {"C/BE", 0}}), "AD[7],C/BE[0]");
    EXPECT_EQ(GroupName({{"IRDY", -1}, {"TRDY", -1}}), "IRDY,TRDY");
    EXPECT_EQ(GroupName({{"IRDY", -1}, {"AD", 0}, {"AD", 1}}), "IRDY,AD[1:0]");
    EXPECT_EQ(GroupName({{"AD", 0}, {"AD", 1}, {"IRDY", -1}}), "AD[1:0],IRDY");
    // Two signals of one bus without an index, such as two blank rows, show where a run would end.
    EXPECT_EQ(GroupName({{"CLK", -1}, {"CLK", -1}}), "CLK-1,");
}

/// Three signals of a bus, each with different samples.
void FillThree(CSignalList& list, std::uint32_t numSamples) {
    for (std::uint32_t i = 0; i < 3; ++i) {
        CSignal* signal = list.InsertBlank(nullptr);
        signal->baseName = "AD";
        signal->bitIndex = static_cast<std::int32_t>(i);
        SetSamples(*signal, Words(WordsFor(numSamples), 0), numSamples);
    }
}

TEST(BuildGroup, PacksARowForEachSample) {
    CSignalList list(NoTables());
    FillThree(list, 34);
    list[0].data = {0x1, 0x2};
    list[1].data = {0x3, 0x0};
    list[2].data = {0x80000001, 0x3};
    list[2].groupAttribute = end;
    list.BuildGroup(&list[0]);
    EXPECT_EQ(list[0].groupWidth, 3U);
    ASSERT_EQ(list[0].groupData.size(), 34U);
    EXPECT_EQ(list[0].groupData[0], 0b111);
    EXPECT_EQ(list[0].groupData[1], 0b010);
    EXPECT_EQ(list[0].groupData[31], 0b100);
    EXPECT_EQ(list[0].groupData[32], 0b100);
    EXPECT_EQ(list[0].groupData[33], 0b101);
    EXPECT_THAT(list[0].groupMask, IsEmpty());
}

TEST(BuildGroup, PutsTheNinthMemberIntoASecondByte) {
    CSignalList list(NoTables());
    for (int i = 0; i < 9; ++i) {
        SetSamples(*list.InsertBlank(nullptr), Words{i == 8 || i == 0 ? 1U : 2U}, 2);
    }
    list.BuildGroup(&list[0]);
    EXPECT_EQ(list[0].groupData, (Bytes{0x01, 0x01, 0xFE, 0x00}));
}

TEST(BuildGroup, CreatesMaskRowsOnlyIfEveryMemberHasAMask) {
    CSignalList list(NoTables());
    FillThree(list, 2);
    for (const auto& signal : list.All()) {
        signal->mask = {0x1};
    }
    list.BuildGroup(&list[0]);
    EXPECT_EQ(list[0].groupMask, (Bytes{0x7, 0x0}));
    list[1].mask.clear();
    list.BuildGroup(&list[0]);
    EXPECT_THAT(list[0].groupMask, IsEmpty());
}

TEST(BuildGroup, TakesTheNumberOfSamplesFromTheLastMember) {
    CSignalList list(NoTables());
    FillThree(list, 40);
    list[0].data = {1, 1};
    SetSamples(list[2], Words{2}, 2);
    list.BuildGroup(&list[0]);
    EXPECT_EQ(list[0].groupData, (Bytes{0x1, 0x4}));

    // Members with fewer samples than the last one count as 0.
    SetSamples(list[2], Words{2, 0, 2}, 96);
    list.BuildGroup(&list[0]);
    EXPECT_EQ(list[0].groupData.size(), 96U);
    EXPECT_EQ(list[0].groupData[32], 0x1);
    EXPECT_EQ(list[0].groupData[65], 0x4);
}

TEST(BuildGroup, ExtendsToTheEndOfTheListWhenTheLastMemberIsMissing) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 2, 0);
    tables.Bus("FRAME", 0, 0, 72);
    tables.Bus("IRDY", 0, 0, 74);
    CSignalList list(tables.Tables());
    list.BuildFromTables(1, ModeState);
    list[2].selected = true;
    list.DeleteSelected();
    list.BuildGroup(&list[0]);
    EXPECT_EQ(list[0].groupWidth, 4U);
    EXPECT_EQ(list[0].groupName, "AD[1:0],FRAME,IRDY");
    EXPECT_EQ(list.GroupEnd(0), 4U);
}

TEST(BuildGroup, DoesNothingForASignalOfAnotherList) {
    CSignalList list(NoTables());
    FillThree(list, 1);
    CSignal stranger;
    list.BuildGroup(&stranger);
    list.BuildGroup(nullptr);
    EXPECT_EQ(stranger.groupWidth, 0U);
}

TEST(SignalList, CopiesSignalsWithTheirModeAndSamples) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 1, 0);
    CSignalList list(tables.Tables());
    list.BuildFromTables(8, ModeEvents);
    CSignalList copy(tables.Tables());
    copy.InsertBlank(nullptr);
    copy.CopyFrom(list);
    list[0].data[0] = 0xFF;
    EXPECT_EQ(copy.mode, ModeEvents);
    EXPECT_EQ(SignalNames(copy), SignalNames(list));
    EXPECT_EQ(copy[0].data, Words{0});
    EXPECT_EQ(copy[0].groupMask, list[0].groupMask);

    copy.CopyFrom(copy);
    EXPECT_EQ(copy.Size(), 2U);
}

TEST(SignalList, KeepsTheDefinitionOfASignalWhenTheTablesAreRebuilt) {
    HandMadeTables tables;
    tables.Bus("AD", 0, 1, 0);
    tables.Decoded("KIND", {0, 1}, {{"Zero", "00"}}, "AD[1:0]");
    CSignalList list(tables.Tables());
    list.BuildFromTables(1, ModeState);
    tables.Tables().decodedSignals.Replace({});
    EXPECT_STREQ(list[0].Label(0), "Zero");
}

TEST(SignalList, CannotBeConstructedWithoutTables) {
    static_assert(!std::is_default_constructible_v<CSignalList>);
}

TEST(SignalList, OfEmptyTablesIsEmptyAndCanBeFilledByHand) {
    HandMadeTables tables;
    auto def = tables.Decoded("COMMAND", {64, 65}, {{"Read", "01"}});
    CSignalList list(NoTables());
    list.BuildFromTables(8, ModeState);
    EXPECT_TRUE(list.Empty());
    EXPECT_EQ(list.AddSignal(nullptr, def, 8, 0, 0, 0, Radix::Hex, true), nullptr)
        << "no bus has its bits";
    CSignal& blank = *list.InsertBlank(nullptr);
    blank.selected = true;
    list.SetSelectedColor(0x10);
    EXPECT_EQ(blank.color, 0x10U);
}

} // namespace
} // namespace busquill::test
