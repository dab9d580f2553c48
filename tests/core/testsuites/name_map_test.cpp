#include "platform/text_file.h"
#include "platform/working_directory.h"
#include "support/paths.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "testsuites/name_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NameMap MapOf(const std::string& text) {
    const TempDir dir;
    TextReader file;
    EXPECT_TRUE(file.Open(dir.Write("map.txt", text)));
    NameMap map;
    map.Read(file);
    return map;
}

std::string NameOf(const NameMap& map, std::uint32_t id) {
    const std::string* name = map.Find(id);
    return name != nullptr ? *name : "(none)";
}

TEST(NameMap, ALineIsANumberInHexadecimalABlankAndAName) {
    const NameMap map =
        MapOf("8086 Intel Corporation\r\n1b4B    Marvell  Ltd. \n  0x12 With signs\n");
    EXPECT_EQ(NameOf(map, 0x8086), "Intel Corporation");
    EXPECT_EQ(NameOf(map, 0x1B4B), "Marvell  Ltd.");
    EXPECT_EQ(NameOf(map, 0x12), "With signs");
    EXPECT_EQ(NameOf(map, 0x13), "(none)");
}

TEST(NameMap, ALineWithoutABlankIsSkipped) {
    EXPECT_EQ(MapOf("8086\n\n   \n8087\tTab\n1234 \n").Size(), 0U);
    EXPECT_EQ(NameOf(MapOf("8087\tTab separated\n"), 0x8087), "separated")
        << "the tab ends the number, the first blank begins the name";
}

TEST(NameMap, AnyLineWithABlankCounts) {
    EXPECT_EQ(NameOf(MapOf("# a remark\n"), 0), "a remark");
}

TEST(NameMap, TheFirstNameOfANumberWins) {
    EXPECT_EQ(NameOf(MapOf("02 First\n02 Second\n2 Third\n"), 2), "First");
}

class DeviceNamesTest : public testing::Test {
protected:
    DeviceNames Load() { return LoadDeviceNames(WorkingDirectory(dir.Path()), prompts); }

    const TempDir dir;
    RecordingPrompts prompts;
};

TEST_F(DeviceNamesTest, AVendorIsFoundByItsNumberAClassByItsTopByte) {
    dir.Write("PCIVendors.txt", "8086 Intel Corporation\n");
    dir.Write("PCIClass.txt", "02 Network controller\n028000 Other network\n");
    const DeviceNames names = Load();
    EXPECT_EQ(names.VendorName(0x8086), "Intel Corporation");
    EXPECT_EQ(names.ClassName(0x028000), "Network controller");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(DeviceNamesTest, WhatHasNoNameIsShownByItsNumber) {
    dir.Write("PCIVendors.txt", "");
    dir.Write("PCIClass.txt", "");
    const DeviceNames names = Load();
    EXPECT_EQ(names.VendorName(0x1A), "Unknown - ID 0x001a");
    EXPECT_EQ(names.ClassName(0x00C0DE), "Unknown - ID 0x00c0de");
}

TEST_F(DeviceNamesTest, MissingFilesAreReportedWithTheirPaths) {
    const DeviceNames names = Load();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Warning: Vendor map file " + dir.File("PCIVendors.txt") + " not found",
                            "Warning: Class map file " + dir.File("PCIClass.txt") + " not found"));
    EXPECT_EQ(names.ClassName(0x020000), "Unknown - ID 0x020000");
}

TEST(DeviceNamesOfTheProgram, AreThereForEveryBaseClass) {
    RecordingPrompts prompts;
    const DeviceNames names = LoadDeviceNames(WorkingDirectory(SourceFile("data")), prompts);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(names.VendorName(0x8086), "Intel Corporation");
    EXPECT_GT(names.vendors.Size(), 2000U);
    for (std::uint32_t base = 0; base <= 0x13; ++base) {
        EXPECT_NE(names.classes.Find(base), nullptr) << base;
    }
    EXPECT_EQ(names.ClassName(0x060400), "Bridge");
}

} // namespace
} // namespace busquill::test
