#include "signals/signal_tables.h"
#include "support/board_tables.h"

#include <gtest/gtest.h>

#include <set>

namespace busquill::test {
namespace {

/// A value's pattern over the positions of its definition, the most significant first.
std::string PatternOf(const CDecodedSignalDef& def, const CDecodedValue& value) {
    std::string text;
    for (const int p : def.Positions()) {
        text.insert(0, 1, "01?X"[value.pattern[static_cast<std::size_t>(p)]]);
    }
    return text;
}

const CDecodedSignalDef& Decoded(const BoardTables& board, const std::string& name,
                                 std::size_t nth = 0) {
    for (const auto& def : board.tables.decodedSignals.Defs()) {
        if (def->name == name && nth-- == 0) {
            return *def;
        }
    }
    throw std::runtime_error("no definition " + name);
}

std::vector<int> Range(int first, int last) {
    std::vector<int> positions;
    for (int p = first; p <= last; ++p) {
        positions.push_back(p);
    }
    return positions;
}

struct Count {
    const char* model;
    std::size_t rows;
    int bits;
    int shown;
    std::size_t decoded;
};

TEST(SignalTables, HaveTheirNumbersOfRowsBitsAndShownBits) {
    const Count counts[] = {{"PCIKite-1", 36, 138, 106, 23},  {"VMEKite-1", 27, 141, 46, 14},
                            {"VSBKite-1", 30, 130, 45, 8},    {"VMELark-1", 25, 128, 106, 12},
                            {"VMEKiteP2-1", 99, 131, 103, 4}, {"VMEKiteP0-1", 100, 132, 104, 4}};
    for (const Count& count : counts) {
        const BoardTables board(count.model);
        int bits = 0;
        int shown = 0;
        for (const auto& def : board.tables.busSignals.Defs()) {
            bits += def->Width();
            shown += (def->stateFlags & flagShown) != 0 ? def->Width() : 0;
            EXPECT_LE(def->dataIndex + def->Width(), 144) << count.model << " " << def->name;
        }
        EXPECT_EQ(board.tables.busSignals.Defs().size(), count.rows) << count.model;
        EXPECT_EQ(bits, count.bits) << count.model;
        EXPECT_EQ(shown, count.shown) << count.model;
        EXPECT_EQ(board.tables.decodedSignals.Defs().size(), count.decoded) << count.model;
    }
}

TEST(SignalTables, AreChosenByTheModel) {
    // A row that begins or ends the table of one family only distinguishes the tables.
    const std::pair<const char*, const char*> second[] = {
        {"PCIKite-1", "C/BE"}, {"PCIWren-1", "C/BE"}, {"PCFKite-1", "C/BE"},
        {"PCFWren-1", "C/BE"}, {"PMCKite-1", "C/BE"}, {"PMCWren-1", "C/BE"},
        {"Strange-1", "C/BE"}, {"VMEKite-1", "AM"},   {"VMEWren-1", "AM"},
        {"VMEKiteP2-1", "A2"}, {"VMEKiteP0-1", "A2"}, {"VSBKite-1", "SPACE"}};
    for (const auto& [model, name] : second) {
        EXPECT_EQ(BoardTables(model).tables.busSignals.Defs()[1]->name, name) << model;
    }
    EXPECT_EQ(BoardTables("VMEKiteP2-1").tables.busSignals.Defs()[0]->dataIndex, 88);
    EXPECT_EQ(BoardTables("VMEKiteP0-1").tables.busSignals.Defs()[0]->dataIndex, 71);
}

TEST(SignalTables, LarkUsesItsOwnTableAndNotThatOfItsFamily) {
    EXPECT_EQ(BoardTables("VMELark-1").tables.busSignals.FindByName("AM")->dataIndex, 88);
    EXPECT_EQ(BoardTables("VMEKite-1").tables.busSignals.FindByName("AM")->dataIndex, 64);
}

TEST(SignalTables, FollowTheBusModeInDemoMode) {
    const std::pair<int, const char*> modes[] = {{0, "C/BE"}, {1, "C/BE"}, {2, "AM"},
                                                 {3, "AM"},   {4, "AM"},   {7, "C/BE"},
                                                 {8, "C/BE"}, {9, "SPACE"}};
    for (const auto& [mode, name] : modes) {
        EXPECT_EQ(BoardTables("Demo Mode", mode).tables.busSignals.Defs()[1]->name, name) << mode;
    }
}

TEST(SignalTables, BusGrantOfLarkIsBitReversed) {
    const BoardTables lark("VMELark-1");
    const auto grant = lark.tables.busSignals.FindByName("BG");
    EXPECT_TRUE(grant->bitReverse);
    EXPECT_EQ(grant->firstPosition, 0);
    EXPECT_EQ(grant->lastPosition, 3);
    EXPECT_EQ(grant->dataIndex, 80);
    for (const auto& def : lark.tables.busSignals.Defs()) {
        EXPECT_EQ(def->bitReverse, def->name == "BG") << def->name;
    }
}

TEST(SignalTables, ReloadKeepsDefinitionsThatAreStillInUse) {
    BoardTables board("PCIKite-1");
    const auto old = board.tables.decodedSignals.FindByName("COMMAND");
    board.board.modelString = "VSBKite-1";
    board.tables.Load();
    EXPECT_EQ(old->values.size(), 28U);
    EXPECT_STREQ(old->values[4].label, "I/O Rd");
    EXPECT_EQ(board.tables.decodedSignals.FindByName("COMMAND")->values.size(), 7U);
}

TEST(FlagsFor, PicksTheColumnOfTheMode) {
    CBusSignalDef def;
    def.stateFlags = 1;
    def.waveformFlags = 2;
    def.eventFlags = 4;
    EXPECT_EQ(def.FlagsFor(ModeState), 1U);
    EXPECT_EQ(def.FlagsFor(ModeWaveform), 2U);
    EXPECT_EQ(def.FlagsFor(ModeEvents), 4U);
    EXPECT_EQ(def.FlagsFor(ModeStimulus), 4U);
    EXPECT_EQ(def.FlagsFor(3), 0U);
}

TEST(FindBusDefByDataIndex, TakesTheFirstThatCoversTheBit) {
    const BoardTables board("PCIKite-1");
    EXPECT_EQ(board.tables.FindBusDefByDataIndex(63)->name, "AD");
    EXPECT_EQ(board.tables.FindBusDefByDataIndex(64)->name, "C/BE");
    EXPECT_EQ(board.tables.FindBusDefByDataIndex(110)->name, "RANGE");
    EXPECT_EQ(board.tables.FindBusDefByDataIndex(112)->name, "TIME");
    EXPECT_EQ(board.tables.FindBusDefByDataIndex(136), nullptr);
}

TEST(Applies, ConditionsFollowTheBus) {
    const auto holds = [](DefCondition condition, int mode, int width) {
        return SignalTables::Applies(condition, {"PCIKite-1", false, {mode, width, 0, 0, 0}});
    };
    for (int mode = 0; mode < 3; ++mode) {
        for (int width = 0; width < 2; ++width) {
            EXPECT_TRUE(holds(DefCondition::Always, mode, width));
            EXPECT_EQ(holds(DefCondition::Pci32, mode, width), mode == 0 && width == 0);
            EXPECT_EQ(holds(DefCondition::Pci64, mode, width), mode == 0 && width == 1);
            EXPECT_EQ(holds(DefCondition::PciX, mode, width), mode == 1);
            EXPECT_EQ(holds(DefCondition::NotPciX, mode, width), mode != 1);
        }
    }
}

TEST(DecodedDefinitions, FieldsAreAtThePositionsOfTheirFamily) {
    const BoardTables pci("PCIKite-1");
    const BoardTables vme("VMEKite-1");
    const BoardTables vsb("VSBKite-1");
    const BoardTables lark("VMELark-1");
    for (const BoardTables* board : {&pci, &vme, &vsb, &lark}) {
        EXPECT_EQ(Decoded(*board, "ADDRESS32").Positions(), Range(0, 31));
        EXPECT_EQ(Decoded(*board, "TIME").Positions(), Range(110, 127));
        EXPECT_EQ(Decoded(*board, "DELTA").Positions(), Range(100, 101));
        EXPECT_EQ(Decoded(*board, "ACCUM").Positions(), Range(100, 101));
        EXPECT_EQ(Decoded(*board, "SAMPLE").Positions(), Range(110, 111));
    }
    EXPECT_EQ(Decoded(pci, "DATA32").Positions(), Range(0, 31));
    EXPECT_EQ(Decoded(vsb, "DATA32").Positions(), Range(0, 31));
    EXPECT_EQ(Decoded(vme, "DATA32").Positions(), Range(32, 63));
    EXPECT_EQ(Decoded(lark, "DATA32").Positions(), Range(32, 63));
    for (const char* name : {"ADDRESS64", "ADR64(PCI-X)", "DATA64", "DATA64(PCI-X)"}) {
        EXPECT_EQ(Decoded(pci, name).Positions(), Range(0, 63)) << name;
        EXPECT_STREQ(Decoded(pci, name).values[0].label, "00000000 00000000") << name;
    }
    EXPECT_EQ(Decoded(pci, "ATTRIBUTE").Positions(), Range(0, 31));
    EXPECT_EQ(Decoded(pci, "TAG(PCI-X)").Positions(), Range(24, 28));
    EXPECT_EQ(Decoded(pci, "BUS#(PCI-X)").Positions(), Range(16, 23));
    EXPECT_EQ(Decoded(pci, "DEVICE#(PCI-X)").Positions(), Range(11, 15));
    EXPECT_EQ(Decoded(pci, "FUNCTION#(PCI-X)").Positions(), Range(8, 10));
    EXPECT_EQ(Decoded(pci, "BYTE CNT(PCI-X)").Positions(),
              (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 64, 65, 66, 67}));
}

TEST(DecodedDefinitions, CommandsOfPci) {
    const BoardTables board("PCIKite-1");
    const auto& def = Decoded(board, "COMMAND");
    const std::tuple<const char*, const char*, unsigned> expected[] = {
        {"All", "XXXXXXXX", 3},
        {"Int Ack", "XXXX0000", 0},
        {"Spc Cyc", "XXXX0001", 0},
        {"I/O", "XXXX001X", 3},
        {"I/O Rd", "XXXX0010", 0},
        {"I/O Wr", "XXXX0011", 0},
        {"Mem", "XXXX011X", 3},
        {"Mem Rd", "XXXX0110", 0},
        {"Mem Wr", "XXXX0111", 0},
        {"Cfg", "XXXX101X", 3},
        {"Cfg Rd", "XXXX1010", 0},
        {"Cfg Wr", "XXXX1011", 0},
        {"Mem Rd Mult", "XXXX1100", 0},
        {"Mem Rd Line", "XXXX1110", 0},
        {"Mem Wr & Inv", "XXXX1111", 0},
        {"DAC-Int Ack", "00001101", 0},
        {"DAC-Spc Cyc", "00011101", 0},
        {"DAC-I/O", "001X1101", 3},
        {"DAC-I/O Rd", "00101101", 0},
        {"DAC-I/O Wr", "00111101", 0},
        {"DAC-Mem", "011X1101", 3},
        {"DAC-Mem Rd", "01101101", 0},
        {"DAC-Mem Wr", "01111101", 0},
        {"DAC-Cfg", "101X1101", 3},
        {"DAC-Cfg Rd", "10101101", 0},
        {"DAC-Cfg Wr", "10111101", 0},
        {"DAC-Mem Rd Mult", "11001101", 0},
        {"DAC-Mem Wr & Inv", "11111101", 0}};
    ASSERT_EQ(def.values.size(), std::size(expected));
    EXPECT_EQ(def.Positions(), Range(64, 71));
    EXPECT_EQ(def.insertBefore, "AD[63:0]");
    for (std::size_t i = 0; i < def.values.size(); ++i) {
        const auto& [label, pattern, skip] = expected[i];
        EXPECT_STREQ(def.values[i].label, label);
        EXPECT_EQ(PatternOf(def, def.values[i]), pattern) << label;
        EXPECT_EQ(def.values[i].skipModes, skip) << label;
    }
}

TEST(DecodedDefinitions, BlockCommandsOfPciXHaveTwoCodesEach) {
    const BoardTables board("PCIKite-1", BusPciX);
    const auto& def = Decoded(board, "COMMAND(PCI-X)");
    std::multiset<std::string> found;
    for (const CDecodedValue& value : def.values) {
        if (std::string(value.label) == "Mem Rd Blk" || std::string(value.label) == "Mem Wr Blk") {
            found.insert(value.label + (" " + PatternOf(def, value)));
        }
    }
    EXPECT_EQ(found, (std::multiset<std::string>{"Mem Rd Blk XXXX1000", "Mem Rd Blk XXXX1110",
                                                 "Mem Wr Blk XXXX1001", "Mem Wr Blk XXXX1111"}));
}

TEST(DecodedDefinitions, RangesAndAnomalies) {
    const BoardTables vme("VMEKite-1");
    const BoardTables lark("VMELark-1");
    EXPECT_EQ(Decoded(vme, "=<>", 0).insertBefore, "ADDRESS32");
    EXPECT_EQ(Decoded(vme, "=<>", 0).Positions(), Range(110, 111));
    EXPECT_EQ(Decoded(vme, "=<>", 1).insertBefore, "DATA32");
    EXPECT_EQ(Decoded(vme, "=<>", 1).Positions(), Range(118, 119));
    EXPECT_EQ(Decoded(lark, "=<>", 0).insertBefore, "DATA32");
    EXPECT_EQ(Decoded(lark, "=<>", 1).insertBefore, "AM");
    EXPECT_EQ(Decoded(vme, "ANOMALY").Positions(), Range(109, 109));
    EXPECT_EQ(Decoded(BoardTables("PCIKite-1"), "ANOMALY").Positions(), Range(94, 94));
}

TEST(RuleChecks, EveryCodeHasARow) {
    const std::pair<const char*, std::size_t> families[] = {{"PCIKite-1", 114}, {"VMEKite-1", 67}};
    for (const auto& [model, count] : families) {
        const BoardTables board(model);
        const auto& def = Decoded(board, "RULE CHECK");
        ASSERT_EQ(def.values.size(), count);
        EXPECT_EQ(def.Positions(), Range(128, 135));
        EXPECT_EQ(def.labelWidth, 20U);
        EXPECT_EQ(def.color, 0x0000FFU);
        for (std::size_t i = 0; i < count; ++i) {
            unsigned code = 0;
            for (unsigned bit = 0; bit < 8; ++bit) {
                code |= (def.values[i].pattern[128 + bit] == CodeOne ? 1U : 0U) << bit;
            }
            EXPECT_EQ(code, i + 1);
        }
    }
}

TEST(RuleChecks, TextsAreThoseOfTheBoard) {
    const BoardTables pci("PCIKite-1");
    const BoardTables vme("VMEKite-1");
    const auto text = [](const BoardTables& board, std::size_t code) {
        return std::string(Decoded(board, "RULE CHECK").values[code - 1].label);
    };
    EXPECT_EQ(text(pci, 25), "DEVSEL deassserted before tranasction complete");
    EXPECT_EQ(text(pci, 97), "Gliches on CLK");
    EXPECT_EQ(text(pci, 102), "Reserved (102)");
    EXPECT_EQ(text(pci, 114), "Target Abort");
    EXPECT_EQ(text(vme, 16), "Bus driven before AS* inactive (2.27)AS* driven low before AS* is "
                             "inactive for 60ns (2.29)");
    EXPECT_EQ(text(vme, 26), "AS* held low less then 40ns (2.45)");
}

} // namespace
} // namespace busquill::test
