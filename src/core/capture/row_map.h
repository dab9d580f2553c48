#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

class RecordPattern;
struct SampleRecord;

/// Maps rows of a listing to samples and back. Rows exist for the samples that a file holds and a
/// filter passes.
class RowMap {
public:
    /// Sets up `samples` samples, numbered from `firstNumber`, with a row for each except those
    /// whose bit in `excluded` is set; it may be empty.
    void Reset(std::int64_t samples, std::int64_t firstNumber,
               std::span<const std::uint32_t> excluded);
    /// Keeps the rows of the samples whose bit is set and which are not excluded.
    void Keep(std::span<const std::uint32_t> bits, std::span<const std::uint32_t> excluded);
    /// Keeps the rows of the samples that match. There must not be more records than samples.
    void Filter(std::span<const SampleRecord> records, const RecordPattern& pattern,
                std::span<const std::uint32_t> excluded);

    [[nodiscard]] std::int64_t RowCount() const noexcept {
        return static_cast<std::int64_t>(rows_.size());
    }
    [[nodiscard]] std::int64_t SampleCount() const noexcept { return sampleCount_; }
    [[nodiscard]] std::int64_t FirstSampleNumber() const noexcept { return firstSampleNumber_; }
    /// -1 for a row out of range; 0 when there are no rows at all.
    [[nodiscard]] std::int64_t RowToSample(std::int64_t row) const noexcept;
    /// For a sample without a row, the row of the last sample before it that has one, or 0.
    [[nodiscard]] std::int64_t SampleToRow(std::int64_t sample) const noexcept;
    [[nodiscard]] bool IsRowSample(std::int64_t sample) const noexcept;
    /// A bit for each sample, set for those with a row.
    [[nodiscard]] std::span<const std::uint32_t> RowSamples() const noexcept { return matchBits_; }

private:
    void LeaveOut(std::span<const std::uint32_t> excluded);
    /// Makes the rows of the samples whose bit is set.
    void MakeRows();

    std::vector<std::uint32_t> matchBits_; // a bit for each sample
    std::vector<std::uint32_t> rows_;      // samples, ascending
    std::int64_t sampleCount_ = 0;
    std::int64_t firstSampleNumber_ = 0;
};

} // namespace busquill
