#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "tracesetup/setup_encoding.h"
#include "tracesetup/setup_wizard.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = WizardValue::Bytes;
constexpr Bytes compareAll = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

WizardValue Value(std::string_view text) {
    RecordingPrompts prompts;
    const auto value = ParseWizardValue(text, prompts);
    EXPECT_TRUE(value) << text;
    return value.value_or(WizardValue());
}

TEST(WizardValue, AcceptsNoText) {
    EXPECT_EQ(Value(""), WizardValue());
    EXPECT_EQ(Value("  \t"), WizardValue());
}

TEST(WizardValue, ReadsHexadecimalDigits) {
    const WizardValue value = Value(" 12aBcD0 ");
    EXPECT_TRUE(value.single);
    EXPECT_FALSE(value.range);
    EXPECT_EQ(value.low, (Bytes{0xD0, 0xBC, 0x2A, 0x01}));
    EXPECT_EQ(value.lowMask, compareAll); // zeros are compared where no digit is given
}

TEST(WizardValue, ReadsUnknownDigits) {
    const WizardValue value = Value("1x");
    EXPECT_EQ(value.low, (Bytes{0x10}));
    EXPECT_EQ(value.lowMask, (Bytes{0xF0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Value("X1").lowMask, (Bytes{0x0F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(WizardValue, ReadsRanges) {
    for (const char* text : {"100 to 200", "100to200", " 100 TO 200 "}) {
        const WizardValue value = Value(text);
        EXPECT_TRUE(value.range) << text;
        EXPECT_FALSE(value.single) << text;
        EXPECT_EQ(value.low, (Bytes{0x00, 0x01})) << text;
        EXPECT_EQ(value.high, (Bytes{0x00, 0x02})) << text;
        EXPECT_EQ(value.lowMask, compareAll) << text;
        EXPECT_EQ(value.highMask, compareAll) << text;
    }
}

TEST(WizardValue, AcceptsTwoEmptyEndsAsARange) {
    const WizardValue value = Value("to");
    EXPECT_TRUE(value.range);
    EXPECT_EQ(value.low, Bytes());
    EXPECT_EQ(value.high, Bytes());
    EXPECT_EQ(value.lowMask, compareAll);
    EXPECT_EQ(value.highMask, compareAll);
}

TEST(WizardValue, UsesTheLastSixteenDigits) {
    const WizardValue value = Value("9900112233445566778");
    EXPECT_EQ(value.low, (Bytes{0x78, 0x67, 0x56, 0x45, 0x34, 0x23, 0x12, 0x01}));
    EXPECT_EQ(Value("zz0123456789abcdef").low,
              (Bytes{0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01}));
}

TEST(WizardValue, ReportsWhatItCannotRead) {
    const std::pair<const char*, const char*> rows[] = {
        {" 12G4", "12g4"},          {"1 2", "1 2"},       {"-1", "-1"},
        {"100 to 2h", "100 to 2h"}, {"q to 5", "q to 5"}, {"1 to 2 to 3", "1 to 2 to 3"},
        {"$100", "$100"},
    };
    for (const auto& [text, shown] : rows) {
        RecordingPrompts prompts;
        EXPECT_FALSE(ParseWizardValue(text, prompts)) << text;
        EXPECT_THAT(prompts.Texts(),
                    ElementsAre("Invalid value string '" + std::string(shown) + "'."));
    }
}

/// The program that the wizard creates for a board.
class Wizard {
public:
    explicit Wizard(const std::string& model, std::int32_t mode = BusPci, std::int32_t width = 0)
        : board(model, mode, width) {
        trigger.direction = store.direction =
            board.board.IsVmeFamily() ? WizardDirection::VmeAll : WizardDirection::Both;
    }
    void Build() { BuildWizardSetup(setup, trigger, store); }
    void Build(std::string_view triggerAddress, std::string_view triggerData,
               std::string_view storeAddress = "", std::string_view storeData = "") {
        trigger.address = Value(triggerAddress);
        trigger.data = Value(triggerData);
        store.address = Value(storeAddress);
        store.data = Value(storeData);
        Build();
    }
    const CSignal* Row(std::string_view name, int nth = 0) const {
        for (const auto& signal : setup.events.All()) {
            const bool named = signal->decoded
                                   ? signal->decoded->name == name
                                   : signal->IsGroupStart() && signal->groupName == name;
            if (named && nth-- == 0) {
                return signal.get();
            }
        }
        return nullptr;
    }
    std::string Label(std::string_view name, std::size_t column, int nth = 0) const {
        const CSignal* row = Row(name, nth);
        const char* label = row == nullptr ? nullptr : row->Label(column);
        return label == nullptr ? "" : label;
    }
    /// The labels of a row in four columns.
    std::vector<std::string> Labels(std::string_view name, std::size_t column, int nth = 0) const {
        std::vector<std::string> labels;
        for (std::size_t i = column; i < column + 4; ++i) {
            labels.push_back(Label(name, i, nth));
        }
        return labels;
    }
    /// "value/mask" of the bus in a column, most significant digit first.
    std::string Bus(std::size_t column) const {
        const CSignal* row = Row("AD[63:0]");
        std::string text;
        for (const auto bytes : {row->GroupRow(column), row->GroupMaskRow(column)}) {
            for (auto it = bytes.rbegin(); it != bytes.rend(); ++it) {
                char digits[3];
                std::snprintf(digits, sizeof digits, "%02X", *it);
                text += digits;
            }
            text += text.size() == 16 ? "/" : "";
        }
        return text;
    }
    std::string If(std::size_t level) const { return FormatExpression(setup.levels[level].ifExpr); }
    std::string Store(std::size_t level) const {
        return FormatExpression(setup.levels[level].storeExpr);
    }
    std::string Then(std::size_t level) const {
        return FormatTraceGoto(setup.levels[level].thenGoto, setup.levels[level].thenTrigger);
    }
    std::string Else(std::size_t level) const {
        return FormatTraceGoto(setup.levels[level].elseGoto, setup.levels[level].elseTrigger);
    }

    BoardTables board;
    TraceSetup setup{board.tables};
    WizardAnswer trigger;
    WizardAnswer store;
};

constexpr const char* nothing = "0000000000000000/0000000000000000";
constexpr const char* none = "";
constexpr const char* single = "1000";
constexpr const char* range = "100 to 200";

TEST(SetupWizard, BuildsTheLevelsOfPci) {
    struct Row {
        const char* address;
        const char* data;
        const char* first;
        const char* second;
    };
    // clang-format off
    const Row rows[] = {
        {none,   none,   "E1",    "None"},
        {single, none,   "E1",    "None"},
        {range,  none,   "E1.E2", "None"},
        {none,   single, "E3",    "None"},
        {none,   range,  "E3.E4", "None"},
        {single, single, "E1",    "E3"},
        {single, range,  "E1",    "E3.E4"},
        {range,  single, "E1.E2", "E3"},
        {range,  range,  "E1.E2", "E3.E4"},
    };
    // clang-format on
    Wizard wizard("PCIKite-1");
    for (const Row& row : rows) {
        wizard.Build(row.address, row.data);
        const bool two = std::string(row.second) != "None";
        EXPECT_EQ(wizard.If(0), row.first);
        EXPECT_EQ(wizard.Then(0), two ? "Goto L2" : "Goto L1, Trigger");
        EXPECT_EQ(wizard.Else(0), "Goto L1");
        EXPECT_EQ(wizard.Store(0), "E5");
        EXPECT_EQ(wizard.If(1), row.second);
        EXPECT_EQ(wizard.Then(1), two ? "Goto L2, Trigger" : "Goto L1");
        EXPECT_EQ(wizard.Else(1), two ? "Goto L2" : "Goto L1");
        EXPECT_EQ(wizard.Store(1), two ? "E5" : "None");
        for (std::size_t level = 2; level < levelRecords; ++level) {
            EXPECT_EQ(wizard.setup.levels[level], TraceLevel());
        }
        EXPECT_EQ(wizard.setup.levels[0].occurs, 1);
        EXPECT_EQ(wizard.setup.levels[1].occurs, 1);
    }
}

TEST(SetupWizard, BuildsTheStoreExpressionsOfPci) {
    struct Row {
        const char* address;
        const char* data;
        const char* store;
    };
    // clang-format off
    const Row rows[] = {
        {none,   none,   "E5"},
        {single, none,   "E5"},
        {range,  none,   "E5.E6"},
        {none,   single, "E7"},
        {none,   range,  "E7.E8"},
        {single, single, "E5+E7"},
        {range,  single, "E5.E6+E7"},
        {single, range,  "E7.E8+E5"},
        {range,  range,  "E5.E6+E7.E8"},
    };
    // clang-format on
    Wizard wizard("PCIKite-1");
    for (const Row& row : rows) {
        wizard.Build(single, single, row.address, row.data);
        EXPECT_EQ(wizard.Store(0), row.store);
        EXPECT_EQ(wizard.Store(1), row.store);
        EXPECT_EQ(wizard.Store(2), "None");
    }
}

TEST(SetupWizard, NamesTheCommandInEachColumn) {
    struct Row {
        WizardCycle cycle;
        const char* labels[3];
    };
    const Row rows[] = {
        {WizardCycle::Memory, {"Mem Rd", "Mem Wr", "Mem"}},
        {WizardCycle::Io, {"I/O Rd", "I/O Wr", "I/O"}},
        {WizardCycle::Configuration, {"Cfg Rd", "Cfg Wr", "Cfg"}},
        {WizardCycle::All, {"All", "All", "All"}},
    };
    Wizard wizard("PCIKite-1");
    for (const Row& row : rows) {
        for (std::size_t direction = 0; direction < 3; ++direction) {
            wizard.trigger.cycle = row.cycle;
            wizard.trigger.direction = direction;
            wizard.store.cycle = WizardCycle::Configuration;
            wizard.store.direction = WizardDirection::Write;
            wizard.Build();
            EXPECT_THAT(wizard.Labels("COMMAND", 0), Each(row.labels[direction]));
            EXPECT_THAT(wizard.Labels("COMMAND", 4), Each("Cfg Wr"));
        }
    }
}

TEST(SetupWizard, NamesTheCommandsOfPciX) {
    Wizard wizard("PCIKite-1", BusPciX);
    wizard.trigger = {WizardCycle::Memory, WizardDirection::Read, {}, {}};
    wizard.store = {WizardCycle::Configuration, WizardDirection::Both, {}, {}};
    wizard.Build();
    EXPECT_THAT(wizard.Labels("COMMAND(PCI-X)", 0), Each("Mem Rd DW"));
    EXPECT_THAT(wizard.Labels("COMMAND(PCI-X)", 4), Each("Cfg"));
    wizard.trigger.direction = WizardDirection::Write;
    wizard.Build();
    EXPECT_THAT(wizard.Labels("COMMAND(PCI-X)", 0), Each("Mem Wr"));
}

TEST(SetupWizard, WithoutAddressAndDataUsesAddressPhases) {
    Wizard wizard("PCIKite-1");
    wizard.store.cycle = WizardCycle::Memory;
    wizard.Build(none, none);
    EXPECT_EQ(wizard.Label("ADR/DATA", 0), "Both");
    EXPECT_EQ(wizard.Label("ADR/DATA", 4), "Address");
    wizard.store.cycle = WizardCycle::All;
    wizard.trigger.cycle = WizardCycle::Io;
    wizard.Build(none, none);
    EXPECT_EQ(wizard.Label("ADR/DATA", 0), "Address");
    EXPECT_EQ(wizard.Label("ADR/DATA", 4), "Both"); // everything, since all commands are chosen
    EXPECT_EQ(wizard.Label("ADR/DATA", 1), "Both");
    EXPECT_EQ(wizard.Label("=<>", 0), "Any");
    for (std::size_t column = 0; column < 8; ++column) {
        EXPECT_EQ(wizard.Bus(column), nothing);
    }
}

TEST(SetupWizard, EverythingTriggersOnTheFirstEvent) {
    Wizard wizard("PCIKite-1");
    wizard.Build(none, none);
    EXPECT_EQ(wizard.If(0), "E1");
    EXPECT_THAT(BuildEventRows(wizard.setup.events, 8), Each(0)); // no bit is compared
}

TEST(SetupWizard, FillsInSinglesOfPci) {
    Wizard wizard("PCIKite-1");
    wizard.Build("12345678", "xAB", "FEDCBA9876543210", "0");
    EXPECT_EQ(wizard.Bus(0), "0000000012345678/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Bus(1), nothing);
    EXPECT_EQ(wizard.Bus(2), "00000000000000AB/FFFFFFFFFFFFF0FF");
    EXPECT_EQ(wizard.Bus(3), nothing);
    EXPECT_EQ(wizard.Bus(4), "FEDCBA9876543210/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Bus(6), "0000000000000000/FFFFFFFFFFFFFFFF");
    EXPECT_THAT(wizard.Labels("ADR/DATA", 0), ElementsAre("Address", "Both", "Data", "Both"));
    EXPECT_THAT(wizard.Labels("=<>", 0), ElementsAre("=", "Any", "=", "Any"));
    EXPECT_THAT(wizard.Labels("=<>", 4), ElementsAre("=", "Any", "=", "Any"));
}

TEST(SetupWizard, FillsInRangesOfPci) {
    Wizard wizard("PCIKite-1", BusPci, 1);
    wizard.Build("100 to 200", "5 to 1x", "300 to 400", "0 to F");
    EXPECT_EQ(wizard.Bus(0), "0000000000000100/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Bus(1), "0000000000000200/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Bus(2), "0000000000000005/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Bus(3), "0000000000000010/FFFFFFFFFFFFFFF0");
    EXPECT_EQ(wizard.Bus(4), "0000000000000300/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Bus(7), "000000000000000F/FFFFFFFFFFFFFFFF");
    for (const std::size_t column : {0U, 4U}) {
        EXPECT_THAT(wizard.Labels("ADR/DATA", column),
                    ElementsAre("Address", "Address", "Data", "Data"));
        EXPECT_THAT(wizard.Labels("=<>", column), ElementsAre(">", "<", ">", "<"));
    }
}

TEST(SetupWizard, FillsInTheAttributesOfPciX) {
    Wizard wizard("PCIKite-1", BusPciX);
    wizard.trigger.cycle = WizardCycle::Memory;
    wizard.Build("100 to 200", "5");
    EXPECT_THAT(wizard.Labels("ADR/ATR/DATA", 0), ElementsAre("Address", "Address", "Data", "All"));
    EXPECT_THAT(wizard.Labels("=<>", 0), ElementsAre(">", "<", "=", "Any"));
    EXPECT_THAT(wizard.Labels("ADR/ATR/DATA", 4), Each("All"));
    wizard.Build(none, none);
    EXPECT_EQ(wizard.Label("ADR/ATR/DATA", 0), "Address");
}

TEST(SetupWizard, SendsARangeAsTheBoardExpectsIt) {
    Wizard wizard("PCIKite-1");
    wizard.trigger = {WizardCycle::Memory, WizardDirection::Write, {}, {}};
    wizard.Build("100 to 200", none);
    const auto rows = BuildEventRows(wizard.setup.events, 8);
    // Pairs of a value byte and a compare byte: the address,
    EXPECT_THAT(
        std::vector(rows.begin(), rows.begin() + 16),
        ElementsAre(0x00, 0xFF, 0x01, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF));
    EXPECT_EQ(rows[16], 0x07); // bits 64 to 67 are 0111, a memory write
    EXPECT_EQ(rows[17], 0x0F);
    EXPECT_EQ(rows[22], 0x80); // bit 95: an address
    EXPECT_EQ(rows[23], 0x80);
    EXPECT_EQ(rows[26], 0x40); // bits 110 and 111 are 1 and 0: above
    EXPECT_EQ(rows[27], 0xC0);
    EXPECT_EQ(rows[30], 0x00); // the other end
    EXPECT_EQ(rows[32], 0x02);
    EXPECT_EQ(rows[30 + 26], 0x80); // 0 and 1: below
    EXPECT_EQ(rows[30 + 27], 0xC0);
}

TEST(SetupWizard, BuildsOneLevelOnVme) {
    struct Row {
        const char* address;
        const char* data;
        const char* trigger;
        const char* store;
    };
    // clang-format off
    const Row rows[] = {
        {none,   none,   "E1",    "E3"},
        {single, none,   "E1",    "E3"},
        {none,   single, "E1",    "E3"},
        {single, single, "E1",    "E3"},
        {range,  none,   "E1.E2", "E3.E4"},
        {none,   range,  "E1.E2", "E3.E4"},
        {single, range,  "E1.E2", "E3.E4"},
        {range,  single, "E1.E2", "E3.E4"},
        {range,  range,  "E1.E2", "E3.E4"},
    };
    // clang-format on
    for (const char* model : {"VMEKite", "VMELark"}) {
        Wizard wizard(model, BusVme);
        for (const Row& row : rows) {
            wizard.Build(row.address, row.data, row.address, row.data);
            EXPECT_EQ(wizard.If(0), row.trigger);
            EXPECT_EQ(wizard.Store(0), row.store);
            EXPECT_EQ(wizard.Then(0), "Goto L1, Trigger");
            EXPECT_EQ(wizard.Else(0), "Goto L1");
            EXPECT_EQ(wizard.setup.levels[1], TraceLevel());
        }
    }
}

TEST(SetupWizard, TakesTheDirectionOfVmeByItsIndex) {
    Wizard wizard("VMEKite", BusVme);
    const char* const labels[] = {"Read", "Write", "Interrupt", "All"};
    for (std::size_t direction = 0; direction < 4; ++direction) {
        wizard.trigger.direction = direction;
        wizard.store.direction = 3 - direction;
        wizard.Build();
        EXPECT_EQ(wizard.Label("COMMAND", 0), labels[direction]);
        EXPECT_EQ(wizard.Label("COMMAND", 1), labels[direction]);
        EXPECT_EQ(wizard.Label("COMMAND", 2), labels[3 - direction]);
        EXPECT_EQ(wizard.Label("COMMAND", 3), labels[3 - direction]);
    }
    Wizard small("VMELark", BusVme); // it has no label for interrupts
    small.trigger.direction = WizardDirection::VmeInterrupt;
    small.Build();
    EXPECT_EQ(small.Label("COMMAND", 0), "All");
}

TEST(SetupWizard, FillsInBothHalvesOnVme) {
    struct Row {
        const char* address;
        const char* data;
        const char* addressComparators[2];
        const char* dataComparators[2];
        const char* bus[2];
    };
    // clang-format off
    const Row rows[] = {
        {"",            "",           {"Any", "Any"}, {"Any", "Any"}, {nothing, nothing}},
        {"12345678",    "",           {"=", "Any"},   {"Any", "Any"}, {"0000000012345678/00000000FFFFFFFF", nothing}},
        {"",            "1x",         {"Any", "Any"}, {"=", "Any"},   {"0000001000000000/FFFFFFF000000000", nothing}},
        {"1",           "2",          {"=", "Any"},   {"=", "Any"},   {"0000000200000001/FFFFFFFFFFFFFFFF", nothing}},
        {"100 to 200",  "",           {">", "<"},     {"Any", "Any"}, {"0000000000000100/00000000FFFFFFFF", "0000000000000200/00000000FFFFFFFF"}},
        {"",            "3 to 4",     {"Any", "Any"}, {">", "<"},     {"0000000300000000/FFFFFFFF00000000", "0000000400000000/FFFFFFFF00000000"}},
        {"1",           "3 to 4",     {"=", "="},     {">", "<"},     {"0000000300000001/FFFFFFFFFFFFFFFF", "0000000400000001/FFFFFFFFFFFFFFFF"}},
        {"100 to 200",  "2",          {">", "<"},     {"=", "="},     {"0000000200000100/FFFFFFFFFFFFFFFF", "0000000200000200/FFFFFFFFFFFFFFFF"}},
        {"100 to 200",  "3 to 4",     {">", "<"},     {">", "<"},     {"0000000300000100/FFFFFFFFFFFFFFFF", "0000000400000200/FFFFFFFFFFFFFFFF"}},
        {"123456789AB", "1",          {"=", "Any"},   {"=", "Any"},   {"00000001456789AB/FFFFFFFFFFFFFFFF", nothing}},
    };
    // clang-format on
    for (const char* model : {"VMEKite", "VMELark"}) {
        Wizard wizard(model, BusVme);
        for (const Row& row : rows) {
            wizard.Build(row.address, row.data, row.address, row.data);
            for (std::size_t column = 0; column < 4; ++column) {
                EXPECT_EQ(wizard.Label("=<>", column, 0), row.addressComparators[column % 2])
                    << row.address << " " << row.data << " " << column;
                EXPECT_EQ(wizard.Label("=<>", column, 1), row.dataComparators[column % 2])
                    << row.address << " " << row.data << " " << column;
                EXPECT_EQ(wizard.Bus(column), row.bus[column % 2])
                    << row.address << " " << row.data << " " << column;
            }
        }
    }
}

TEST(SetupWizard, SkipsRowsThatABoardDoesNotHave) {
    for (const char* model : {"VMEKiteP2", "VMEKiteP0"}) {
        Wizard wizard(model, std::string(model) == "VMEKiteP2" ? BusVmeP2 : BusVmeP0);
        wizard.Build("100 to 200", "5");
        EXPECT_EQ(wizard.If(0), "E1.E2");
        EXPECT_THAT(BuildEventRows(wizard.setup.events, 8), Each(0));
    }
    Wizard wizard("VSBKite", BusVsb); // no command of that name, no phases
    wizard.trigger.cycle = WizardCycle::Memory;
    wizard.Build("1234", none);
    EXPECT_EQ(wizard.Bus(0), "0000000000001234/FFFFFFFFFFFFFFFF");
    EXPECT_EQ(wizard.Label("=<>", 0), "=");
    EXPECT_EQ(wizard.Label("COMMAND", 0), "All");
    wizard.trigger.cycle = WizardCycle::Io;
    wizard.Build();
    EXPECT_EQ(wizard.Label("COMMAND", 0), "All"); // not only the writes
    wizard.trigger.direction = WizardDirection::Read;
    wizard.Build();
    EXPECT_EQ(wizard.Label("COMMAND", 0), "I/O Rd");
}

TEST(SetupWizard, ReplacesEarlierValues) {
    Wizard wizard("PCIKite-1");
    wizard.setup.name = "name";
    wizard.setup.description = "text";
    wizard.setup.clock = 9;
    wizard.setup.levels[5].occurs = 12;
    wizard.setup.events.RemoveAllSignals();
    wizard.Build(single, none);
    EXPECT_EQ(wizard.setup.name, "");
    EXPECT_EQ(wizard.setup.description, "");
    EXPECT_EQ(wizard.setup.clock, 2);
    EXPECT_EQ(wizard.setup.levels[5], TraceLevel());
    EXPECT_EQ(wizard.Bus(0), "0000000000001000/FFFFFFFFFFFFFFFF");
}

} // namespace
} // namespace busquill::test
