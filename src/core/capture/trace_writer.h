#pragma once

#include "capture/sample_range.h"
#include "capture/sample_store.h"
#include "platform/text_file.h"

#include <cstdint>
#include <string>

namespace busquill {

class CTesselDoc;

/// Writes a trace file piece by piece, while samples may still be arriving from the board. The old
/// file is replaced when the new one is complete. Main thread; the document outlives the writer.
class TraceFileWriter {
public:
    using Step = SampleStep; // Done: the file is complete and in its place

    explicit TraceFileWriter(CTesselDoc& document);

    /// The range when the writer was created.
    [[nodiscard]] std::int64_t Before() const noexcept { return range_.before; }
    [[nodiscard]] std::int64_t After() const noexcept { return range_.after; }
    [[nodiscard]] bool HasSamples() const noexcept { return range_.hasSamples; }

    /// Creates a file for the samples of a range of numbers and writes all that precedes them.
    /// False when it cannot be created.
    [[nodiscard]] bool Begin(const std::string& path, std::int64_t first, std::int64_t last);
    /// Writes at most `rows` rows, and what follows the last. Asks for a sample that has not
    /// arrived.
    [[nodiscard]] Step Write(std::size_t rows);
    /// Leaves out the next sample, which is Missing.
    void Skip() noexcept { ++next_; }
    /// Abandons the save: the file stays as far as it was written.
    void Abort();
    /// Progress through the range, in percent.
    [[nodiscard]] int Progress() const noexcept;
    /// The number of the next sample.
    [[nodiscard]] std::int64_t NextNumber() const noexcept { return next_ - range_.before; }

private:
    [[nodiscard]] Step Finish();

    CTesselDoc& document_;
    CSampleStore& store_;
    const SampleRange range_;
    TextWriter file_;
    std::int64_t next_ = 0; // indexes into the store
    std::int64_t end_ = -1;
};

} // namespace busquill
