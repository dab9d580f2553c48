#include "signals/rule_checks.h"
#include "signals/signal_table_rows.h"
#include "signals/table_fields.h"

namespace busquill {

namespace {

// clang-format off

constexpr BusRow busRows[] = {
    //               first last bit    colour  state wave event
    {"AD",         0, 63,   0, 0x000000, 4, 4, 4},
    {"AM",         0,  5,  64, 0x000000, 1, 1, 1},
    {"AS",         0,  0,  72, 0x000000, 1, 1, 1},
    {"DS",         0,  1,  73, 0x000000, 1, 1, 1},
    {"LWORD",      0,  0,  77, 0x000000, 1, 1, 1},
    {"DTACK",      0,  0,  75, 0x000000, 1, 1, 1},
    {"BERR",       0,  0,  76, 0x000000, 1, 1, 1},
    {"WRITE",      0,  0,  78, 0x000000, 1, 1, 1},
    {"IACK",       0,  0,  95, 0x000000, 1, 1, 1},
    {"IACKI",      0,  0, 108, 0x000000, 1, 1, 1},
    {"IRQ",        0,  6,  88, 0x000000, 1, 1, 1},
    {"BR",         0,  3,  80, 0x000000, 1, 1, 1},
    {"BG",         0,  3,  84, 0x000000, 1, 1, 1},
    {"BBSY",       0,  0,  70, 0x000000, 1, 1, 1},
    {"BCLR",       0,  0,  71, 0x000000, 1, 1, 1},
    {"SYSRESET",   0,  0,  79, 0x000000, 1, 1, 1},
    {"RETRY",      0,  0, 104, 0x000000, 1, 1, 1},
    {"RESP",       0,  0, 105, 0x000000, 1, 1, 1},
    {"FAIL",       0,  0, 106, 0x000000, 1, 1, 1},
    {"ACFAIL",     0,  0, 107, 0x000000, 1, 1, 1},
    {"CLK",        0,  0, 109, 0x000000, 1, 1, 1},
    {"EXT",        0,  7,  96, 0x000000, 1, 1, 1},
    {"ARANGE",     0,  1, 110, 0x000000, 2, 2, 2},
    {"DRANGE",     0,  1, 118, 0x000000, 2, 2, 2},
    {"ANOMALY",    0,  0, 109, 0x000000, 2, 2, 2},
    {"TIME",       0, 17, 110, 0x00FF00, 6, 6, 2},
    {"RULE CHECK", 0,  7, 128, 0x0000FF, 2, 2, 2},
};
static_assert(std::size(busRows) == 27 && BitCount(busRows) == 141 && ShownBits(busRows) == 46);
static_assert(InsideRecord(busRows));

constexpr std::array<std::uint8_t, 2> commandBits = {78, 95}; // WRITE, IACK
constexpr auto modifierBits = Positions<64, 69>;
constexpr auto dataRangeBits = Positions<118, 119>;
constexpr auto anomalyBits = Positions<109, 109>;

constexpr ValueRow commands[] = {
    {"Read",      "11", 0},
    {"Write",     "10", 0},
    {"Interrupt", "0X", 0},
    {"All",       "XX", 3},
};
static_assert(std::size(commands) == 4);

constexpr DecodedRow decodedRows[] = {
    // kind, colour, flags (state, waveform, events), row before which it is placed, condition
    {"COMMAND",    DecodeKind::Command,    0x000000, 1, 1, 1, "AM[5:0]",   DefCondition::Always, commandBits,   commands},
    {"ADDRESS32",  DecodeKind::AddressVme, 0x000000, 1, 1, 1, "AM[5:0]",   DefCondition::Always, low32,         field32},
    {"DATA32",     DecodeKind::DataVme,    0x000000, 1, 1, 1, "AM[5:0]",   DefCondition::Always, high32,        field32},
    {"ADDRESS64",  DecodeKind::Address,    0x000000, 1, 1, 2, "AM[5:0]",   DefCondition::Pci64,  all64,         field64},
    {"DATA64",     DecodeKind::Data,       0x000000, 1, 1, 2, "AM[5:0]",   DefCondition::Pci64,  all64,         field64},
    {"AM",         DecodeKind::Command,    0x000000, 1, 1, 1, "AM[5:0]",   DefCondition::Always, modifierBits,  addressModifiers},
    {"TIME",       DecodeKind::Time,       0x00FF00, 0, 1, 2, "AM[5:0]",   DefCondition::Always, timeBits,      fieldTime},
    {"DELTA",      DecodeKind::Delta,      0x00FF00, 2, 1, 2, "AM[5:0]",   DefCondition::Always, dummyBits,     fieldDummy},
    {"ACCUM",      DecodeKind::Accum,      0x00FF00, 2, 1, 2, "AM[5:0]",   DefCondition::Always, dummyBits,     fieldDummy},
    {"RULE CHECK", DecodeKind::Label,      0x0000FF, 0, 1, 2, "AM[5:0]",   DefCondition::Always, ruleBits,      vmeRuleChecks},
    {"=<>",        DecodeKind::Label,      0x000000, 2, 2, 1, "ADDRESS32", DefCondition::Always, rangeBits,     ranges},
    {"=<>",        DecodeKind::Label,      0x000000, 2, 2, 1, "DATA32",    DefCondition::Always, dataRangeBits, ranges},
    {"ANOMALY",    DecodeKind::Label,      0x000000, 2, 2, 1, "AM[5:0]",   DefCondition::Always, anomalyBits,   anomalies},
    {"SAMPLE",     DecodeKind::Sample,     0xFF0000, 0, 0, 2, "",          DefCondition::Always, sampleBits,    fieldDummy},
};
static_assert(std::size(decodedRows) == 14 && PatternsFit(decodedRows));

// clang-format on

} // namespace

FamilyTables VmeTables() noexcept {
    return {busRows, decodedRows};
}

} // namespace busquill
