#pragma once

#include "capture/sample_store.h"
#include "platform/text_file.h"

#include <cstdint>
#include <optional>
#include <string>

namespace busquill {

class CTesselDoc;

/// An error message for a range of sample numbers to be saved; nothing when it is valid. `before`
/// and `after` are the counts on the two sides of the trigger.
[[nodiscard]] std::optional<std::string> CheckSaveRange(std::int64_t first, std::int64_t last,
                                                        std::int64_t before, std::int64_t after);

/// Writes a trace file piece by piece, while samples may still be arriving from the board. The old
/// file is replaced when the new one is complete. Main thread; the document outlives the writer.
class TraceFileWriter {
public:
    enum class Step {
        More,    // wrote as many rows as requested
        Waiting, // the next sample has not arrived
        Done,    // the file is complete and in its place
        Failed,  // the file could not be written
        Missing, // the next sample will not arrive
    };

    explicit TraceFileWriter(CTesselDoc& document);

    /// The counts on both sides of the trigger when the writer was created. One is negative for a
    /// file that does not include its trigger: samples keep their numbers.
    [[nodiscard]] std::int64_t Before() const noexcept { return before_; }
    [[nodiscard]] std::int64_t After() const noexcept { return after_; }
    [[nodiscard]] bool HasSamples() const noexcept { return hasSamples_; }

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
    [[nodiscard]] std::int64_t NextNumber() const noexcept { return next_ - before_; }

private:
    [[nodiscard]] Step Finish();

    CTesselDoc& document_;
    CSampleStore& store_;
    std::int64_t before_;
    std::int64_t after_;
    bool hasSamples_;
    TextWriter file_;
    std::int64_t next_ = 0; // indexes into the store
    std::int64_t end_ = -1;
};

} // namespace busquill
