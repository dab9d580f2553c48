#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace busquill::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string data = SourceFile("data/");
const std::string header = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n";

/// A row of a PCI sample: address lines, C/BE, FRAME and phase; everything else is idle.
std::string Row(int number, int address, int enables, bool isAddress) {
    return std::to_string(number) + "," + std::to_string(address & 255) + "," +
           std::to_string(address >> 8 & 255) + ",0,0,0,0,0,0," + std::to_string(enables) + "," +
           (isAddress ? "222" : "223") + ",63," + (isAddress ? "143" : "15") +
           ",0,0,30,0,0,0\n"; // 30 ns
}

class TraceCommands : public testing::Test {
protected:
    /// A write to 0x10 at the trigger and a read from 0x20, with idle clocks around and between
    /// them.
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

TEST_F(TraceCommands, InfoDescribesAFile) {
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

TEST_F(TraceCommands, InfoListsBookmarks) {
    SmallCapture();
    EXPECT_THAT(Run({"info", "small.tra"}).out, Not(HasSubstr("Bookmarks")));
    dir.Write("small.tra.bookmarks", "Busquill bookmarks 1\n-2\tidle\\nfor long\n4\t\n5\tfar\n");
    const ProgramRun text = Run({"info", "small.tra"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_THAT(text.out, EndsWith("Bookmarks:         -2: idle for long\n"
                                   "                   4\n"
                                   "                   5 (not in the capture): far\n"));
    EXPECT_THAT(Run({"info", "--json", "small.tra"}).out,
                HasSubstr("\"bookmarks\": [\"-2: idle for long\", \"4\", "));
    dir.Write("small.tra.bookmarks", "Busquill bookmarks 1\n4\tred\x1B[31m\x7F!\n");
    EXPECT_THAT(Run({"info", "small.tra"}).out, EndsWith("Bookmarks:         4: red [31m !\n"));
    dir.Write("small.tra.bookmarks", "Busquill bookmarks 1\n4\t\nodd\n");
    const ProgramRun odd = Run({"info", "small.tra"});
    EXPECT_THAT(odd.out, EndsWith("Bookmarks:         4\n"));
    EXPECT_THAT(odd.err, HasSubstr("small.tra.bookmarks: Line 3: A line begins with the number"));
}

TEST_F(TraceCommands, InfoOfAFileWithoutSamples) {
    dir.Write("empty.tra", header);
    const ProgramRun run = Run({"info", "empty.tra"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("Samples:           0\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("Trigger:")));
    dir.Write("past.tra", header + "\"Trace Data\",5,6\n" + Row(5, 0, 255, false));
    const ProgramRun past = Run({"info", "past.tra"});
    EXPECT_THAT(past.out,
                HasSubstr("Trigger:           not among the samples; marked at sample 5\n"));
    EXPECT_THAT(past.out, HasSubstr("Left out:          1\n"));
}

TEST_F(TraceCommands, InfoOfACutCaptureTellsTheSamplesThatAreThere) {
    const std::string rows = Row(4, 0, 0xFF, false) + Row(6, 0, 0xFF, false);
    dir.Write("cut.tra", header + "\"Trace Data\",-3,9\n" + rows);
    const std::string out = Run({"info", "cut.tra"}).out;
    EXPECT_THAT(out, HasSubstr("Samples:           2\n"
                               "First sample:      4\n"
                               "Last sample:       6\n"
                               "Trigger:           sample 0, which is not in the file, 0 samples "
                               "before it\n"
                               "Left out:          11\n"));
    dir.Write("cut.tra", header + "\"Trace Data\",-3,9\n" + Row(-1, 0, 0xFF, false) +
                             Row(0, 0, 0xFF, false) + rows);
    EXPECT_THAT(Run({"info", "cut.tra"}).out,
                HasSubstr("Trigger:           sample 0, 1 samples before it\n"));
    dir.Write("none.tra", header + "\"Trace Data\",-3,9\n");
    EXPECT_THAT(Run({"info", "none.tra"}).out, Not(HasSubstr("First sample")));
}

TEST_F(TraceCommands, AnEmptySectionHasNoSamples) {
    dir.Write("none.tra", header + "\"Trace Data\",0,-1\n\"End of Trace Data\"\n");
    EXPECT_EQ(Run({"stats", "none.tra"}).err, "busquill-trace: none.tra has no samples\n");
    EXPECT_THAT(Run({"transactions", "none.tra"}).err, HasSubstr("none.tra has no samples\n"));
    EXPECT_THAT(Run({"search", "none.tra", "-p", "FRAME=0"}).err,
                HasSubstr("none.tra has no samples\n"));
}

TEST_F(TraceCommands, TheModelMayHaveTheRevisionThatBoardsTell) {
    SmallCapture();
    const ProgramRun run = Run({"stats", "small.tra", "--model", "PCIKite-3"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, Run({"stats", "small.tra", "--model", "PCIKite"}).out);
}

TEST_F(TraceCommands, AConnectorHasNoIdleTime) {
    SmallCapture();
    EXPECT_EQ(Run({"stats", "small.tra", "--bus", "VMEP2"}).out.find("Idle"), std::string::npos);
    EXPECT_THAT(Run({"stats", "small.tra", "--bus", "VMEP2", "--format", "csv"}).out,
                StartsWith("samples,time\n8,"));
    EXPECT_THAT(Run({"stats", "small.tra", "--bus", "VMEP2", "--json"}).out,
                Not(HasSubstr("idle")));
}

TEST_F(TraceCommands, WaitsForAcknowledgesAreATime) {
    SmallCapture();
    EXPECT_THAT(Run({"stats", "small.tra", "--bus", "VME"}).out,
                HasSubstr("\nWait for acknowledges:   0ns\n"));
    EXPECT_THAT(Run({"stats", "small.tra", "--bus", "VME", "--json"}).out,
                HasSubstr("\"acknowledgeTime\": 0"));
}

TEST_F(TraceCommands, AnEdgeThatIsNotFoundAmongMissingSamplesIsExplained) {
    dir.Write("gaps.tra",
              header + "\"Trace Data\",0,9\n" + Row(0, 0, 0xFF, false) + Row(4, 0x10, 0xF7, true));
    const std::string missing = "samples of the capture are missing";
    EXPECT_THAT(Run({"search", "gaps.tra", "--where", "FRAME falls"}).err, HasSubstr(missing));
    EXPECT_THAT(Run({"search", "gaps.tra", "--where", "AD == 0x999"}).err, Not(HasSubstr(missing)));
    SmallCapture();
    EXPECT_EQ(Run({"search", "small.tra", "--where", "FRAME falls"}).err, "");
    EXPECT_THAT(Run({"search", "small.tra", "--where", "TRDY falls"}).err, Not(HasSubstr(missing)));
}

TEST_F(TraceCommands, InfoAndListAgreeOnTheTrigger) {
    const auto capture = [this](int first, int last) {
        std::string rows;
        for (int i = first; i <= last; ++i) {
            rows += Row(i, 0, 0xFF, false);
        }
        dir.Write("a.tra", header + "\"Trace Data\"," + std::to_string(first) + "," +
                               std::to_string(last) + "\n" + rows);
    };
    const auto reported = [this] {
        const std::string out = Run({"info", "a.tra"}).out;
        const auto at = out.find("Trigger:") + 19;
        return out.substr(at, out.find('\n', at) - at);
    };
    /// The sample from which ACCUM counts.
    const auto listed = [this] {
        const std::string out = Run({"list", "a.tra", "--format", "csv", "--columns", "ACCUM"}).out;
        const auto end = out.find(",0ns\n");
        const auto begin = out.rfind('\n', end) + 1;
        return out.substr(begin, end - begin);
    };
    capture(-3, 2);
    EXPECT_EQ(listed(), "0");
    EXPECT_EQ(reported(), "sample 0, 3 samples before it");
    capture(-3, 0); // no sample after it: like the window, the trigger marker is one before
    EXPECT_EQ(listed(), "-1");
    EXPECT_EQ(reported(), "marked at sample -1, 2 samples before it");
    capture(0, 0);
    EXPECT_EQ(listed(), "0");
    EXPECT_EQ(reported(), "sample 0, 0 samples before it");
    capture(5, 9);
    EXPECT_EQ(listed(), "5");
    EXPECT_EQ(reported(), "not among the samples; marked at sample 5");
    capture(-9, -5);
    EXPECT_EQ(listed(), "-5");
    EXPECT_EQ(reported(), "not among the samples; marked at sample -5");
}

TEST_F(TraceCommands, TimesOfAFilteredCaptureAreReportedAsShort) {
    dir.Write("gaps.tra", header + "\"Trace Data\",0,5\n" + Row(0, 0, 0xFF, false) +
                              Row(1, 0, 0xFF, false) + Row(4, 0, 0xFF, false) +
                              Row(5, 0, 0xFF, false) + "\"End of Trace Data\"\n");
    SmallCapture();
    const std::string missing = "busquill-trace: gaps.tra: samples of the capture are missing, so "
                                "times and counts are too small\n";
    EXPECT_EQ(Run({"list", "gaps.tra", "--columns", "TIME"}).err, missing);
    EXPECT_EQ(Run({"list", "gaps.tra", "--columns", "ACCUM", "--json"}).err, missing);
    for (const char* target : {"a.vcd", "a.csv", "a.sr"}) {
        const ProgramRun run = Run({"convert", "gaps.tra", "-o", target});
        EXPECT_EQ(run.status, 0);
        EXPECT_THAT(run.err, EndsWith(missing)) << target;
    }
    EXPECT_EQ(Run({"stats", "gaps.tra"}).err, missing);
    // No report where no time is wrong.
    EXPECT_EQ(Run({"list", "gaps.tra", "--columns", "FRAME"}).err, "");
    EXPECT_EQ(Run({"list", "small.tra", "--columns", "TIME,ACCUM"}).err, "");
    EXPECT_EQ(Run({"convert", "gaps.tra", "-o", "a.csv", "--from", "4"}).err, "");
    EXPECT_EQ(Run({"convert", "small.tra", "-o", "a.csv"}).err, "");
}

TEST_F(TraceCommands, NamesAreValidInPatterns) {
    const ProgramRun pci = Run({"names"});
    EXPECT_EQ(pci.status, 0);
    EXPECT_EQ(pci.err, "");
    const std::string lines = "\n" + pci.out;
    for (const char* line : {"COMMAND", "COMMAND=Mem Wr", "ADDRESS32", "DATA32", "AD[63:0]",
                             "FRAME", "RULE CHECK=Target Abort"}) {
        EXPECT_THAT(lines, HasSubstr(std::string("\n") + line + "\n"));
    }
    for (const char* other : {"ADDRESS64", "COMMAND(PCI-X)", "ACCUM", "=<>", "AM[5:0]",
                              "RANGE[1:0]", "ADDRESS32=00000000", "TIME=000000"}) {
        EXPECT_THAT(lines, Not(HasSubstr(std::string("\n") + other + "\n")));
    }
    SmallCapture();
    std::istringstream each(pci.out);
    for (std::string line; std::getline(each, line);) {
        const std::string pattern = line.find('=') == std::string::npos ? line + "=x" : line;
        EXPECT_LT(Run({"search", "small.tra", "-p", pattern}).status, 2) << line;
    }
    EXPECT_THAT(Run({"names", "--bus", "VME"}).out, HasSubstr("\nAM"));
    EXPECT_THAT(Run({"names", "--bus", "PCI-X"}).out, HasSubstr("COMMAND(PCI-X)=Split Cmpl\n"));
    EXPECT_THAT(Run({"names", "--json"}).out,
                HasSubstr("{\"name\": \"COMMAND\", \"bits\": 8, \"labels\": [\"Int Ack\", "));
    EXPECT_THAT(Run({"names", "--json"}).out,
                HasSubstr("{\"name\": \"AD[63:0]\", \"bits\": 64, \"labels\": []}"));
}

TEST_F(TraceCommands, NamesOfACaptureIncludeItsRows) {
    SmallCapture("\"State Signals\"\n"
                 "\"Signal\",\"MINE\",\"FRAME\",\"\",\"\",\"\",-1,72,0,20,30,0,\"Show\","
                 "\"Hex\"\n\"End of State Signals\"\n");
    EXPECT_THAT(Run({"names", "small.tra"}).out, StartsWith("MINE\n"));
    EXPECT_THAT(Run({"search", "small.tra", "-p", "MIN=0"}).err, HasSubstr("there are MINE, "));
}

TEST_F(TraceCommands, LinesThatTheBusDoesNotHaveAreNotCompared) {
    // As a board leaves the upper half of a 32 bit bus: high.
    const auto row = [](int number, const std::string& low, const std::string& high, int enables) {
        return std::to_string(number) + "," + low + "," + high + "," + std::to_string(enables) +
               ",222,63,143,0,0,30,0,0,0\n";
    };
    dir.Write("upper.tra", header + "\"Trace Data\",0,1\n" +
                               row(0, "128,3,191,254", "255,255,255,255", 0xF7) +
                               row(1, "128,3,191,254", "0,0,0,0", 0x07));
    const auto found = [this](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"search", "upper.tra", "--all"});
        return Run(arguments).out;
    };
    EXPECT_EQ(found({"-p", "AD=FEBF0380"}), "0\n1\n");
    EXPECT_EQ(found({"-p", "AD[63:0]=FEBF0380"}), "0\n1\n");
    EXPECT_EQ(found({"-p", "AD=BF0380"}), ""); // digits are padded up to the width of the bus
    EXPECT_EQ(found({"-p", "AD=00000000FEBF0380"}), "1\n"); // all given digits are compared
    EXPECT_EQ(found({"-p", "C/BE=7"}), "0\n1\n");
    EXPECT_EQ(found({"-p", "C/BE=F7"}), "0\n");
    EXPECT_EQ(found({"-p", "AD[63:32]=0"}), "1\n");
    EXPECT_EQ(found({"-p", "AD=FEBF0380", "--width", "64"}), "1\n");
    EXPECT_EQ(found({"-p", "C/BE=7", "--width", "64"}), "1\n");
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

TEST_F(TraceCommands, ACellOfBlanksIsEmpty) {
    // Idle clocks have all byte lanes disabled; the second sample has one of them enabled.
    dir.Write("a.tra", header + "\"Trace Data\",0,1\n" + Row(0, 0x1234, 0xFF, false) +
                           Row(1, 0x1234, 0xFE, false));
    EXPECT_EQ(Run({"list", "a.tra", "--columns", "DATA32", "--format", "csv"}).out,
              "SAMPLE,DATA32\n0,\n1,\"      34\"\n");
    EXPECT_EQ(Run({"list", "a.tra", "--columns", "DATA32", "--json"}).out,
              "{\"columns\": [\"SAMPLE\", \"DATA32\"],\n\"rows\": [\n[0, \"\"],\n"
              "[1, \"      34\"]\n]}\n");
    EXPECT_EQ(Run({"list", "a.tra", "--columns", "DATA32,FRAME"}).out,
              "SAMPLE  DATA32    FRAME\n     0            1\n     1        34  1\n");
}

TEST_F(TraceCommands, ListShowsSingleLinesAndSignalsThatAreInNoList) {
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

TEST_F(TraceCommands, ListOfAnEmptyCapture) {
    SmallCapture();
    const ProgramRun past = Run({"list", "small.tra", "--from", "5", "-o", "out"});
    EXPECT_EQ(past.status, 1);
    EXPECT_EQ(past.err, "busquill-trace: there are no such samples\n");
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
    // A backward search reaches the first sample too.
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

TEST_F(TraceCommands, SearchAndFilterTreatZerosAsAValue) {
    // A few of the thousands of samples outside address phases have zeros on the lower lines.
    const std::string all =
        Run({"search", data + "Trigger2.tra", "-p", "DATA32=00000000", "--all"}).out;
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 36);
    EXPECT_EQ(all, Run({"search", data + "Trigger2.tra", "-p", "AD[31:0]=00000000", "-p",
                        "ADR/DATA=Data", "--all"})
                       .out);
    EXPECT_EQ(Run({"search", data + "Trigger2.tra", "-p", "ADDRESS32=00000000", "--all"}).out,
              Run({"search", data + "Trigger2.tra", "-p", "AD[31:0]=00000000", "-p",
                   "ADR/DATA=Address", "--all"})
                  .out);
    EXPECT_EQ(
        Run({"filter", data + "Trigger2.tra", "-p", "DATA32=00000000", "-o", "zeros.tra"}).status,
        0);
    EXPECT_THAT(Run({"info", "zeros.tra"}).out, HasSubstr("Samples:           36\n"));
}

TEST_F(TraceCommands, SearchDoesNotFindSamplesThatTheFileLacks) {
    dir.Write("gaps.tra",
              header + "\"Trace Data\",0,40\n" + Row(7, 0, 0xFF, false) + Row(33, 1, 0xFF, false));
    EXPECT_EQ(Run({"search", "gaps.tra", "-p", "AD=xxxxxxxxxxxxxxx0", "--all"}).out, "7\n");
}

TEST_F(TraceCommands, SearchWithAnExpression) {
    SmallCapture();
    const auto found = [&](const std::string& where) {
        return Run({"search", "small.tra", "--where", where, "--all"}).out;
    };
    EXPECT_EQ(found("FRAME == 0"), "0\n2\n");
    EXPECT_EQ(Run({"search", "small.tra", "--where", "FRAME == 0"}).out, "0\n");
    EXPECT_EQ(Run({"search", "small.tra", "--where", "FRAME == 0", "--all", "--json"}).out,
              "[0, 2]\n");
    EXPECT_EQ(Run({"search", "small.tra", "--where", "FRAME == 0", "--backward"}).out, "2\n");
    EXPECT_EQ(Run({"search", "small.tra", "--where", "FRAME == 0", "-p", "AD=20"}).out, "2\n");
    EXPECT_EQ(found("COMMAND == \"Mem*\" and AD in 0x11..0x20"), "2\n");
    EXPECT_EQ(found("sample < 0"), "-3\n-2\n-1\n");
    const ProgramRun none = Run({"search", "small.tra", "--where", "AD == 0x999", "--json"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "[]\n");
}

TEST_F(TraceCommands, ExpressionsAndPatternsFindTheSame) {
    const std::string capture = data + "Trigger2.tra";
    const auto all = [&](const char* option, const char* condition) {
        return Run({"search", capture, option, condition, "--all"}).out;
    };
    EXPECT_EQ(all("--where", "COMMAND == \"Mem Wr\""), all("-p", "COMMAND=Mem Wr"));
    EXPECT_EQ(all("--where", "AD == 0xFEBF_XXXX"), all("-p", "AD=FEBFxxxx"));
    EXPECT_EQ(all("--where", "`RULE CHECK` == \"Target Abort\""),
              all("-p", "RULE CHECK=Target Abort"));
    EXPECT_EQ(all("--where", "AD in 0xFEBF0000..0xFEBFFFFF"), all("-p", "AD=FEBFxxxx"));
}

TEST_F(TraceCommands, SearchByTheTimeSinceTheTrigger) {
    const std::string capture = data + "Trigger2.tra";
    // The listing shows ACCUM of each sample: the last one before 5 us and the first one after.
    const std::string number = Run({"search", capture, "--where", "ACCUM >= 5us"}).out;
    ASSERT_NE(number, "");
    const int first = std::stoi(number);
    const auto shown = [&](int sample) {
        const std::string at = std::to_string(sample);
        const std::string out = Run({"list", capture, "--from", at, "--to", at, "--columns",
                                     "ACCUM", "--format", "csv"})
                                    .out;
        return out.substr(out.find('\n') + 1);
    };
    EXPECT_THAT(shown(first), StartsWith(std::to_string(first) + ",5.0"));
    EXPECT_THAT(shown(first - 1), StartsWith(std::to_string(first - 1) + ",4.9"));
    EXPECT_EQ(Run({"search", capture, "--where", "ACCUM == 0 and sample == 0"}).out, "0\n");
    EXPECT_EQ(Run({"search", capture, "--where", "accum < 0", "--backward"}).out, "-1\n");
    // The filter reads the samples twice.
    EXPECT_EQ(Run({"filter", capture, "--where", "ACCUM >= 5us", "-o", "late.tra"}).status, 0);
    EXPECT_EQ(Run({"search", "late.tra", "--where", "sample > -99999"}).out, number);
}

TEST_F(TraceCommands, EdgesAreFoundBetweenThePiecesInWhichACaptureIsRead) {
    // FRAME is low in every other sample, so each of the others but the first is an edge.
    std::string rows;
    constexpr int count = 40000;
    for (int i = 0; i < count; ++i) {
        rows += Row(i, 0, 0xFF, i % 2 == 1);
    }
    dir.Write("long.tra", header + "\"Trace Data\",0,39999\n" + rows + "\"End of Trace Data\"\n");
    const std::string falls = Run({"search", "long.tra", "--where", "FRAME falls", "--all"}).out;
    EXPECT_EQ(std::ranges::count(falls, '\n'), count / 2);
    const std::string rises = Run({"search", "long.tra", "--where", "FRAME rises", "--all"}).out;
    EXPECT_EQ(std::ranges::count(rises, '\n'), count / 2 - 1);
}

TEST_F(TraceCommands, FilterWithAnExpression) {
    SmallCapture();
    const ProgramRun run =
        Run({"filter", "small.tra", "--where", "FRAME falls or sample == -3", "-o", "out.tra"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Run({"search", "out.tra", "--where", "sample > -99", "--all"}).out, "-3\n0\n2\n");
    // The sample before each is gone, so there are no edges.
    EXPECT_EQ(Run({"search", "out.tra", "--where", "FRAME changes"}).status, 1);
    const ProgramRun none =
        Run({"filter", "small.tra", "--where", "AD == 0x999", "-o", "none.tra"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "busquill-trace: No match found. none.tra is not written.\n");
}

TEST_F(TraceCommands, FilterKeepsTheContextOfTheSamples) {
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

TEST_F(TraceCommands, FilterOfATruncatedFileEndsItsBlock) {
    dir.Write("cut.tra", header + "\"Trace Data\",0,9\n" + Row(0, 5, 0xFF, false) + "1,2");
    EXPECT_EQ(Run({"filter", "cut.tra", "-p", "FRAME=1", "-o", "-"}).out,
              header + "\"Trace Data\",0,9\n" + Row(0, 5, 0xFF, false) + "\"End of Trace Data\"\n");
}

TEST_F(TraceCommands, FilterWithoutAMatchWritesNothing) {
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

TEST_F(TraceCommands, CompareReportsWhatDiffersWhereAndHowOften) {
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

TEST_F(TraceCommands, CompareIgnoresSomeSignals) {
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

TEST_F(TraceCommands, CompareByNumberOrByPosition) {
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

TEST_F(TraceCommands, StatsReportTheFirstSampleOfAFinding) {
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

/// PCI samples with data, in bytes as in a file: a read of two words, of which samples are missing.
std::string TwoWords() {
    const auto row = [](int number, const char* bytes, const char* enables, const char* lines,
                        const char* phase) {
        return std::to_string(number) + "," + bytes + ",0,0,0,0," + enables + "," + lines + ",63," +
               phase + ",0,0,30,0,0,0\n"; // 30 ns
    };
    return header + "\"Trace Data\",-1,6\n" + row(-1, "0,0,0,0", "255", "223", "15") +
           row(0, "0,16,0,0", "246", "222", "143") + // FRAME
           row(1, "1,0,0,170", "240", "200", "15") + // FRAME, IRDY, TRDY, DEVSEL
           row(2, "2,0,0,170", "252", "201", "15") + // without FRAME
           row(3, "0,0,0,0", "255", "223", "15") + row(4, "0,32,0,0", "247", "222", "143") +
           row(6, "0,0,0,0", "255", "223", "15") + "\"End of Trace Data\"\n";
}

TEST_F(TraceCommands, TransactionsAsTextCsvAndJsonLines) {
    dir.Write("two.tra", TwoWords());
    const ProgramRun text = Run({"transactions", "two.tra"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(
        text.out,
        "  NUMBER    SAMPLE      TIME  COMMAND                ADDRESS            BYTES     WAIT  "
        "I-WAIT   LATENCY       GAP  END                      DATA\n"
        "       1         0      30ns  Mem Rd                 00001000               6        0    "
        "   0      30ns            complete                 AA000001 ----0002\n"
        "       2         4     150ns  Mem Wr                 00002000               0        0    "
        "   0                60ns  unknown\n");
    EXPECT_EQ(text.err, "busquill-trace: two.tra: samples of the capture are missing, so times "
                        "and counts are too small\n");
    EXPECT_EQ(Run({"transactions", "two.tra", "--format", "csv", "--words", "1"}).out,
              "number,sample,time,command,address,words,bytes,wait,initiatorWait,latency,end,gap,"
              "tag,splitRequest,findings,data\n"
              "1,0,30,Mem Rd,0x00001000,2,6,0,0,30,complete,,,,0,AA000001\n"
              "2,4,150,Mem Wr,0x00002000,0,0,0,0,,unknown,60,,,0,\n");
    EXPECT_EQ(Run({"transactions", "two.tra", "--json", "--to", "3"}).out,
              "{\"number\": 1, \"sample\": 0, \"time\": 30, \"command\": \"Mem Rd\", \"address\": "
              "\"0x00001000\", \"words\": 2, \"bytes\": 6, \"wait\": 0, \"initiatorWait\": 0, "
              "\"latency\": 30, \"end\": \"complete\", \"gap\": null, \"tag\": null, "
              "\"splitRequest\": null, \"findings\": 0, \"data\": [\"AA000001\", \"----0002\"]}\n");
}

TEST_F(TraceCommands, FiguresOfASetupThatStoresSomeSamplesComeWithAWarning) {
    EXPECT_EQ(Run({"transactions", data + "Trigger2.tra"}).err, "");
    EXPECT_EQ(Run({"stats", data + "Trigger2.tra"}).err, "");
    std::string text = ReadWholeFile(data + "Trigger2.tra");
    const std::string all = "\"Goto L1\",\"All\"";
    const auto level = text.find(all);
    ASSERT_NE(level, std::string::npos);
    dir.Write("some.tra", text.replace(level, all.size(), "\"Goto L1\",\"E1\""));
    for (const char* command : {"transactions", "stats"}) {
        const ProgramRun run = Run({command, "some.tra"});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "busquill-trace: some.tra: its setup does not store every sample; "
                           "what was not stored is missing in the result\n");
    }
}

TEST_F(TraceCommands, TransactionsStandBelowTheirTitlesOnAllBuses) {
    // Long addresses and waits, whatever they mean on a bus.
    std::string rows;
    for (int i = 0; i < 200; ++i) {
        rows += std::to_string(i);
        for (int byte = 0; byte < 18; ++byte) {
            rows += "," + std::to_string((i * 7919 + byte * 104729 + i * byte * 31) >> 3 & 255);
        }
        rows += "\n";
    }
    dir.Write("noise.tra", header + "\"Trace Data\",0,199\n" + rows);
    for (const char* bus : {"PCI", "PCI-X", "VME", "2eSST", "VSB"}) {
        std::istringstream lines(Run({"transactions", "noise.tra", "--bus", bus}).out);
        std::string titles;
        std::getline(lines, titles);
        const std::size_t end = titles.find("  END  ") + 2;
        int count = 0;
        for (std::string line; std::getline(lines, line); ++count) {
            EXPECT_EQ(line.substr(end - 2, 2), "  ") << bus << ": " << line;
            EXPECT_NE(line[end], ' ') << bus << ": " << line;
        }
        EXPECT_GT(count, 3) << bus;
    }
}

TEST_F(TraceCommands, TransactionsOfARangeKeepTheirNumbersAndGaps) {
    const std::string all = Run({"transactions", data + "Trigger2.tra"}).out;
    const std::string some =
        Run({"transactions", data + "Trigger2.tra", "--from", "0", "--to", "22"}).out;
    EXPECT_EQ(std::ranges::count(some, '\n'), 3);
    EXPECT_THAT(all, HasSubstr(some.substr(some.find('\n'))));
    const ProgramRun none =
        Run({"transactions", data + "Trigger2.tra", "--from", "1", "--to", "2"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "busquill-trace: there are no such transactions\n");
}

TEST_F(TraceCommands, TransactionsForWhichAConditionHolds) {
    const auto count = [&](const std::string& where) {
        const std::string out =
            Run({"transactions", data + "Trigger2.tra", "--where", where, "--format", "csv"}).out;
        return std::ranges::count(out, '\n') - 1; // without the titles
    };
    EXPECT_EQ(count("end == retry"), 10);
    EXPECT_EQ(count("command == \"mem rd\""), 68);
    EXPECT_EQ(count("command == \"Mem *\" and not end == complete"), 26);
    EXPECT_EQ(count("number in 5..9"), 5);
    EXPECT_EQ(count("address == 0xFEBF_XXXX"), count("address in 0xFEBF0000..0xFEBFFFFF"));
    const std::string sums =
        Run({"transactions", data + "Trigger2.tra", "--where", "end == retry", "--summary"}).out;
    EXPECT_THAT(sums, EndsWith("TRANSACTIONS\nretry                              10\n"));
    EXPECT_EQ(count("headless") + count("not headless"), count("number >= 1"));
    const ProgramRun none = Run({"transactions", data + "Trigger2.tra", "--where", "number < 1"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.err, "busquill-trace: there are no such transactions\n");
}

TEST_F(TraceCommands, AllExpressionsOfSeveralHold) {
    SmallCapture();
    EXPECT_EQ(Run({"search", "small.tra", "--where", "sample > 0 or sample < -2", "--where",
                   "FRAME == 0 or AD == 0", "--where", "sample < 3", "--all"})
                  .out,
              "-3\n1\n2\n");
    const ProgramRun filter = Run(
        {"filter", "small.tra", "--where", "FRAME == 0", "--where", "sample > 0", "-o", "out.tra"});
    EXPECT_EQ(filter.status, 0);
    EXPECT_EQ(Run({"search", "out.tra", "--where", "sample > -99", "--all"}).out, "2\n");
    const std::string capture = data + "Trigger2.tra";
    EXPECT_EQ(Run({"transactions", capture, "--where", "number == 137 or number == 138", "--where",
                   "number == 138 or number == 139"})
                  .out,
              Run({"transactions", capture, "--where", "number == 138"}).out);
}

TEST_F(TraceCommands, AMistakeInOneOfSeveralExpressionsNamesIt) {
    SmallCapture();
    const ProgramRun search =
        Run({"search", "small.tra", "--where", "FRAME == 0", "--where", "AD =="});
    EXPECT_EQ(search.status, 2);
    EXPECT_THAT(search.err, HasSubstr("the --where \"AD ==\" is wrong at its end: "));
    const ProgramRun transactions =
        Run({"transactions", "small.tra", "--where", "wait == 4 4", "--where", "number == 1"});
    EXPECT_EQ(transactions.status, 2);
    EXPECT_THAT(transactions.err, HasSubstr("the --where \"wait == 4 4\" is wrong at \"4\": "));
}

TEST_F(TraceCommands, ExpressionsUseThoseThatTheUserKeeps) {
    std::filesystem::create_directories(dir.File("home/busquill"));
    std::ofstream(dir.File("home/busquill/expressions.txt"))
        << "# mine\nretried: end == retry\nidle: FRAME == 1 and IRDY == 1\nno expression\n";
    const auto run = [&](std::vector<std::string> arguments) {
        return RunTrace(arguments, {.folder = dir.Path(),
                                    .environment = {{"XDG_DATA_HOME", dir.File("home")}}});
    };
    const std::string capture = data + "Trigger2.tra";
    const ProgramRun kept = run({"transactions", capture, "--where", "@retried", "--summary"});
    EXPECT_EQ(kept.status, 0);
    EXPECT_EQ(kept.out, run({"transactions", capture, "--where", "end == retry", "--summary"}).out);
    EXPECT_THAT(kept.err, HasSubstr("expressions.txt: line 4 is not \"name: expression\""));
    EXPECT_EQ(run({"search", capture, "--where", "not @idle", "--all"}).out,
              run({"search", capture, "--where", "FRAME == 0 or IRDY == 0", "--all"}).out);
    const ProgramRun wrong = run({"transactions", capture, "--where", "wait > 4 or @idle"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.err, HasSubstr("--where is wrong at \"@idle\": @idle is wrong at \"FRAME == 1"
                                     " and IRDY == 1\": "));
    // An expression without them does not read the file.
    EXPECT_EQ(run({"transactions", capture, "--where", "number == 1"}).err, "");
}

TEST_F(TraceCommands, SummaryOfTransactions) {
    dir.Write("two.tra", TwoWords());
    EXPECT_EQ(Run({"transactions", "two.tra", "--summary"}).out,
              "COMMAND                  TRANSACTIONS      WORDS        BYTES       WAIT    LATENCY"
              "      LEAST       MOST\n"
              "Mem Rd                              1          2            6          0       30ns"
              "       30ns       30ns\n"
              "Mem Wr                              1          0            0          0\n"
              "\n"
              "END                      TRANSACTIONS\n"
              "complete                            1\n"
              "unknown                             1\n");
    EXPECT_EQ(Run({"transactions", "two.tra", "--summary", "--json"}).out,
              "{\"transactions\": 2, \"commands\": [{\"command\": \"Mem Rd\", \"transactions\": 1, "
              "\"words\": 2, \"bytes\": 6, \"wait\": 0, \"latency\": {\"least\": 30, \"mean\": 30, "
              "\"most\": 30}}, {\"command\": \"Mem Wr\", \"transactions\": 1, \"words\": 0, "
              "\"bytes\": 0, \"wait\": 0}], \"ends\": {\"complete\": 1, \"unknown\": 1}}\n");
}

TEST_F(TraceCommands, SetupAsTextAndBytes) {
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
    // Four events of 30 bytes, padded with zeros.
    std::string zeros;
    for (int i = 0; i < 120; ++i) {
        zeros += " 00";
    }
    EXPECT_THAT(lark.out, HasSubstr(zeros + "\"}, {\"command\": \"CmdTraceControl\""));
    EXPECT_THAT(Run({"setup", data + "ReadAfterWrites.tsp", "--payload", "--model", "VMELark"}).out,
                HasSubstr("CmdTraceEvents, register 20, 240 bytes:\n"));
    EXPECT_EQ(Run({"setup", "-"}, ReadWholeFile(data + "ReadAfterWrites.tsp")).out, words.out);
}

TEST_F(TraceCommands, SetupPrintsOrdinals) {
    const std::string setup = ReadWholeFile(data + "ReadAfterWrites.tsp");
    const std::string hundred = "\"E1\",100,";
    const auto at = setup.find(hundred);
    ASSERT_NE(at, std::string::npos);
    for (const auto& [count, words] :
         std::initializer_list<std::pair<const char*, const char*>>{{"2", "2nd"},
                                                                    {"3", "3rd"},
                                                                    {"4", "4th"},
                                                                    {"11", "11th"},
                                                                    {"12", "12th"},
                                                                    {"13", "13th"},
                                                                    {"21", "21st"},
                                                                    {"22", "22nd"},
                                                                    {"111", "111th"},
                                                                    {"65535", "65535th"}}) {
        std::string text = setup;
        dir.Write("a.tsp", text.replace(at, hundred.size(), "\"E1\"," + std::string(count) + ","));
        EXPECT_THAT(Run({"setup", "a.tsp"}).out,
                    HasSubstr("; on E1 for the " + std::string(words) + " time, go to level 2;"));
    }
}

TEST_F(TraceCommands, SetupThatIsNotASetupFile) {
    const ProgramRun run = Run({"setup", data + "Trigger1.tra"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr("Error: File type of 'Trace Setup File' not found."));
}

} // namespace
} // namespace busquill::test
