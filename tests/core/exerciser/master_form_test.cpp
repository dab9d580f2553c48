#include "exerciser/master_form.h"
#include "exerciser/target_form.h"
#include "link/board_identity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

BoardTraits Board(const char* model, std::int32_t busMode) {
    BoardTraits board = TraitsOfModel(model).value();
    board.bus.busMode = busMode;
    return board;
}

TEST(MasterFamily, OfPciHasNeitherModifierNorAttributes) {
    const MasterFamily& family = MasterFamilyOf(Board("PCIKite", BusPci));
    EXPECT_THAT(family.spaces, ElementsAre("Memory", "I/O", "Config"));
    EXPECT_THAT(family.commands, ElementsAre("Read", "Write", "Verify", "Test", "Compare"));
    EXPECT_FALSE(family.addressModifier);
    EXPECT_FALSE(family.attributes);
    EXPECT_EQ(family.windowWidth, 600);
}

TEST(MasterFamily, OfPciXHasAttributesAndSplitCompletions) {
    const MasterFamily& family = MasterFamilyOf(Board("PCIKite", BusPciX));
    EXPECT_THAT(family.spaces, ElementsAre("Memory", "I/O", "Config"));
    EXPECT_THAT(family.commands,
                ElementsAre("Read", "Write", "Verify", "Test", "Compare", "Split Completion"));
    EXPECT_FALSE(family.addressModifier);
    EXPECT_TRUE(family.attributes);
    EXPECT_EQ(family.windowWidth, 840);
}

TEST(MasterFamily, OfVmeHasTheModifier) {
    for (const char* model : {"VMEKite", "VMELark", "VMEKiteP2"}) {
        const MasterFamily& family = MasterFamilyOf(Board(model, BusVme));
        EXPECT_THAT(family.spaces, ElementsAre("Memory", "I/O", "Config")) << "of the hidden list";
        EXPECT_THAT(family.commands, Not(Contains("Split Completion")));
        EXPECT_TRUE(family.addressModifier);
        EXPECT_FALSE(family.attributes);
        EXPECT_EQ(family.windowWidth, 600);
    }
}

TEST(MasterFamily, OfVsbHasItsOwnSpaces) {
    const MasterFamily& family = MasterFamilyOf(Board("VSBKite", BusVsb));
    EXPECT_THAT(family.spaces, ElementsAre("Sys", "I/O", "Alt"));
    EXPECT_THAT(family.commands, Not(Contains("Split Completion")));
    EXPECT_FALSE(family.addressModifier);
    EXPECT_FALSE(family.attributes);
    EXPECT_EQ(family.windowWidth, 600);
}

TEST(TargetFamily, HidesTheSpacesOfVme) {
    EXPECT_THAT(TargetFamilyOf(Board("VMEKite", BusVme)).spaces, ElementsAre("Memory"));
    EXPECT_TRUE(TargetFamilyOf(Board("VMEKite", BusVme)).addressModifier);
    for (const auto& [model, mode] :
         {std::pair{"PCIKite", BusPci}, {"PCIKite", BusPciX}, {"VSBKite", BusVsb}}) {
        EXPECT_THAT(TargetFamilyOf(Board(model, mode)).spaces,
                    ElementsAre("Memory", "I/O", "Config"));
        EXPECT_FALSE(TargetFamilyOf(Board(model, mode)).addressModifier);
    }
}

TEST(ChangeFamily, TakesTheSpaceByItsName) {
    const MasterFamily& pci = MasterFamilyOf(Board("PCIKite", BusPci));
    const MasterFamily& vme = MasterFamilyOf(Board("VMEKite", BusVme));
    const MasterFamily& vsb = MasterFamilyOf(Board("VSBKite", BusVsb));
    const std::tuple<const MasterFamily*, int, const MasterFamily*, int> changes[] = {
        {&pci, 0, &vsb, 0}, {&pci, 1, &vsb, 1}, {&pci, 2, &vsb, 0}, {&vsb, 2, &pci, 0},
        {&vsb, 1, &pci, 1}, {&pci, 2, &vme, 0}, {&vsb, 1, &vme, 0}};
    for (const auto& [from, before, to, after] : changes) {
        MasterForm form;
        form.addressSpace = before;
        ChangeFamily(form, *from, *to);
        EXPECT_EQ(form.addressSpace, after) << before;
    }
}

TEST(ChangeFamily, LeavesNoCommandThatTheFamilyLacks) {
    const MasterFamily& pci = MasterFamilyOf(Board("PCIKite", BusPci));
    const MasterFamily& pciX = MasterFamilyOf(Board("PCIKite", BusPciX));
    for (std::int32_t command = MasterNoCommand; command <= MasterSplitCompletion; ++command) {
        MasterForm form;
        form.command = command;
        ChangeFamily(form, pci, pciX);
        EXPECT_EQ(form.command, command);
        ChangeFamily(form, pciX, pci);
        EXPECT_EQ(form.command, command == MasterSplitCompletion ? MasterNoCommand : command);
    }
}

TEST(ChangeFamily, LeavesTheOtherFields) {
    MasterForm form;
    form.addressSize = 3;
    form.addressStart = {1, 2, 3};
    form.dataFilename = "a.dat";
    form.attrTag = 7;
    form.addressModifier = 0x39;
    form.busRequestLevel = 8;
    form.repeat = "12";
    const MasterForm before = form;
    for (const auto& [model, mode] :
         {std::pair{"VMEKite", BusVme}, {"VSBKite", BusVsb}, {"PCIKite", BusPciX}}) {
        ChangeFamily(form, MasterFamilyOf(Board("PCIKite", BusPci)),
                     MasterFamilyOf(Board(model, mode)));
        EXPECT_EQ(form, before) << model;
    }
}

TEST(ChangeFamily, OfATargetHasOneSpaceOnVme) {
    const TargetFamily& pci = TargetFamilyOf(Board("PCIKite", BusPci));
    const TargetFamily& vme = TargetFamilyOf(Board("VMEKite", BusVme));
    TargetForm form;
    form.addressSpace = 2;
    form.waitStates = 9;
    ChangeFamily(form, pci, vme);
    EXPECT_EQ(form.addressSpace, 0);
    EXPECT_EQ(form.waitStates, 9);
    ChangeFamily(form, vme, pci);
    EXPECT_EQ(form.addressSpace, 0);
}

TEST(TargetLengths, AreTwentyFive) {
    EXPECT_EQ(TextInList(targetLengths, 0), "0");
    EXPECT_EQ(TextInList(targetLengths, 11), "1 KB");
    EXPECT_EQ(TextInList(targetLengths, 24), "8 MB");
    EXPECT_EQ(TextInList(targetLengths, TargetForm().busLength), "8 MB");
    EXPECT_EQ(TextInList(targetLengths, 25), "");
    EXPECT_EQ(TextInList(targetLengths, -1), "");
}

TEST(MasterForm, BeginsAsARead) {
    const MasterForm form;
    EXPECT_EQ(form.addressModifier, 0x0D);
    EXPECT_EQ(TextInList(exerciserSizes, form.addressSize), "32 bit");
    EXPECT_EQ(TextInList(exerciserSizes, form.dataSize), "32 bit");
    EXPECT_EQ(TextInList(masterCycles, form.dataCycle), "Single");
    EXPECT_EQ(TextInList(masterDataTypes, form.dataType), "Value");
    EXPECT_EQ(TextInList(masterCommands, form.command), "Read");
    EXPECT_EQ(form.repeat, "1");
    EXPECT_EQ(form.busRequestLevel, 1);
}

TEST(BusRequestLevel, IsTheLowestOfAMask) {
    EXPECT_EQ(BusRequestLevelOf(1), 0);
    EXPECT_EQ(BusRequestLevelOf(8), 3);
    EXPECT_EQ(BusRequestLevelOf(0x0C), 2);
    EXPECT_EQ(BusRequestLevelOf(0), 0);
    EXPECT_EQ(BusRequestLevelOf(0x10), 0);
    EXPECT_EQ(BusRequestMask(3), 8);
    EXPECT_EQ(BusRequestLevelText(3), "Level 3");
}

TEST(RepeatCount, IsAtLeastOne) {
    EXPECT_EQ(RepeatCount("3"), 3);
    EXPECT_EQ(RepeatCount("0"), 1);
    EXPECT_EQ(RepeatCount(""), 1);
    EXPECT_EQ(RepeatCount("-5"), 1);
    EXPECT_EQ(RepeatCount("x"), 1);
    EXPECT_EQ(RepeatCount("12x"), 12);
}

} // namespace
} // namespace busquill::test
