#include "support/board_tables.h"
#include "support/disk_sync.h"
#include "support/full_disk.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "tracesetup/setup_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace busquill::test {
namespace {

class SetupFile : public testing::Test {
protected:
    bool Load(const std::string& text) {
        return LoadSetupFile(setup, dir.Write("a.tsp", text), prompts);
    }
    static std::string File(const std::string& body) {
        return "\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n" + body;
    }

    BoardTables board{"PCIKite-1"};
    const TempDir dir;
    RecordingPrompts prompts;
    TraceSetup setup{board.tables};
};

TEST_F(SetupFile, AWrittenSetupIsReadBackEqual) {
    setup.name = "My setup";
    setup.description = "line one\r\nline two";
    setup.clock = 7;
    setup.triggerPosition = 5;
    setup.powerZoomClock = 8;
    setup.levels[0].ifExpr = ParseExpression("E1.E2");
    setup.levels[0].occurs = 300;
    setup.levels[4] = {ParseExpression("E3"), ParseExpression("~E4"), 2, true, 6, 1, 1, true, 3};
    setup.events[3].data[0] = 0x85;
    setup.events[3].mask[0] = 0xC1;
    const std::string path = dir.File("b.tsp");
    ASSERT_TRUE(SaveSetupFile(setup, path, prompts));

    TraceSetup read(board.tables);
    ASSERT_TRUE(LoadSetupFile(read, path, prompts));
    EXPECT_EQ(read.name, "My setup");
    EXPECT_EQ(read.description, "line one\r\nline two");
    EXPECT_EQ(read.clock, 7);
    EXPECT_EQ(read.triggerPosition, 5);
    EXPECT_EQ(read.powerZoomClock, 8);
    for (std::size_t i = 0; i < 8; ++i) {
        TraceLevel expected = setup.levels[i];
        EXPECT_EQ(read.levels[i], expected) << i;
    }
    ASSERT_EQ(read.events.Size(), setup.events.Size());
    EXPECT_EQ(read.events[3].data[0], 0x85U);
    EXPECT_EQ(read.events[3].mask[0], 0xC1U);
    EXPECT_TRUE(prompts.Boxes().empty());
}

TEST_F(SetupFile, BeginsAndEndsAsASetupFile) {
    setup.name = "N";
    setup.events.RemoveAllSignals();
    const std::string path = dir.File("b.tsp");
    ASSERT_TRUE(SaveSetupFile(setup, path, prompts));
    EXPECT_EQ(ReadWholeFile(path),
              "\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n\"Name\",\"N\"\n"
              "\"Description\",\"\"\n\"Clock\",\"Sync\"\n\"Trigger\",\"50%\"\n"
              "\"PowerZoomClock\",\"3.75 ns\"\n\n\"Events\"\n"
              "\"Signal\",\"Name\",\"BaseName\",\"Grouped\",\"GroupName\",\"GroupAttribute\","
              "\"BitIndex\",\"DataIndex\",\"NumSamples\",\"Height\",\"Width\",\"Color\","
              "\"ShowValue\",\"Radix\",\"Masked\",\"Decoded\",\"Hidden\","
              "\"Permanent\"\"BitReverse\"\n"
              "\n\"TraceControl\"\n"
              "\"Control\",\"Level\",\"If\",\"Occurs\",\"Then\",\"Else\",\"Store\"\n"
              "\"Control\",1,\"All\",1,\"Goto L1, Trigger\",\"Goto L1\",\"All\"\n"
              "\"Control\",2,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"Control\",3,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"Control\",4,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"Control\",5,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"Control\",6,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"Control\",7,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"Control\",8,\"None\",1,\"Goto L1\",\"Goto L1\",\"None\"\n"
              "\"End of Setup Data\"\n");
}

TEST_F(SetupFile, AHeaderAloneIsTheDefaultSetupWithoutSignals) {
    ASSERT_TRUE(Load(File("")));
    EXPECT_TRUE(setup.events.Empty());
    EXPECT_EQ(setup.levels[0].ifExpr, expressionAll);
}

TEST_F(SetupFile, AQuoteInADescriptionEndsIt) {
    ASSERT_TRUE(Load(File("\"Description\",\"say \"hello\" twice\"\n")));
    EXPECT_EQ(setup.description, "say ");
}

TEST_F(SetupFile, AWrongVersionIsReportedAfterItHasReplacedTheSetup) {
    EXPECT_FALSE(
        Load("\"FileType\",\"Trace Setup File\"\n\"Version\",\"2.0\"\n\"Name\",\"new\"\n"));
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"Error: File version of 1.0 not found."});
    EXPECT_EQ(setup.name, "new");
}

TEST_F(SetupFile, AWrongTypeIsReported) {
    EXPECT_FALSE(Load("\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"));
    EXPECT_EQ(prompts.Texts(),
              std::vector<std::string>{"Error: File type of 'Trace Setup File' not found."});
}

TEST_F(SetupFile, AMissingFileIsReported) {
    EXPECT_FALSE(LoadSetupFile(setup, "/nonexistent/x.tsp", prompts));
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"Error opening file /nonexistent/x.tsp."});
}

TEST_F(SetupFile, AFileThatCannotBeCreatedIsReported) {
    EXPECT_FALSE(SaveSetupFile(setup, "/nonexistent/x.tsp", prompts));
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"Error creating file /nonexistent/x.tsp."});
}

TEST_F(SetupFile, AFullDiskIsReportedAndTheOldFileStays) {
    const std::string path = dir.Write("old.tsp", "old");
    {
        const FullDisk disk(100);
        EXPECT_FALSE(SaveSetupFile(setup, path, prompts));
    }
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"Error writing file " + path + "."});
    EXPECT_EQ(ReadWholeFile(path), "old");
}

TEST_F(SetupFile, ADiskThatFailsAtTheEndIsReportedAndTheOldFileStays) {
    const std::string path = dir.Write("old.tsp", "old");
    const DiskSync disk(EIO);
    EXPECT_FALSE(SaveSetupFile(setup, path, prompts));
    EXPECT_EQ(prompts.Texts(), std::vector<std::string>{"Error writing file " + path + "."});
    EXPECT_EQ(ReadWholeFile(path), "old");
}

TEST_F(SetupFile, AnUnknownClockSetsIndexZeroAndAnUnknownTextKeepsTheDefault) {
    ASSERT_TRUE(Load(File("\"Clock\",\"Unknown\"\n\"Trigger\",\"33%\"\n")));
    EXPECT_EQ(setup.clock, 0);
    EXPECT_EQ(setup.triggerPosition, 3);
}

TEST_F(SetupFile, InvalidLevelsAreIgnored) {
    ASSERT_TRUE(Load(File("\"Control\",9,\"E1\",5,\"Goto L2\",\"Goto L3\",\"E2\"\n"
                          "\"Control\",0,\"E1\",5,\"Goto L2\",\"Goto L3\",\"E2\"\n"
                          "\"Control\",\"Level\",\"If\"\n\"Control\"\n")));
    EXPECT_EQ(setup.levels[0].occurs, 1);
    EXPECT_EQ(setup.levels[8].occurs, 1);
}

TEST_F(SetupFile, AShortLevelRowKeepsTheOtherValues) {
    ASSERT_TRUE(Load(File("\"Control\",2,\"E5\",65536\n")));
    EXPECT_EQ(FormatExpression(setup.levels[1].ifExpr), "E5");
    EXPECT_EQ(setup.levels[1].occurs, 65536);
    EXPECT_EQ(setup.levels[1].storeExpr, expressionNone);
}

TEST_F(SetupFile, DataIndexesAreKeptForAnyBoard) {
    ASSERT_TRUE(Load(File("\"Signal\",\"DTACK\",\"DTACK\",\"\",\"\",\"\",-1,75,32,20,30,0\n"
                          "\"Data\",1,0,1\n\"End of Setup Data\"\n\"Name\",\"late\"\n")));
    ASSERT_EQ(setup.events.Size(), 1U);
    EXPECT_EQ(setup.events[0].dataIndex, 75);
    EXPECT_EQ(setup.events[0].data[0], 5U);
    EXPECT_EQ(setup.name, ""); // it is after the end
}

TEST(ParseLevelRow, StimulusRowsHaveTheirOwnForms) {
    BoardTables board("PCIKite-1");
    TraceSetup setup{board.tables};
    ParseLevelRow(setup, {"Control", "15", "E1", "3", "STOP, Dur 4", "Goto SL2, Wait 6", "S7"},
                  true);
    const TraceLevel& level = setup.levels[14];
    EXPECT_EQ(level.thenGoto, stimulusStop);
    EXPECT_EQ(level.thenDuration, 4);
    EXPECT_EQ(level.elseGoto, 1);
    EXPECT_EQ(level.elseWait, 6);
    EXPECT_EQ(level.stimulus, 7);
    EXPECT_EQ(LevelRow(setup, 15, true),
              "\"Control\",15,\"E1\",3,\"STOP, Dur 4\",\"Goto SL2, Wait 6\",\"S7\"\n");
}

TEST_F(SetupFile, SetupsAreFoundByTheirNames) {
    for (const char* file : {"b.tsp", "a.tsp"}) {
        TraceSetup each(board.tables);
        each.name = std::string("setup of ") + file;
        ASSERT_TRUE(SaveSetupFile(each, dir.File(file), prompts));
    }
    dir.Write("c.tsp", "\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n");
    dir.Write("d.tra", "\"Name\",\"a trace\"\n");
    std::filesystem::create_directory(dir.File("e.tsp"));
    const auto found = FindSetupFiles(dir.Path());
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].path, dir.File("a.tsp"));
    EXPECT_EQ(found[0].name, "setup of a.tsp");
    EXPECT_EQ(found[1].name, "setup of b.tsp");
    EXPECT_EQ(found[2].name, "c") << "a file without a name in it";
    EXPECT_TRUE(FindSetupFiles(dir.File("nowhere")).empty());
    dir.Write("UPPER.TSP", "\"Name\",\"loud\"\n");
    EXPECT_EQ(FindSetupFiles(dir.Path()).front().name, "loud");
}

} // namespace
} // namespace busquill::test
