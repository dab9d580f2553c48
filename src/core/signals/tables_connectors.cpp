#include "signals/signal_table_rows.h"
#include "signals/table_fields.h"

namespace busquill {

namespace {

// clang-format off

// A connector's pin: a signal of one bit.
constexpr BusRow Pin(const char* name, std::int32_t bit) {
    return {name, 0, 0, bit, 0x000000, 1, 1, 1};
}

constexpr BusRow p2Rows[] = {
    Pin("A1",   88), Pin("A2",   89), Pin("A3",   91), Pin("A4",   31), Pin("A5",   28), Pin("A6",   25),
    Pin("A7",   77), Pin("A8",   21), Pin("A9",   18), Pin("A10",  66), Pin("A11",  73), Pin("A12",  78),
    Pin("A13",  86), Pin("A14",  14), Pin("A15",  11), Pin("A16",   8), Pin("A17",   6), Pin("A18",   3),
    Pin("A19",   0), Pin("A20",  69), Pin("A21",  63), Pin("A22",  60), Pin("A23",  57), Pin("A24",  54),
    Pin("A25",  51), Pin("A26",  48), Pin("A27",  45), Pin("A28",  42), Pin("A29",  39), Pin("A30",  36),
    Pin("A31",  34), Pin("A32",  32),
    Pin("C1",  108), Pin("C2",  105), Pin("C3",  104), Pin("C4",   82), Pin("C5",   29), Pin("C6",   26),
    Pin("C7",   67), Pin("C8",   22), Pin("C9",   19), Pin("C10",  16), Pin("C11",  74), Pin("C12",  75),
    Pin("C13",  81), Pin("C14",  15), Pin("C15",  12), Pin("C16",   9), Pin("C17",   7), Pin("C18",   4),
    Pin("C19",   1), Pin("C20",  70), Pin("C21",  87), Pin("C22",  61), Pin("C23",  58), Pin("C24",  55),
    Pin("C25",  52), Pin("C26",  49), Pin("C27",  46), Pin("C28",  43), Pin("C29",  40), Pin("C30",  37),
    Pin("C31",  35), Pin("C32",  33),
    Pin("D1",  106), Pin("D2",  107), Pin("D3",   90), Pin("D4",   83), Pin("D5",   30), Pin("D6",   27),
    Pin("D7",   24), Pin("D8",   23), Pin("D9",   20), Pin("D10",  17), Pin("D11",  72), Pin("D12",  76),
    Pin("D13",  80), Pin("D14",  65), Pin("D15",  13), Pin("D16",  10), Pin("D17",  64), Pin("D18",   5),
    Pin("D19",   2), Pin("D20",  71), Pin("D21",  68), Pin("D22",  62), Pin("D23",  59), Pin("D24",  56),
    Pin("D25",  53), Pin("D26",  50), Pin("D27",  47), Pin("D28",  44), Pin("D29",  41), Pin("D30",  38),
    {"CLK",        0,  0, 109, 0x000000, 1, 1, 1},
    {"EXT",        0,  7,  96, 0x000000, 1, 1, 1},
    {"RANGE",      0,  1, 110, 0x000000, 2, 2, 2},
    {"RULE CHECK", 0,  7, 128, 0x0000FF, 2, 2, 2},
    {"TIME",       0, 17, 110, 0x00FF00, 6, 6, 2},
};
static_assert(std::size(p2Rows) == 99 && BitCount(p2Rows) == 131 && ShownBits(p2Rows) == 103);
static_assert(InsideRecord(p2Rows));

constexpr BusRow p0Rows[] = {
    Pin("A1",   71), Pin("A2",   70), Pin("A3",   69), Pin("A4",   68), Pin("A5",   87), Pin("A6",   62),
    Pin("A7",   63), Pin("A8",   61), Pin("A9",   60), Pin("A10",  59), Pin("A11",  58), Pin("A12",  57),
    Pin("A13",  56), Pin("A14",  55), Pin("A15",  54), Pin("A16",  53), Pin("A17",  52), Pin("A18",  51),
    Pin("A19",  50),
    Pin("B1",  108), Pin("B2",  105), Pin("B3",   29), Pin("B4",   26), Pin("B5",   23), Pin("B6",   20),
    Pin("B7",   66), Pin("B8",   75), Pin("B9",   81), Pin("B10",  13), Pin("B11",  10), Pin("B12",  39),
    Pin("B13",  38), Pin("B14",  37), Pin("B15",  36), Pin("B16",  35), Pin("B17",  34), Pin("B18",  33),
    Pin("B19",  32),
    Pin("C1",  107), Pin("C2",  104), Pin("C3",   30), Pin("C4",   24), Pin("C5",   77), Pin("C6",   18),
    Pin("C7",   16), Pin("C8",   73), Pin("C9",   80), Pin("C10",  65), Pin("C11",  14), Pin("C12",   8),
    Pin("C13",   7), Pin("C14",  85), Pin("C15",  44), Pin("C16",  43), Pin("C17",  42), Pin("C18",  41),
    Pin("C19",  40),
    Pin("D1",   88), Pin("D2",   90), Pin("D3",   83), Pin("D4",   31), Pin("D5",   27), Pin("D6",   67),
    Pin("D7",   21), Pin("D8",   17), Pin("D9",   74), Pin("D10",  78), Pin("D11",  15), Pin("D12",  11),
    Pin("D13",  64), Pin("D14",   5), Pin("D15",   3), Pin("D16",   1), Pin("D17",  47), Pin("D18",  46),
    Pin("D19",  45),
    Pin("E1",  106), Pin("E2",   89), Pin("E3",   91), Pin("E4",   82), Pin("E5",   28), Pin("E6",   25),
    Pin("E7",   22), Pin("E8",   19), Pin("E9",   72), Pin("E10",  76), Pin("E11",  86), Pin("E12",  12),
    Pin("E13",   9), Pin("E14",   6), Pin("E15",   4), Pin("E16",   2), Pin("E17",   0), Pin("E18",  49),
    Pin("E19",  48),
    {"CLK",        0,  0, 109, 0x000000, 1, 1, 1},
    {"EXT",        0,  7,  96, 0x000000, 1, 1, 1},
    {"RANGE",      0,  1, 110, 0x000000, 2, 2, 2},
    {"RULE CHECK", 0,  7, 128, 0x0000FF, 2, 2, 2},
    {"TIME",       0, 17, 110, 0x00FF00, 6, 6, 2},
};
static_assert(std::size(p0Rows) == 100 && BitCount(p0Rows) == 132 && ShownBits(p0Rows) == 104);
static_assert(InsideRecord(p0Rows));

constexpr DecodedRow decodedRows[] = {
    // kind, colour, flags (state, waveform, events), row before which it is placed, condition
    {"TIME",   DecodeKind::Time,   0x00FF00, 0, 1, 2, "CLK", DefCondition::Always, timeBits,   fieldTime},
    {"DELTA",  DecodeKind::Delta,  0x00FF00, 2, 1, 2, "CLK", DefCondition::Always, dummyBits,  fieldDummy},
    {"ACCUM",  DecodeKind::Accum,  0x00FF00, 2, 1, 2, "CLK", DefCondition::Always, dummyBits,  fieldDummy},
    {"SAMPLE", DecodeKind::Sample, 0xFF0000, 0, 0, 2, "",    DefCondition::Always, sampleBits, fieldDummy},
};
static_assert(std::size(decodedRows) == 4 && PatternsFit(decodedRows));

// clang-format on

} // namespace

FamilyTables ConnectorP2Tables() noexcept {
    return {p2Rows, decodedRows};
}

FamilyTables ConnectorP0Tables() noexcept {
    return {p0Rows, decodedRows};
}

} // namespace busquill
