#include "signals/time_index.h"

#include "signals/signal.h"
#include "signals/value_text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace busquill {

namespace {

constexpr std::size_t strideSamples = 64;

} // namespace

std::int64_t TimeIndex::Between(const CSignal& time, std::int64_t a, std::int64_t b) {
    if (&time != time_) {
        Forget();
        time_ = &time;
    }
    const std::size_t rows = time.RowBytes() == 0 ? 0 : time.groupData.size() / time.RowBytes();
    const auto upTo = [rows](std::int64_t sample) {
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(sample + 1, 0, static_cast<std::int64_t>(rows)));
    };
    const auto [begin, end] = std::minmax({upTo(a), upTo(b)});
    const std::size_t firstStride = (begin + strideSamples - 1) / strideSamples;
    const std::size_t endStride = end / strideSamples;
    Sum sum = 0;
    if (firstStride >= endStride) {
        sum = Walk(time, begin, end);
    } else {
        sum = Walk(time, begin, firstStride * strideSamples) +
              (Before(time, endStride) - Before(time, firstStride)) +
              Walk(time, endStride * strideSamples, end);
    }
    constexpr Sum longest = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::clamp(a > b ? -sum : sum, -longest, longest));
}

TimeIndex::Sum TimeIndex::Walk(const CSignal& time, std::size_t begin, std::size_t end) {
    Sum sum = 0;
    for (std::size_t sample = begin; sample < end; ++sample) {
        sum += TimeField(time.GroupRow(sample), time.groupWidth);
    }
    return sum;
}

TimeIndex::Sum TimeIndex::Before(const CSignal& time, std::size_t stride) {
    if (strides_.size() < stride) {
        strides_.resize(stride);
        isKnown_.Resize(stride);
    }
    while (upTo_.size() < stride) {
        const std::size_t next = upTo_.size();
        if (!isKnown_.Test(next)) {
            strides_[next] = Walk(time, next * strideSamples, (next + 1) * strideSamples);
            isKnown_.Set(next);
        }
        upTo_.push_back((next == 0 ? 0 : upTo_.back()) + strides_[next]);
    }
    return stride == 0 ? 0 : upTo_[stride - 1];
}

void TimeIndex::Forget() noexcept {
    time_ = nullptr;
    strides_.clear();
    isKnown_.Reset(0);
    upTo_.clear();
}

void TimeIndex::Forget(std::size_t first, std::size_t count) noexcept {
    if (count == 0) {
        return;
    }
    const std::size_t begin = first / strideSamples;
    isKnown_.AssignIn(begin, (first + count - 1) / strideSamples + 1, false);
    upTo_.resize(std::min(upTo_.size(), begin));
}

} // namespace busquill
