#include "signals/signal_list.h"
#include "support/capture_builder.h"
#include "support/signal_definitions.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Names = std::vector<std::string>;

/// The lists that are built from the tables of a board.
class FamilyList {
public:
    FamilyList(const BoardTraits& board, std::uint32_t mode, std::uint32_t numSamples = 0)
        : tables_([board] { return board; }, WorkingDirectory(directory_.Path())) {
        tables_.Load();
        list.BuildFromTables(numSamples, mode);
    }
    /// The first rows.
    [[nodiscard]] Names FirstRows(std::size_t count) const {
        Names names = RowNames(list);
        names.resize(std::min(names.size(), count));
        return names;
    }
    [[nodiscard]] std::size_t Shown() const {
        std::size_t count = 0;
        for (const auto& signal : list.All()) {
            count += signal->hidden ? 0U : 1U;
        }
        return count;
    }
    [[nodiscard]] CSignal& Row(const char* name) const { return *FindRow(list, name); }

private:
    TempDir directory_;
    SignalTables tables_;

public:
    CSignalList list{tables_};
};

struct FamilyCase {
    const char* name;
    BoardTraits board;
    std::uint32_t mode;
    std::size_t signals; // one-bit signals, hidden ones too
    std::size_t shown;
    Names firstRows;
};

std::vector<FamilyCase> Families() {
    return {
        {"PCI 32 state",
         Board::Pci32(),
         ModeState,
         106 + 18 + 8 + 32 + 32,
         178,
         {"COMMAND", "ADDRESS32", "DATA32", "AD[63:0]", "C/BE[7:0]", "PAR", "PAR64", "FRAME"}},
        {"PCI 32 waveform",
         Board::Pci32(),
         ModeWaveform,
         124 + 72 + 18 + 2 + 2 + 8,
         208,
         {"COMMAND", "ADDRESS32", "DATA32", "TIME", "DELTA", "ACCUM", "RULE CHECK", "AD[63:0]"}},
        {"PCI 32 events",
         Board::Pci32(),
         ModeEvents,
         106 + 8 + 1 + 2 + 1,
         118,
         {"COMMAND", "ADR/DATA", "=<>", "AD[63:0]", "ANOMALY", "C/BE[7:0]", "PAR"}},
        {"PCI 32 stimulus",
         Board::Pci32(),
         ModeStimulus,
         106 + 8 + 1 + 2,
         117,
         {"COMMAND", "ADR/DATA", "=<>", "AD[63:0]", "C/BE[7:0]", "PAR"}},
        {"PCI 64 state",
         Board::Pci64(),
         ModeState,
         124 + 8 + 64 + 64,
         242,
         {"COMMAND", "ADDRESS64", "DATA64", "AD[63:0]", "C/BE[7:0]"}},
        {"PCI-X state",
         Board::PciX(),
         ModeState,
         124 + 8 + 64 + 64 + 32 + 5 + 8 + 5 + 3 + 12,
         307,
         {"COMMAND(PCI-X)", "ADR64(PCI-X)", "DATA64(PCI-X)", "ATTRIBUTE", "TAG(PCI-X)",
          "BUS#(PCI-X)", "DEVICE#(PCI-X)", "FUNCTION#(PCI-X)", "BYTE CNT(PCI-X)", "AD[63:0]"}},
        {"PCI-X events",
         Board::PciX(),
         ModeEvents,
         106 + 8 + 5 + 8 + 5 + 3 + 12 + 2 + 2 + 1,
         152,
         {"COMMAND(PCI-X)", "TAG(PCI-X)", "BUS#(PCI-X)", "DEVICE#(PCI-X)", "FUNCTION#(PCI-X)",
          "BYTE CNT(PCI-X)", "ADR/ATR/DATA", "=<>", "AD[63:0]", "ANOMALY", "C/BE[7:0]"}},
        {"VME state",
         Board::Vme(),
         ModeState,
         46 + 64 + 18 + 2 + 32 + 32 + 6,
         118,
         {"AD[63:0]", "COMMAND", "ADDRESS32", "DATA32", "AM", "AM[5:0]", "AS", "DS[1:0]"}},
        {"VME events",
         Board::Vme(),
         ModeEvents,
         46 + 64 + 2 + 2 + 32 + 2 + 32 + 6 + 1,
         123,
         {"AD[63:0]", "COMMAND", "=<>", "ADDRESS32", "=<>", "DATA32", "AM", "ANOMALY", "AM[5:0]"}},
        {"VSB state",
         Board::Vsb(),
         ModeState,
         45 + 64 + 18 + 3 + 32 + 32,
         112,
         {"COMMAND", "ADDRESS32", "DATA32", "AD[63:0]", "SPACE[1:0]"}},
        {"Lark state",
         Board::VmeLark(),
         ModeState,
         106 + 18 + 1 + 32 + 32 + 6,
         177,
         {"COMMAND", "ADDRESS32", "DATA32", "AM", "AD[63:0]", "AM[5:0]", "SYSRESET"}},
        {"Lark events",
         Board::VmeLark(),
         ModeEvents,
         106 + 1 + 32 + 2 + 32 + 2 + 6,
         181,
         {"COMMAND", "ADDRESS32", "=<>", "DATA32", "=<>", "AM", "AD[63:0]"}},
        {"P2 state", Board::VmeP2(), ModeState, 103 + 18, 103, {"A1", "A2", "A3"}},
        {"P2 waveform", Board::VmeP2(), ModeWaveform, 103 + 18 + 18 + 2 + 2, 125, {"A1", "A2"}},
        {"P0 state", Board::VmeP0(), ModeState, 104 + 18, 104, {"A1", "A2", "A3"}},
    };
}

TEST(FamilyLists, HaveTheRowsOfTheirTables) {
    for (const FamilyCase& each : Families()) {
        SCOPED_TRACE(each.name);
        const FamilyList family(each.board, each.mode);
        EXPECT_EQ(family.list.Size(), each.signals);
        EXPECT_EQ(family.Shown(), each.shown);
        EXPECT_EQ(family.FirstRows(each.firstRows.size()), each.firstRows);
    }
}

TEST(FamilyLists, TimeIsHiddenAndPermanentInListings) {
    for (const auto& board : {Board::Pci32(), Board::Vme(), Board::Vsb(), Board::VmeLark(),
                              Board::VmeP2(), Board::VmeP0()}) {
        const FamilyList state(board, ModeState);
        const CSignal& time = state.Row("TIME[17:0]");
        EXPECT_TRUE(time.permanent);
        EXPECT_TRUE(time.hidden);
        EXPECT_EQ(time.radix, Radix::Time);
        EXPECT_EQ(time.VisibleHeight(), 0);
        const FamilyList events(board, ModeEvents);
        EXPECT_EQ(FindRow(events.list, "TIME[17:0]"), nullptr);
    }
}

TEST(FamilyLists, TheAnomalyRowOfVmeShowsTheClocksBit) {
    const FamilyList events(Board::Vme(), ModeEvents, 8);
    const CSignal& anomaly = events.Row("ANOMALY");
    EXPECT_EQ(anomaly.dataIndex, 109);
    EXPECT_EQ(anomaly.baseName, "CLK");
    EXPECT_STREQ(anomaly.Label(0), "None");
}

TEST(FamilyLists, TheBusGrantsOfTheLarkAreBitReversed) {
    const FamilyList state(Board::VmeLark(), ModeState);
    EXPECT_EQ(state.Row("BG[3:0]").dataIndex, 83);
    EXPECT_TRUE(state.Row("BG[3:0]").bitReverse);
}

TEST(FamilyLists, ACaptureIsLoadedAndLabelled) {
    FamilyList state(Board::Pci32(), ModeState);
    const auto records =
        CaptureBuilder().Idle().Write(0x2000, 0xAB).Idle(3).IoRead(0x1F0, 0x50).Records();
    state.list.ResizeSamples(static_cast<std::uint32_t>(records.size()));
    state.list.LoadSamples(0, records);
    EXPECT_STREQ(state.Row("COMMAND").Label(1), "Mem Wr");
    EXPECT_STREQ(state.Row("COMMAND").Label(6), "I/O Rd");
    const auto row = state.Row("DATA32").GroupRow(2);
    EXPECT_EQ(row[0], 0xAB);
    // FRAME# ~_~~~~_~~
    EXPECT_EQ(state.Row("FRAME").data, std::vector<std::uint32_t>{0b110111101});
}

TEST(FamilyLists, AFindingShowsItsTextIncludingReservedCodes) {
    FamilyList waves(Board::Pci32(), ModeWaveform);
    const auto records = CaptureBuilder().Idle().Idle().Finding(102).Idle().Finding(114).Records();
    waves.list.ResizeSamples(3);
    waves.list.LoadSamples(0, records);
    const CSignal& check = waves.Row("RULE CHECK");
    EXPECT_EQ(check.Label(0), nullptr);
    EXPECT_STREQ(check.Label(1), "Reserved (102)");
    EXPECT_STREQ(check.Label(2), "Target Abort");
}

TEST(FamilyLists, EveryCommandValueCanBeAppliedAndReadBack) {
    for (const auto& board : {Board::Pci32(), Board::PciX(), Board::Vme(), Board::Vsb()}) {
        FamilyList events(board, ModeEvents, 8);
        const char* name = board.IsPciXMode() ? "COMMAND(PCI-X)" : "COMMAND";
        CSignal& command = events.Row(name);
        for (std::size_t value = 0; value < command.decoded->values.size(); ++value) {
            events.list.ApplyDecodedValue(&command, 3, value);
            EXPECT_STREQ(command.Label(3), command.decoded->values[value].label);
        }
    }
}

} // namespace
} // namespace busquill::test
