#pragma once

#include "link/leaf_mutex.h"
#include "performance/performance_setup.h"
#include "platform/zeroed_array.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace busquill {

/// One reading: a number for each item, A to H.
using PerformanceResults = std::array<std::int32_t, performanceItems>;

inline constexpr std::size_t performanceResultBytes = 4 * performanceItems;
/// The numbers in what the board returns, each with its low byte first.
[[nodiscard]] PerformanceResults
ParsePerformanceResults(std::span<const std::uint8_t, performanceResultBytes> bytes) noexcept;

/// The results of a measurement, in a ring for each item. Any thread.
class ResultStore {
public:
    /// Results that a ring holds.
    static constexpr std::int64_t ringSize = 160000;

    /// Where the rings stand.
    struct Position {
        std::int64_t count = 0; // results ever stored, which goes on past the ring
        std::int32_t next = 0;  // where in the rings the next result goes
        bool wrapped = false;

        friend bool operator==(const Position&, const Position&) = default;
    };

    ResultStore();

    void Add(const PerformanceResults& results);
    void Clear();

    [[nodiscard]] std::int64_t Count() const;
    [[nodiscard]] bool Has(std::int64_t index) const;
    /// The result of an index, from 0 for the first ever stored. Zeros for an index without a
    /// result, and for a result that the rings no longer hold.
    [[nodiscard]] PerformanceResults At(std::int64_t index) const;

    /// The indexes that the rings still hold are from this one up to Count().
    [[nodiscard]] std::int64_t OldestHeld() const;

    // For files, which hold the rings in the order of their positions.

    [[nodiscard]] Position Where() const;
    /// A negative count becomes 0, and a position outside the rings their beginning.
    void SetWhere(Position where);
    /// The results at a position. Past the end of its ring an item goes on in the next item's; past
    /// the last ring there are zeros.
    [[nodiscard]] PerformanceResults Row(std::int64_t position) const;
    /// Does nothing for a position outside the rings.
    void SetRow(std::int64_t position, const PerformanceResults& results);

private:
    mutable LeafMutex lock_;
    ZeroedArray<std::int32_t> rings_ BUSQUILL_GUARDED_BY(lock_); // one after the other
    Position where_ BUSQUILL_GUARDED_BY(lock_);
};

} // namespace busquill
