#pragma once

#include "platform/bits.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace busquill {

class CSignal;

/// Sums of the TIME of a list's samples by strides, so that a time over any distance needs only a
/// few single samples at either end. A stride is summed when it is first needed, and again after
/// its samples have changed.
class TimeIndex final {
public:
    /// The sum over the samples after `a` up to `b`; negative when `b` is earlier. A sum that
    /// overflows is the longest time. Missing samples count 0.
    [[nodiscard]] std::int64_t Between(const CSignal& time, std::int64_t a, std::int64_t b);
    void Forget() noexcept;
    /// The `count` samples from `first` on have changed.
    void Forget(std::size_t first, std::size_t count) noexcept;

private:
    // The fields of a damaged file may add up to more than 64 bits.
    __extension__ typedef __int128 Sum;

    [[nodiscard]] static Sum Walk(const CSignal& time, std::size_t begin, std::size_t end);
    /// The sum over all samples before a stride.
    [[nodiscard]] Sum Before(const CSignal& time, std::size_t stride);

    const CSignal* time_ = nullptr;
    std::vector<Sum> strides_; // the sum of each stride, where known
    Bits isKnown_;             // a bit for each of strides_
    std::vector<Sum> upTo_;    // running sums over strides_, as far as needed so far
};

} // namespace busquill
