#pragma once

#include "performance/performance_setup.h"
#include "performance/result_store.h"

#include <array>
#include <cstdint>
#include <span>

namespace busquill {

/// The page of results that the time graph shows. While the page is at the end of the results it
/// follows them; a page that the user has scrolled back to stays. Main thread.
class TimePage {
public:
    /// Values on a page. The page turns when the last of them has come.
    static constexpr std::int64_t size = 30;

    struct Change {
        bool page = false;  // other values are shown
        bool count = false; // LastCount() is another
    };
    /// Takes the results that have come. Only those that the page shows are fetched.
    Change Follow(const ResultStore& results);

    /// Goes to the beginning and shows nothing. The last count stays, so that the next Follow
    /// reports that there are no results any more.
    void Clear();

    // The user scrolls: the page is filled again, as far as there are results.

    /// A line or a page back.
    void ScrollBack(const ResultStore& results);
    /// A line or a page forward.
    void ScrollForward(const ResultStore& results);
    void ScrollTo(std::int64_t index, const ResultStore& results);

    /// The index of the result at the left edge, which is the position of the scroll bar.
    [[nodiscard]] std::int64_t FirstShown() const noexcept { return first_; }
    [[nodiscard]] std::int64_t ShownCount() const noexcept { return shown_; }
    [[nodiscard]] std::int64_t NextToShow() const noexcept { return first_ + shown_; }
    /// The results that there were at the last Follow.
    [[nodiscard]] std::int64_t LastCount() const noexcept { return lastCount_; }
    /// The range of the scroll bar is from 0 to this: where the last page begins.
    [[nodiscard]] std::int64_t ScrollMaximum() const noexcept;
    /// An item's shown values, from the left.
    [[nodiscard]] std::span<const std::int32_t> Values(std::size_t item) const noexcept;

private:
    void Fetch(const ResultStore& results, std::int64_t count);

    std::array<std::array<std::int32_t, size>, performanceItems> values_{};
    std::int64_t first_ = 0;
    std::int64_t shown_ = 0;
    std::int64_t lastCount_ = 0;
};

} // namespace busquill
