#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace busquill {

/// The positions of the trigger (0) and the two markers (1, 2): sample indexes, -1 when not set.
class TraceMarkers {
public:
    static constexpr std::int64_t notSet = -1;

    [[nodiscard]] std::int64_t operator[](int which) const noexcept {
        return at_[static_cast<std::size_t>(which)];
    }
    /// Moves a marker and returns whether its position changed. Ignores an unknown marker, and a
    /// sample at or past `limit`.
    bool Set(int which, std::int64_t sample, std::int64_t limit) noexcept {
        if (sample >= limit || which < 0 || which >= static_cast<int>(at_.size())) {
            return false;
        }
        std::int64_t& marker = at_[static_cast<std::size_t>(which)];
        const bool moves = marker != sample;
        marker = sample;
        return moves;
    }
    void PlaceTrigger(std::int64_t sample) noexcept { at_[0] = sample; }
    void Clear() noexcept { at_.fill(notSet); }

private:
    std::array<std::int64_t, 3> at_ = {notSet, notSet, notSet};
};

} // namespace busquill
