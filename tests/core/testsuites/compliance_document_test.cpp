#include "core/testsuites/names_dir.h"
#include "support/recording_prompts.h"
#include "testsuites/compliance_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string fileHead = "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n";

class HintView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) override {
        hints.push_back(hint);
    }
    std::vector<int> hints;
};

class ComplianceDocumentTest : public testing::Test {
protected:
    ComplianceDocumentTest() {
        SetCheckList("[Configuration]\n<For the group>\nCF1. One\n<Do it>\nCF2. Two. More\n"
                     "[Master]\nNo dot\n");
        document.AddView(&view);
    }

    void SetCheckList(const std::string& text) const { dir.Write("ComplianceChecklist.txt", text); }
    bool Open(const std::string& lines, const std::string& head = fileHead) {
        return document.OnOpenDocument(dir.Write("in.cpl", head + lines));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.cpl")));
        return ReadWholeFile(dir.File("out.cpl"));
    }
    /// The indexes of the selected items among the first `count`.
    std::vector<int> Selected(int count = 10) const {
        std::vector<int> indexes;
        for (int i = -1; i < count; ++i) {
            if (document.IsSelected(i)) {
                indexes.push_back(i);
            }
        }
        return indexes;
    }
    const DeviceIdentity& Device() const { return document.Device().Identity(); }

    const NamesDir dir;
    RecordingPrompts prompts;
    CComplianceDoc document{WorkingDirectory(dir.Path()), prompts};
    HintView view;
};

TEST_F(ComplianceDocumentTest, EverythingIsSelectedAtFirst) {
    document.SelectAll(true);
    EXPECT_TRUE(document.IsSelected(0));
    EXPECT_TRUE(document.IsSelected(499));
    EXPECT_FALSE(document.IsSelected(500)) << "beyond the flags";
    EXPECT_FALSE(document.IsSelected(-1));
    CComplianceDoc fresh{WorkingDirectory(dir.Path()), prompts};
    EXPECT_TRUE(fresh.IsSelected(499));
}

TEST_F(ComplianceDocumentTest, WhatLiesBeyondTheFlagsIsNotStored) {
    document.SelectAll(false);
    document.Select(499, true);
    document.Select(500, true);
    document.Select(-1, true);
    EXPECT_THAT(Selected(600), ElementsAre(499));
}

TEST_F(ComplianceDocumentTest, WritesItsFileToTheByte) {
    document.Device().SetIdentity({0x1317,
                                   0x0A85,
                                   {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE},
                                   "Admtek Inc.",
                                   "Network Controller"});
    document.Select(1, false);
    document.Results() = {{{'C', 'F', ' ', 1, 0}, "One", TestOutcome::Passed, 9},
                          {{'C', 'F', ' ', 2, 0}, "Two. More", TestOutcome::Failed, 3},
                          {{'P', 'C', 'I', 12, 0}, "12", TestOutcome::Skipped, 0}};
    EXPECT_EQ(Saved(), "\"FileType\",\"Compliance File\"\r\n"
                       "\"Version\",\"1.0\"\r\n"
                       "\"VendorID\",1317\r\n"
                       "\"DeviceID\",\"0a85\"\r\n"
                       "\"Address\",\"fedcba9876543210\"\r\n"
                       "\"VendorName\",\"Admtek Inc.\"\r\n"
                       "\"Class\",\"Network Controller\"\r\n"
                       "\"Test\",\"\",\"[Configuration]\"\r\n"
                       "\"Test\",\"CF2\",\"Two. More\"\r\n"
                       "\"Test\",\"\",\"[Master]\"\r\n"
                       "\"Test\",\"\",\"No dot\"\r\n"
                       "\"Result\",\"CF1\",\"Passed\",9,\"One\"\r\n"
                       "\"Result\",\"CF2\",\"Failed\",3,\"Two. More\"\r\n"
                       "\"Result\",\"PCI12\",\"Skipped\",0,12\r\n");
}

TEST_F(ComplianceDocumentTest, WithoutACheckListNoTestIsWritten) {
    std::filesystem::remove(dir.File("ComplianceChecklist.txt"));
    EXPECT_EQ(Saved(), fileHead + "\"VendorID\",0000\r\n\"DeviceID\",0000\r\n"
                                  "\"Address\",0000000000000000\r\n\"VendorName\",\"\"\r\n"
                                  "\"Class\",\"\"\r\n");
}

TEST_F(ComplianceDocumentTest, ReadsBackWhatItHasWritten) {
    document.Device().SetIdentity(
        {0xFFFF, 0x0985, {1, 2, 3, 4, 5, 6, 7, 8}, "A, \"B\" C", "Unknown - ID 0x00c0de"});
    document.Select(0, false);
    document.Select(4, false);
    document.Results() = {{{'C', 'F', ' ', 1, 0}, "One", TestOutcome::Failed, 15},
                          {{'C', 'F', ' ', 2, 0}, "Two", TestOutcome::None, 0}};
    document.deviceFound = true;
    const std::string saved = Saved();
    CComplianceDoc other{WorkingDirectory(dir.Path()), prompts};
    other.deviceFound = true;
    ASSERT_TRUE(other.OnOpenDocument(dir.File("out.cpl")));
    EXPECT_EQ(other.Device().Identity().vendorId, 0xFFFFU);
    EXPECT_EQ(other.Device().Identity().deviceId, 0x0985U);
    EXPECT_EQ(other.Device().Identity().address, (BusAddress{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(other.Device().Identity().className, "Unknown - ID 0x00c0de");
    EXPECT_FALSE(other.IsSelected(0));
    EXPECT_TRUE(other.IsSelected(1));
    EXPECT_TRUE(other.IsSelected(2));
    EXPECT_TRUE(other.IsSelected(3));
    EXPECT_FALSE(other.IsSelected(4));
    ASSERT_THAT(other.Results(), SizeIs(2));
    EXPECT_EQ(TestResultText(other.Results()[0]), "Failed(15) ");
    EXPECT_EQ(TestLabel(other.Results()[0]), "CF1.");
    EXPECT_EQ(other.Results()[1].result, TestOutcome::None);
    EXPECT_FALSE(other.deviceFound);
    EXPECT_TRUE(other.loadedFromFile);
}

TEST_F(ComplianceDocumentTest, ALoadedFileReplacesEverythingAndTellsTheViews) {
    document.deviceFound = true;
    document.Results() = {{{'C', 'F', ' ', 1, 0}, "One", TestOutcome::Passed, 0}};
    ASSERT_TRUE(Open("\"VendorID\",\"10a1\"\r\n\"Address\",\"12345\"\r\n"
                     "\"Test\",\"CF1\",\"Whatever\"\r\n\"Test\",\"\",\"No dot\"\r\n"
                     "\"Result\",\"C1\",\"Passed\",\"x7\",\"Short\"\r\n"));
    EXPECT_EQ(Device().vendorId, 0x10A1U);
    EXPECT_EQ(Device().deviceId, 0U) << "not in the file";
    EXPECT_EQ(Device().address, (BusAddress{0, 0, 0, 0, 0, 0, 0x34, 0x12}));
    EXPECT_EQ(Device().vendorName, "") << "not looked up";
    EXPECT_THAT(Selected(), ElementsAre(1, 4));
    ASSERT_THAT(document.Results(), SizeIs(1));
    EXPECT_EQ(TestLabel(document.Results()[0]), "0.") << "an identifier of two characters is lost";
    EXPECT_EQ(document.Results()[0].failCode, 0);
    EXPECT_FALSE(document.deviceFound);
    EXPECT_TRUE(document.loadedFromFile);
    EXPECT_THAT(view.hints, ElementsAre(CComplianceDoc::hintLoaded));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ComplianceDocumentTest, KeysSelectTheFirstItemOfTheirName) {
    SetCheckList("CF1. First\n[G]\nCF1. Second\nCF2. x\n");
    ASSERT_TRUE(Open("\"Test\",\"CF1\",\"Second\"\r\n\"Test\",\"gone\",\"x\"\r\n"
                     "\"Test\",\"cf2\",\"case counts\"\r\n\"Test\",\"CF2\"\r\n"
                     "\"Test\",\"\",\"\"\r\n\"Test\",\"\",\"[G]\"\r\n"));
    EXPECT_THAT(Selected(), ElementsAre(0, 1));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ComplianceDocumentTest, OnlyTheFirst500ItemsAreSelectedByAFile) {
    std::string list;
    for (int i = 0; i <= 500; ++i) {
        list += "T" + std::to_string(1000 + i) + ". x\n";
    }
    SetCheckList(list);
    ASSERT_TRUE(Open("\"Test\",\"T1499\",\"x\"\r\n\"Test\",\"T1500\",\"x\"\r\n"));
    EXPECT_THAT(Selected(600), ElementsAre(499));
}

TEST_F(ComplianceDocumentTest, ShortRecordsAreSkipped) {
    ASSERT_TRUE(Open("\"Result\",\"CF1\",\"Passed\",0\r\n\"VendorID\"\r\n\r\n\"Other\",\"x\"\r\n"
                     "\"Result\",\"CF2\",\"odd\",4,\"Two\"\r\n"));
    ASSERT_THAT(document.Results(), SizeIs(1));
    EXPECT_EQ(document.Results()[0].name, "Two");
    EXPECT_EQ(document.Results()[0].result, TestOutcome::None);
    EXPECT_EQ(document.Results()[0].failCode, 4);
}

TEST_F(ComplianceDocumentTest, ATextThatEndsInAQuoteLosesTheNextLine) {
    document.Results() = {{{'C', 'F', ' ', 1, 0}, "the \"end\"", TestOutcome::Passed, 0},
                          {{'C', 'F', ' ', 2, 0}, "Two", TestOutcome::Passed, 0},
                          {{'C', 'F', ' ', 3, 0}, "Three", TestOutcome::Passed, 0}};
    const std::string path = dir.File("out.cpl");
    Saved();
    ASSERT_TRUE(document.OnOpenDocument(path));
    ASSERT_THAT(document.Results(), SizeIs(2));
    EXPECT_EQ(document.Results()[0].name.find("Two"), std::string::npos) << "not continued";
    EXPECT_EQ(document.Results()[1].name, "Three");
}

TEST_F(ComplianceDocumentTest, AValueOverTwoLinesEndsWithTheFirst) {
    ASSERT_TRUE(Open("\"VendorName\",\"Split\r\nname\"\r\n\"Class\",\"Bridge\"\r\n"));
    EXPECT_EQ(Device().vendorName.substr(0, 5), "Split");
    EXPECT_EQ(Device().vendorName.find("name"), std::string::npos);
    EXPECT_EQ(Device().className, "Bridge");
}

TEST_F(ComplianceDocumentTest, AFileOfAnotherKindIsRefusedAndChangesNothing) {
    document.Select(1, false);
    document.deviceFound = true;
    const std::string lines = "\"VendorID\",1234\r\n\"Test\",\"CF1\",\"One\"\r\n"
                              "\"Result\",\"CF1\",\"Passed\",0,\"One\"\r\n";
    EXPECT_FALSE(Open(lines, "\"FileType\",\"Master File\"\r\n\"Version\",\"1.0\"\r\n"));
    EXPECT_FALSE(Open(lines, "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.1\"\r\n"));
    EXPECT_FALSE(Open(lines, ""));
    EXPECT_FALSE(document.OnOpenDocument("/nonexistent.cpl"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid compliance file type of 'Master File'.",
                                             "Invalid compliance file version of '1.1'.",
                                             "Invalid compliance file type of ''.",
                                             "Error opening file /nonexistent.cpl."));
    EXPECT_EQ(Device().vendorId, 0U);
    EXPECT_FALSE(document.IsSelected(1));
    EXPECT_THAT(document.Results(), IsEmpty());
    EXPECT_TRUE(document.deviceFound);
    EXPECT_FALSE(document.loadedFromFile);
    EXPECT_THAT(view.hints, IsEmpty());
    ASSERT_TRUE(Open(""));
    EXPECT_THAT(document.Results(), IsEmpty()) << "nothing is left of refused files";
    EXPECT_THAT(Selected(), IsEmpty());
}

} // namespace
} // namespace busquill::test
