// busquill-trace with a board: what it reports about the board, and captures compared with the
// board's traffic.

#include "support/trace_program_over_wire.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace busquill::test {
namespace {

using boardsim::GetBit;
using boardsim::GetField;
using boardsim::Record;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

struct BoardCase {
    const char* name;
    std::vector<std::string> options;
    const char* text;
    const char* json;
};
void PrintTo(const BoardCase& board, std::ostream* out) {
    *out << board.name;
}

class TraceProgramBoard : public TraceProgram, public testing::WithParamInterface<BoardCase> {};

TEST_P(TraceProgramBoard, IsReported) {
    StartBoard(GetParam().options);
    const ProgramRun text = Run({"board"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out, GetParam().text);
    EXPECT_EQ(text.err, "");
    const ProgramRun json = Run({"board", "--json"});
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(json.out, GetParam().json);
    EXPECT_EQ(json.err, "");
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(, TraceProgramBoard, testing::Values(
    BoardCase{"Pci", {},
        "Model:             PCIKite-3\n"
        "Buffer Size:       1024K\n"
        "Firmware Version:  1.7\n"
        "Hardware Version:  1.0\n"
        "Serial Number:     1234\n"
        "Bus Mode:          PCI\n"
        "Bus Width:         32\n"
        "Bus Voltage:       5.0V\n"
        "Bus Frequency:     33 MHz\n",
        R"({"model": "PCIKite-3", "bufferSize": "1024K", "firmware": "1.7", "hardware": "1.0", )"
        R"("serial": 1234, "busMode": "PCI", "busWidth": 32, "busVoltage": "5.0V", )"
        R"("busFrequency": "33 MHz"})" "\n"},
    BoardCase{"PciX", {"--model", "PMCKite", "--suffix", "1", "--buffer", "256", "--bus-byte", "0x15", "--mhz", "133"},
        "Model:             PMCKite-1\n"
        "Buffer Size:       256K\n"
        "Firmware Version:  1.7\n"
        "Hardware Version:  1.0\n"
        "Serial Number:     1234\n"
        "Bus Mode:          PCI-X\n"
        "Bus Width:         64\n"
        "Bus Voltage:       3.3V\n"
        "Bus Frequency:     133 MHz\n",
        R"({"model": "PMCKite-1", "bufferSize": "256K", "firmware": "1.7", "hardware": "1.0", )"
        R"("serial": 1234, "busMode": "PCI-X", "busWidth": 64, "busVoltage": "3.3V", )"
        R"("busFrequency": "133 MHz"})" "\n"},
    BoardCase{"Vme", {"--model", "VMEKite", "--suffix", "2", "--bus-byte", "2", "--mhz", "16", "--serial", "42", "--firmware", "23", "--hardware", "31"},
        "Model:             VMEKite-2\n"
        "Buffer Size:       1024K\n"
        "Firmware Version:  2.3\n"
        "Hardware Version:  3.1\n"
        "Serial Number:     42\n"
        "Bus Mode:          2eSST\n"
        "Bus Width:         32\n"
        "Bus Voltage:       5.0V\n"
        "Bus Frequency:     16 MHz\n",
        R"({"model": "VMEKite-2", "bufferSize": "1024K", "firmware": "2.3", "hardware": "3.1", )"
        R"("serial": 42, "busMode": "2eSST", "busWidth": 32, "busVoltage": "5.0V", )"
        R"("busFrequency": "16 MHz"})" "\n"},
    BoardCase{"Lark", {"--model", "VMELark", "--buffer", "64", "--mhz", "16"},
        "Model:             VMELark-3\n"
        "Buffer Size:       64K\n"
        "Firmware Version:  1.7\n"
        "Hardware Version:  1.0\n"
        "Serial Number:     1234\n"
        "Bus Mode:          VME\n"
        "Bus Width:         32\n"
        "Bus Voltage:       5.0V\n"
        "Bus Frequency:     16 MHz\n",
        R"({"model": "VMELark-3", "bufferSize": "64K", "firmware": "1.7", "hardware": "1.0", )"
        R"("serial": 1234, "busMode": "VME", "busWidth": 32, "busVoltage": "5.0V", )"
        R"("busFrequency": "16 MHz"})" "\n"}),
    [](const auto& each) { return each.param.name; });
// clang-format on

bool IsWrite(const Record& record) {
    return GetBit(record, 95) && GetField(record, 64, 4) == 7;
}

/// Where in the traffic the samples of a run lie that triggers at the `writes`th memory write, if
/// the run sees the traffic from `from` on with a memory of 1024 samples.
struct Window {
    Window(const std::vector<Record>& traffic, std::size_t from, int writes) {
        trigger = from;
        for (int found = 0; (found += IsWrite(traffic[trigger]) ? 1 : 0) < writes;) {
            ++trigger;
        }
        first = trigger - std::min<std::size_t>(trigger - from, 512);
        end = trigger + 512;
    }
    /// A record without its time, which starts again with each run.
    [[nodiscard]] static Record Untimed(Record record) {
        boardsim::SetField(record, boardsim::bitTime, boardsim::timeBits, 0);
        return record;
    }
    void ExpectIn(const TraceRows& rows, const std::vector<Record>& traffic) const {
        ASSERT_EQ(rows.records.size(), end - first);
        EXPECT_EQ(rows.numbers.front(), static_cast<int>(first) - static_cast<int>(trigger));
        for (std::size_t i = 0; i < rows.records.size(); ++i) {
            ASSERT_EQ(rows.numbers[i], rows.numbers.front() + static_cast<int>(i));
            ASSERT_EQ(Untimed(rows.records[i]), Untimed(traffic[first + i])) << i;
        }
    }
    std::size_t trigger;
    std::size_t first;
    std::size_t end;
};

class TraceProgramCapture : public TraceProgram {
protected:
    void StartSeeded() { StartBoard({"--buffer", "1", "--seed", "5"}); }
    /// The functions that the board was asked for, without repetitions.
    std::vector<std::string> Steps() const {
        std::vector<std::string> steps;
        for (const std::string& line : board->Functions()) {
            std::string step = line.substr(line.find(' ', line.find(' ') + 1) + 1);
            if (step.find("memory") == std::string::npos) {
                step.erase(step.find(','));
            }
            if (step.starts_with("read samples")) {
                step = "read samples";
            }
            steps.push_back(step);
        }
        steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
        return steps;
    }
    const std::vector<Record> traffic = boardsim::MakeRecords(boardsim::Family::Pci32, 5, 20000);
};

TEST_F(TraceProgramCapture, HoldsTheTrafficAroundTheTrigger) {
    StartSeeded();
    const ProgramRun run = Capture(Writes(40));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "busquill-trace: " + target + ": 1024 samples\n");
    const TraceRows rows = Captured();
    Window(traffic, 0, 40).ExpectIn(rows, traffic);
    const auto trigger = std::ranges::find(rows.numbers, 0) - rows.numbers.begin();
    ASSERT_LT(static_cast<std::size_t>(trigger), rows.records.size());
    EXPECT_TRUE(IsWrite(rows.records[static_cast<std::size_t>(trigger)]));
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
    EXPECT_THAT(FilesIn(temporary), IsEmpty());
}

TEST_F(TraceProgramCapture, LeavesNoBookmarksOfTheCaptureThatItReplaces) {
    StartSeeded();
    ASSERT_EQ(Capture(Writes(40)).status, 0);
    std::ofstream(target + ".bookmarks") << "Busquill bookmarks 1\n3\told\n";
    EXPECT_EQ(Capture(Writes(20)).status, 0);
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
    std::ofstream(target + ".bookmarks") << "my own notes\n";
    const ProgramRun run = Capture(Writes(20));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("The bookmarks in this file are not understood, so it was left "
                                   "as it is."));
    EXPECT_EQ(ReadWholeFile(target + ".bookmarks"), "my own notes\n");
}

TEST_F(TraceProgramCapture, SendsTheSetupThenStartsThenStopsThenReads) {
    StartSeeded();
    ASSERT_EQ(Capture(memoryWrite).status, 0);
    EXPECT_THAT(Steps(), ElementsAre("read memory, address 0 length 18",     // identity
                                     "read memory, address 18 length 2",     // bus
                                     "write memory, address 420 length 3",   // parameters
                                     "write memory, address 20 length 240",  // events
                                     "write memory, address 260 length 160", // levels
                                     "start trace",
                                     "read memory, address 425 length 9", // live status
                                     "stop trace", "read memory, address 425 length 9",
                                     "read zoom samples before the trigger",
                                     "read zoom samples after the trigger", "read samples"));
}

TEST_F(TraceProgramCapture, IsReadLikeAFileOfTheProgram) {
    StartSeeded();
    ASSERT_EQ(Capture(memoryWrite).status, 0);
    const Window window(traffic, 0, 1);
    const ProgramRun info = RunTrace({"info", "--json", target});
    EXPECT_EQ(info.status, 0);
    EXPECT_THAT(info.out,
                HasSubstr("\"samples\": " + std::to_string(window.end - window.first) + ","));
    EXPECT_THAT(info.out, HasSubstr("Memory write"));
    const ProgramRun search = RunTrace({"search", "-p", "COMMAND=Mem Wr", target});
    EXPECT_THAT(search.out, StartsWith("0\n"));
}

TEST_F(TraceProgramCapture, GoesToStandardOutputAndIntoAnotherCommand) {
    StartSeeded();
    const ProgramRun run = Run({"capture", "--setup", Writes(40), "-o", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "busquill-trace: standard output: 1024 samples\n");
    Window(traffic, 0, 40).ExpectIn(RowsOf(run.out), traffic);
    EXPECT_THAT(FilesIn(temporary), IsEmpty());
    const ProgramRun info = RunTrace({"info", "-"}, {.standardInput = run.out});
    EXPECT_EQ(info.status, 0);
    EXPECT_THAT(info.out, HasSubstr("Samples:           1024\n"));
    EXPECT_THAT(info.out, HasSubstr("Power Zoom:        511 samples\n"));
}

TEST_F(TraceProgramCapture, OfABoardWithoutPowerZoomHasNone) {
    StartBoard({"--buffer", "1", "--seed", "5", "--model", "PCIWren"});
    ASSERT_EQ(Capture(Writes(40)).status, 0);
    Window(traffic, 0, 40).ExpectIn(Captured(), traffic);
    EXPECT_THAT(RunTrace({"info", target}).out, HasSubstr("Power Zoom:        none\n"));
}

TEST_F(TraceProgramCapture, RepeatedGoesIntoNumberedFilesWithTheirTimes) {
    StartSeeded();
    const ProgramRun run = Capture(Writes(40), {"--repeat", "2"});
    EXPECT_EQ(run.status, 0);
    const auto files = FilesIn(folder);
    const std::string stamp =
        "[0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9]T[0-9][0-9][0-9][0-9][0-9][0-9]";
    ASSERT_THAT(files, ElementsAre(MatchesRegex("out-0001-" + stamp + ".tra"),
                                   MatchesRegex("out-0002-" + stamp + ".tra")));
    EXPECT_EQ(run.err, "busquill-trace: " + folder.File(files[0]) + ": 1024 samples\n" +
                           "busquill-trace: " + folder.File(files[1]) + ": 1024 samples\n");
    const Window first(traffic, 0, 40);
    first.ExpectIn(RowsOf(ReadWholeFile(folder.File(files[0]))), traffic);
    const Window second(traffic, first.end, 40);
    second.ExpectIn(RowsOf(ReadWholeFile(folder.File(files[1]))), traffic);
    EXPECT_EQ(Asked("start trace"), 2);
}

TEST_F(TraceProgramCapture, RunsEndWithTheFirstMatch) {
    StartSeeded();
    const Window first(traffic, 0, 40);
    const Window second(traffic, first.end, 40);
    // A value on the bus that the second run sees and the first does not.
    std::set<std::uint64_t> seen;
    for (std::size_t i = first.first; i < first.end; ++i) {
        seen.insert(GetField(traffic[i], 0, 32));
    }
    std::size_t hit = second.first + 100;
    while (seen.contains(GetField(traffic[hit], 0, 32))) {
        ++hit;
    }
    ASSERT_LT(hit, second.end);
    const std::uint64_t value = GetField(traffic[hit], 0, 32);
    for (hit = second.first; GetField(traffic[hit], 0, 32) != value;) {
        ++hit;
    }
    char pattern[32];
    std::snprintf(pattern, sizeof pattern, "AD[31:0]=%08X", static_cast<unsigned>(value));

    const ProgramRun run = Capture(Writes(40), {"--repeat", "3", "--stop-if-found", pattern});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(FilesIn(folder).size(), 2U);
    EXPECT_EQ(Asked("start trace"), 2);
    const auto number = static_cast<long long>(hit) - static_cast<long long>(second.trigger);
    EXPECT_THAT(run.err, HasSubstr("found at sample " + std::to_string(number) + "\n"));
}

TEST_F(TraceProgramCapture, NoMatchIsReported) {
    StartSeeded();
    // A command never has two codes at once.
    const ProgramRun run =
        Capture(memoryWrite, {"--repeat", "2", "--stop-if-found", "COMMAND=Mem Wr",
                              "--stop-if-found", "COMMAND=Int Ack"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(FilesIn(folder).size(), 2U);
    EXPECT_THAT(run.err, Not(HasSubstr("found")));
}

TEST_F(TraceProgramCapture, ATextThatIsNoPatternIsRefusedBeforeTheBoardIsAsked) {
    StartSeeded();
    const ProgramRun run = Capture(memoryWrite, {"--stop-if-found", "FEBF0000"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("a pattern is NAME=VALUE"));
    EXPECT_THAT(board->Functions(), IsEmpty());
}

TEST_F(TraceProgramCapture, ZerosAreFound) {
    StartSeeded();
    const ProgramRun run = Capture(Writes(40), {"--stop-if-found", "ADDRESS32=00000000"});
    const TraceRows rows = Captured();
    const auto isAddress = [](const Record& record) { return GetBit(record, 95); };
    const auto first = std::ranges::find_if(rows.records, isAddress);
    const auto zeros = std::ranges::find_if(rows.records, [&](const Record& record) {
        return isAddress(record) && GetField(record, 0, 32) == 0;
    });
    ASSERT_NE(zeros, rows.records.end());
    ASSERT_NE(zeros, first);
    EXPECT_EQ(run.status, 0);
    const int number = rows.numbers[static_cast<std::size_t>(zeros - rows.records.begin())];
    EXPECT_THAT(run.err, HasSubstr("found at sample " + std::to_string(number) + "\n"));
}

TEST_F(TraceProgramCapture, WithoutATriggerItEndsWithItsTimeAndKeepsTheSamples) {
    StartSeeded();
    const ProgramRun run = Capture(Never(), {"--timeout", "4"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err,
                StartsWith("busquill-trace: the time is over, and there was no trigger\n"));
    EXPECT_GE(Asked("stop trace"), 1);
    const TraceRows rows = Captured();
    ASSERT_GT(rows.records.size(), 500U); // half of the memory is before a trigger
    EXPECT_EQ(rows.numbers.front(), -512);
    const ProgramRun info = RunTrace({"info", target});
    EXPECT_EQ(info.status, 0);
    EXPECT_THAT(info.out, HasSubstr("First sample:      -512\n"));
}

} // namespace
} // namespace busquill::test
