#include "export/value_table.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <gmock/gmock.h>

#include <map>

namespace busquill::test {
namespace {

class Tables : public testing::Test {
protected:
    Tables() { list.BuildFromTables(0, ModeState); }

    std::vector<std::map<std::string, std::string>> Export(const std::vector<SampleRecord>& records,
                                                           std::int32_t first = 0) {
        ValueTable table(list, ListUse::State, {board.board, zoom, changes});
        SampleRows rows;
        for (const SampleRecord& record : records) {
            rows.Add(first++, record);
        }
        text.clear();
        table.Begin(text);
        table.Add(rows, text);
        std::vector<std::map<std::string, std::string>> found;
        std::vector<std::string> titles;
        for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
            const std::string line = text.substr(at, text.find('\n', at) - at);
            std::vector<std::string> cells(1);
            for (const char c : line) {
                c == ',' ? cells.emplace_back()
                         : cells.back() += c; // no value here contains a comma
            }
            if (titles.empty()) {
                titles = cells;
                continue;
            }
            found.emplace_back();
            EXPECT_EQ(cells.size(), titles.size()) << line;
            for (std::size_t i = 0; i < cells.size(); ++i) {
                found.back()[titles[i]] = cells[i];
            }
        }
        return found;
    }

    BoardTables board{"PCIKite-1"};
    CSignalList list{board.tables};
    bool zoom = false;
    bool changes = false;
    std::string text;
};

TEST_F(Tables, HaveARowForEachSampleWithPlainValues) {
    const auto rows =
        Export(CaptureBuilder().Address(0xFEBF0010, 7).Data(0xAB).After(2, 1).Idle().Records(), -1);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(text.substr(0, 17), "SAMPLE,Time [ns],");
    EXPECT_EQ(rows[0].at("SAMPLE"), "-1");
    EXPECT_EQ(rows[0].at("Time [ns]"), "0");
    EXPECT_EQ(rows[1].at("Time [ns]"), "2000");
    EXPECT_EQ(rows[2].at("Time [ns]"), "2030");
    EXPECT_EQ(rows[0].at("FRAME"), "0");
    EXPECT_EQ(rows[0].at("COMMAND"), "Mem Wr");
    EXPECT_EQ(rows[1].at("COMMAND"), "");
    EXPECT_EQ(rows[0].at("ADDRESS32"), "FEBF0010");
    EXPECT_EQ(rows[0].at("DATA32"), "");
    EXPECT_EQ(rows[1].at("ADDRESS32"), "");
    EXPECT_EQ(rows[1].at("DATA32"), "000000AB");
    EXPECT_EQ(rows[0].at("AD[63:0]"), "00000000FEBF0010");
    EXPECT_EQ(rows[2].at("AD[63:0]"), "0000000000000000");
}

TEST_F(Tables, ATimeThatOverflowsIsTheLongestTime) {
    list.RemoveAllSignals();
    list.AddSignal(nullptr, board.tables.busSignals.FindByName("FRAME"), 0, 0, 0, 0, Radix::Hex,
                   false);
    changes = true;
    SampleRecord record; // 65535 s after the previous one
    record.bytes[13] = 0xC0;
    record.bytes[14] = record.bytes[15] = 0xFF;
    std::vector<SampleRecord> records(141'000, record);
    records.back().bytes[9] = 1; // FRAME
    const auto rows = Export(records);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].at("Time [ns]"), "9223372036854775807");
}

TEST_F(Tables, DisabledByteLanesAreBlankAndACellOfBlanksIsEmpty) {
    const auto rows = Export(CaptureBuilder()
                                 .Address(0x10, 6)
                                 .Data(0x12345678, 0b0001)
                                 .Data(0x12345678, 0b1100)
                                 .Data(0x12345678, 0b1001)
                                 .Data(0x12345678, 0b1111)
                                 .Idle()
                                 .Records());
    EXPECT_EQ(rows.at(1).at("DATA32"), "\"123456  \"");
    EXPECT_EQ(rows.at(2).at("DATA32"), "\"    5678\"");
    EXPECT_EQ(rows.at(3).at("DATA32"), "\"  3456  \"");
    EXPECT_EQ(rows.at(4).at("DATA32"), "");
    EXPECT_EQ(rows.at(5).at("DATA32"), "");
    EXPECT_EQ(rows.at(5).at("AD[63:0]"), "0000000000000000");
}

TEST_F(Tables, LanesAreBlankedInHexadecimalOnly) {
    for (const auto& signal : list.All()) {
        if (signal->RowName() == "DATA32") {
            signal->radix = Radix::Octal;
        }
    }
    const auto rows = Export(CaptureBuilder().Data(0x12345678, 0b1111).Records());
    EXPECT_EQ(rows.at(0).at("DATA32"), "02215053170");
}

TEST_F(Tables, WideDataKeepTheirDigitsInPlace) {
    board.board.bus.busWidth = 1;
    list.BuildFromTables(0, ModeState);
    const auto rows = Export(CaptureBuilder().Data(0x12345678).Data(0x1234, 0b1100).Records());
    EXPECT_EQ(rows.at(0).at("DATA64"), "\"        12345678\""); // the upper lanes are disabled
    EXPECT_EQ(rows.at(1).at("DATA64"), "\"            1234\"");
}

TEST_F(Tables, DigitsThatAreNotShownDoNotCountAsChanged) {
    changes = true;
    list.RemoveAllSignals();
    for (const auto& def : board.tables.decodedSignals.Defs()) {
        if (def->name == "DATA32") {
            list.AddSignal(nullptr, def, 0, 0, 0, 0, Radix::Hex, true);
        }
    }
    const auto rows = Export(CaptureBuilder()
                                 .Data(0x12340000, 0b0011)
                                 .Data(0x12345678, 0b0011)
                                 .Data(0x12345678, 0b0001)
                                 .Data(0x12345678, 0b1111)
                                 .Data(0x9ABCDEF0, 0b1111)
                                 .Records());
    std::vector<std::string> numbers;
    for (const auto& row : rows) {
        numbers.push_back(row.at("SAMPLE"));
    }
    EXPECT_EQ(numbers, (std::vector<std::string>{"0", "2", "3"}));
}

TEST_F(Tables, AddressesHaveTheDigitsOfTheirWidth) {
    BoardTables vme("VMEKite-1", BusVme);
    board.board = vme.board;
    list = CSignalList(vme.tables);
    list.BuildFromTables(0, ModeState);
    SampleRecord record;
    record.bytes = {0x56, 0x34, 0x12, 0xFF};
    record.bytes[8] = 0x39; // an address of 24 bits
    const auto rows = Export({record});
    EXPECT_EQ(rows.at(0).at("ADDRESS32"), "\"  123456\"");
}

TEST_F(Tables, ByChangeOmitRowsInWhichNothingChanged) {
    changes = true;
    const auto rows = Export(CaptureBuilder().Idle(3).Read(0x10).Idle(2).Records());
    std::vector<std::string> numbers;
    for (const auto& row : rows) {
        numbers.push_back(row.at("SAMPLE"));
    }
    EXPECT_EQ(numbers, (std::vector<std::string>{"0", "3", "4", "5", "6"}));
}

TEST_F(Tables, ValuesFollowTheRadixOfTheirColumn) {
    for (const auto& signal : list.All()) {
        if (signal->baseName == "EXT" && signal->IsGroupStart()) {
            signal->radix = Radix::Octal;
        }
        if (signal->baseName == "C/BE" && signal->IsGroupStart()) {
            signal->radix = Radix::Binary;
        }
    }
    const auto rows = Export(CaptureBuilder().Address(0, 6).With(100, false).Records());
    EXPECT_EQ(rows.at(0).at("EXT[7:0]"), "357");
    EXPECT_EQ(rows.at(0).at("C/BE[7:0]"), "11110110");
}

TEST_F(Tables, PowerZoomTimesHaveAPointBeforeThePicoseconds) {
    zoom = true;
    const auto rows = Export(CaptureBuilder().Idle().Idle().After(3750).Idle().After(5).Records());
    EXPECT_EQ(rows.at(0).at("Time [ns]"), "0.000");
    EXPECT_EQ(rows.at(1).at("Time [ns]"), "3.750");
    EXPECT_EQ(rows.at(2).at("Time [ns]"), "3.755");
}

TEST_F(Tables, NamesWithCommasAndQuotesAreQuoted) {
    CSignal* odd = list.InsertBlank(nullptr);
    odd->name = "A \"B\", C";
    odd->dataIndex = 1;
    Export({});
    EXPECT_THAT(text, testing::EndsWith(",\"A \"\"B\"\", C\"\n"));
}

TEST_F(Tables, WideGroupsArePrintedInFull) {
    list.RemoveAllSignals();
    for (int i = 0; i < 72; ++i) {
        CSignal* line = list.InsertBlank(nullptr);
        line->name = line->baseName = "WIDE";
        line->bitIndex = i;
        line->dataIndex = i < 64 ? i : i + 32;
        line->selected = true;
    }
    list.CollapseSelected();
    const auto rows = Export(
        CaptureBuilder().Address(0x12345678, 6).Address(0x12345678, 6).With(96, false).Records());
    const auto wide = std::find_if(rows.at(0).begin(), rows.at(0).end(),
                                   [](const auto& cell) { return cell.second.size() == 18; });
    ASSERT_NE(wide, rows.at(0).end());
    EXPECT_EQ(wide->second, "FF0000000012345678");
    EXPECT_EQ(rows.at(1).at(wide->first), "FE0000000012345678");
}

} // namespace
} // namespace busquill::test
