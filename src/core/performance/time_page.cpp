#include "performance/time_page.h"

#include <algorithm>

namespace busquill {

TimePage::Change TimePage::Follow(const ResultStore& results) {
    const std::int64_t count = results.Count();
    Change change;
    if (shown_ < size && NextToShow() < count) {
        // Pages that are full already are turned without being fetched: a fast measurement brings
        // several of them in one step.
        if (const std::int64_t fullPages = (count - first_) / size; fullPages > 0) {
            first_ += fullPages * size;
            shown_ = 0;
        }
        Fetch(results, count);
        change.page = true;
    }
    change.count = count != lastCount_;
    lastCount_ = count;
    return change;
}

void TimePage::Clear() {
    first_ = 0;
    shown_ = 0;
}

void TimePage::ScrollBack(const ResultStore& results) {
    ScrollTo(first_ - size, results);
}

void TimePage::ScrollForward(const ResultStore& results) {
    const std::int64_t last = results.Count() - 1;
    ScrollTo(first_ < last ? first_ + size : first_, results);
}

void TimePage::ScrollTo(std::int64_t index, const ResultStore& results) {
    const std::int64_t count = results.Count();
    first_ = std::max<std::int64_t>(std::min(index, count - 1), 0);
    shown_ = 0;
    Fetch(results, count);
}

std::int64_t TimePage::ScrollMaximum() const noexcept {
    const std::int64_t after = std::max<std::int64_t>(lastCount_ - 1 - first_, 0);
    return first_ + after / size * size;
}

std::span<const std::int32_t> TimePage::Values(std::size_t item) const noexcept {
    return std::span(values_[item]).first(static_cast<std::size_t>(shown_));
}

void TimePage::Fetch(const ResultStore& results, std::int64_t count) {
    for (; shown_ < size && NextToShow() < count; ++shown_) {
        const PerformanceResults fetched = results.At(NextToShow());
        for (std::size_t item = 0; item < values_.size(); ++item) {
            values_[item][static_cast<std::size_t>(shown_)] = fetched[item];
        }
    }
}

} // namespace busquill
