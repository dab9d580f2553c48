#include "exerciser/target_records.h"
#include "link/board_identity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

const TargetFamily& Family(const char* model) {
    return TargetFamilyOf(TraitsOfModel(model).value());
}

TEST(TargetSetup, PacksTheForm) {
    TargetForm form;
    form.addressSpace = 2;
    form.busStart = {1, 2, 3, 4, 5, 6, 7, 8};
    form.busLength = 17;
    form.dataSize = 3;
    form.waitStates = 10;
    form.response = 2;
    form.command = TargetWrite;
    EXPECT_THAT(BuildTargetSetup(form, Family("PCIKite")),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, // base on the bus
                            17,                     // 64 KB
                            2,                      // configuration space
                            0xAB,                   // 10 wait states, disconnect, 64 bit
                            2));                    // write, not enabled
    form.enabled = true;
    form.command = TargetRead;
    EXPECT_EQ(BuildTargetSetup(form, Family("PCIKite"))[11], 0x81);
}

TEST(TargetSetup, OfAFormThatNobodyChanged) {
    EXPECT_THAT(BuildTargetSetup({}, Family("PCIKite")),
                ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 24, 0, 0x02, 1));
}

TEST(TargetSetup, HoldsTheModifierAboveTheSpaceOnVme) {
    TargetForm form;
    EXPECT_EQ(BuildTargetSetup(form, Family("VMEKite"))[9], 0x34);
    form.addressModifier = 0x3F;
    EXPECT_EQ(BuildTargetSetup(form, Family("VMEKite"))[9], 0xFC);
    EXPECT_EQ(BuildTargetSetup(form, Family("VSBKite"))[9], 0);
}

TEST(TargetAddress, HoldsTheValueAndWhetherThereIsAFile) {
    TargetForm form;
    form.dataValue = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_THAT(BuildTargetAddress(form), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0));
    form.dataType = DataIsFile;
    EXPECT_THAT(BuildTargetAddress(form), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 1));
}

} // namespace
} // namespace busquill::test
