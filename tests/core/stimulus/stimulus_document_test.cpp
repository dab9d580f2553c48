#include "stimulus/stimulus_document.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/signal_definitions.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string fileHead = "\"FileType\",\"Stimulus File\"\n\"Version\",\"1.0\"\n";
const std::string signalHeader =
    "\"Signal\",\"Name\",\"BaseName\",\"Grouped\",\"GroupName\",\"GroupAttribute\",\"BitIndex\","
    "\"DataIndex\",\"NumSamples\",\"Height\",\"Width\",\"Color\",\"ShowValue\",\"Radix\","
    "\"Masked\",\"Decoded\",\"Hidden\",\"Permanent\"\"BitReverse\"\n";

class CountingView final : public DocumentView {
public:
    void OnUpdate(DocumentView* /*sender*/, int /*hint*/, const HintObject* /*object*/) override {
        ++updates;
    }
    int updates = 0;
};

class StimulusDocumentTest : public testing::Test {
protected:
    StimulusDocumentTest() { document.AddView(&view); }

    /// Reads a file with the usual head, followed by these lines.
    bool Open(const std::string& lines, const std::string& head = fileHead) {
        return document.OnOpenDocument(dir.Write("in.stm", head + lines));
    }
    std::string Saved() {
        EXPECT_TRUE(document.OnSaveDocument(dir.File("out.stm")));
        return ReadWholeFile(dir.File("out.stm"));
    }
    TraceLevel& Level(int number) {
        return document.Program().control.levels[static_cast<std::size_t>(number) - 1];
    }
    std::vector<std::string> Patterns() { return SignalNames(document.Program().patterns); }
    std::vector<std::string> Events() { return SignalNames(document.Program().control.events); }
    static std::string Row(const std::string& name) {
        return "\"Signal\",\"" + name + "\",\"" + name + "\"\n";
    }

    const TempDir dir;
    RecordingPrompts prompts;
    BoardTables board{"PCIKite-1"};
    CStimulusDoc document{board.tables, prompts};
    CountingView view;
};

TEST_F(StimulusDocumentTest, WritesItsFileToTheByte) {
    StimulusProgram& program = document.Program();
    program.Clear();
    CSignal* pattern = program.patterns.InsertBlank(nullptr);
    pattern->name = pattern->baseName = "FRAME#";
    pattern->dataIndex = 72;
    SetSamples(*pattern, {0b101}, 4);
    pattern->mask = {0b111};
    CSignal* event = program.control.events.InsertBlank(nullptr);
    event->name = "12";
    Level(1).thenGoto = stimulusStop;
    Level(1).thenDuration = 2;
    Level(1).elseGoto = 14;
    Level(1).elseDuration = 5;
    Level(1).elseWait = 9;
    Level(2).ifExpr = ParseExpression("E1.E2");
    Level(2).occurs = 256;
    Level(2).stimulus = 15;
    std::string expected =
        fileHead + "\n\"Stimulus\"\n" + signalHeader +
        "\"Signal\",\"FRAME#\",\"FRAME#\",\"\",\"\",\"\",-1,72,4,20,30,0,\"\",\"Hex\",\"Masked\","
        "\"\",\"\",\"\",\"\"\n"
        "\"Data\",1,0,1,0\n"
        "\"Mask\",1,1,1,0\n"
        "\n\"Events\"\n" +
        signalHeader +
        "\"Signal\",12,\"\",\"\",\"\",\"\",-1,-1,0,20,30,0,\"\",\"Hex\",\"\",\"\",\"\",\"\",\"\"\n"
        "\n\"Control\"\n"
        "\"Control\",\"Level\",\"If\",\"Occurs\",\"Then\",\"Else\",\"Stimulus\"\n"
        "\"Control\",1,\"All\",1,\"STOP, Dur 2\",\"Goto SL15, Dur 5, Wait 9\",\"S1\"\n"
        "\"Control\",2,\"E1.E2\",256,\"Goto SL1\",\"Goto SL1\",\"S15\"\n";
    for (int level = 3; level <= 15; ++level) {
        expected += "\"Control\"," + std::to_string(level) +
                    ",\"None\",1,\"Goto SL1\",\"Goto SL1\",\"None\"\n";
    }
    EXPECT_EQ(Saved(), expected);
}

TEST_F(StimulusDocumentTest, ReadsWhatItWrites) {
    Level(1).thenDuration = 7;
    Level(1).elseWait = 3;
    Level(9).ifExpr = ParseExpression("E1+~(E2xE8)");
    Level(15).stimulus = 4;
    CSignal& single = *FindRow(document.Program().patterns, "FRAME");
    single.data[0] = 0b100000000000000;
    single.mask[0] = 0b110000000000000;
    const std::string text = Saved();

    CStimulusDoc again(board.tables, prompts);
    ASSERT_TRUE(again.OnOpenDocument(dir.File("out.stm")));
    EXPECT_EQ(again.Program().control.levels[0].thenDuration, 7);
    EXPECT_EQ(again.Program().control.levels[0].elseWait, 3);
    EXPECT_EQ(again.Program().control.levels[8], Level(9));
    EXPECT_EQ(again.Program().control.levels[14].stimulus, 4);
    const CSignal& read = *FindRow(again.Program().patterns, "FRAME");
    EXPECT_EQ(read.data, single.data);
    EXPECT_EQ(read.mask, single.mask);
    EXPECT_EQ(RowNames(again.Program().patterns), RowNames(document.Program().patterns));
    EXPECT_EQ(RowNames(again.Program().control.events),
              RowNames(document.Program().control.events));
    ASSERT_TRUE(again.OnSaveDocument(dir.File("again.stm")));
    EXPECT_EQ(ReadWholeFile(dir.File("again.stm")), text);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(StimulusDocumentTest, SignalsBelongToTheListNamedBefore) {
    ASSERT_TRUE(Open(Row("A") + "\"Stimulus\"\n" + Row("B") + "\"Signal\",\"Name\",\"BaseName\"\n" +
                     "\"Events\"\n" + Row("C") + "\"stimulus\"\n" + Row("D") + "\"Stimulus\"\n" +
                     Row("E")));
    EXPECT_THAT(Patterns(), ElementsAre("B", "E"));
    EXPECT_THAT(Events(), ElementsAre("A", "C", "D"));
    EXPECT_EQ(view.updates, 1);
}

TEST_F(StimulusDocumentTest, EachReadingBeginsWithTheEvents) {
    ASSERT_TRUE(Open("\"Stimulus\"\n" + Row("A")));
    ASSERT_TRUE(Open(Row("B")));
    EXPECT_THAT(Patterns(), IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("B"));
}

TEST_F(StimulusDocumentTest, ASignalHasItsDataAndMaskBehindIt) {
    ASSERT_TRUE(Open("\"Stimulus\"\n"
                     "\"Signal\",\"X\",\"X\",\"\",\"\",\"\",-1,72,15,20,30,0,\"\",\"Hex\","
                     "\"Masked\"\n"
                     "\"Data\",1,0,0,0,0,0,0,0,0,0,0,0,0,0,1\n"
                     "\"Mask\",1,1,0,0,0,0,0,0,0,0,0,0,0,0,1\n"
                     "\"Events\"\n" +
                     Row("E")));
    const CSignal& signal = document.Program().patterns[0];
    EXPECT_THAT(signal.data, ElementsAre(0x4001U));
    EXPECT_THAT(signal.mask, ElementsAre(0x4003U));
    EXPECT_THAT(Events(), ElementsAre("E"));
}

TEST_F(StimulusDocumentTest, ALineThatEndsInsideQuotesDropsTheNext) {
    // The value ends with its line. If it went on, it would take the row after the next line too.
    ASSERT_TRUE(
        Open("\"Stimulus\",\"open\nlost\n" + Row("A") + "\"Events\n" + Row("Lost too") + Row("B")));
    // The second key is not "Events": its line end belongs to it.
    EXPECT_THAT(Patterns(), ElementsAre("A", "B"));
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(StimulusDocumentTest, ALastLineThatEndsInsideQuotesCounts) {
    ASSERT_TRUE(Open("\"Control\",1,\"E4\",7,\"STOP"));
    EXPECT_EQ(Level(1).occurs, 7);
    EXPECT_EQ(Level(1).thenGoto, stimulusStop);
}

TEST_F(StimulusDocumentTest, LevelsAreReadAsFarAsTheyGo) {
    Level(4).occurs = 44;
    ASSERT_TRUE(Open("\"Control\"\n"
                     "\"Control\",\"Level\",\"If\"\n"
                     "\"Control\",3\n"
                     "\"Control\",4,\"E5\",1000,\"Goto SL15, Dur 300, Wait 0\"\n"
                     "\"Control\",5,\"None\",-3,\"Goto SL16\",\"Goto SL2 STOP\",\"S99\"\n"));
    EXPECT_EQ(Level(3), TraceLevel());
    EXPECT_EQ(FormatExpression(Level(4).ifExpr), "E5");
    EXPECT_EQ(Level(4).occurs, 1000);
    EXPECT_EQ(Level(4).thenGoto, 14);
    EXPECT_EQ(Level(4).thenDuration, 300);
    EXPECT_EQ(Level(4).thenWait, 0);
    EXPECT_EQ(Level(4).stimulus, 0);
    EXPECT_EQ(Level(5).occurs, -3);
    EXPECT_EQ(Level(5).thenGoto, 0);
    EXPECT_EQ(Level(5).elseGoto, stimulusStop);
    EXPECT_EQ(Level(5).stimulus, 99);
}

TEST_F(StimulusDocumentTest, LevelsOutOfRangeAreSkipped) {
    ASSERT_TRUE(Open("\"Control\",0,\"E1\",2\n\"Control\",16,\"E1\",2\n\"Control\",-1,\"E1\",2\n"));
    TraceSetup expected(board.tables);
    EXPECT_EQ(document.Program().control.levels, expected.levels);
}

TEST_F(StimulusDocumentTest, AFileOfAnotherTypeReplacesTheProgramWithoutAWord) {
    Level(1).occurs = 9;
    EXPECT_FALSE(Open(Row("A") + "\"Control\",2,\"E1\",5\n",
                      "\"FileType\",\"Trace Setup File\"\n\"Version\",\"1.0\"\n"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_THAT(Patterns(), IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("A"));
    EXPECT_EQ(Level(1).occurs, 1);
    EXPECT_EQ(Level(2).occurs, 5);
    EXPECT_EQ(view.updates, 1);
}

TEST_F(StimulusDocumentTest, AnotherTypesGroupsAreRebuiltToo) {
    const std::string saved = Saved();
    const std::vector<std::string> rows = RowNames(document.Program().patterns);
    EXPECT_FALSE(Open(saved.substr(fileHead.size()), "\"FileType\",\"Other\"\n"));
    EXPECT_EQ(RowNames(document.Program().patterns), rows);
    const CSignal* address = FindRow(document.Program().patterns, "AD[63:0]");
    ASSERT_NE(address, nullptr);
    EXPECT_FALSE(address->groupData.empty());
    EXPECT_FALSE(address->groupMask.empty());
}

TEST_F(StimulusDocumentTest, AnotherVersionIsRefusedWithoutAWord) {
    EXPECT_FALSE(Open(Row("A"), "\"FileType\",\"Stimulus File\"\n\"Version\",\"2.0\"\n"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("A"));
}

TEST_F(StimulusDocumentTest, TypeAndVersionOfAnEarlierFileDoNotCount) {
    ASSERT_TRUE(Open(""));
    EXPECT_FALSE(Open("", "\"Version\",\"1.0\"\n"));
    EXPECT_FALSE(Open("", "\"FileType\",\"Stimulus File\"\n"));
    EXPECT_FALSE(Open("", "\"FileType\"\n\"Version\"\n"));
}

TEST_F(StimulusDocumentTest, AFileThatCannotBeOpenedChangesNothing) {
    Level(1).occurs = 9;
    EXPECT_FALSE(document.OnOpenDocument(dir.File("none.stm")));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error opening file " + dir.File("none.stm") + "."));
    EXPECT_EQ(Level(1).occurs, 9);
    EXPECT_EQ(view.updates, 0);
}

TEST_F(StimulusDocumentTest, AFileThatCannotBeCreatedIsReported) {
    EXPECT_FALSE(document.OnSaveDocument(dir.File("none/a.stm")));
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error creating file " + dir.File("none/a.stm") + "."));
}

TEST_F(StimulusDocumentTest, NumbersOutOfRangeSurviveAnotherSave) {
    ASSERT_TRUE(
        Open("\"Control\",2,\"E1\",70000,\"Goto SL3, Dur 300, Wait 999\",\"STOP\",\"S99\"\n"));
    EXPECT_THAT(Saved(),
                testing::HasSubstr("\"Control\",2,\"E1\",70000,\"Goto SL3, Dur 300, Wait 999\","
                                   "\"STOP\",\"S99\"\n"));
}

TEST_F(StimulusDocumentTest, ANewDocumentHasADefaultProgram) {
    document.Program().Clear();
    Level(1).occurs = 9;
    ASSERT_TRUE(document.OnNewDocument());
    EXPECT_EQ(Level(1).occurs, 1);
    EXPECT_FALSE(document.Program().patterns.Empty());
}

} // namespace
} // namespace busquill::test
