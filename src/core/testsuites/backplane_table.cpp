#include "testsuites/backplane_table.h"

#include "platform/bits.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

// clang-format off
constexpr std::array<CheckTableRow, 98> pciSignals = {{
    {0, "Address and Data"},
        {1, "AD[0]", 0},
        {1, "AD[1]", 1},
        {1, "AD[2]", 2},
        {1, "AD[3]", 3},
        {1, "AD[4]", 4},
        {1, "AD[5]", 5},
        {1, "AD[6]", 6},
        {1, "AD[7]", 7},
        {1, "AD[8]", 8},
        {1, "AD[9]", 9},
        {1, "AD[10]", 10},
        {1, "AD[11]", 11},
        {1, "AD[12]", 12},
        {1, "AD[13]", 13},
        {1, "AD[14]", 14},
        {1, "AD[15]", 15},
        {1, "AD[16]", 16},
        {1, "AD[17]", 17},
        {1, "AD[18]", 18},
        {1, "AD[19]", 19},
        {1, "AD[20]", 20},
        {1, "AD[21]", 21},
        {1, "AD[22]", 22},
        {1, "AD[23]", 23},
        {1, "AD[24]", 24},
        {1, "AD[25]", 25},
        {1, "AD[26]", 26},
        {1, "AD[27]", 27},
        {1, "AD[28]", 28},
        {1, "AD[29]", 29},
        {1, "AD[30]", 30},
        {1, "AD[31]", 31},
        {1, "AD[32]", 32},
        {1, "AD[33]", 33},
        {1, "AD[34]", 34},
        {1, "AD[35]", 35},
        {1, "AD[36]", 36},
        {1, "AD[37]", 37},
        {1, "AD[38]", 38},
        {1, "AD[39]", 39},
        {1, "AD[40]", 40},
        {1, "AD[41]", 41},
        {1, "AD[42]", 42},
        {1, "AD[43]", 43},
        {1, "AD[44]", 44},
        {1, "AD[45]", 45},
        {1, "AD[46]", 46},
        {1, "AD[47]", 47},
        {1, "AD[48]", 48},
        {1, "AD[49]", 49},
        {1, "AD[50]", 50},
        {1, "AD[51]", 51},
        {1, "AD[52]", 52},
        {1, "AD[53]", 53},
        {1, "AD[54]", 54},
        {1, "AD[55]", 55},
        {1, "AD[56]", 56},
        {1, "AD[57]", 57},
        {1, "AD[58]", 58},
        {1, "AD[59]", 59},
        {1, "AD[60]", 60},
        {1, "AD[61]", 61},
        {1, "AD[62]", 62},
        {1, "AD[63]", 63},
        {1, "CB/E[0]", 64},
        {1, "CB/E[1]", 65},
        {1, "CB/E[2]", 66},
        {1, "CB/E[3]", 67},
        {1, "CB/E[4]", 68},
        {1, "CB/E[5]", 69},
        {1, "CB/E[6]", 70},
        {1, "CB/E[7]", 71},
        {1, "PAR", 86},
        {1, "PAR64", 87},
    {0, "Control"},
        {1, "FRAME", 72},
        {1, "TRDY", 73},
        {1, "IRDY", 74},
        {1, "STOP", 75},
        {1, "DEVSEL", 76},
        {1, "IDSEL", 77},
        {1, "LOCK", 78},
    {0, "Arbitration"},
        {1, "REQ", 82},
        {1, "GNT", 83},
        {1, "REQ64", 84},
        {1, "ACK64", 85},
    {0, "Error Reporting"},
        {1, "PERR", 80},
        {1, "SERR", 81},
    {0, "Interrupts"},
        {1, "INTA", 88},
        {1, "INTB", 89},
        {1, "INTC", 90},
        {1, "INTD", 91},
    {0, "Other"},
        {1, "RST", 79},
}};

constexpr std::array<CheckTableRow, 106> vmeSignals = {{
    {0, "Address and Data"},
        {1, "AD[0]", 0},
        {1, "AD[1]", 1},
        {1, "AD[2]", 2},
        {1, "AD[3]", 3},
        {1, "AD[4]", 4},
        {1, "AD[5]", 5},
        {1, "AD[6]", 6},
        {1, "AD[7]", 7},
        {1, "AD[8]", 8},
        {1, "AD[9]", 9},
        {1, "AD[10]", 10},
        {1, "AD[11]", 11},
        {1, "AD[12]", 12},
        {1, "AD[13]", 13},
        {1, "AD[14]", 14},
        {1, "AD[15]", 15},
        {1, "AD[16]", 16},
        {1, "AD[17]", 17},
        {1, "AD[18]", 18},
        {1, "AD[19]", 19},
        {1, "AD[20]", 20},
        {1, "AD[21]", 21},
        {1, "AD[22]", 22},
        {1, "AD[23]", 23},
        {1, "AD[24]", 24},
        {1, "AD[25]", 25},
        {1, "AD[26]", 26},
        {1, "AD[27]", 27},
        {1, "AD[28]", 28},
        {1, "AD[29]", 29},
        {1, "AD[30]", 30},
        {1, "AD[31]", 31},
        {1, "AD[32]", 32},
        {1, "AD[33]", 33},
        {1, "AD[34]", 34},
        {1, "AD[35]", 35},
        {1, "AD[36]", 36},
        {1, "AD[37]", 37},
        {1, "AD[38]", 38},
        {1, "AD[39]", 39},
        {1, "AD[40]", 40},
        {1, "AD[41]", 41},
        {1, "AD[42]", 42},
        {1, "AD[43]", 43},
        {1, "AD[44]", 44},
        {1, "AD[45]", 45},
        {1, "AD[46]", 46},
        {1, "AD[47]", 47},
        {1, "AD[48]", 48},
        {1, "AD[49]", 49},
        {1, "AD[50]", 50},
        {1, "AD[51]", 51},
        {1, "AD[52]", 52},
        {1, "AD[53]", 53},
        {1, "AD[54]", 54},
        {1, "AD[55]", 55},
        {1, "AD[56]", 56},
        {1, "AD[57]", 57},
        {1, "AD[58]", 58},
        {1, "AD[59]", 59},
        {1, "AD[60]", 60},
        {1, "AD[61]", 61},
        {1, "AD[62]", 62},
        {1, "AD[63]", 63},
        {1, "AM[0]", 64},
        {1, "AM[1]", 65},
        {1, "AM[2]", 66},
        {1, "AM[3]", 67},
        {1, "AM[4]", 68},
        {1, "AM[5]", 69},
    {0, "Control"},
        {1, "WRITE", 78},
        {1, "BBSY", 70},
        {1, "BCLR", 71},
        {1, "AS", 72},
        {1, "DS0", 73},
        {1, "DS1", 74},
        {1, "DTACK", 75},
        {1, "LWORD", 77},
    {0, "Arbitration"},
        {1, "BR[0]", 80},
        {1, "BR[1]", 81},
        {1, "BR[2]", 82},
        {1, "BR[3]", 83},
        {1, "BG[0]", 84},
        {1, "BG[1]", 85},
        {1, "BG[2]", 86},
        {1, "BG[3]", 87},
    {0, "Error Reporting"},
        {1, "BERR", 76},
    {0, "Interrupts"},
        {1, "IRQ1", 88},
        {1, "IRQ2", 89},
        {1, "IRQ3", 90},
        {1, "IRQ4", 91},
        {1, "IRQ5", 92},
        {1, "IRQ6", 93},
        {1, "IRQ7", 94},
        {1, "IACK", 95},
    {0, "Other"},
        {1, "RESET", 79},
        {1, "RETRY", 104},
        {1, "RESP", 105},
        {1, "FAIL", 106},
        {1, "ACFAIL", 107},
}};

constexpr std::array<CheckTableRow, 60> vsbSignals = {{
    {0, "Address and Data"},
        {1, "AD[0]", 0},
        {1, "AD[1]", 1},
        {1, "AD[2]", 2},
        {1, "AD[3]", 3},
        {1, "AD[4]", 4},
        {1, "AD[5]", 5},
        {1, "AD[6]", 6},
        {1, "AD[7]", 7},
        {1, "AD[8]", 8},
        {1, "AD[9]", 9},
        {1, "AD[10]", 10},
        {1, "AD[11]", 11},
        {1, "AD[12]", 12},
        {1, "AD[13]", 13},
        {1, "AD[14]", 14},
        {1, "AD[15]", 15},
        {1, "AD[16]", 16},
        {1, "AD[17]", 17},
        {1, "AD[18]", 18},
        {1, "AD[19]", 19},
        {1, "AD[20]", 20},
        {1, "AD[21]", 21},
        {1, "AD[22]", 22},
        {1, "AD[23]", 23},
        {1, "AD[24]", 24},
        {1, "AD[25]", 25},
        {1, "AD[26]", 26},
        {1, "AD[27]", 27},
        {1, "AD[28]", 28},
        {1, "AD[29]", 29},
        {1, "AD[30]", 30},
        {1, "AD[31]", 31},
    {0, "Control"},
        {1, "SPACE0", 64},
        {1, "SPACE1", 65},
        {1, "SIZE0", 66},
        {1, "SIZE1", 67},
        {1, "WR", 68},
        {1, "LOCK", 69},
        {1, "WAIT", 70},
        {1, "AC", 71},
        {1, "PAS", 72},
        {1, "ASACK0", 73},
        {1, "ASACK1", 74},
        {1, "ACK", 75},
        {1, "ERR", 76},
        {1, "CACHE", 77},
        {1, "DS", 79},
    {0, "Arbitration"},
        {1, "BREQ", 80},
        {1, "BGIN", 81},
        {1, "BGOUT", 82},
        {1, "BUSY", 83},
    {0, "Interrupts"},
        {1, "IRQ", 78},
    {0, "Other"},
        {1, "GA0", 84},
        {1, "GA1", 85},
        {1, "GA2", 86},
}};

constexpr std::array<CheckTableRow, 95> p2Signals = {{
    {0, "P2 Signals"},
        {1, "A1", 88},
        {1, "A2", 89},
        {1, "A3", 91},
        {1, "A4", 31},
        {1, "A5", 28},
        {1, "A6", 25},
        {1, "A7", 77},
        {1, "A8", 21},
        {1, "A9", 18},
        {1, "A10", 66},
        {1, "A11", 73},
        {1, "A12", 78},
        {1, "A13", 86},
        {1, "A14", 14},
        {1, "A15", 11},
        {1, "A16", 8},
        {1, "A17", 6},
        {1, "A18", 3},
        {1, "A19", 0},
        {1, "A20", 69},
        {1, "A21", 63},
        {1, "A22", 60},
        {1, "A23", 57},
        {1, "A24", 54},
        {1, "A25", 51},
        {1, "A26", 48},
        {1, "A27", 45},
        {1, "A28", 42},
        {1, "A29", 39},
        {1, "A30", 36},
        {1, "A31", 34},
        {1, "A32", 32},
        {1, "C1", 108},
        {1, "C2", 105},
        {1, "C3", 104},
        {1, "C4", 82},
        {1, "C5", 29},
        {1, "C6", 26},
        {1, "C7", 67},
        {1, "C8", 22},
        {1, "C9", 19},
        {1, "C10", 16},
        {1, "C11", 74},
        {1, "C12", 75},
        {1, "C13", 81},
        {1, "C14", 15},
        {1, "C15", 12},
        {1, "C16", 9},
        {1, "C17", 7},
        {1, "C18", 4},
        {1, "C19", 1},
        {1, "C20", 70},
        {1, "C21", 87},
        {1, "C22", 61},
        {1, "C23", 58},
        {1, "C24", 55},
        {1, "C25", 52},
        {1, "C26", 49},
        {1, "C27", 46},
        {1, "C28", 43},
        {1, "C29", 40},
        {1, "C30", 37},
        {1, "C31", 35},
        {1, "C32", 33},
        {1, "D1", 106},
        {1, "D2", 107},
        {1, "D3", 90},
        {1, "D4", 83},
        {1, "D5", 30},
        {1, "D6", 27},
        {1, "D7", 24},
        {1, "D8", 23},
        {1, "D9", 20},
        {1, "D10", 17},
        {1, "D11", 72},
        {1, "D12", 76},
        {1, "D13", 80},
        {1, "D14", 65},
        {1, "D15", 13},
        {1, "D16", 10},
        {1, "D17", 64},
        {1, "D18", 5},
        {1, "D19", 2},
        {1, "D20", 71},
        {1, "D21", 68},
        {1, "D22", 62},
        {1, "D23", 59},
        {1, "D24", 56},
        {1, "D25", 53},
        {1, "D26", 50},
        {1, "D27", 47},
        {1, "D28", 44},
        {1, "D29", 41},
        {1, "D30", 38},
}};

constexpr std::array<CheckTableRow, 96> p0Signals = {{
    {0, "P2 Signals"},
        {1, "A1", 71},
        {1, "A2", 70},
        {1, "A3", 69},
        {1, "A4", 68},
        {1, "A5", 87},
        {1, "A6", 62},
        {1, "A7", 63},
        {1, "A8", 61},
        {1, "A9", 60},
        {1, "A10", 59},
        {1, "A11", 58},
        {1, "A12", 57},
        {1, "A13", 56},
        {1, "A14", 55},
        {1, "A15", 54},
        {1, "A16", 53},
        {1, "A17", 52},
        {1, "A18", 51},
        {1, "A19", 50},
        {1, "B1", 108},
        {1, "B2", 105},
        {1, "B3", 29},
        {1, "B4", 26},
        {1, "B5", 23},
        {1, "B6", 20},
        {1, "B7", 66},
        {1, "B8", 75},
        {1, "B9", 81},
        {1, "B10", 13},
        {1, "B11", 10},
        {1, "B12", 39},
        {1, "B13", 38},
        {1, "B14", 37},
        {1, "B15", 36},
        {1, "B16", 35},
        {1, "B17", 34},
        {1, "B18", 33},
        {1, "B19", 32},
        {1, "C1", 107},
        {1, "C2", 104},
        {1, "C3", 30},
        {1, "C4", 24},
        {1, "C5", 77},
        {1, "C6", 18},
        {1, "C7", 16},
        {1, "C8", 73},
        {1, "C9", 80},
        {1, "C10", 65},
        {1, "C11", 14},
        {1, "C12", 8},
        {1, "C13", 7},
        {1, "C14", 85},
        {1, "C15", 44},
        {1, "C16", 43},
        {1, "C17", 42},
        {1, "C18", 41},
        {1, "C19", 40},
        {1, "D1", 88},
        {1, "D2", 90},
        {1, "D3", 83},
        {1, "D4", 31},
        {1, "D5", 27},
        {1, "D6", 67},
        {1, "D7", 21},
        {1, "D8", 17},
        {1, "D9", 74},
        {1, "D10", 78},
        {1, "D11", 15},
        {1, "D12", 11},
        {1, "D13", 64},
        {1, "D14", 5},
        {1, "D15", 3},
        {1, "D16", 1},
        {1, "D17", 47},
        {1, "D18", 46},
        {1, "D19", 45},
        {1, "E1", 106},
        {1, "E2", 89},
        {1, "E3", 91},
        {1, "E4", 82},
        {1, "E5", 28},
        {1, "E6", 25},
        {1, "E7", 22},
        {1, "E8", 19},
        {1, "E9", 72},
        {1, "E10", 76},
        {1, "E11", 86},
        {1, "E12", 12},
        {1, "E13", 9},
        {1, "E14", 6},
        {1, "E15", 4},
        {1, "E16", 2},
        {1, "E17", 0},
        {1, "E18", 49},
        {1, "E19", 48},
}};
// clang-format on

/// Whether every signal has a place of its own.
consteval bool HaveOwnBits(CheckTable table) {
    std::array<bool, backplaneBits> taken{};
    for (const CheckTableRow& row : table) {
        if (row.level != backplaneSignalLevel) {
            continue;
        }
        if (row.bit < 0 || row.bit >= backplaneBits || taken[static_cast<std::size_t>(row.bit)]) {
            return false;
        }
        taken[static_cast<std::size_t>(row.bit)] = true;
    }
    return true;
}
static_assert(HaveOwnBits(pciSignals));
static_assert(HaveOwnBits(vmeSignals));
static_assert(HaveOwnBits(vsbSignals));
static_assert(HaveOwnBits(p2Signals));
static_assert(HaveOwnBits(p0Signals));

constexpr const char* notDriven = "    Cannot drive signal";
constexpr const char* shorted = "    %s SHORTED";
constexpr const char* unnamedShorted = "    Bit %d SHORTED";

// In the bytes of BackplaneSignals, as a bit of the whole.
constexpr std::size_t ReadBackBit(int bit) noexcept {
    const auto index = static_cast<std::size_t>(bit);
    return 16 * (index / 8) + index % 8;
}
constexpr std::size_t DriveBit(int bit) noexcept {
    return ReadBackBit(bit) + 8;
}

} // namespace

CheckTable BackplaneTable(const BoardTraits& traits) {
    if (traits.IsVmeKiteP2()) {
        return p2Signals;
    }
    if (traits.IsVmeKiteP0()) {
        return p0Signals;
    }
    if (traits.IsVmeFamily()) {
        return vmeSignals;
    }
    return traits.IsVsbFamily() ? CheckTable(vsbSignals) : PciBackplaneTable();
}

CheckTable PciBackplaneTable() noexcept {
    return pciSignals;
}

bool IsReadBack(const BackplaneSignals& bytes, int bit) noexcept {
    return TestBit(bytes, ReadBackBit(bit));
}

BackplaneSignals DriveSignal(std::optional<int> bit) noexcept {
    BackplaneSignals signals{};
    if (bit) {
        SetBit(signals, DriveBit(*bit));
    }
    return signals;
}

std::vector<std::string> EvaluateSignal(CheckTable table, int bit, const BackplaneSignals& bytes) {
    if (!IsReadBack(bytes, bit)) {
        return {notDriven}; // shorts cannot be told without it
    }
    std::vector<std::string> lines;
    for (int other = 0; other < backplaneBits; ++other) {
        if (other == bit || !IsReadBack(bytes, other)) {
            continue;
        }
        const auto row = std::ranges::find_if(table, [other](const CheckTableRow& each) {
            return each.level >= backplaneSignalLevel && each.bit == other;
        });
        lines.push_back(row == table.end() ? Printf(unnamedShorted, other)
                                           : Printf(shorted, std::string(row->text).c_str()));
    }
    if (lines.empty()) {
        lines.emplace_back(backplaneGood);
    }
    return lines;
}

} // namespace busquill
