#include "exerciser/target_document.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string fileHead = "\"FileType\",\"Target File\"\r\n\"Version\",\"1.0\"\r\n";

class TargetDocumentTest : public testing::Test {
protected:
    bool Open(const std::string& lines, const std::string& head = fileHead) {
        return document.OnOpenDocument(dir.Write("in.tgt", head + lines));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.tgt")));
        return ReadWholeFile(dir.File("out.tgt"));
    }
    void UseVme() {
        model = "VMEKite";
        document.FollowBoard();
    }

    const TempDir dir;
    RecordingPrompts prompts;
    const char* model = "PCIKite";
    CTargetDoc document{[this] { return TraitsOfModel(model).value(); }, prompts};
    TargetForm& form = document.Form();
};

TargetForm SampleForm() {
    TargetForm form;
    form.addressSpace = 2;
    form.addressModifier = 0x2F;
    form.busStart = {1, 2, 3};
    form.busLength = 17;
    form.dataSize = 1;
    form.waitStates = 7;
    form.response = 2;
    form.enabled = true;
    form.addressStart = {0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01};
    form.addressEnd = {0x10, 0x32, 0x54, 0x76, 0x98, 0x10, 0x32, 0x54};
    form.dataType = DataIsFile;
    form.dataValue = {0xFF, 0, 0, 0, 0, 0, 0, 0x80};
    form.dataFilename = "a.dat";
    form.command = TargetWrite;
    return form;
}

const std::string rangeLines = "\"AddressSize\",\"64 KB\"\r\n"
                               "\"AddressStart\",\"0123456789abcdef\"\r\n"
                               "\"AddressEnd\",5432109876543210\r\n";
const std::string dataLines = "\"DataSize\",\"16 bit\"\r\n"
                              "\"DataCycle\",\"\"\r\n"
                              "\"DataType\",\"File\"\r\n"
                              "\"DataValue\",\"80000000000000ff\"\r\n"
                              "\"DataFilename\",\"\"\r\n";

TEST_F(TargetDocumentTest, WritesItsFileToTheByte) {
    form = SampleForm();
    EXPECT_EQ(Saved(), fileHead + "\"AddressSpace\",\"Config\"\r\n" + rangeLines + dataLines);
}

TEST_F(TargetDocumentTest, WritesTheModifierOnVme) {
    UseVme();
    form = SampleForm();
    form.addressSpace = 0;
    EXPECT_EQ(Saved(), fileHead + "\"AddressSpace\",\"Memory\"\r\n" + rangeLines +
                           "\"AddressModifier\",\"2f\"\r\n" + dataLines);
}

TEST_F(TargetDocumentTest, KeepsTheRangeButNotTheAnswerOnTheBus) {
    form = SampleForm();
    const std::string text = Saved();
    form = TargetForm();
    EXPECT_TRUE(Open(text, ""));
    TargetForm expected;
    expected.addressSpace = 2;
    expected.busLength = 17;
    expected.dataSize = 1;
    expected.addressStart = SampleForm().addressStart;
    expected.addressEnd = SampleForm().addressEnd;
    expected.dataType = DataIsFile;
    expected.dataValue = SampleForm().dataValue;
    EXPECT_EQ(form, expected);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(TargetDocumentTest, ReadsTheModifierOnVmeOnly) {
    const std::string lines = "AddressModifier,\"ff\"\r\nAddressSpace,\"I/O\"\r\n";
    EXPECT_TRUE(Open(lines));
    EXPECT_EQ(form.addressModifier, 0x0D);
    EXPECT_EQ(form.addressSpace, 1);
    form = TargetForm();
    UseVme();
    EXPECT_TRUE(Open(lines));
    EXPECT_EQ(form.addressModifier, 0x3F);
    EXPECT_EQ(form.addressSpace, 0);
}

TEST_F(TargetDocumentTest, UnknownTextsSelectTheFirstEntry) {
    form = SampleForm();
    EXPECT_TRUE(Open("AddressSpace,\"Alt\"\r\nAddressSize,\"3 KB\"\r\nDataSize,\"65 bit\"\r\n"
                     "DataType,\"Target\"\r\n"));
    EXPECT_EQ(form.addressSpace, 0);
    EXPECT_EQ(form.busLength, 0);
    EXPECT_EQ(form.dataSize, 0);
    EXPECT_EQ(form.dataType, DataIsValue);
}

TEST_F(TargetDocumentTest, ReadsTextsOfAllSizes) {
    EXPECT_TRUE(Open("AddressSize,8\r\nDataSize,\"64 bit\"\r\n"));
    EXPECT_EQ(form.busLength, 4);
    EXPECT_EQ(form.dataSize, 3);
}

TEST_F(TargetDocumentTest, AMissingLineLeavesItsField) {
    form = SampleForm();
    EXPECT_TRUE(Open("AddressStart,12\r\nDataCycle,\"Burst\"\r\nDataFilename,\"b.dat\"\r\n"));
    TargetForm expected = SampleForm();
    expected.addressStart = {0, 0, 0, 0, 0, 0, 0, 0x12};
    EXPECT_EQ(form, expected);
}

TEST_F(TargetDocumentTest, RefusesAnotherTypeOrVersion) {
    form = SampleForm();
    EXPECT_FALSE(Open("DataType,\"Value\"\r\n", "FileType,\"Master File\"\r\nVersion,\"1.0\"\r\n"));
    EXPECT_FALSE(Open("DataType,\"Value\"\r\n", "FileType,\"Target File\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid target file type of 'Master File'.",
                                             "Invalid target file version of ''."));
    EXPECT_EQ(form, SampleForm());
}

} // namespace
} // namespace busquill::test
