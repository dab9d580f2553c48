#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace busquill {

class CTesselDoc;

/// The numbers of a document's samples: the counts on both sides of the trigger. One is negative
/// for a file that does not include its trigger: samples keep their numbers.
struct SampleRange {
    std::int64_t before = 0;
    std::int64_t after = 0;
    bool hasSamples = false;
};

[[nodiscard]] SampleRange RangeOf(CTesselDoc& document);

/// An error message for a range of sample numbers; nothing when it is valid.
[[nodiscard]] std::optional<std::string> CheckSampleRange(std::int64_t first, std::int64_t last,
                                                          std::int64_t before, std::int64_t after);

enum class Arrival { Arrived, Coming, Never };

/// Whether a sample has arrived from the board. One that has not is fetched next.
[[nodiscard]] Arrival AwaitSample(CTesselDoc& document, std::int64_t sample);

/// How far work on samples that may still be arriving has come.
enum class SampleStep {
    More,    // did as much as was requested
    Waiting, // the next sample has not arrived
    Done,
    Failed,  // the result could not be written
    Missing, // the next sample will not arrive
    Nothing, // no sample counts, so that nothing is written
};

/// The wait for the samples of a range, by their indexes. Main thread; the document outlives it.
class SampleWait {
public:
    SampleWait(CTesselDoc& document, std::int64_t first, std::int64_t last);

    /// Passes over the samples that have arrived.
    [[nodiscard]] SampleStep Step();
    [[nodiscard]] std::int64_t Next() const noexcept { return next_; }
    /// Progress through the range, in percent.
    [[nodiscard]] int Progress() const noexcept;

private:
    CTesselDoc& document_;
    std::int64_t next_;
    const std::int64_t last_;
};

/// The part of a range that lies before an index, in percent.
[[nodiscard]] int ProgressOf(std::int64_t next, std::int64_t last) noexcept;

} // namespace busquill
