#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string data = SourceFile("data/");
const std::string header = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";

/// A row of a PCI sample: address lines, C/BE, FRAME and phase; all else as on a quiet bus.
std::string Row(int number, int address, int enables, bool isAddress) {
    return std::to_string(number) + "," + std::to_string(address & 255) + "," +
           std::to_string(address >> 8 & 255) + ",0,0,0,0,0,0," + std::to_string(enables) + "," +
           (isAddress ? "222" : "223") + ",63," + (isAddress ? "143" : "15") +
           ",0,0,30,0,0,0\n"; // 30 ns
}

class TraceCommands : public testing::Test {
protected:
    /// Write to 0x10 at the trigger, a read from 0x20, idle clocks around and between them.
    std::string SmallCapture(const std::string& lists = "") {
        std::string rows;
        for (int i = -3; i <= 4; ++i) {
            rows += i == 0   ? Row(i, 0x10, 0xF7, true)
                    : i == 2 ? Row(i, 0x20, 0xF6, true)
                             : Row(i, 0, 0xFF, false);
        }
        return dir.Write("small.tra", header + "\"Description\",\"two accesses\"\n" + lists +
                                          "\"Trace Data\",-3,4\n" + rows +
                                          "\"End of Trace Data\"\n");
    }
    ProgramRun Run(std::vector<std::string> arguments, const std::string& in = "") {
        return RunTrace(arguments, {.folder = dir.Path(), .standardInput = in});
    }

    const TempDir dir;
};

TEST_F(TraceCommands, InfoTellsWhatIsInAFile) {
    const ProgramRun run = Run({"info", data + "Trigger1.tra"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char* line :
         {"Type:              Trace Data File\n", "Version:           1.0\n",
          "Description:       PCI, 32 bit, 33 MHz: waveforms and Power Zoom\n",
          "Setup:             First memory write\n", "Program:           Clock: Sync\n",
          "                   E1: C/BE[7:0] = X7, ADR/DATA = 1\n",
          "Level 1: store all samples; on E1, trigger and stay in this level; otherwise stay in "
          "this level\n",
          "Samples:           8192\n", "First sample:      -4147\n", "Last sample:       4044\n",
          "Trigger:           sample 0, 4147 samples before it\n",
          "Lists:             waveform (33 signals)\n", "Power Zoom:        511 samples\n"}) {
        EXPECT_THAT(run.out, HasSubstr(line));
    }
}

TEST_F(TraceCommands, InfoOfSeveralFilesAndAsJson) {
    const ProgramRun text = Run({"info", data + "Trigger1.tra", SmallCapture()});
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out, HasSubstr("\n\nFile:              " + dir.File("small.tra")));
    const ProgramRun json = Run({"info", "--json", "small.tra", "small.tra"});
    EXPECT_THAT(json.out, StartsWith("[{\"file\": \"small.tra\", \"type\": \"Trace Data File\""));
    EXPECT_THAT(json.out, HasSubstr("\"description\": \"two accesses\""));
    EXPECT_THAT(json.out, HasSubstr("\"samples\": 8, \"first\": -3, \"last\": 4"));
    EXPECT_THAT(json.out, EndsWith("}]\n"));
}

TEST_F(TraceCommands, InfoOfAFileWithoutSamples) {
    dir.Write("empty.tra", header);
    const ProgramRun run = Run({"info", "empty.tra"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("Samples:           0\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("Trigger:")));
    dir.Write("behind.tra", header + "\"Trace Data\",5,6\n" + Row(5, 0, 255, false));
    const ProgramRun behind = Run({"info", "behind.tra"});
    EXPECT_THAT(behind.out, HasSubstr("Trigger:           not among the samples\n"));
    EXPECT_THAT(behind.out, HasSubstr("Left out:          1\n"));
}

TEST_F(TraceCommands, ListPrintsColumnsInLine) {
    SmallCapture();
    const ProgramRun run = Run(
        {"list", "small.tra", "--columns", "TIME,COMMAND,AD,FRAME", "--from", "-1", "--to", "2"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "SAMPLE  TIME        COMMAND           AD[63:0]           FRAME\n"
                       "    -1  30ns                          00000000 00000000  1\n"
                       "     0  30ns        Mem Wr            00000000 00000010  0\n"
                       "     1  30ns                          00000000 00000000  1\n"
                       "     2  30ns        Mem Rd            00000000 00000020  0\n");
}

TEST_F(TraceCommands, ListAsTableForPrograms) {
    SmallCapture();
    const ProgramRun csv = Run({"list", "small.tra", "--columns", "SAMPLE,COMMAND", "--from", "0",
                                "--to", "2", "--format", "csv"});
    EXPECT_EQ(csv.out, "SAMPLE,COMMAND\n0,Mem Wr\n1,\n2,Mem Rd\n");
    const ProgramRun json =
        Run({"list", "small.tra", "--columns", "COMMAND", "--from", "0", "--to", "1", "--json"});
    EXPECT_EQ(json.out, "{\"columns\": [\"SAMPLE\", \"COMMAND\"],\n\"rows\": [\n[0, \"Mem Wr\"],\n"
                        "[1, \"\"]\n]}\n");
}

TEST_F(TraceCommands, ListShowsLinesOfABusAndSignalsThatNoListHas) {
    SmallCapture();
    const ProgramRun run = Run({"list", "small.tra", "--columns", "AD[5],AD[7:4],RULE CHECK,SBO",
                                "--from", "2", "--to", "2", "--format", "csv"});
    EXPECT_EQ(run.out, "SAMPLE,AD[5],AD[7:4],RULE CHECK,SBO\n2,1,2,,0\n");
}

TEST_F(TraceCommands, ListUsesTheListOfTheFile) {
    SmallCapture(
        "\"State Signals\"\n"
        "\"Signal\",\"MINE, OWN\",\"FRAME\",\"\",\"\",\"\",-1,72,0,20,30,0,\"Show\",\"Hex\"\n"
        "\"Signal\",\"GONE\",\"IRDY\",\"\",\"\",\"\",-1,74,0,20,30,0,\"Show\",\"Hex\",\"\","
        "\"\",\"Hidden\"\n\"End of State Signals\"\n");
    EXPECT_THAT(Run({"list", "small.tra", "--format", "csv"}).out,
                StartsWith("SAMPLE,\"MINE, OWN\"\n-3,1\n"));
    EXPECT_THAT(
        Run({"list", "small.tra", "--format", "csv", "--columns", "\"mine, own\",GONE"}).out,
        StartsWith("SAMPLE,\"MINE, OWN\",GONE\n-3,1,1\n"));
}

TEST_F(TraceCommands, ListOfNothing) {
    SmallCapture();
    const ProgramRun behind = Run({"list", "small.tra", "--from", "5", "-o", "out"});
    EXPECT_EQ(behind.status, 1);
    EXPECT_EQ(behind.err, "busquill-trace: there are no such samples\n");
    EXPECT_FALSE(std::filesystem::exists(dir.File("out")));
    const ProgramRun zoom = Run({"list", "small.tra", "--zoom"});
    EXPECT_EQ(zoom.status, 1);
    EXPECT_EQ(zoom.err, "busquill-trace: small.tra has no Power Zoom samples\n");
    EXPECT_EQ(zoom.out, "");
}

TEST_F(TraceCommands, SearchPrintsTheFirstMatchOrAll) {
    SmallCapture();
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0"}).out, "0\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--all"}).out, "0\n2\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--all", "--json"}).out, "[0, 2]\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--from", "1"}).out, "2\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--from", "2"}).out, "2\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "-p", "AD=20"}).out, "2\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "COMMAND=Mem Rd", "--all"}).out, "2\n");
}

TEST_F(TraceCommands, SearchBackward) {
    SmallCapture();
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--backward"}).out, "2\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--backward", "--from", "1"}).out,
              "0\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=0", "--backward", "--all"}).out, "2\n0\n");
    // The first sample is a sample too.
    EXPECT_EQ(Run({"search", "small.tra", "-p", "FRAME=1", "--backward", "--from", "-3"}).out,
              "-3\n");
}

TEST_F(TraceCommands, SearchWithoutAMatch) {
    SmallCapture();
    const ProgramRun run = Run({"search", "small.tra", "-p", "AD=999"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "busquill-trace: No match found.\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "AD=999", "--all", "--json"}).out, "[]\n");
    EXPECT_EQ(Run({"search", "small.tra", "-p", "AD=999", "-o", "out"}).status, 1);
    EXPECT_FALSE(std::filesystem::exists(dir.File("out")));
}

TEST_F(TraceCommands, SearchDoesNotFindSamplesThatTheFileLacks) {
    dir.Write("gaps.tra",
              header + "\"Trace Data\",0,40\n" + Row(7, 0, 0xFF, false) + Row(33, 1, 0xFF, false));
    EXPECT_EQ(Run({"search", "gaps.tra", "-p", "AD=xxxxxxxxxxxxxxx0", "--all"}).out, "7\n");
}

TEST_F(TraceCommands, FilterKeepsWhatStandsAroundTheSamples) {
    const std::string odd = "\"Unknown Key\",\"of a later version\"\r\n"
                            "\"Description\",\"two\r\nlines\"\n";
    const std::string zoom = "\n\"Power Zoom Data\",255,256\n0,1,2,3\n\"End of Power Zoom Data\"\n";
    const std::string before = header + odd + "\n\"Trace Data\",-3,4\n";
    dir.Write("full.tra", before + Row(-1, 5, 0xFF, false) + Row(0, 0x10, 0xF7, true) +
                              Row(2, 0x20, 0xF6, true) + "\"End of Trace Data\"\n" + zoom);
    const ProgramRun run = Run({"filter", "full.tra", "-p", "COMMAND=Mem Rd", "-o", "out.tra"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(ReadWholeFile(dir.File("out.tra")),
              before + Row(2, 0x20, 0xF6, true) + "\"End of Trace Data\"\n" + zoom);
    EXPECT_EQ(Run({"filter", "full.tra", "-p", "COMMAND=Mem Rd", "-o", "-"}).out,
              ReadWholeFile(dir.File("out.tra")));
}

TEST_F(TraceCommands, FilterOfAFileThatIsCutOffEndsItsBlock) {
    dir.Write("cut.tra", header + "\"Trace Data\",0,9\n" + Row(0, 5, 0xFF, false) + "1,2");
    EXPECT_EQ(Run({"filter", "cut.tra", "-p", "FRAME=1", "-o", "-"}).out,
              header + "\"Trace Data\",0,9\n" + Row(0, 5, 0xFF, false) + "\"End of Trace Data\"\n");
}

TEST_F(TraceCommands, FilterThatFindsNothingWritesNothing) {
    SmallCapture();
    const ProgramRun run = Run({"filter", "small.tra", "-p", "AD=999", "-o", "out.tra"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "busquill-trace: No match found. out.tra is not written.\n");
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.tra")));
}

TEST_F(TraceCommands, CompareOfEqualCaptures) {
    SmallCapture();
    const ProgramRun run = Run({"compare", "small.tra", "small.tra"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "No difference in 8 samples.\n");
    EXPECT_THAT(Run({"compare", "small.tra", "small.tra", "--json"}).out,
                StartsWith("{\"same\": true, \"first\": null, \"samples\": 8, \"differing\": 0"));
}

TEST_F(TraceCommands, CompareTellsWhatDiffersWhereAndHowOften) {
    SmallCapture();
    dir.Write("other.tra", header + "\"Trace Data\",-3,4\n" + Row(-3, 0, 0xFF, false) +
                               Row(-1, 0, 0xFF, false) + Row(0, 0x11, 0xF6, true) +
                               Row(1, 0, 0xFF, false) + Row(2, 0x22, 0xF6, true) +
                               Row(3, 0, 0xFF, false) + Row(4, 0, 0xFF, false));
    const ProgramRun run = Run({"compare", "small.tra", "other.tra"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "First difference:  sample -2\nDiffering samples: 3 of 8\n"
                       "Only in A:         1\nOnly in B:         0\n"
                       "Differing signals: AD[63:0] (2), C/BE[7:0] (1)\n\n"
                       "    SAMPLE  SIGNAL           A                  B\n"
                       "        -2  (sample)         there              missing\n"
                       "         0  AD[63:0]         00000000 00000010  00000000 00000011\n"
                       "         0  C/BE[7:0]        F7                 F6\n"
                       "         2  AD[63:0]         00000000 00000020  00000000 00000022\n");
    const ProgramRun json = Run({"compare", "other.tra", "small.tra", "--json"});
    EXPECT_THAT(json.out, HasSubstr("\"onlyInA\": 0, \"onlyInB\": 1"));
    EXPECT_THAT(json.out, HasSubstr("{\"sample\": 0, \"signal\": \"C/BE[7:0]\", \"a\": \"F6\", "
                                    "\"b\": \"F7\"}"));
}

TEST_F(TraceCommands, CompareWithoutSomeSignals) {
    SmallCapture();
    std::string rows;
    for (int i = -3; i <= 4; ++i) {
        rows += i == 0   ? Row(i, 0x1F, 0xF7, true)
                : i == 2 ? Row(i, 0x2F, 0xF6, true)
                         : Row(i, 0, 0xFF, false);
    }
    dir.Write("other.tra", header + "\"Trace Data\",-3,4\n" + rows);
    EXPECT_EQ(Run({"compare", "small.tra", "other.tra"}).status, 1);
    EXPECT_EQ(Run({"compare", "small.tra", "other.tra", "--ignore", "ad"}).status, 0);
    EXPECT_EQ(Run({"compare", "small.tra", "other.tra", "--ignore", "FRAME,AD[3:0]"}).status, 0);
    EXPECT_EQ(Run({"compare", "small.tra", "other.tra", "--ignore", "AD[2:0]"}).status, 1);
}

TEST_F(TraceCommands, CompareByNumberOrByPlace) {
    dir.Write("a.tra", header + "\"Trace Data\",-1,1\n" + Row(-1, 1, 0xFF, false) +
                           Row(0, 2, 0xFF, false) + Row(1, 3, 0xFF, false));
    dir.Write("b.tra", header + "\"Trace Data\",0,2\n" + Row(0, 1, 0xFF, false) +
                           Row(1, 2, 0xFF, false) + Row(2, 3, 0xFF, false));
    EXPECT_EQ(Run({"compare", "a.tra", "b.tra", "--align", "start"}).status, 0);
    const ProgramRun byTrigger = Run({"compare", "a.tra", "b.tra", "--align", "trigger"});
    EXPECT_EQ(byTrigger.status, 1);
    EXPECT_THAT(byTrigger.out, HasSubstr("Differing samples: 4 of 4\n"));
    EXPECT_EQ(Run({"compare", "a.tra", "b.tra"}).out, byTrigger.out);
}

TEST_F(TraceCommands, StatsAddUpTheTraffic) {
    const ProgramRun run = Run({"stats", data + "Trigger2.tra"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, StartsWith("Samples:                 4096\nTime:"));
    for (const char* title : {"Idle:", "Transactions:", "Bytes:", "Retries:", "Target aborts:",
                              "Master aborts:", "Initiator wait states:", "Target wait states:",
                              "COMMAND", "Mem Rd", "BURST LENGTH", "CODE", "Target Retry"}) {
        EXPECT_THAT(run.out, HasSubstr(title));
    }
    const ProgramRun json = Run({"stats", data + "Trigger2.tra", "--json"});
    EXPECT_THAT(json.out, StartsWith("{\"samples\": 4096, \"time\": "));
    EXPECT_THAT(json.out,
                HasSubstr("\"commands\": [{\"command\": \"Int Ack\", \"transactions\": "));
}

TEST_F(TraceCommands, StatsTellTheNumberOfTheFirstSampleOfAFinding) {
    const auto finding = [](int number, int code) {
        return std::to_string(number) + ",0,0,0,0,0,0,0,0,255,223,63,15,0,0,30,0," +
               std::to_string(code) + ",0\n";
    };
    dir.Write("gaps.tra", header + "\"Trace Data\",-9,40\n" + finding(-5, 0) + finding(7, 112) +
                              finding(9, 112) + finding(12, 2));
    const ProgramRun run = Run({"stats", "gaps.tra"});
    EXPECT_THAT(run.out, HasSubstr("\n2             1           12  FRAME asserted"));
    EXPECT_THAT(run.out, HasSubstr("\n112           2            7  Target Retry\n"));
    EXPECT_THAT(run.err, HasSubstr("samples of the capture are missing"));
}

TEST_F(TraceCommands, SetupInWordsAndBytes) {
    const ProgramRun words = Run({"setup", data + "ReadAfterWrites.tsp"});
    EXPECT_EQ(words.status, 0);
    EXPECT_THAT(words.out, StartsWith("Name:              Read after 100 writes\n"));
    EXPECT_THAT(words.out, HasSubstr("Trigger position: 75%\n"));
    EXPECT_THAT(words.out, HasSubstr("E1: COMMAND = Mem Wr, ADR/DATA = Address\n"));
    EXPECT_THAT(words.out, HasSubstr("Level 1: store all samples; on E1 for the 100th time, go to "
                                     "level 2; otherwise stay in this level\n"));
    EXPECT_THAT(words.out, HasSubstr("Level 2: store all samples; on E2, trigger and stay in this "
                                     "level; otherwise stay in this level\n"));
    EXPECT_THAT(words.out, Not(HasSubstr("Level 3")));
    EXPECT_THAT(words.out, Not(HasSubstr("register")));

    const ProgramRun bytes = Run({"setup", data + "ReadAfterWrites.tsp", "--payload"});
    EXPECT_THAT(bytes.out, StartsWith(words.out));
    EXPECT_THAT(bytes.out, HasSubstr("CmdTraceParams, register 420, 3 bytes:\n"
                                     "  00 01 01\n")); // clock, position and zoom code
    // C/BE[3:0] is 0111 and bit 95 is 1: value and care bytes of the record, in turn.
    EXPECT_THAT(bytes.out,
                HasSubstr("CmdTraceEvents, register 20, 240 bytes:\n"
                          "  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 07 0F 00 00 "
                          "00 00 80 80 00 00 00 00 00 00\n"));
    EXPECT_THAT(bytes.out, HasSubstr("CmdTraceControl, register 260, 160 bytes:\n"
                                     "  00 00 00 00 00 00 00 10 FF FF FF FF FF FF FF FF 64 00 01 "
                                     "00\n"));
    const ProgramRun lark =
        Run({"setup", data + "ReadAfterWrites.tsp", "--payload", "--model", "VMELark", "--json"});
    EXPECT_THAT(lark.out, HasSubstr("{\"command\": \"CmdTraceParams\", \"register\": 420, "
                                    "\"bytes\": \"00 01 01\"}"));
    // Four events of 30 bytes, and the zeros that go out with them.
    std::string zeros;
    for (int i = 0; i < 120; ++i) {
        zeros += " 00";
    }
    EXPECT_THAT(lark.out, HasSubstr(zeros + "\"}, {\"command\": \"CmdTraceControl\""));
    EXPECT_THAT(Run({"setup", data + "ReadAfterWrites.tsp", "--payload", "--model", "VMELark"}).out,
                HasSubstr("CmdTraceEvents, register 20, 240 bytes:\n"));
    EXPECT_EQ(Run({"setup", "-"}, ReadWholeFile(data + "ReadAfterWrites.tsp")).out, words.out);
}

TEST_F(TraceCommands, SetupThatIsNone) {
    const ProgramRun run = Run({"setup", data + "Trigger1.tra"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr("Error: File type of 'Trace Setup File' not found."));
}

} // namespace
} // namespace busquill::test
