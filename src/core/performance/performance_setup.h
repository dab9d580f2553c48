/// What a performance measurement counts and how it is shown: its type, its eight items, and how
/// often the board is read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

struct BoardTraits;

/// The rows of a setup, "A" to "H".
inline constexpr std::size_t performanceItems = 8;

enum PerformanceType : std::int32_t {
    PerformanceUtilization = 0,
    PerformanceTransferRate,
    PerformanceLatency,
    PerformanceBurstDistribution,
    PerformanceStatistics,
    PerformanceMaxTypes, // files may name it; it counts nothing
};
inline constexpr std::int32_t performanceTypeCount = 6;

enum PerformanceChart : std::int32_t { PerformanceBarChart = 0, PerformancePieChart = 1 };

/// The value axis of a graph.
struct PerformanceScale {
    std::int32_t first;
    std::int32_t step;
    std::int32_t ticks;

    [[nodiscard]] constexpr std::int32_t Maximum() const noexcept {
        return (ticks - 1) * step + first;
    }
};

/// What belongs to a type.
struct PerformanceTypeRow {
    std::string_view name;
    std::string_view windowTitle;
    std::string_view unit;
    /// "None" first; an item's number is its index.
    std::span<const std::string_view> items;
    PerformanceScale scale;
};

/// The row of a type; of PerformanceMaxTypes for any other number.
[[nodiscard]] const PerformanceTypeRow& PerformanceTypeOf(std::int32_t type) noexcept;
/// The text of a type's item; empty for a number that the type does not have.
[[nodiscard]] std::string_view PerformanceItemText(std::int32_t type, std::int32_t item) noexcept;

/// The cycles of the board's family. A cycle's code is its index; an empty text is not offered.
[[nodiscard]] std::span<const std::string_view> PerformanceCycles(const BoardTraits& board);
/// The text of a cycle; empty for a code that the family does not have.
[[nodiscard]] std::string_view PerformanceCycleText(const BoardTraits& board, std::int32_t cycle);

/// The update intervals that are offered, in milliseconds.
inline constexpr std::array<std::int32_t, 18> performanceIntervals = {
    1,   5,    10,   20,    40,    80,    100,   200,    400,
    800, 1000, 5000, 10000, 20000, 40000, 60000, 300000, 600000};
/// "100 ms", "5 sec", "10 min".
[[nodiscard]] std::string PerformanceIntervalText(std::int32_t milliseconds);

/// One row of a setup.
struct PerformanceItem {
    std::int32_t item = 0; // of the type; 0 turns the row off
    std::int32_t cycle = 0;
    /// The address range, least significant byte first.
    std::array<std::uint8_t, 8> lowAddress{};
    std::array<std::uint8_t, 8> highAddress{255, 255, 255, 255, 255, 255, 255, 255};
    std::uint32_t color = 0; // 0x00BBGGRR
    std::int32_t style = 0;  // solid, dash, dot, dash-dot, dash-dot-dot

    friend bool operator==(const PerformanceItem&, const PerformanceItem&) = default;
};

/// The row of a setup that nobody has changed.
[[nodiscard]] PerformanceItem DefaultPerformanceItem(std::size_t row) noexcept;

/// A performance setup.
struct PerformanceSetup {
    /// The name of a setup that has none.
    static constexpr const char* unnamed = "<New>";

    PerformanceSetup();

    std::int32_t type = PerformanceUtilization;
    std::string setupName;
    std::int32_t updateInterval = 0; // milliseconds
    std::int32_t chartType = PerformanceBarChart;
    bool grid = false;
    std::array<PerformanceItem, performanceItems> items;

    /// Everything except the type becomes the default.
    void Clear();
    /// Changes the type and presets the items for it. Burst Distribution and Statistics preset item
    /// and cycle of their first rows and leave the others as they are; any other type presets the
    /// item of every row and leaves the cycles.
    void SetType(std::int32_t newType);

    friend bool operator==(const PerformanceSetup&, const PerformanceSetup&) = default;
};

/// The label of a row: " Bus Busy : Mem Rd". A row that is off has none.
[[nodiscard]] std::string PerformanceRowText(const PerformanceSetup& setup, std::size_t row,
                                             const BoardTraits& board);

/// A row that is on, and what it counts: "Bus Busy : Mem Rd". Rows that count the same, such as for
/// different addresses, also have their letters: "Bus Busy (A)".
struct PerformanceColumn {
    std::size_t row;
    std::string name;
};
[[nodiscard]] std::vector<PerformanceColumn> PerformanceColumns(const PerformanceSetup& setup,
                                                                const BoardTraits& board);

/// An address as 16 hexadecimal digits, the most significant first.
[[nodiscard]] std::string PerformanceAddressText(const std::array<std::uint8_t, 8>& address);

/// What CmdPerformanceSetup sends: the type, then 30 bytes for each row.
[[nodiscard]] std::vector<std::uint8_t> BuildPerformanceSetup(const PerformanceSetup& setup);

} // namespace busquill
