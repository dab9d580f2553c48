#include "boardsim/traffic.h"
#include "boardsim/wire.h"
#include "capture/sample_rows.h"
#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"
#include "support/value_dump_parser.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <span>

namespace busquill::test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct FamilyCase {
    const char* name;
    boardsim::Family family;
    std::vector<std::string> options;
};

/// Captures that are converted, and read back with the tools that the formats are for.
class Conversion : public testing::TestWithParam<FamilyCase> {
protected:
    static constexpr int samples = 700;
    static constexpr int first = -200;

    Conversion() : records(boardsim::MakeRecords(GetParam().family, 9, samples)) {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                           "\"Trace Data\",-200,499\n";
        for (int i = 0; i < samples; ++i) {
            AppendRow(text, first + i, {records[static_cast<std::size_t>(i)]});
        }
        text += "\"End of Trace Data\"\n\"Power Zoom Data\",255,256\n";
        zoom = boardsim::MakeZoom(records, 200);
        for (int i = 0; i < 511; ++i) {
            AppendRow(text, i - 255, {zoom[static_cast<std::size_t>(i)]});
        }
        dir.Write("a.tra", text + "\"End of Power Zoom Data\"\n");
    }
    void Convert(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"convert", "a.tra"});
        arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
        const ProgramRun run = RunTrace(arguments, {.folder = dir.Path()});
        EXPECT_EQ(run.status, 0) << run.err;
        said = run.err;
    }
    /// Runs one of the field's tools in the folder; true if it succeeded.
    bool Tool(const std::string& command) const {
        return std::system(
                   ("cd '" + dir.Path() + "' && " + command + " > tool.out 2> tool.err").c_str()) ==
               0;
    }
    /// Compares all single bits and buses of a dump with the records; their names give their
    /// position.
    static void ExpectValues(const ParsedDump& dump,
                             const std::vector<boardsim::Record>& captured) {
        std::int64_t time = 0;
        for (std::size_t i = 0; i < captured.size(); ++i) {
            if (i != 0) {
                const std::int64_t step = static_cast<std::int64_t>(boardsim::TimeOfField(
                    boardsim::GetField(captured[i], boardsim::bitTime, boardsim::timeBits)));
                time += std::max<std::int64_t>(step, 1);
            }
            std::string clock(1, boardsim::GetField(captured[i], boardsim::bitClock, 1) != 0 ? '1'
                                                                                             : '0');
            if (std::ranges::find(dump.order, "CLK") != dump.order.end()) {
                ASSERT_EQ(dump.At(time, "CLK"), clock) << i;
            }
            if (std::ranges::find(dump.order, "AD[63:0]") != dump.order.end()) {
                std::string bits;
                for (int bit = 64; bit-- > 0;) {
                    bits += boardsim::GetField(captured[i], bit, 1) != 0 ? '1' : '0';
                }
                ASSERT_EQ(dump.At(time, "AD[63:0]"), bits) << i;
            }
        }
        EXPECT_GT(dump.values.rbegin()->first, time); // the last sample has a width too
    }

    const std::vector<boardsim::Record> records;
    std::vector<boardsim::Record> zoom;
    const TempDir dir;
    std::string said;
};

TEST_P(Conversion, ADumpHoldsTheSamplesAtTheirTimes) {
    Convert({"-o", "a.vcd"});
    ExpectValues(ParseDump(ReadWholeFile(dir.File("a.vcd"))), records);
    EXPECT_TRUE(std::filesystem::exists(dir.File("a.gtkw")));
}

TEST_P(Conversion, ADumpSurvivesTheViewersOwnFormat) {
    Convert({"-o", "a.vcd"});
    ASSERT_TRUE(Tool("vcd2fst a.vcd a.fst && fst2vcd a.fst -o back.vcd"))
        << ReadWholeFile(dir.File("tool.err"));
    const ParsedDump there = ParseDump(ReadWholeFile(dir.File("a.vcd")));
    const ParsedDump back = ParseDump(ReadWholeFile(dir.File("back.vcd")));
    ASSERT_EQ(back.variables.size(), there.variables.size());
    for (const auto& [time, values] : there.values) {
        for (const auto& [name, value] : values) {
            ASSERT_EQ(back.At(time, name), value) << time << " " << name;
        }
    }
}

TEST_P(Conversion, ThePowerZoomHasPicoseconds) {
    Convert({"-o", "a.vcd", "--zoom"});
    const ParsedDump dump = ParseDump(ReadWholeFile(dir.File("a.vcd")));
    EXPECT_EQ(dump.timescale, "1ps");
    ExpectValues(dump, zoom);
}

TEST_P(Conversion, ASessionFileHoldsTheRecords) {
    Convert({"-o", "a.sr"});
    std::set<std::uint64_t> times;
    for (const auto& record : std::span(records).subspan(1)) {
        times.insert(boardsim::TimeOfField(
            boardsim::GetField(record, boardsim::bitTime, boardsim::timeBits)));
    }
    const std::string notTime = "it shows samples, one a second, not time";
    EXPECT_EQ(said.find(notTime) == std::string::npos, times.size() == 1);
    const std::string rate = std::to_string(
        times.size() == 1 ? std::llround(1e9 / static_cast<double>(*times.begin())) : 1);
    ASSERT_TRUE(Tool("sigrok-cli -i a.sr -O binary -o a.bin"))
        << ReadWholeFile(dir.File("tool.err"));
    std::string expected;
    for (const auto& record : records) {
        expected.append(reinterpret_cast<const char*>(record.data()), record.size());
    }
    EXPECT_EQ(ReadWholeFile(dir.File("a.bin")), expected);
    ASSERT_TRUE(Tool("sigrok-cli -i a.sr --show"));
    const std::string shown = ReadWholeFile(dir.File("tool.out"));
    EXPECT_THAT(shown, HasSubstr("Channels: 144\n"));
    EXPECT_THAT(shown, HasSubstr("Samplerate: " + rate + "\n"));
    EXPECT_THAT(shown, HasSubstr("- TIME[0]: logic\n"));
}

TEST_P(Conversion, ATableHasARowForEachSample) {
    Convert({"-o", "a.csv", "--from", "-5", "--to", "10"});
    const std::string table = ReadWholeFile(dir.File("a.csv"));
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 17);
    EXPECT_THAT(table, testing::StartsWith("SAMPLE,Time [ns],"));
    EXPECT_THAT(table, HasSubstr("\n-5,0,"));
}

/// The rows of a table as cells, without blanks.
std::vector<std::vector<std::string>> CellsOf(const std::string& table) {
    std::vector<std::vector<std::string>> rows(1, std::vector<std::string>(1));
    bool quoted = false;
    for (const char c : table) {
        if (c == '"') {
            quoted = !quoted;
        } else if (c == '\n') {
            rows.emplace_back(1);
        } else if (c == ',' && !quoted) {
            rows.back().emplace_back();
        } else if (c != ' ') {
            rows.back().back() += c;
        }
    }
    rows.pop_back();
    return rows;
}

TEST_P(Conversion, DecodedCellsAreThoseOfTheListing) {
    Convert({"-o", "a.csv"});
    std::vector<std::string> list = {"list", "a.tra", "--format", "csv"};
    list.insert(list.end(), GetParam().options.begin(), GetParam().options.end());
    const auto listed = CellsOf(RunTrace(list, {.folder = dir.Path()}).out);
    const auto table = CellsOf(ReadWholeFile(dir.File("a.csv")));
    ASSERT_EQ(listed.size(), samples + 1U);
    ASSERT_EQ(table.size(), listed.size());
    std::size_t compared = 0;
    for (std::size_t column = 2; column < table[0].size(); ++column) {
        const std::string& name = table[0][column];
        const auto same = std::ranges::find(listed[0], name);
        if (name.starts_with("TIME") || same == listed[0].end()) {
            continue; // times are numbers in the table
        }
        ++compared;
        const auto place = static_cast<std::size_t>(same - listed[0].begin());
        for (std::size_t row = 1; row < table.size(); ++row) {
            ASSERT_EQ(table[row][column], listed[row][place]) << name << " " << listed[row][0];
        }
    }
    EXPECT_GT(compared, 10U);
}

TEST_P(Conversion, BitsAreUnknownWhereADecodedTextIsEmpty) {
    Convert({"-o", "a.vcd"});
    const ParsedDump dump = ParseDump(ReadWholeFile(dir.File("a.vcd")));
    for (std::size_t i = 0; i + 1 < dump.order.size(); ++i) {
        const std::string& name = dump.order[i];
        const std::string& text = dump.order[i + 1];
        if (text.find("_text") == std::string::npos) {
            continue;
        }
        for (const auto& [time, values] : dump.values) {
            const bool isKnown = values.at(name).find_first_not_of('x') != std::string::npos;
            ASSERT_EQ(isKnown, !TextOfBits(values.at(text)).empty()) << name << " at " << time;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Families, Conversion,
    testing::Values(FamilyCase{"Pci32", boardsim::Family::Pci32, {}},
                    FamilyCase{"Pci64", boardsim::Family::Pci64, {"--width", "64"}},
                    FamilyCase{"PciX", boardsim::Family::PciX, {"--bus", "PCI-X", "--width", "64"}},
                    FamilyCase{"Vme", boardsim::Family::Vme, {"--bus", "VME"}},
                    FamilyCase{"Lark", boardsim::Family::Lark, {"--model", "VMELark"}},
                    FamilyCase{"Vsb", boardsim::Family::Vsb, {"--bus", "VSB"}},
                    FamilyCase{"P2", boardsim::Family::ConnectorP2, {"--bus", "VMEP2"}},
                    FamilyCase{"P0", boardsim::Family::ConnectorP0, {"--model", "VMEKiteP0"}}),
    [](const auto& family) { return family.param.name; });

class ConvertCommand : public testing::Test {
protected:
    static std::string Capture(const std::string& clock, int samples = 3) {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n"
                           "\"Trace Setup\"\n\"FileType\",\"Trace Setup File\"\n"
                           "\"Version\",\"1.0\"\n\"Clock\",\"" +
                           clock + "\"\n\"End of Setup Data\"\n\"Trace Data\",0," +
                           std::to_string(samples - 1) + "\n";
        for (int i = 0; i < samples; ++i) {
            SampleRecord record;
            record.bytes[0] = static_cast<std::uint8_t>(i);
            record.bytes[1] = static_cast<std::uint8_t>(i >> 8);
            record.bytes[14] = 15; // ns
            AppendRow(text, i, record);
        }
        return text + "\"End of Trace Data\"\n";
    }
    ProgramRun Run(const std::vector<std::string>& arguments) {
        return RunTrace(arguments, {.folder = dir.Path()});
    }
    std::string Shown(const std::string& file) {
        EXPECT_EQ(std::system(
                      ("cd '" + dir.Path() + "' && sigrok-cli -i " + file + " --show > shown 2>&1")
                          .c_str()),
                  0);
        return ReadWholeFile(dir.File("shown"));
    }

    const TempDir dir;
};

TEST_F(ConvertCommand, ASessionOfASampledClockHasItsRate) {
    dir.Write("a.tra", Capture("15 ns"));
    const ProgramRun run = Run({"convert", "a.tra", "-o", "a.sr"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(Shown("a.sr"), HasSubstr("Samplerate: 66666667\n"));
}

TEST_F(ConvertCommand, ASessionOfTheBusClockHasARateWhereItIsSteady) {
    dir.Write("a.tra", Capture("Sync"));
    const ProgramRun run = Run({"convert", "a.tra", "-o", "a.sr"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(Shown("a.sr"), HasSubstr("Samplerate: 66666667\n"));
    // One time differs, so there is no rate; a range without that sample has one.
    std::string text = Capture("Sync", 4);
    const auto row = text.find("\n3,") + 1;
    text.replace(text.find(",15,", row), 4, ",30,");
    dir.Write("b.tra", text);
    EXPECT_THAT(Run({"convert", "b.tra", "-o", "b.sr"}).err, HasSubstr("one a second"));
    EXPECT_THAT(Shown("b.sr"), HasSubstr("Samplerate: 1\n"));
    EXPECT_EQ(Run({"convert", "b.tra", "-o", "b.sr", "--to", "2"}).err, "");
    EXPECT_THAT(Shown("b.sr"), HasSubstr("Samplerate: 66666667\n"));
    EXPECT_EQ(Run({"convert", "b.tra", "-o", "b.sr", "--from", "3"}).status, 0);
    EXPECT_THAT(Shown("b.sr"), HasSubstr("Samplerate: 1\n")); // a single sample has no rate
    // Nor is there a rate where samples in between are missing.
    dir.Write(
        "c.tra",
        text.erase(row - 1, 0).erase(text.find("\n1,") + 1, text.find("\n2,") - text.find("\n1,")));
    EXPECT_EQ(Run({"convert", "c.tra", "-o", "c.sr", "--to", "2"}).status, 0);
    EXPECT_THAT(Shown("c.sr"), HasSubstr("Samplerate: 1\n"));
}

TEST_F(ConvertCommand, ASessionReportsUnevenSpacing) {
    dir.Write("a.tra", Capture("30 ns")); // the samples are 15 ns apart
    const ProgramRun run = Run({"convert", "a.tra", "-o", "a.sr"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("the samples are not evenly spaced"));
}

TEST_F(ConvertCommand, TimesDoNotDependOnTheList) {
    std::string text = Capture("Sync");
    text.insert(
        text.find("\"Trace Data\""),
        "\"State Signals\"\n\"Signal\",\"A.B\",\"AD\",\"\",\"\",\"\",-1,0,0,20,30,0,\"Show\","
        "\"Hex\"\n\"End of State Signals\"\n");
    dir.Write("a.tra", text);
    EXPECT_EQ(Run({"convert", "a.tra", "-o", "-", "--format", "csv"}).out,
              "SAMPLE,Time [ns],A.B\n0,0,0\n1,15,1\n2,30,0\n");
    const std::string dump = Run({"convert", "a.tra", "-o", "-", "--format", "vcd"}).out;
    EXPECT_THAT(dump, HasSubstr(" A_B $end\n")); // a dot would separate two scopes
    EXPECT_THAT(dump, HasSubstr("\n#30\n"));
    EXPECT_THAT(dump, testing::EndsWith("\n#45\n"));
}

TEST_F(ConvertCommand, TheViewerFindsTheDumpFromAnywhereAndShowsTheTrigger) {
    // The viewer itself reports what it shows.
    dir.Write("ask.tcl", "puts \"signals [gtkwave::getNumFacs]\"\n"
                         "puts \"marker [gtkwave::getMarker]\"\n"
                         "puts \"from [gtkwave::getWindowStartTime]\"\n"
                         "puts \"to [gtkwave::getWindowEndTime]\"\n"
                         "exit\n");
    const auto shown = [&](const std::string& folder) {
        const std::string command = "cd / && HOME='" + dir.Path() + "' xvfb-run -a gtkwave '" +
                                    folder + "/a.gtkw' --script '" + dir.File("ask.tcl") + "' > '" +
                                    dir.File("output") + "' 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << ReadWholeFile(dir.File("output"));
        std::map<std::string, std::int64_t> viewer;
        std::ifstream lines(dir.File("output"));
        for (std::string line; std::getline(lines, line);) {
            const auto blank = line.find(' ');
            if (blank != std::string::npos) {
                viewer[line.substr(0, blank)] = std::atoll(line.c_str() + blank);
            }
        }
        return viewer;
    };
    for (const bool zoom : {false, true}) {
        const std::string folder = dir.File(zoom ? "zoom" : "whole");
        std::filesystem::create_directory(folder);
        const std::string target = folder.substr(dir.Path().size() + 1) + "/a.vcd";
        std::vector<std::string> arguments = {"convert", SourceFile("data/Trigger1.tra"), "-o",
                                              target};
        arguments.insert(arguments.end(), zoom ? 1 : 0, "--zoom");
        ASSERT_EQ(Run(arguments).status, 0);
        auto viewer = shown(folder);
        EXPECT_GT(viewer["signals"], 30);
        EXPECT_GT(viewer["marker"], 0);
        EXPECT_GT(viewer["from"], 0);
        EXPECT_LT(viewer["from"], viewer["marker"]);
        EXPECT_GT(viewer["to"], viewer["marker"]);
        if (!zoom) { // both files may be moved together
            std::filesystem::rename(folder, dir.File("moved"));
            EXPECT_EQ(shown(dir.File("moved")), viewer);
        }
    }
}

TEST_F(ConvertCommand, ALongSessionHasSeveralPieces) {
    constexpr int samples = 300'000;
    dir.Write("a.tra", Capture("Sync", samples));
    ASSERT_EQ(Run({"convert", "a.tra", "-o", "a.sr"}).status, 0);
    ASSERT_EQ(
        std::system(("cd '" + dir.Path() + "' && sigrok-cli -i a.sr -O binary -o a.bin").c_str()),
        0);
    const std::string bytes = ReadWholeFile(dir.File("a.bin"));
    ASSERT_EQ(bytes.size(), std::size_t{18} * samples);
    for (std::size_t i = 0; i < samples; i += 9973) {
        ASSERT_EQ(static_cast<std::uint8_t>(bytes[18 * i]), i & 255) << i;
        ASSERT_EQ(static_cast<std::uint8_t>(bytes[18 * i + 1]), i >> 8 & 255) << i;
    }
}

TEST_F(ConvertCommand, TheExtensionOrAnOptionChoosesTheFormat) {
    dir.Write("a.tra", Capture("Sync"));
    EXPECT_EQ(Run({"convert", "a.tra", "-o", "A.CSV"}).status, 0);
    EXPECT_THAT(ReadWholeFile(dir.File("A.CSV")), testing::StartsWith("SAMPLE,"));
    const ProgramRun out = Run({"convert", "a.tra", "-o", "-", "--format", "csv"});
    EXPECT_EQ(out.out, ReadWholeFile(dir.File("A.CSV")));
    EXPECT_THAT(Run({"convert", "a.tra", "-o", "-", "--format", "vcd"}).out,
                testing::StartsWith("$version\n"));
    EXPECT_THAT(Run({"convert", "a.tra", "-o", "-", "--format", "sr"}).out,
                testing::StartsWith("PK"));
    EXPECT_EQ(Run({"convert", "a.tra", "-o", "data", "--format", "vcd"}).status, 0);
    EXPECT_THAT(ReadWholeFile(dir.File("data.gtkw")),
                HasSubstr("[dumpfile] \"" + dir.File("data") + "\""));
}

TEST_F(ConvertCommand, ChangesOnlyAreFewerRows) {
    std::string text = Capture("Sync", 0);
    text = text.substr(0, text.find("\"Trace Data\"")) + "\"Trace Data\",0,3\n";
    for (int i = 0; i < 4; ++i) {
        SampleRecord record;
        record.bytes[0] = i == 2 ? 1 : 0;
        record.bytes[14] = 15;
        AppendRow(text, i, record);
    }
    dir.Write("a.tra", text);
    const std::string all = Run({"convert", "a.tra", "-o", "-", "--format", "csv"}).out;
    const std::string changes =
        Run({"convert", "a.tra", "-o", "-", "--format", "csv", "--changes"}).out;
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 5);
    EXPECT_EQ(std::count(changes.begin(), changes.end(), '\n'), 4);
    EXPECT_THAT(changes, Not(HasSubstr("\n1,15,")));
    EXPECT_THAT(changes, HasSubstr("\n2,30,"));
}

TEST_F(ConvertCommand, AnEmptyRangeLeavesNoFile) {
    dir.Write("a.tra", Capture("Sync"));
    for (const char* file : {"a.vcd", "a.csv", "a.sr"}) {
        const ProgramRun run = Run({"convert", "a.tra", "-o", file, "--from", "7"});
        EXPECT_EQ(run.status, 1) << file;
        EXPECT_THAT(run.err, HasSubstr("there are no such samples"));
        EXPECT_FALSE(std::filesystem::exists(dir.File(file)));
    }
    const std::filesystem::directory_iterator files(dir.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1); // the capture
    EXPECT_EQ(Run({"convert", "a.tra", "-o", "a.vcd", "--zoom"}).status, 1);
}

} // namespace
} // namespace busquill::test
