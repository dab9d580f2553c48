#pragma once

#include "capture/sample_rows.h"
#include "signals/record_field.h"

#include <cstdint>
#include <optional>

namespace busquill {

/// Finds the time between samples if it is the same for all. Takes the samples in order.
class SteadyPeriod {
public:
    void Take(const SampleRows& rows);
    /// In picoseconds; nothing if the samples are not evenly spaced, or too few to tell.
    [[nodiscard]] std::optional<std::int64_t> Period() const noexcept;

private:
    SampleTime time_;
    bool first_ = true; // its TIME is the time before the capture
    bool steady_ = true;
    std::optional<std::int64_t> period_; // nanoseconds
};

/// Checks whether all samples are one clock period apart.
class PeriodCheck {
public:
    /// The period in picoseconds; the times of Power Zoom samples are in picoseconds too.
    PeriodCheck(std::int64_t period, bool zoom) : period_(period), unit_(zoom ? 1 : 1000) {}

    void Take(const SampleRows& rows);
    [[nodiscard]] bool Holds() const noexcept { return holds_; }

private:
    const std::int64_t period_;
    const std::int64_t unit_;
    SampleTime time_;
    bool first_ = true;
    bool holds_ = true;
};

/// Samples per second with this period in picoseconds, rounded.
[[nodiscard]] std::uint64_t SampleRate(std::int64_t period);

} // namespace busquill
