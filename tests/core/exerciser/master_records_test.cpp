#include "exerciser/master_records.h"
#include "link/board_identity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

const MasterFamily& Family(const char* model) {
    return MasterFamilyOf(TraitsOfModel(model).value());
}

MasterForm SampleForm() {
    MasterForm form;
    form.addressSpace = 1;
    form.addressModifier = 0xFF;
    form.addressSize = 3;
    form.addressStart = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    form.dataSize = 2;
    form.dataCycle = 1;
    form.dataType = DataIsTarget;
    form.dataValue = {0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8};
    form.attrTag = 0x1F;
    form.attrBusNum = 0xC2;
    form.attrDeviceNum = 0x0E;
    form.attrFunctionNum = 7;
    form.busRequestLevel = 4;
    return form;
}

TEST(MasterSetup, IsTheImageOfTheRegisters) {
    const Bytes expected = {
        1,                                              // I/O
        3,                                              // addresses of 64 bits
        0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, // start
        29,                                             // bytes of the first step
        2,                                              // data of 32 bits
        1,                                              // burst
        2,                                              // data from the target
        0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, // the value ...
        0,    0,    0,    0,    0,    0,    0,    0,    //
        0,    0,    0,    0,    0,    0,    0,    0,    //
        0,    0,    0,    0,    0,    0,    0,    0,    // ... and 24 zeros
        0,    0,                                        // neither modifier nor level
    };
    EXPECT_EQ(BuildMasterSetup(SampleForm(), Family("PCIKite"), 29, {}), expected);
    EXPECT_EQ(BuildMasterSetup(SampleForm(), Family("VSBKite"), 29, {}), expected);
}

TEST(MasterSetup, EndsWithModifierAndLevelOnVme) {
    const Bytes setup = BuildMasterSetup(SampleForm(), Family("VMEKite"), 1, {});
    ASSERT_EQ(setup.size(), 48U);
    EXPECT_EQ(setup[46], 0x3F) << "six bits";
    EXPECT_EQ(setup[47], 4);
}

TEST(MasterSetup, HoldsTheBytesOfAFileInPlaceOfTheValue) {
    const Bytes file = {9, 8, 7};
    Bytes setup = BuildMasterSetup(SampleForm(), Family("PCIKite"), 3, file);
    EXPECT_EQ(Bytes(setup.begin() + 14, setup.begin() + 19), (Bytes{9, 8, 7, 0, 0}));
    setup = BuildMasterSetup(SampleForm(), Family("PCIKite"), 32, Bytes(32, 0x77));
    EXPECT_EQ(Bytes(setup.begin() + 14, setup.end()), [] {
        Bytes expected(32, 0x77);
        expected.resize(34);
        return expected;
    }());
}

TEST(MasterAddress, EndsWithTheLengthOfTheStep) {
    EXPECT_THAT(BuildMasterAddress({1, 2, 3, 4, 5, 6, 7, 8}, 32),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 32));
}

TEST(MasterAttributes, AreTagBusDeviceFunction) {
    EXPECT_THAT(BuildMasterAttributes(SampleForm()), ElementsAre(0x1F, 0xC2, 0x0E, 7));
}

TEST(MasterControl, IsTheCodeOfTheCommand) {
    const auto code = [](std::int32_t command) {
        return int{MasterControlByte(command, MasterStep::First)};
    };
    EXPECT_EQ(code(MasterRead), 1);
    EXPECT_EQ(code(MasterWrite), 2);
    EXPECT_EQ(code(MasterVerify), 4);
    EXPECT_EQ(code(MasterTest), 5);
    EXPECT_EQ(code(MasterCompare), 6);
    EXPECT_EQ(code(MasterSplitCompletion), 7);
    EXPECT_EQ(code(MasterNoCommand), 0);
}

TEST(MasterControl, MarksLaterSteps) {
    EXPECT_EQ(MasterControlByte(MasterVerify, MasterStep::Later), 0x84);
    EXPECT_EQ(MasterControlByte(MasterNoCommand, MasterStep::Later), 0x80);
}

TEST(MasterStatus, ListsErrorsBeforeTheResult) {
    EXPECT_THAT(MasterStatusLines(0x62), ElementsAre("No Device Select", "No Target Ack", "Fail"));
    EXPECT_THAT(MasterStatusLines(0x71),
                ElementsAre("No Device Select", "No Target Ack", "No Bus Grant", "Pass"));
    EXPECT_THAT(MasterStatusLines(0x10), ElementsAre("No Bus Grant"));
}

TEST(MasterStatus, ListsNothingForOtherResults) {
    EXPECT_THAT(MasterStatusLines(0x00), IsEmpty());
    for (const std::uint8_t result : {3, 4, 5, 6, 7}) {
        EXPECT_THAT(MasterStatusLines(result), IsEmpty()) << int{result};
    }
    EXPECT_THAT(MasterStatusLines(0x09), ElementsAre("Pass")) << "bit 3 does not count";
}

} // namespace
} // namespace busquill::test
