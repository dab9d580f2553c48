#include "performance/performance_setup.h"

#include "document/hex_fields.h"
#include "link/board_identity.h"
#include "platform/text.h"

#include <algorithm>
#include <map>

namespace busquill {

namespace {

using Text = std::string_view;

constexpr std::size_t cycleCount = 24;
constexpr std::size_t setupRowSize = 30;

// clang-format off
constexpr Text utilizationItems[] = {
    "None", "Bus Busy", "Bus Idle", "Transfers", "Addr Phase", "Data Phase", "Wait States",
    "Master Efficiency", "Target Efficiency",
};
constexpr Text transferRateItems[] = {"None", "Cycle", "GNT0", "GNT1", "GNT2", "GNT3"};
constexpr Text latencyItems[] = {"None", "Master", "Target (Init)", "Target", "Arbitration"};
constexpr Text burstItems[] = {"None", "Cycle"};
constexpr Text statisticsItems[] = {
    "None", "Cycle", "Master Abort", "Target Abort", "Target Retry", "Disconnect w/data",
    "Disconnect wo/data", "Split Response",
};
constexpr Text noItems[] = {"None"};

constexpr std::array<PerformanceTypeRow, performanceTypeCount> typeRows = {{
    {"Utilization",        "Performance - Utilization",        "%",      utilizationItems,  {0, 10, 11}},
    {"Transfer Rate",      "Performance - Transfer Rate",      "MB/s",   transferRateItems, {0, 100, 11}},
    {"Latency",            "Performance - Latency",            "us",     latencyItems,      {0, 100, 11}},
    {"Burst Distribution", "Performance - Burst Distribution", "Length", burstItems,        {0, 100, 11}},
    {"Statistics",         "Performance - Statistics",         "%",      statisticsItems,   {0, 10, 11}},
    {"Max Types",          "Performance",                      "",       noItems,           {0, 10, 11}},
}};

constexpr std::array<Text, cycleCount> pciCycles = {
    "All",
    "Mem", "Mem Rd", "Mem Wr",
    "I/O", "I/O Rd", "I/O Wr",
    "Cfg", "Cfg Rd", "Cfg Wr",
    "Mem Rd Mult", "DAC", "Mem Rd Line", "Mem Wr & Inv", "Int Ack", "Spc Cyc",
    "E1", "E2", "E3", "E4", "E5", "E6", "E7", "E8",
};
constexpr std::array<Text, cycleCount> vmeCycles = {
    "All",
    "Mem", "Mem Rd", "Mem Wr",
    "", "", "",
    "", "", "",
    "", "", "", "", "Int Ack", "",
    "E1", "E2", "E3", "E4", "E5", "E6", "E7", "E8",
};
constexpr std::array<Text, cycleCount> vsbCycles = {
    "All",
    "Sys", "Sys Rd", "Sys Wr",
    "I/O", "I/O Rd", "I/O Wr",
    "Alt", "Alt Rd", "Alt Wr",
    "", "", "", "", "", "",
    "E1", "E2", "E3", "E4", "E5", "E6", "E7", "E8",
};

struct RowLook {
    std::uint32_t color; // 0x00BBGGRR
    std::int32_t style;
};
constexpr std::array<RowLook, performanceItems> rowLooks = {{
    {0x000000, 0},
    {0x0000FF, 1},
    {0x00FF00, 2},
    {0xFF0000, 3},
    {0x00FFFF, 4},
    {0xFFFF00, 0},
    {0xFF00FF, 1},
    {0x000080, 2},
}};
// clang-format on

constexpr std::int32_t burstCycles[] = {0, 1, 4, 7};
constexpr std::int32_t statisticsCycles[] = {2, 3, 5, 6, 8, 9};

Text TextAt(std::span<const Text> texts, std::int32_t index) noexcept {
    return index >= 0 && static_cast<std::size_t>(index) < texts.size()
               ? texts[static_cast<std::size_t>(index)]
               : Text();
}

} // namespace

const PerformanceTypeRow& PerformanceTypeOf(std::int32_t type) noexcept {
    const bool known = type >= 0 && type < performanceTypeCount;
    return typeRows[static_cast<std::size_t>(known ? type : PerformanceMaxTypes)];
}

std::string_view PerformanceItemText(std::int32_t type, std::int32_t item) noexcept {
    return TextAt(PerformanceTypeOf(type).items, item);
}

std::span<const std::string_view> PerformanceCycles(const BoardTraits& board) {
    return board.IsVmeFamily() ? vmeCycles : board.IsVsbFamily() ? vsbCycles : pciCycles;
}

std::string_view PerformanceCycleText(const BoardTraits& board, std::int32_t cycle) {
    return TextAt(PerformanceCycles(board), cycle);
}

std::string PerformanceIntervalText(std::int32_t milliseconds) {
    if (milliseconds < 1000) {
        return Printf("%d ms", milliseconds);
    }
    return milliseconds < 60000 ? Printf("%d sec", milliseconds / 1000)
                                : Printf("%d min", milliseconds / 60000);
}

PerformanceItem DefaultPerformanceItem(std::size_t row) noexcept {
    PerformanceItem item;
    item.color = rowLooks[row].color;
    item.style = rowLooks[row].style;
    return item;
}

PerformanceSetup::PerformanceSetup() {
    Clear();
}

void PerformanceSetup::Clear() {
    setupName = unnamed;
    updateInterval = 100;
    chartType = PerformanceBarChart;
    grid = false;
    for (std::size_t row = 0; row < items.size(); ++row) {
        items[row] = DefaultPerformanceItem(row);
    }
}

void PerformanceSetup::SetType(std::int32_t newType) {
    type = newType;
    const auto presetCycles = [&](std::span<const std::int32_t> cycles) {
        for (std::size_t row = 0; row < cycles.size(); ++row) {
            items[row].item = 1;
            items[row].cycle = cycles[row];
        }
    };
    if (type == PerformanceBurstDistribution) {
        presetCycles(burstCycles);
    } else if (type == PerformanceStatistics) {
        presetCycles(statisticsCycles);
    } else {
        const std::size_t offered = PerformanceTypeOf(type).items.size();
        for (std::size_t row = 0; row < items.size(); ++row) {
            items[row].item = row + 1 < offered ? static_cast<std::int32_t>(row) + 1 : 0;
        }
    }
}

std::string PerformanceRowText(const PerformanceSetup& setup, std::size_t row,
                               const BoardTraits& board) {
    const PerformanceItem& item = setup.items[row];
    if (item.item < 1) {
        return {};
    }
    std::string text(" ");
    text += PerformanceItemText(setup.type, item.item);
    const std::string_view cycle = PerformanceCycleText(board, item.cycle);
    if (!cycle.empty()) {
        text.append(" : ").append(cycle);
    }
    return text;
}

std::vector<PerformanceColumn> PerformanceColumns(const PerformanceSetup& setup,
                                                  const BoardTraits& board) {
    std::vector<PerformanceColumn> columns;
    std::map<std::string, int> uses;
    for (std::size_t row = 0; row < setup.items.size(); ++row) {
        if (const std::string text = PerformanceRowText(setup, row, board); !text.empty()) {
            columns.push_back({row, std::string(Trim(text))});
            ++uses[columns.back().name];
        }
    }
    for (PerformanceColumn& column : columns) {
        if (uses[column.name] > 1) {
            column.name += Printf(" (%c)", 'A' + static_cast<char>(column.row));
        }
    }
    return columns;
}

std::string PerformanceAddressText(const std::array<std::uint8_t, 8>& address) {
    return HexAddressText(address);
}

std::vector<std::uint8_t> BuildPerformanceSetup(const PerformanceSetup& setup) {
    std::vector<std::uint8_t> bytes(1 + performanceItems * setupRowSize);
    bytes[0] = static_cast<std::uint8_t>(setup.type);
    auto row = bytes.begin() + 1;
    for (const PerformanceItem& item : setup.items) {
        auto next = std::ranges::copy(item.lowAddress, row).out;
        next = std::ranges::copy(item.highAddress, next).out;
        *next++ = static_cast<std::uint8_t>(item.cycle);
        *next = static_cast<std::uint8_t>(item.item);
        row += setupRowSize;
    }
    return bytes;
}

} // namespace busquill
