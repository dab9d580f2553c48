#include "boardsim/traffic.h"
#include "capture/sample_rows.h"
#include "capture/trace_document.h"
#include "platform/text_file.h"
#include "support/board_tables.h"
#include "support/recording_paint_device_qt.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"
#include "ui/display/state_geometry.h"
#include "ui/display/state_painter.h"
#include "ui/patterns/columns.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

struct FamilyCase {
    const char* name;
    boardsim::Family family;
    const char* model;
    std::int32_t mode;
    std::int32_t width;
    std::vector<std::string> options; // that select the same board on the command line
};

using Table = std::vector<std::vector<std::string>>;

/// Comma-separated values, with quotes where necessary.
Table ParseCsv(const std::string& text) {
    Table table(1, {""});
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"' && quoted && i + 1 < text.size() && text[i + 1] == '"') {
            table.back().back() += text[++i];
        } else if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            table.back().emplace_back();
        } else if (c == '\n' && !quoted) {
            table.push_back({""});
        } else {
            table.back().back() += c;
        }
    }
    table.pop_back();
    return table;
}

/// The same capture in the window and on the command line.
class ListingAgreement : public testing::TestWithParam<FamilyCase> {
protected:
    static constexpr int samples = 400;
    static constexpr int first = -150;
    static constexpr int columnWidth = 700; // fits the longest finding
    static constexpr int sampleColumn = 80;

    ListingAgreement()
        : board(GetParam().model, GetParam().mode, GetParam().width),
          records(boardsim::MakeRecords(GetParam().family, 5, samples)) {}

    /// Writes the capture; `lists` precede the samples, and `keep` selects the samples.
    void WriteCapture(const std::string& lists, bool (*keep)(int), bool zoom) {
        std::string text = "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n" + lists +
                           "\n\"Trace Data\"," + std::to_string(first) + "," +
                           std::to_string(first + samples - 1) + "\n";
        for (int i = 0; i < samples; ++i) {
            if (keep(i)) {
                AppendRow(text, first + i, {records[static_cast<std::size_t>(i)]});
            }
        }
        text += "\"End of Trace Data\"\n";
        if (zoom) {
            const auto near = boardsim::MakeZoom(records, -first);
            text += "\n\"Power Zoom Data\",255,256\n";
            for (int i = 0; i < static_cast<int>(near.size()); ++i) {
                AppendRow(text, i - 255, {near[static_cast<std::size_t>(i)]});
            }
            text += "\"End of Power Zoom Data\"\n";
        }
        path = dir.Write("capture.tra", text);
    }

    /// What the window paints from a row on, the titles first, with wide columns.
    Table Painted(std::int64_t topRow, bool zoom) {
        CTesselDoc document(context, prompts);
        EXPECT_TRUE(document.OnOpenDocument(path));
        CSignalList& list = zoom ? document.zoomList : document.stateList;
        for (const auto& signal : list.All()) {
            signal->width = signal->width > 0 ? columnWidth : 0;
        }
        TableColumns columns{ColumnWidths(list), sampleColumn};
        columns.clientWidth = sampleColumn + 2 + columns.TotalWidth();
        const auto rows = static_cast<int>(document.RowCount(zoom) - topRow);
        const QSize size(columns.clientWidth, tableFirstRow + rows * stateRowPitch);
        const StateFrame frame{
            document, list,         zoom,   board.board, {},
            size,     sampleColumn, topRow, 0,           ScreenState(ScreenFonts())};
        RecordingPaintDevice device(size);
        QPainter painter(&device);
        DrawState(painter, frame);
        const auto shown = columns.Visible();
        const Recording drawn = device.Recorded();
        Table table = {RowOf(drawn, shown, 0, tableHeaderLine - 1)};
        for (int row = 0; row < rows; ++row) {
            const int top = tableFirstRow + row * stateRowPitch;
            table.push_back(RowOf(drawn, shown, top, top + stateRowPitch - 1));
        }
        return table;
    }

    static std::vector<std::string>
    RowOf(const Recording& drawn, const std::vector<TableColumn>& columns, int top, int bottom) {
        std::vector<std::string> cells(columns.size() + 1);
        for (const auto& text : drawn.TextsBetween(top, bottom)) {
            std::size_t at = 0;
            for (std::size_t i = 0; i < columns.size(); ++i) {
                at = text.rect.center().x() > columns[i].left ? i + 1 : at;
            }
            cells[at] = text.text.toStdString();
        }
        return cells;
    }

    Table Printed(std::vector<std::string> more) const {
        std::vector<std::string> arguments = {"list", path, "--format", "csv"};
        arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProgramRun run = RunTrace(arguments, {.folder = dir.Path()});
        EXPECT_EQ(run.status, 0) << run.err;
        return ParseCsv(run.out);
    }

    static void ExpectSame(const Table& printed, const Table& painted) {
        ASSERT_EQ(printed.size(), painted.size());
        for (std::size_t row = 0; row < painted.size(); ++row) {
            ASSERT_EQ(printed[row], painted[row]) << "row " << row;
        }
    }

    /// The default list with everything else that a listing can show: computed columns, a blank
    /// one, a hidden one, an expanded bus, other radixes.
    std::string RichList(const std::string& section = "State") {
        CSignalList list(board.tables);
        list.BuildFromTables(0, ModeState);
        for (const char* name : {"TIME", "ACCUM", "DELTA", "SAMPLE", "RULE CHECK", "ANOMALY"}) {
            if (const auto def = board.tables.decodedSignals.FindByName(name)) {
                list.AddSignal(&list[0], def, 0, 0, 0, 0, Radix::Hex, true);
            }
        }
        list.InsertBlank(&list[0]);
        int group = 0;
        for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
            if (list[i].grouped && !list[i].decoded && !list[i].hidden) {
                list[i].radix = ++group % 4; // binary, hexadecimal, octal, time
            }
        }
        list[list.Size() / 2].hidden = true;
        for (std::size_t i = 0; i < list.Size(); ++i) {
            if (list[i].grouped && list[i].baseName == "EXT") {
                list[i].selected = true;
            }
        }
        list.UngroupSelected();
        TextWriter file;
        EXPECT_TRUE(file.Create(dir.File("list")));
        file.Write("\"" + section + " Signals\"\n");
        list.WriteSignals(file, false);
        file.Write("\"End of " + section + " Signals\"\n");
        EXPECT_TRUE(file.Close());
        return ReadWholeFile(dir.File("list"));
    }

    BoardTables board;
    const std::vector<boardsim::Record> records;
    const TempDir dir;
    std::string path;
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
};

TEST_P(ListingAgreement, WithTheDefaultList) {
    WriteCapture(
        "", [](int) { return true; }, false);
    const Table painted = Painted(0, false);
    EXPECT_EQ(painted.size(), 1U + samples);
    ExpectSame(Printed({}), painted);
}

TEST_P(ListingAgreement, WithAListOfItsOwn) {
    WriteCapture(
        RichList(), [](int) { return true; }, false);
    ExpectSame(Printed({}), Painted(0, false));
}

TEST_P(ListingAgreement, WithSamplesLeftOut) {
    WriteCapture(
        RichList(), [](int i) { return i > 20 && i % 3 != 0; }, false);
    ExpectSame(Printed({}), Painted(0, false));
}

TEST_P(ListingAgreement, FromAnyRowOn) {
    WriteCapture(
        RichList(), [](int i) { return i % 3 != 1; }, false);
    const Table painted = Painted(200, false); // not the number of the sample
    ExpectSame(Printed({"--from", painted[1][0]}), painted);
}

TEST_P(ListingAgreement, OfThePowerZoom) {
    WriteCapture(
        "", [](int) { return true; }, true);
    const Table painted = Painted(0, true);
    EXPECT_EQ(painted.size(), 1U + 511);
    ExpectSame(Printed({"--zoom"}), painted);
}

TEST_P(ListingAgreement, OfThePowerZoomBesideFilteredSamples) {
    WriteCapture(
        RichList("Power Zoom"), [](int i) { return i % 3 != 1; }, true);
    ExpectSame(Printed({"--zoom"}), Painted(0, true));
}

INSTANTIATE_TEST_SUITE_P(
    Families, ListingAgreement,
    testing::Values(
        FamilyCase{"Pci32", boardsim::Family::Pci32, "PCIKite-1", BusPci, 0, {}},
        FamilyCase{"Pci64", boardsim::Family::Pci64, "PCIKite-1", BusPci, 1, {"--width", "64"}},
        FamilyCase{"PciX",
                   boardsim::Family::PciX,
                   "PCIKite-1",
                   BusPciX,
                   1,
                   {"--bus", "PCI-X", "--width", "64"}},
        FamilyCase{"Vme", boardsim::Family::Vme, "VMEKite-1", BusVme, 0, {"--bus", "VME"}},
        FamilyCase{"Lark", boardsim::Family::Lark, "VMELark-1", BusVme, 0, {"--model", "VMELark"}},
        FamilyCase{"Vsb", boardsim::Family::Vsb, "VSBKite-1", BusVsb, 0, {"--bus", "VSB"}},
        FamilyCase{
            "P2", boardsim::Family::ConnectorP2, "VMEKiteP2", BusVmeP2, 0, {"--bus", "VMEP2"}},
        FamilyCase{"P0",
                   boardsim::Family::ConnectorP0,
                   "VMEKiteP0",
                   BusVmeP0,
                   0,
                   {"--model", "VMEKiteP0"}}),
    [](const auto& family) { return family.param.name; });

} // namespace
} // namespace busquill::test
