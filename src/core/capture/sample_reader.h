#pragma once

#include "capture/sample_range.h"
#include "capture/sample_rows.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace busquill {

class CTesselDoc;

/// Writes samples of a document to a file, piece by piece, while they may still be arriving from
/// the board. Main thread.
class SampleWriter {
public:
    virtual ~SampleWriter() = default;

    /// Creates a file for the samples of a range of numbers. False when it cannot be created.
    [[nodiscard]] virtual bool Begin(const std::string& path, std::int64_t first,
                                     std::int64_t last) = 0;
    /// Writes about `rows` samples, and what follows the last. Asks for a sample that has not
    /// arrived. After Done the file is complete and in its place.
    [[nodiscard]] virtual SampleStep Write(std::size_t rows) = 0;
    /// The user gives up.
    virtual void Abort() = 0;
    /// Progress through the range, in percent.
    [[nodiscard]] virtual int Progress() const = 0;
    /// The number of the next sample.
    [[nodiscard]] virtual std::int64_t NextNumber() const = 0;
    /// What the user should know about the finished file; empty if nothing.
    [[nodiscard]] virtual std::string Note() const { return {}; }
};

/// Hands out the samples of a document in order, in pieces, without those that a filter hides or a
/// file does not hold. Main thread; the document outlives it.
class SampleReader {
public:
    /// With `zoom`, the Power Zoom samples.
    explicit SampleReader(CTesselDoc& document, bool zoom = false);

    /// The range when the reader was created, or started.
    [[nodiscard]] const SampleRange& Range() const noexcept { return range_; }

    /// Goes to the beginning of a range of numbers, of the capture as it is now: a run that has
    /// ended since the reader was created has other samples.
    void Start(std::int64_t first, std::int64_t last);
    /// Passes over at most `limit` samples and puts those that count into `rows`, even if it stops
    /// early because the next one has not arrived, which it asks for.
    [[nodiscard]] SampleStep Read(std::size_t limit, SampleRows& rows);
    /// Leaves out the next sample, which is Missing.
    void Skip() noexcept { ++next_; }
    /// Progress through the range, in percent.
    [[nodiscard]] int Progress() const noexcept;
    /// The number of the next sample.
    [[nodiscard]] std::int64_t NextNumber() const noexcept { return next_ - range_.before; }

private:
    /// Copies samples from the next one on; returns their number, 0 when it has not arrived.
    [[nodiscard]] std::size_t Copy(std::size_t wanted, SampleRows& rows) const;
    [[nodiscard]] Arrival Await() const;

    CTesselDoc& document_;
    const bool zoom_;
    SampleRange range_;
    std::int64_t next_ = 0; // indexes into the store
    std::int64_t end_ = -1;
};

} // namespace busquill
