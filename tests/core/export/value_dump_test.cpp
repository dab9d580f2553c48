#include "export/value_dump.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "support/value_dump_parser.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

SampleRows RowsOf(const std::vector<SampleRecord>& records, std::int32_t first = 0) {
    SampleRows rows;
    for (const SampleRecord& record : records) {
        rows.Add(first++, record);
    }
    return rows;
}

class Dumps : public testing::Test {
protected:
    Dumps() { list.BuildFromTables(0, ModeWaveform); }

    /// The whole dump, written in pieces of `piece` samples.
    std::string Dump(const SampleRows& rows, std::size_t piece = 1000) {
        ValueDump dump(list, ListUse::Wave, {board.board, zoom, description});
        std::string text;
        dump.Begin(text);
        for (std::size_t at = 0; at < rows.Size(); at += piece) {
            SampleRows some;
            for (std::size_t i = at; i < std::min(at + piece, rows.Size()); ++i) {
                some.Add(rows.numbers[i], rows.records[i]);
            }
            dump.Add(some, text);
        }
        dump.End(text);
        viewer = dump.ViewerFile("/there/a.vcd", "/there/a.gtkw");
        return text;
    }

    BoardTables board{"PCIKite-1"};
    CSignalList list{board.tables};
    bool zoom = false;
    std::string description;
    std::string viewer;
};

TEST_F(Dumps, ShowEverySignalAtTheTimeOfItsSample) {
    const auto records = CaptureBuilder()
                             .Idle()
                             .Address(0xFEBF0010, PciCommand::MemoryWrite)
                             .After(30)
                             .Data(0x12345678)
                             .After(5, 1) // 5 us: nothing changed
                             .Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records, -1)));
    EXPECT_EQ(dump.timescale, "1ns");
    EXPECT_EQ(dump.values.size(), 4U); // the last one is the end
    EXPECT_EQ(dump.At(0, "FRAME"), "1");
    EXPECT_EQ(dump.At(30, "FRAME"), "0");
    EXPECT_EQ(dump.At(29, "FRAME"), "1");
    EXPECT_EQ(dump.At(5030, "FRAME"), "1");
    EXPECT_EQ(dump.At(30, "AD[63:0]").substr(32), "11111110101111110000000000010000");
    EXPECT_EQ(dump.At(5030, "AD[63:0]").substr(32), "00010010001101000101011001111000");
    EXPECT_EQ(dump.At(0, "TRIGGER") + dump.At(30, "TRIGGER") + dump.At(5030, "TRIGGER"), "010");
    for (const auto& [id, variable] : dump.variables) {
        EXPECT_EQ(variable.type, "wire");
    }
}

TEST_F(Dumps, FirstValuesAreTogetherAndLaterOnesOnlyWhereTheyChange) {
    const auto records = CaptureBuilder().Idle(3).Records();
    const std::string text = Dump(RowsOf(records));
    const ParsedDump dump = ParseDump(text);
    EXPECT_EQ(dump.initial, dump.variables.size());
    EXPECT_THAT(text, HasSubstr("#0\n$dumpvars\n"));
    // The trigger falls, and TIME already has the value of the others; then only the time passes.
    const std::string rest = text.substr(text.rfind("$end\n") + 5);
    EXPECT_EQ(std::count(rest.begin(), rest.end(), '\n'), 3) << rest;
    EXPECT_THAT(rest, testing::EndsWith("#90\n"));
}

TEST_F(Dumps, EachItemHasItsOwnLine) {
    const std::string text = Dump(RowsOf(CaptureBuilder().Read(0x10).Records()));
    std::istringstream in(text.substr(text.find("$dumpvars")));
    for (std::string line; std::getline(in, line);) {
        const bool isVector = line[0] == 'b';
        EXPECT_EQ(std::count(line.begin(), line.end(), ' '), isVector ? 1 : 0) << line;
    }
}

TEST_F(Dumps, TextsOfDecodedSignalsMatchTheListing) {
    const auto records = CaptureBuilder().Write(0x10, 0xAB).Finding(112).Idle().Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records)));
    EXPECT_EQ(TextOfBits(dump.At(0, "COMMAND_text[127:0]")), "Mem Wr");
    EXPECT_EQ(TextOfBits(dump.At(30, "COMMAND_text[127:0]")), "");
    EXPECT_EQ(TextOfBits(dump.At(0, "ADDRESS32_text[63:0]")), "00000010");
    EXPECT_EQ(TextOfBits(dump.At(30, "ADDRESS32_text[63:0]")), "");
    EXPECT_EQ(TextOfBits(dump.At(30, "DATA32_text[63:0]")), "000000AB");
    EXPECT_EQ(TextOfBits(dump.At(30, "TIME_text[79:0]")), "30ns");
    std::string finding;
    for (const auto& [id, variable] : dump.variables) {
        finding += variable.name.starts_with("RULE_CHECK_text") ? variable.name : "";
    }
    EXPECT_EQ(TextOfBits(dump.At(30, finding)), "Target Retry");
}

TEST_F(Dumps, TheSameValueReadsDifferentlyInAnotherPhase) {
    // The code of a command on C/BE, then the same lines as byte enables.
    const auto records = CaptureBuilder().Address(0x10, 7).Data(0xAB, 7).Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records)));
    EXPECT_EQ(dump.At(0, "C/BE[7:0]"), dump.At(30, "C/BE[7:0]"));
    EXPECT_EQ(TextOfBits(dump.At(0, "COMMAND_text[127:0]")), "Mem Wr");
    EXPECT_EQ(TextOfBits(dump.At(30, "COMMAND_text[127:0]")), "");
}

TEST_F(Dumps, WhereNothingIsDecodedTheBitsAreUnknown) {
    const auto records = CaptureBuilder()
                             .Address(0x10, 7)
                             .Data(0x12345678)
                             .Data(0x12345678, 0b0110)
                             .Idle()
                             .Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records)));
    const std::string unknown(32, 'x');
    EXPECT_EQ(dump.At(0, "COMMAND[7:0]"), "11110111");
    EXPECT_EQ(dump.At(0, "ADDRESS32[31:0]"), "00000000000000000000000000010000");
    EXPECT_EQ(dump.At(0, "DATA32[31:0]"), unknown);
    EXPECT_EQ(dump.At(30, "COMMAND[7:0]"), "xxxxxxxx");
    EXPECT_EQ(dump.At(30, "ADDRESS32[31:0]"), unknown);
    EXPECT_EQ(dump.At(30, "DATA32[31:0]"), "00010010001101000101011001111000");
    // The lanes in the middle are disabled.
    EXPECT_EQ(dump.At(60, "DATA32[31:0]"), "00010010xxxxxxxxxxxxxxxx01111000");
    EXPECT_EQ(TextOfBits(dump.At(60, "DATA32_text[63:0]")), "12    78");
    EXPECT_EQ(dump.At(90, "DATA32[31:0]"), unknown);
    EXPECT_EQ(TextOfBits(dump.At(90, "DATA32_text[63:0]")), "");
    EXPECT_EQ(dump.At(90, "TIME[17:0]"), "000000000001111000");
    EXPECT_EQ(dump.At(90, "C/BE[7:0]"), "11111111"); // lines are shown as they are
}

TEST_F(Dumps, NamesHaveNoBlanksAndAreUnique) {
    CSignal* first = list.InsertBlank(nullptr);
    first->name = "MY LINE";
    first->dataIndex = 3;
    CSignal* second = list.InsertBlank(nullptr);
    second->name = "MY LINE";
    second->dataIndex = 4;
    CSignal* trigger = list.InsertBlank(nullptr);
    trigger->name = "TRIGGER";
    trigger->dataIndex = 5;
    const ParsedDump dump = ParseDump(Dump(RowsOf(CaptureBuilder().Idle().Records())));
    EXPECT_THAT(dump.order, Contains("MY_LINE"));
    EXPECT_THAT(dump.order, Contains("MY_LINE_2"));
    EXPECT_THAT(dump.order, Contains("TRIGGER_2"));
    std::vector<std::string> names = dump.order;
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST_F(Dumps, ABusIsOneVectorAndAnExpandedOneIsSingleLines) {
    for (const auto& signal : list.All()) {
        signal->selected = signal->baseName == "EXT";
    }
    list.UngroupSelected();
    const auto records = CaptureBuilder().Idle().With(100, false).Records();
    const std::string text = Dump(RowsOf(records));
    EXPECT_THAT(text, HasSubstr(" AD [63:0] $end\n"));
    EXPECT_THAT(text, HasSubstr(" EXT [3] $end\n"));
    const ParsedDump dump = ParseDump(text);
    EXPECT_EQ(dump.At(0, "EXT[3]"), "1");
    EXPECT_EQ(dump.At(0, "EXT[4]"), "0");
    EXPECT_THAT(dump.order, Not(Contains("EXT[7:0]")));
    EXPECT_THAT(dump.order, Not(Contains("TIME[17:0]_2"))); // the hidden one takes no space
}

TEST_F(Dumps, HaveUniqueIdentifiersBeyondOneCharacter) {
    for (int i = 0; i < 94 * 95; ++i) {
        CSignal* line = list.InsertBlank(nullptr);
        line->name = "L" + std::to_string(i);
        line->dataIndex = i % 144;
    }
    const auto records = CaptureBuilder().Read(0x12345678, 0x9ABCDEF0).Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records))); // fails if an identifier occurs twice
    EXPECT_GT(dump.variables.size(), 94U * 95U);
    for (int i = 0; i < 94 * 95; i += 97) {
        EXPECT_EQ(dump.At(60, "L" + std::to_string(i)), records[2].Bit(i % 144) ? "1" : "0") << i;
    }
    for (const auto& [id, variable] : dump.variables) {
        EXPECT_LE(id.size(), 3U);
    }
}

TEST_F(Dumps, SamplesWithTheSameTimeAreAllKept) {
    const auto records = CaptureBuilder().Idle().Address(0, 6).After(0).Idle().After(0).Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records)));
    EXPECT_EQ(dump.At(0, "FRAME") + dump.At(1, "FRAME") + dump.At(2, "FRAME"), "101");
}

TEST_F(Dumps, TheLastSampleLastsAsLongAsTheShortestBeforeIt) {
    const auto end = [this](const CaptureBuilder& capture) {
        return ParseDump(Dump(RowsOf(capture.Records()))).values.rbegin()->first;
    };
    EXPECT_EQ(end(CaptureBuilder().Idle().Idle().After(30).Read(1).After(5, 1)), 5090 + 30);
    EXPECT_EQ(end(CaptureBuilder().Idle().After(15)),
              15); // the first sample: by the time before it
    EXPECT_EQ(end(CaptureBuilder().Idle().After(0)), 1);
    EXPECT_EQ(end(CaptureBuilder().Idle().After(0).Idle().After(0)), 2);
}

TEST_F(Dumps, PowerZoomIsInPicoseconds) {
    zoom = true;
    list.BuildFromTables(0, ModeState);
    const auto records = CaptureBuilder().Idle().After(3750).Idle().After(3750).Records();
    const ParsedDump dump = ParseDump(Dump(RowsOf(records, -1)));
    EXPECT_EQ(dump.timescale, "1ps");
    EXPECT_EQ(dump.values.rbegin()->first, 7500);
}

TEST_F(Dumps, DoNotDependOnTheSizeOfThePieces) {
    const auto rows =
        RowsOf(CaptureBuilder().Read(1).Idle(3).Write(2, 3).Idle().Read(4, 5).Records(), -3);
    EXPECT_EQ(Dump(rows, 1), Dump(rows));
    EXPECT_EQ(Dump(rows, 3), Dump(rows));
}

TEST_F(Dumps, ADescriptionCannotEndTheComment) {
    description = "costs 5 $end\r\n$var wire 1 ! X $end";
    const std::string text = Dump(RowsOf(CaptureBuilder().Idle().Records()));
    EXPECT_THAT(text, HasSubstr("costs 5 _end _var wire"));
    EXPECT_THAT(ParseDump(text).order, Not(Contains("X")));
}

TEST_F(Dumps, WithoutSamplesThereAreDeclarationsOnly) {
    const ParsedDump dump = ParseDump(Dump({}));
    EXPECT_TRUE(dump.values.empty());
    EXPECT_FALSE(dump.variables.empty());
}

TEST_F(Dumps, TheViewerBeginsALittleBeforeTheTrigger) {
    Dump(RowsOf(CaptureBuilder().Idle(1000).Records(), -900));
    EXPECT_THAT(viewer, HasSubstr("[timestart] 24952\n*-12.000000 27000 -1")); // 2,048 ns before
    Dump(RowsOf(CaptureBuilder().Idle(1000).Records(), 1));
    EXPECT_THAT(viewer, HasSubstr("[timestart] 0\n@")); // no trigger, no mark
    zoom = true;
    Dump(RowsOf(CaptureBuilder().Idle(2000).After(50000, 0).Records(), -1999));
    EXPECT_THAT(viewer, HasSubstr("[timestart] 77172\n*-16.000000 109940 -1"));
}

TEST_F(Dumps, TheViewerShowsSignalsInTheOrderBaseAndColourOfTheList) {
    list.RemoveAllSignals();
    list.BuildFromTables(0, ModeState);
    const auto find = [&](const std::string& name) {
        for (const auto& signal : list.All()) {
            if (signal->RowName() == name) {
                return signal.get();
            }
        }
        throw std::runtime_error(name);
    };
    find("AD[63:0]")->radix = Radix::Binary;
    find("AD[63:0]")->color = 0x0000FF; // red
    find("EXT[7:0]")->radix = Radix::Octal;
    find("FRAME")->color = 0xFF0000; // blue
    list.MoveGroup(find("FRAME"), &list[0]);
    list.InsertBlank(&list[1]);
    Dump(RowsOf(CaptureBuilder().Idle(2).Records(), -1));
    EXPECT_THAT(viewer, HasSubstr("[dumpfile] \"/there/a.vcd\"\n"));
    EXPECT_THAT(viewer, HasSubstr("[savefile] \"/there/a.gtkw\"\n"));
    EXPECT_THAT(viewer, HasSubstr("[timestart] 0\n"));
    EXPECT_THAT(viewer, HasSubstr("*-12.000000 30 -1"));
    EXPECT_THAT(viewer, HasSubstr("@28\n[color] 5\ncapture.FRAME\n@200\n-\n"));
    EXPECT_THAT(viewer, HasSubstr("@28\n[color] 1\ncapture.AD[63:0]\n"));
    EXPECT_THAT(viewer, HasSubstr("@30\n[color] 0\ncapture.EXT[7:0]\n"));
    EXPECT_THAT(viewer,
                HasSubstr("capture.COMMAND[7:0]\n@820\n[color] 0\ncapture.COMMAND_text[127:0]\n"));
    EXPECT_THAT(viewer, testing::EndsWith("capture.TRIGGER\n"));
    EXPECT_LT(viewer.find("capture.FRAME"), viewer.find("capture.COMMAND"));
}

} // namespace
} // namespace busquill::test
