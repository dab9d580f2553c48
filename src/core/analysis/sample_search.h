#pragma once

#include "analysis/transaction_index.h"
#include "capture/sample_condition.h"
#include "signals/record_field.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace busquill {

/// The samples of a capture for which something holds: a bit for each, since there may be as many
/// as there are samples. They are searched for in pieces, and samples that arrive later are
/// searched when they have. One thread at a time.
class SampleSearch {
public:
    /// A bit for each sample of a block, set where it holds.
    using Test = std::function<std::uint32_t(const SampleBlock&)>;
    /// For tests that need times.
    struct Times {
        std::function<std::int64_t(std::size_t)> sinceTrigger; // of a sample, by its index
        SampleTime sampleTime;
    };

    /// The test may look at the sample before the block.
    explicit SampleSearch(Test test, std::optional<Times> times = std::nullopt);

    /// Takes the samples as they are now: those that were absent and are not any more will be
    /// searched, and those whose result depends on these once more.
    void Follow(const CapturedSamples& samples);
    /// Searches at most about `limit` samples of those that Follow was given. True when none are
    /// left.
    [[nodiscard]] bool Continue(const CapturedSamples& samples, std::size_t limit);
    /// Samples that are still to be searched, about.
    [[nodiscard]] std::size_t Left() const noexcept { return left_ * wordBits; }

    /// A bit for each sample: those found so far. Absent samples are never found.
    [[nodiscard]] std::span<const std::uint32_t> Found() const noexcept { return found_; }

private:
    void Expect(std::size_t word);
    [[nodiscard]] std::uint32_t FoundIn(std::size_t word, const CapturedSamples& samples) const;

    Test test_;
    std::optional<Times> times_;
    std::vector<std::uint32_t> present_; // a bit for each sample that Follow was given
    std::vector<std::uint32_t> found_;
    std::vector<std::uint32_t> expected_; // a bit for each word above that is to be searched
    std::size_t left_ = 0;                // of these
    std::size_t next_ = 0;                // goes round, so that none waits for those that arrive
};

} // namespace busquill
