#pragma once

#include "signals/signal.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace busquill {

class CSignalList;

/// Some bits of the sample record, taken out as a value.
class RecordField {
public:
    /// Data indexes, least significant first; one outside the record reads 0.
    explicit RecordField(std::vector<int> positions);
    /// The bits of a signal of a list, with all members of its group.
    RecordField(const CSignalList& list, const CSignal& signal);
    explicit RecordField(const CBusSignalDef& def);

    [[nodiscard]] std::size_t Width() const noexcept { return positions_.size(); }
    [[nodiscard]] std::size_t Bytes() const noexcept { return BytesFor(positions_.size()); }
    /// The value, bit 0 first, into as many bytes as it has.
    void Take(const SampleRecord& record, std::uint8_t* into) const noexcept;
    /// The same as a number, of a value that fits.
    [[nodiscard]] std::uint64_t Word(const SampleRecord& record) const noexcept;
    [[nodiscard]] bool FitsWord() const noexcept { return positions_.size() <= 64; }

private:
    std::vector<int> positions_;
    bool isRun_ = false; // ascending without a gap
};

/// The time from the sample before, as TimeField tells it.
class SampleTime {
public:
    /// From where records of all boards have it.
    SampleTime();
    /// From the bits that a list's own time looks at, if it has one.
    explicit SampleTime(const CSignalList& list);
    explicit SampleTime(const CBusSignalDef& def) : field_(def) {}
    /// Whether the list has the time.
    [[nodiscard]] bool Known() const noexcept { return field_.Width() != 0; }
    [[nodiscard]] std::int64_t Of(const SampleRecord& record) const noexcept;

private:
    RecordField field_;
};

/// The running sum of the times of samples that come one by one.
class RunningTime {
public:
    explicit RunningTime(SampleTime time = SampleTime()) : time_(std::move(time)) {}
    [[nodiscard]] bool Known() const noexcept { return time_.Known(); }
    void Add(const SampleRecord& record) noexcept;
    [[nodiscard]] std::int64_t Sum() const noexcept { return sum_; }

private:
    SampleTime time_;
    std::int64_t sum_ = 0;
};

} // namespace busquill
