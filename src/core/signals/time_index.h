#pragma once

#include "platform/bits.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace busquill {

class CSignal;

/// Sums of the TIME of a list's samples, so that the time over any distance costs no more than a
/// short walk at either end. A stride is summed when it is first asked for, and again after its
/// samples have changed.
class TimeIndex final {
public:
    /// The sum over the samples after `a` up to `b`; negative when `b` comes first. A sum that no
    /// number holds is the longest one. Samples that are not there count 0.
    [[nodiscard]] std::int64_t Between(const CSignal& time, std::int64_t a, std::int64_t b);
    void Forget() noexcept;
    /// The samples from `first` on are others now.
    void Forget(std::size_t first, std::size_t count) noexcept;

private:
    // Fields of a damaged file add up to more than 64 bits; both compilers have the wider type.
    __extension__ typedef __int128 Sum;

    [[nodiscard]] static Sum Walk(const CSignal& time, std::size_t begin, std::size_t end);
    /// Of all samples before a stride.
    [[nodiscard]] Sum Before(const CSignal& time, std::size_t stride);

    const CSignal* time_ = nullptr;
    std::vector<Sum> strides_; // of each stride, where it is known
    Bits isKnown_;             // in step with strides_
    std::vector<Sum> upTo_;    // from the first stride to each, as far as has been asked for
};

} // namespace busquill
