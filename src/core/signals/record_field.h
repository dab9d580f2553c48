#pragma once

#include "signals/signal.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace busquill {

class CSignalList;

/// Some bits of the sample record, read as a value.
class RecordField {
public:
    /// Data indexes, least significant first; those outside the record read as 0.
    explicit RecordField(std::vector<int> positions);
    /// The bits of a signal in a list, with all members of its group.
    RecordField(const CSignalList& list, const CSignal& signal);
    explicit RecordField(const CBusSignalDef& def);

    [[nodiscard]] std::size_t Width() const noexcept { return positions_.size(); }
    [[nodiscard]] std::size_t Bytes() const noexcept { return BytesFor(positions_.size()); }
    /// Writes the value to `into`, Bytes() bytes, bit 0 first.
    void Take(const SampleRecord& record, std::uint8_t* into) const noexcept;
    /// The value as a number; only if FitsWord().
    [[nodiscard]] std::uint64_t Word(const SampleRecord& record) const noexcept;
    [[nodiscard]] bool FitsWord() const noexcept { return positions_.size() <= 64; }

private:
    std::vector<int> positions_;
    bool isRun_ = false; // ascending without gaps
};

/// The time since the previous sample, in the units of TimeField.
class SampleTime {
public:
    /// From the place where the records of all boards hold it.
    SampleTime();
    /// From the bits of a list's TIME group, if it has one.
    explicit SampleTime(const CSignalList& list);
    explicit SampleTime(const CBusSignalDef& def) : field_(def) {}
    /// Whether the list has the time.
    [[nodiscard]] bool Known() const noexcept { return field_.Width() != 0; }
    [[nodiscard]] std::int64_t Of(const SampleRecord& record) const noexcept;

private:
    RecordField field_;
};

/// The running sum of the times of samples that are added one by one.
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
