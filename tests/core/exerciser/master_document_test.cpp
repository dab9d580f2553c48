#include "exerciser/master_document.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string fileHead = "\"FileType\",\"Master File\"\r\n\"Version\",\"1.0\"\r\n";

class CountingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int /*hint*/, const HintObject* /*object*/) override {
        ++updates;
    }
    int updates = 0;
};

class MasterDocumentTest : public testing::Test {
protected:
    MasterDocumentTest() { document.AddView(&view); }

    bool Open(const std::string& lines, const std::string& head = fileHead) {
        return document.OnOpenDocument(dir.Write("in.mst", head + lines));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.mst")));
        return ReadWholeFile(dir.File("out.mst"));
    }
    void UseBoard(const char* model, std::int32_t busMode) {
        board = TraitsOfModel(model).value();
        board.bus.busMode = busMode;
        document.FollowBoard();
    }

    const TempDir dir;
    RecordingPrompts prompts;
    BoardTraits board = TraitsOfModel("PCIKite").value();
    CMasterDoc document{[this] { return board; }, prompts};
    MasterForm& form = document.Form();
    CountingView view;
};

MasterForm SampleForm() {
    MasterForm form;
    form.addressSpace = 1;
    form.addressModifier = 0x2F;
    form.addressSize = 3;
    form.addressStart = {0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01};
    form.addressEnd = {0x10, 0x32, 0x54, 0x76, 0x98, 0x10, 0x32, 0x54};
    form.dataSize = 1;
    form.dataCycle = 1;
    form.dataType = DataIsFile;
    form.dataValue = {0xFF, 0, 0, 0, 0, 0, 0, 0x80};
    form.dataFilename = "/data/my file.dat";
    form.attrTag = 0x1F;
    form.attrBusNum = 0xA0;
    form.attrDeviceNum = 0x09;
    form.attrFunctionNum = 0x05;
    form.command = MasterCompare;
    form.repeat = "12";
    form.busRequestLevel = 8;
    return form;
}

const std::string addressAndData = "\"AddressSize\",\"64 bit\"\r\n"
                                   "\"AddressStart\",\"0123456789abcdef\"\r\n"
                                   "\"AddressEnd\",5432109876543210\r\n"
                                   "\"DataSize\",\"16 bit\"\r\n"
                                   "\"DataCycle\",\"Burst\"\r\n"
                                   "\"DataType\",\"File\"\r\n"
                                   "\"DataValue\",\"80000000000000ff\"\r\n"
                                   "\"DataFilename\",\"/data/my file.dat\"\r\n";
const std::string commandLines = "\"Command\",\"Compare\"\r\n\"Repeat\",12\r\n";

TEST_F(MasterDocumentTest, WritesItsFileToTheByte) {
    form = SampleForm();
    EXPECT_EQ(Saved(), fileHead + "\"AddressSpace\",\"I/O\"\r\n" + addressAndData + commandLines);
}

TEST_F(MasterDocumentTest, WritesAttributesInPciX) {
    UseBoard("PCIKite", BusPciX);
    form = SampleForm();
    EXPECT_EQ(Saved(), fileHead + "\"AddressSpace\",\"I/O\"\r\n" + addressAndData +
                           "\"AttrTag\",\"1f\"\r\n"
                           "\"AttrBusNum\",\"a0\"\r\n"
                           "\"AttrDeviceNum\",09\r\n"
                           "\"AttrFunctionNum\",05\r\n" +
                           commandLines);
}

TEST_F(MasterDocumentTest, WritesModifierAndLevelOnVme) {
    UseBoard("VMEKite", BusVme);
    form = SampleForm();
    form.addressSpace = 0;
    EXPECT_EQ(Saved(), fileHead + "\"AddressSpace\",\"Memory\"\r\n" + addressAndData +
                           "\"AddressModifier\",\"2f\"\r\n"
                           "\"BusRequestLevel\",08\r\n" +
                           commandLines);
}

TEST_F(MasterDocumentTest, ReadsBackWhatItWrote) {
    for (const auto& [model, mode] : {std::pair{"PCIKite", BusPci},
                                      {"PCIKite", BusPciX},
                                      {"VMEKite", BusVme},
                                      {"VSBKite", BusVsb}}) {
        UseBoard(model, mode);
        MasterForm expected = SampleForm();
        const MasterForm fresh;
        if (mode == BusVme) {
            expected.addressSpace = 0;
        } else {
            expected.addressModifier = fresh.addressModifier;
            expected.busRequestLevel = fresh.busRequestLevel;
        }
        if (mode != BusPciX) {
            for (const MasterAttribute& attribute : masterAttributes) {
                expected.*attribute.value = 0;
            }
        }
        form = SampleForm();
        if (mode == BusVme) {
            form.addressSpace = 0;
        }
        const std::string text = Saved();
        form = MasterForm();
        view.updates = 0;
        EXPECT_TRUE(Open(text, ""));
        EXPECT_EQ(form, expected) << model;
        EXPECT_EQ(view.updates, 1);
    }
}

TEST_F(MasterDocumentTest, RefusesAnotherTypeOrVersion) {
    form = SampleForm();
    EXPECT_FALSE(Open("Command,\"Write\"\r\n", "FileType,\"Target File\"\r\nVersion,\"1.0\"\r\n"));
    EXPECT_FALSE(Open("Command,\"Write\"\r\n", "FileType,\"Master File\"\r\nVersion,\"1.1\"\r\n"));
    EXPECT_FALSE(Open("Command,\"Write\"\r\n", ""));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid master file type of 'Target File'.",
                                             "Invalid master file version of '1.1'.",
                                             "Invalid master file type of ''."));
    EXPECT_EQ(form, SampleForm());
    EXPECT_EQ(view.updates, 0);
}

TEST_F(MasterDocumentTest, TellsTheTypeFirstWhenBothAreWrong) {
    EXPECT_FALSE(Open("", "Version,\"2.0\"\r\nFileType,\"master file\"\r\n"));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Invalid master file type of 'master file'."));
}

TEST_F(MasterDocumentTest, AMissingLineLeavesItsField) {
    form = SampleForm();
    EXPECT_TRUE(Open(""));
    EXPECT_EQ(form, SampleForm());
}

TEST_F(MasterDocumentTest, AddressSizeFallsBackToTheLargest) {
    for (const char* line : {"AddressSize,\"12 bit\"\r\n", "AddressSize,\"\"\r\n", "",
                             "AddressSize,\"64 bit\"\r\n", "AddressSize\r\n"}) {
        form.addressSize = 0;
        EXPECT_TRUE(Open(line));
        EXPECT_EQ(form.addressSize, 3) << line;
    }
    EXPECT_TRUE(Open("AddressSize,\"8 bit\"\r\n"));
    EXPECT_EQ(form.addressSize, 0);
    EXPECT_TRUE(Open("AddressSize,\"16 bit\"\r\n"));
    EXPECT_EQ(form.addressSize, 1);
    EXPECT_TRUE(Open("AddressSize,\"32 bit\"\r\n"));
    EXPECT_EQ(form.addressSize, 2);
}

TEST_F(MasterDocumentTest, OtherListsFallBackToTheirFirstEntry) {
    form = SampleForm();
    EXPECT_TRUE(Open("DataSize,\"12 bit\"\r\nDataCycle,\"burst\"\r\nDataType,\"\"\r\n"
                     "Command,\"Erase\"\r\nAddressSpace,\"Sys\"\r\n"));
    EXPECT_EQ(form.dataSize, 0);
    EXPECT_EQ(form.dataCycle, 0);
    EXPECT_EQ(form.dataType, DataIsValue);
    EXPECT_EQ(form.command, MasterRead);
    EXPECT_EQ(form.addressSpace, 0);
}

TEST_F(MasterDocumentTest, ReadsAddressesFromTheLeft) {
    EXPECT_TRUE(Open("AddressStart,12\r\nDataValue,\"123\"\r\n"));
    EXPECT_EQ(form.addressStart, (BusAddress{0, 0, 0, 0, 0, 0, 0, 0x12}));
    EXPECT_EQ(form.dataValue, (BusAddress{0, 0, 0, 0, 0, 0, 0, 0x12}));
    EXPECT_TRUE(Open("AddressStart,\"\"\r\n"));
    EXPECT_EQ(form.addressStart, BusAddress{});
}

TEST_F(MasterDocumentTest, LooksForTheSpaceInTheListsOfTheBoard) {
    UseBoard("VSBKite", BusVsb);
    EXPECT_TRUE(Open("AddressSpace,\"Alt\"\r\n"));
    EXPECT_EQ(form.addressSpace, 2);
    EXPECT_TRUE(Open("AddressSpace,\"Memory\"\r\n"));
    EXPECT_EQ(form.addressSpace, 0);
}

TEST_F(MasterDocumentTest, TakesWhatTheBoardShows) {
    const std::string lines = "AddressSpace,\"I/O\"\r\nAttrTag,\"1f\"\r\nAddressModifier,\"2f\"\r\n"
                              "BusRequestLevel,\"08\"\r\nRepeat,5\r\n";
    EXPECT_TRUE(Open(lines));
    EXPECT_EQ(form.addressSpace, 1);
    EXPECT_EQ(form.attrTag, 0);
    EXPECT_EQ(form.addressModifier, 0x0D);
    EXPECT_EQ(form.busRequestLevel, 1);
    EXPECT_EQ(form.repeat, "5");

    form = MasterForm();
    UseBoard("VMEKite", BusVme);
    EXPECT_TRUE(Open(lines));
    EXPECT_EQ(form.addressSpace, 0) << "the hidden list keeps its entry";
    EXPECT_EQ(form.attrTag, 0);
    EXPECT_EQ(form.addressModifier, 0x2F);
    EXPECT_EQ(form.busRequestLevel, 8);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(MasterDocumentTest, CutsNumbersToTheirWidths) {
    UseBoard("PCIKite", BusPciX);
    EXPECT_TRUE(Open("AttrTag,\"ff\"\r\nAttrBusNum,\"1ff\"\r\nAttrDeviceNum,\"ff\"\r\n"
                     "AttrFunctionNum,\"ff\"\r\n"));
    EXPECT_EQ(form.attrTag, 0x1F);
    EXPECT_EQ(form.attrBusNum, 0xFF);
    EXPECT_EQ(form.attrDeviceNum, 0x1F);
    EXPECT_EQ(form.attrFunctionNum, 0x07);
    UseBoard("VMEKite", BusVme);
    EXPECT_TRUE(Open("AddressModifier,\"ff\"\r\nBusRequestLevel,\"1ff\"\r\n"));
    EXPECT_EQ(form.addressModifier, 0x3F);
    EXPECT_EQ(form.busRequestLevel, 0xFF);
}

TEST_F(MasterDocumentTest, FollowsTheBoardAndTellsItsViewsOnce) {
    form.addressSpace = 2;
    document.FollowBoard();
    EXPECT_EQ(view.updates, 0) << "the same board";
    UseBoard("VSBKite", BusVsb);
    EXPECT_EQ(view.updates, 1);
    EXPECT_EQ(form.addressSpace, 0);
    EXPECT_FALSE(document.IsModified());
    document.FollowBoard();
    EXPECT_EQ(view.updates, 1);
}

TEST_F(MasterDocumentTest, SplitCompletionOnOtherBoardsSelectsNothing) {
    EXPECT_TRUE(Open("Command,\"Split Completion\"\r\n"));
    EXPECT_EQ(form.command, MasterNoCommand);
    EXPECT_THAT(Saved(), HasSubstr("\"Command\",\"\"\r\n"));
    UseBoard("PCIKite", BusPciX);
    EXPECT_TRUE(Open("Command,\"Split Completion\"\r\n"));
    EXPECT_EQ(form.command, MasterSplitCompletion);
    EXPECT_THAT(Saved(), HasSubstr("\"Command\",\"Split Completion\"\r\n"));
}

TEST_F(MasterDocumentTest, SkipsUnknownAndShortLinesAndOtherCase) {
    form = SampleForm();
    EXPECT_TRUE(Open("\r\nRepeat\r\ncommand,\"Read\"\r\nSomething,\"else\"\r\n,,\r\n"));
    EXPECT_EQ(form, SampleForm());
}

TEST_F(MasterDocumentTest, AnOpenQuoteLosesTheNextLine) {
    form.command = MasterTest;
    EXPECT_TRUE(Open("DataFilename,\"a.dat\r\nCommand,\"Write\"\r\nRepeat,7\r\n"));
    EXPECT_EQ(form.command, MasterTest);
    EXPECT_EQ(form.repeat, "7");
    EXPECT_EQ(form.dataFilename, "a.dat\r\n");
}

TEST_F(MasterDocumentTest, LinesMayEndInALineFeedAlone) {
    EXPECT_TRUE(document.OnOpenDocument(
        dir.Write("b.mst", "FileType,\"Master File\"\nVersion,\"1.0\"\nRepeat,9\n")));
    EXPECT_EQ(form.repeat, "9");
}

TEST_F(MasterDocumentTest, TheLastOfSeveralLinesCounts) {
    EXPECT_TRUE(Open("Repeat,1\r\nRepeat,2\r\n"));
    EXPECT_EQ(form.repeat, "2");
    EXPECT_TRUE(Open(""));
    EXPECT_EQ(form.repeat, "2") << "nothing of an earlier file is left";
}

TEST_F(MasterDocumentTest, AFileThatWasRefusedLeavesNothingBehind) {
    EXPECT_FALSE(Open("Repeat,5\r\n", "Version,\"1.0\"\r\n"));
    EXPECT_TRUE(Open(""));
    EXPECT_EQ(form.repeat, "1");
}

} // namespace
} // namespace busquill::test
