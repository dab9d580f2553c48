/// Positions and values that several families share.
#pragma once

#include "signals/signal_table_rows.h"

#include <array>

namespace busquill {

/// The positions from First to Last, ascending.
template <std::uint8_t First, std::uint8_t Last>
inline constexpr auto Positions = [] {
    std::array<std::uint8_t, Last - First + 1> positions{};
    for (std::size_t i = 0; i < positions.size(); ++i) {
        positions[i] = static_cast<std::uint8_t>(First + i);
    }
    return positions;
}();

inline constexpr auto low32 = Positions<0, 31>;
inline constexpr auto high32 = Positions<32, 63>;
inline constexpr auto all64 = Positions<0, 63>;
inline constexpr auto rangeBits = Positions<110, 111>;
inline constexpr auto timeBits = Positions<110, 127>;
inline constexpr auto dummyBits = Positions<100, 101>;
inline constexpr auto sampleBits = Positions<110, 111>;
inline constexpr auto ruleBits = Positions<128, 135>;

// clang-format off

// Fields that are printed as values; the label is a template of their digits.
inline constexpr ValueRow field32[]    = {{"00000000",          "", 0}};
inline constexpr ValueRow field64[]    = {{"00000000 00000000", "", 0}};
inline constexpr ValueRow fieldTwo[]   = {{"00",                "", 0}};
inline constexpr ValueRow fieldThree[] = {{"000",               "", 0}};
inline constexpr ValueRow fieldTime[]  = {{"000000",            "", 0}};
inline constexpr ValueRow fieldDummy[] = {{"DUMMY",             "", 0}};

inline constexpr ValueRow ranges[] = {
    {"=",   "00", 0},
    {">",   "01", 0},
    {"<",   "10", 0},
    {"Any", "XX", 0},
};
static_assert(std::size(ranges) == 4);

inline constexpr ValueRow anomalies[] = {
    {"None",          "X", 0},
    {"Use Checklist", "1", 0},
};
static_assert(std::size(anomalies) == 2);

// Address modifiers, AM5 first.
inline constexpr ValueRow addressModifiers[] = {
    {"All",               "XXXXXX", 3},
    {"A64 MBLT",          "000000", 0},
    {"A64 STA",           "000001", 0},
    {"A64 BLT",           "000011", 0},
    {"A64 LCK",           "000100", 0},
    {"A32 LCK",           "000101", 0},
    {"A32 NON PRVL MBLT", "001000", 0},
    {"A32 NON PRVL DATA", "001001", 0},
    {"A32 NON PRVL PROG", "001010", 0},
    {"A32 NON PRVL BLT",  "001011", 0},
    {"A32 SUPV MBLT",     "001100", 0},
    {"A32 SUPV DATA",     "001101", 0},
    {"A32 SUPV PROG",     "001110", 0},
    {"A32 SUPV BLT",      "001111", 0},
    {"USER DEF",          "01XXXX", 0},
    {"2eVME/2eSST(6U)",   "100000", 0},
    {"2eVME/2eSST(3U)",   "100001", 0},
    {"A16 NON PRVL ACC",  "101001", 0},
    {"A16 LCK",           "101100", 0},
    {"A16 SUPV ACC",      "101101", 0},
    {"CR/CSR",            "101111", 0},
    {"A24 LCK",           "110010", 0},
    {"A40 ACC",           "110100", 0},
    {"A40 LCK",           "110101", 0},
    {"A40 BLT",           "110111", 0},
    {"A24 NON PRVL MBLT", "111000", 0},
    {"A24 NON PRVL DATA", "111001", 0},
    {"A24 NON PRVL PROG", "111010", 0},
    {"A24 NON PRVL BLT",  "111011", 0},
    {"A24 SUPV MBLT",     "111100", 0},
    {"A24 SUPV DATA",     "111101", 0},
    {"A24 SUPV PROG",     "111110", 0},
    {"A24 SUPV BLK",      "111111", 0},
};
static_assert(std::size(addressModifiers) == 33);

// clang-format on

} // namespace busquill
