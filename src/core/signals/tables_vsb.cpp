#include "signals/signal_table_rows.h"
#include "signals/table_fields.h"

namespace busquill {

namespace {

// clang-format off

constexpr BusRow busRows[] = {
    //               first last bit    colour  state wave event
    {"AD",       0, 63,   0, 0x000000, 4, 4, 4},
    {"SPACE",    0,  1,  64, 0x000000, 1, 1, 1},
    {"SIZE",     0,  1,  66, 0x000000, 1, 1, 1},
    {"WR",       0,  0,  68, 0x000000, 1, 1, 1},
    {"LOCK",     0,  0,  69, 0x000000, 1, 1, 1},
    {"WAIT",     0,  0,  70, 0x000000, 1, 1, 1},
    {"AC",       0,  0,  71, 0x000000, 1, 1, 1},
    {"PAS",      0,  0,  72, 0x000000, 1, 1, 1},
    {"ASACK",    0,  1,  73, 0x000000, 1, 1, 1},
    {"ACK",      0,  0,  75, 0x000000, 1, 1, 1},
    {"ERR",      0,  0,  76, 0x000000, 1, 1, 1},
    {"CACHE",    0,  0,  77, 0x000000, 1, 1, 1},
    {"IRQ",      0,  0,  78, 0x000000, 1, 1, 1},
    {"DS",       0,  0,  79, 0x000000, 1, 1, 1},
    {"BREQ",     0,  0,  80, 0x000000, 1, 1, 1},
    {"BGIN",     0,  0,  81, 0x000000, 1, 1, 1},
    {"BGOUT",    0,  0,  82, 0x000000, 1, 1, 1},
    {"BUSY",     0,  0,  83, 0x000000, 1, 1, 1},
    {"GA",       0,  2,  84, 0x000000, 1, 1, 1},
    {"CLK",      0,  0, 109, 0x000000, 1, 1, 1},
    {"TDI",      0,  0, 104, 0x000000, 1, 1, 1},
    {"TDO",      0,  0, 105, 0x000000, 1, 1, 1},
    {"TCK",      0,  0, 106, 0x000000, 1, 1, 1},
    {"TMS",      0,  0, 107, 0x000000, 1, 1, 1},
    {"TRST",     0,  0, 108, 0x000000, 1, 1, 1},
    {"EXT",      0,  7,  96, 0x000000, 1, 1, 1},
    {"EXP",      0,  7, 136, 0x000000, 1, 1, 1},
    {"ADR/DATA", 0,  0,  95, 0x000000, 2, 2, 2},
    {"RANGE",    0,  1, 110, 0x000000, 2, 2, 2},
    {"TIME",     0, 17, 110, 0x00FF00, 6, 6, 2},
};
static_assert(std::size(busRows) == 30 && BitCount(busRows) == 130 && ShownBits(busRows) == 45);
static_assert(InsideRecord(busRows));

constexpr std::array<std::uint8_t, 3> commandBits = {64, 65, 68}; // SPACE, WR

constexpr ValueRow commands[] = {
    {"All",    "XXX", 3},
    {"Sys Wr", "011", 0},
    {"Sys Rd", "111", 0},
    {"I/O Wr", "010", 0},
    {"I/O Rd", "110", 0},
    {"Alt Wr", "001", 0},
    {"Alt Rd", "101", 0},
};
static_assert(std::size(commands) == 7);

constexpr DecodedRow decodedRows[] = {
    // kind, colour, flags (state, waveform, events), row before which it is placed, condition
    {"COMMAND",   DecodeKind::Command,    0x000000, 1, 1, 1, "AD[63:0]", DefCondition::Always, commandBits, commands},
    {"ADDRESS32", DecodeKind::AddressVsb, 0x000000, 1, 1, 1, "AD[63:0]", DefCondition::Always, low32,       field32},
    {"DATA32",    DecodeKind::DataVsb,    0x000000, 1, 1, 1, "AD[63:0]", DefCondition::Always, low32,       field32},
    {"TIME",      DecodeKind::Time,       0x00FF00, 0, 1, 2, "AD[63:0]", DefCondition::Always, timeBits,    fieldTime},
    {"DELTA",     DecodeKind::Delta,      0x00FF00, 2, 1, 2, "AD[63:0]", DefCondition::Always, dummyBits,   fieldDummy},
    {"ACCUM",     DecodeKind::Accum,      0x00FF00, 2, 1, 2, "AD[63:0]", DefCondition::Always, dummyBits,   fieldDummy},
    {"=<>",       DecodeKind::Label,      0x000000, 2, 2, 1, "AD[63:0]", DefCondition::Always, rangeBits,   ranges},
    {"SAMPLE",    DecodeKind::Sample,     0xFF0000, 0, 0, 2, "",         DefCondition::Always, sampleBits,  fieldDummy},
};
static_assert(std::size(decodedRows) == 8 && PatternsFit(decodedRows));

// clang-format on

} // namespace

FamilyTables VsbTables() noexcept {
    return {busRows, decodedRows};
}

} // namespace busquill
