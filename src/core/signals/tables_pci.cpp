#include "signals/rule_checks.h"
#include "signals/signal_table_rows.h"
#include "signals/table_fields.h"

namespace busquill {

namespace {

// clang-format off

constexpr BusRow busRows[] = {
    //               first last bit    colour  state wave event
    {"AD",         0, 63,   0, 0x000000, 1, 1, 1},
    {"C/BE",       0,  7,  64, 0x000000, 1, 1, 1},
    {"PAR",        0,  0,  86, 0x000000, 1, 1, 1},
    {"PAR64",      0,  0,  87, 0x000000, 1, 1, 1},
    {"FRAME",      0,  0,  72, 0x000000, 1, 1, 1},
    {"IRDY",       0,  0,  74, 0x000000, 1, 1, 1},
    {"TRDY",       0,  0,  73, 0x000000, 1, 1, 1},
    {"DEVSEL",     0,  0,  76, 0x000000, 1, 1, 1},
    {"REQ64",      0,  0,  84, 0x000000, 1, 1, 1},
    {"ACK64",      0,  0,  85, 0x000000, 1, 1, 1},
    {"CLK",        0,  0, 109, 0x000000, 1, 1, 1},
    {"RST",        0,  0,  79, 0x000000, 1, 1, 1},
    {"PERR",       0,  0,  80, 0x000000, 1, 1, 1},
    {"SERR",       0,  0,  81, 0x000000, 1, 1, 1},
    {"TDI",        0,  0, 104, 0x000000, 1, 1, 1},
    {"TDO",        0,  0, 105, 0x000000, 1, 1, 1},
    {"TCK",        0,  0, 106, 0x000000, 1, 1, 1},
    {"TMS",        0,  0, 107, 0x000000, 1, 1, 1},
    {"TRST",       0,  0, 108, 0x000000, 1, 1, 1},
    {"IDSEL",      0,  0,  77, 0x000000, 1, 1, 1},
    {"BSTOP",      0,  0,  75, 0x000000, 1, 1, 1},
    {"BLOCK",      0,  0,  78, 0x000000, 1, 1, 1},
    {"REQ",        0,  0,  82, 0x000000, 1, 1, 1},
    {"GNT",        0,  0,  83, 0x000000, 1, 1, 1},
    {"SBO",        0,  0,  93, 0x000000, 2, 2, 2},
    {"SDONE",      0,  0,  92, 0x000000, 2, 2, 2},
    {"INTA",       0,  0,  88, 0x000000, 1, 1, 1},
    {"INTB",       0,  0,  89, 0x000000, 1, 1, 1},
    {"INTC",       0,  0,  90, 0x000000, 1, 1, 1},
    {"INTD",       0,  0,  91, 0x000000, 1, 1, 1},
    {"EXT",        0,  7,  96, 0x000000, 1, 1, 1},
    {"ADR/DATA",   0,  0,  95, 0x000000, 2, 2, 2},
    {"RANGE",      0,  1, 110, 0x000000, 2, 2, 2},
    {"ANOMALY",    0,  0,  94, 0x000000, 2, 2, 2},
    {"RULE CHECK", 0,  7, 128, 0x0000FF, 2, 2, 2},
    {"TIME",       0, 17, 110, 0x00FF00, 6, 6, 2},
};
static_assert(std::size(busRows) == 36 && BitCount(busRows) == 138 && ShownBits(busRows) == 106);
static_assert(InsideRecord(busRows));

// C/BE[7:4] above C/BE[3:0]: a dual address cycle has its own code below and the command above.
constexpr auto cbeBits = Positions<64, 71>;
constexpr auto addressDataBits = Positions<95, 95>;
constexpr std::array<std::uint8_t, 2> attributeBits = {93, 95};
constexpr auto anomalyBits = Positions<94, 94>;
constexpr auto tagBits = Positions<24, 28>;
constexpr auto busNumberBits = Positions<16, 23>;
constexpr auto deviceBits = Positions<11, 15>;
constexpr auto functionBits = Positions<8, 10>;
constexpr std::array<std::uint8_t, 12> byteCountBits = {0, 1, 2, 3, 4, 5, 6, 7, 64, 65, 66, 67};

constexpr ValueRow commands[] = {
    {"All",              "XXXXXXXX", 3},
    {"Int Ack",          "XXXX0000", 0},
    {"Spc Cyc",          "XXXX0001", 0},
    {"I/O",              "XXXX001X", 3},
    {"I/O Rd",           "XXXX0010", 0},
    {"I/O Wr",           "XXXX0011", 0},
    {"Mem",              "XXXX011X", 3},
    {"Mem Rd",           "XXXX0110", 0},
    {"Mem Wr",           "XXXX0111", 0},
    {"Cfg",              "XXXX101X", 3},
    {"Cfg Rd",           "XXXX1010", 0},
    {"Cfg Wr",           "XXXX1011", 0},
    {"Mem Rd Mult",      "XXXX1100", 0},
    {"Mem Rd Line",      "XXXX1110", 0},
    {"Mem Wr & Inv",     "XXXX1111", 0},
    {"DAC-Int Ack",      "00001101", 0},
    {"DAC-Spc Cyc",      "00011101", 0},
    {"DAC-I/O",          "001X1101", 3},
    {"DAC-I/O Rd",       "00101101", 0},
    {"DAC-I/O Wr",       "00111101", 0},
    {"DAC-Mem",          "011X1101", 3},
    {"DAC-Mem Rd",       "01101101", 0},
    {"DAC-Mem Wr",       "01111101", 0},
    {"DAC-Cfg",          "101X1101", 3},
    {"DAC-Cfg Rd",       "10101101", 0},
    {"DAC-Cfg Wr",       "10111101", 0},
    {"DAC-Mem Rd Mult",  "11001101", 0},
    {"DAC-Mem Wr & Inv", "11111101", 0},
};
static_assert(std::size(commands) == 28);

// "Mem Rd Blk" and "Mem Wr Blk" have two codes each.
constexpr ValueRow commandsPciX[] = {
    {"All",            "XXXXXXXX", 3},
    {"Int Ack",        "XXXX0000", 0},
    {"Spc Cyc",        "XXXX0001", 0},
    {"I/O",            "XXXX001X", 3},
    {"I/O Rd",         "XXXX0010", 0},
    {"I/O Wr",         "XXXX0011", 0},
    {"Mem",            "XXXX011X", 3},
    {"Mem Rd DW",      "XXXX0110", 0},
    {"Mem Wr",         "XXXX0111", 0},
    {"Mem Rd Blk",     "XXXX1000", 0},
    {"Mem Wr Blk",     "XXXX1001", 0},
    {"Cfg",            "XXXX101X", 3},
    {"Cfg Rd",         "XXXX1010", 0},
    {"Cfg Wr",         "XXXX1011", 0},
    {"Split Cmpl",     "XXXX1100", 0},
    {"Mem Rd Blk",     "XXXX1110", 0},
    {"Mem Wr Blk",     "XXXX1111", 0},
    {"DAC-Int Ack",    "00001101", 0},
    {"DAC-Spc Cyc",    "00011101", 0},
    {"DAC-I/O",        "001X1101", 3},
    {"DAC-I/O Rd",     "00101101", 0},
    {"DAC-I/O Wr",     "00111101", 0},
    {"DAC-Mem",        "011X1101", 3},
    {"DAC-Mem Rd",     "01101101", 0},
    {"DAC-Mem Wr",     "01111101", 0},
    {"DAC-Cfg",        "101X1101", 3},
    {"DAC-Cfg Rd",     "10101101", 0},
    {"DAC-Cfg Wr",     "10111101", 0},
    {"DAC-Mem Rd Blk", "11001101", 0},
    {"DAC-Mem Wr Blk", "11111101", 0},
};
static_assert(std::size(commandsPciX) == 30);

constexpr ValueRow addressData[] = {
    {"Address", "1", 0},
    {"Data",    "0", 0},
    {"Both",    "X", 0},
};
static_assert(std::size(addressData) == 3);

constexpr ValueRow addressAttributeData[] = {
    {"Address", "10", 0},
    {"Data",    "00", 0},
    {"Atr",     "X1", 0},
    {"All",     "XX", 0},
};
static_assert(std::size(addressAttributeData) == 4);

constexpr DecodedRow decodedRows[] = {
    // kind, colour, flags (state, waveform, events), row before which it is placed, condition
    {"COMMAND",          DecodeKind::Command,        0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::NotPciX, cbeBits,         commands},
    {"COMMAND(PCI-X)",   DecodeKind::Command,        0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::PciX,    cbeBits,         commandsPciX},
    {"ADDRESS32",        DecodeKind::Address,        0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::Pci32,   low32,           field32},
    {"DATA32",           DecodeKind::Data,           0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::Pci32,   low32,           field32},
    {"ADDRESS64",        DecodeKind::Address,        0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::Pci64,   all64,           field64},
    {"ADR64(PCI-X)",     DecodeKind::Address,        0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::PciX,    all64,           field64},
    {"DATA64",           DecodeKind::Data,           0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::Pci64,   all64,           field64},
    {"DATA64(PCI-X)",    DecodeKind::Data,           0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::PciX,    all64,           field64},
    {"ATTRIBUTE",        DecodeKind::Attribute,      0x000000, 1, 1, 2, "AD[63:0]",  DefCondition::PciX,    low32,           field32},
    {"TAG(PCI-X)",       DecodeKind::Tag,            0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::PciX,    tagBits,         fieldTwo},
    {"BUS#(PCI-X)",      DecodeKind::BusNumber,      0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::PciX,    busNumberBits,   fieldTwo},
    {"DEVICE#(PCI-X)",   DecodeKind::DeviceFunction, 0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::PciX,    deviceBits,      fieldTwo},
    {"FUNCTION#(PCI-X)", DecodeKind::DeviceFunction, 0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::PciX,    functionBits,    fieldTwo},
    {"BYTE CNT(PCI-X)",  DecodeKind::ByteCount,      0x000000, 1, 1, 1, "AD[63:0]",  DefCondition::PciX,    byteCountBits,   fieldThree},
    {"TIME",             DecodeKind::Time,           0x00FF00, 0, 1, 2, "AD[63:0]",  DefCondition::Always,  timeBits,        fieldTime},
    {"DELTA",            DecodeKind::Delta,          0x00FF00, 2, 1, 2, "AD[63:0]",  DefCondition::Always,  dummyBits,       fieldDummy},
    {"ACCUM",            DecodeKind::Accum,          0x00FF00, 2, 1, 2, "AD[63:0]",  DefCondition::Always,  dummyBits,       fieldDummy},
    {"RULE CHECK",       DecodeKind::Label,          0x0000FF, 0, 1, 2, "AD[63:0]",  DefCondition::Always,  ruleBits,        pciRuleChecks},
    {"ADR/DATA",         DecodeKind::Label,          0x000000, 2, 2, 1, "AD[63:0]",  DefCondition::NotPciX, addressDataBits, addressData},
    {"ADR/ATR/DATA",     DecodeKind::Label,          0x000000, 2, 2, 1, "AD[63:0]",  DefCondition::PciX,    attributeBits,   addressAttributeData},
    {"=<>",              DecodeKind::Label,          0x000000, 2, 2, 1, "AD[63:0]",  DefCondition::Always,  rangeBits,       ranges},
    {"ANOMALY",          DecodeKind::Label,          0x000000, 2, 2, 1, "C/BE[7:0]", DefCondition::Always,  anomalyBits,     anomalies},
    {"SAMPLE",           DecodeKind::Sample,         0xFF0000, 0, 0, 2, "",          DefCondition::Always,  sampleBits,      fieldDummy},
};
static_assert(std::size(decodedRows) == 23 && PatternsFit(decodedRows));

// clang-format on

} // namespace

FamilyTables PciTables() noexcept {
    return {busRows, decodedRows};
}

} // namespace busquill
