#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

class RecordPattern;
struct SampleRecord;

/// Which sample a row of a listing shows, and the other way round: the samples that a file holds
/// and a filter lets through.
class RowMap {
public:
    /// So many samples, the first of that number, a row for each but the excluded ones: a bit for
    /// each sample, empty for none.
    void Reset(std::int64_t samples, std::int64_t firstNumber,
               std::span<const std::uint32_t> excluded);
    /// Keeps the rows of the samples that match. Not more records than samples.
    void Filter(std::span<const SampleRecord> records, const RecordPattern& pattern,
                std::span<const std::uint32_t> excluded);

    [[nodiscard]] std::int64_t RowCount() const noexcept {
        return static_cast<std::int64_t>(rows_.size());
    }
    [[nodiscard]] std::int64_t SampleCount() const noexcept { return sampleCount_; }
    [[nodiscard]] std::int64_t FirstSampleNumber() const noexcept { return firstSampleNumber_; }
    /// -1 for a row outside; 0 when there are no rows at all.
    [[nodiscard]] std::int64_t RowToSample(std::int64_t row) const noexcept;
    /// For a sample without a row that of the last one before it, or 0.
    [[nodiscard]] std::int64_t SampleToRow(std::int64_t sample) const noexcept;
    [[nodiscard]] bool IsRowSample(std::int64_t sample) const noexcept;

private:
    std::vector<std::uint32_t> matchBits_; // a bit for each sample
    std::vector<std::uint32_t> rows_;      // samples, ascending
    std::int64_t sampleCount_ = 0;
    std::int64_t firstSampleNumber_ = 0;
};

} // namespace busquill
