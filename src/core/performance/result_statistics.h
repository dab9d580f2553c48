/// What the results of a measurement add up to, for each item.
#pragma once

#include "link/leaf_mutex.h"
#include "performance/performance_setup.h"
#include "performance/result_store.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace busquill {

class Settings;

/// Minimum, maximum and average of some values.
struct ItemStatistics {
    static constexpr std::int32_t none = -1;

    std::int32_t minimum = none;
    std::int32_t maximum = none;
    double sum = 0;
    std::int64_t count = 0;

    /// Returns whether the minimum or the maximum has moved.
    bool Add(std::int32_t value) noexcept;
    /// Truncated; 0 without values.
    [[nodiscard]] std::int32_t Average() const noexcept;
};

/// What the Min/Max/Average graph shows: the range of each enabled item, within its scale. The
/// timer's thread adds while the main thread paints.
class RangeStatistics {
public:
    struct Item : ItemStatistics {
        bool enabled = false;
    };
    using Items = std::array<Item, performanceItems>;

    /// The top of the scale; greater values count as this one.
    void SetMaximum(std::int32_t maximum);
    /// All items are off and have no values. The scale stays.
    void Clear();
    /// The same, and then the items that the setup uses are on.
    void Clear(const PerformanceSetup& setup);
    /// Does nothing for an item that does not exist.
    void Enable(std::size_t item);

    /// Returns whether a minimum or maximum has moved, so that the graph is to be painted.
    [[nodiscard]] bool Add(const PerformanceResults& results);
    /// Adds what a store holds.
    void AddAll(const ResultStore& results);

    [[nodiscard]] Items Current() const;

private:
    mutable LeafMutex lock_;
    std::int32_t top_ BUSQUILL_GUARDED_BY(lock_) = 0;
    Items items_ BUSQUILL_GUARDED_BY(lock_);
};

/// Which number of a row its value field shows. The choice is kept in the settings.
enum class ValueDisplay : std::int32_t { Instantaneous = 0, Average, Min, Max };
inline constexpr std::array<std::string_view, 4> valueDisplayTexts = {"Instantaneous", "Average",
                                                                      "Min", "Max"};
[[nodiscard]] ValueDisplay ReadValueDisplay(const Settings& settings);
void WriteValueDisplay(Settings& settings, ValueDisplay display);

/// What the value fields show: the numbers of each row that is on. The timer's thread adds while
/// the main thread shows them.
class RowStatistics {
public:
    /// No row has a value any more. The rows that the setup uses are on.
    void Clear(const PerformanceSetup& setup);
    void Add(const PerformanceResults& results);
    /// The number to show; nothing before the first value, and for a row that is off.
    [[nodiscard]] std::optional<std::int32_t> Shown(std::size_t row, ValueDisplay display) const;

private:
    struct Row : ItemStatistics {
        bool enabled = false;
        std::int32_t last = 0;
    };

    mutable LeafMutex lock_;
    std::array<Row, performanceItems> rows_ BUSQUILL_GUARDED_BY(lock_);
};

} // namespace busquill
