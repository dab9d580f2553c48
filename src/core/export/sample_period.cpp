#include "export/sample_period.h"

#include <cstdlib>

namespace busquill {

void SteadyPeriod::Take(const SampleRows& rows) {
    for (const SampleRecord& record : rows.records) {
        if (!first_) {
            period_ = period_.value_or(time_.Of(record));
            steady_ = steady_ && *period_ == time_.Of(record);
        }
        first_ = false;
    }
}

std::optional<std::int64_t> SteadyPeriod::Period() const noexcept {
    constexpr std::int64_t nanosecond = 1000;
    return steady_ && period_.value_or(0) > 0 ? std::optional(*period_ * nanosecond) : std::nullopt;
}

void PeriodCheck::Take(const SampleRows& rows) {
    for (const SampleRecord& record : rows.records) {
        // TIME is in whole nanoseconds; the periods of the fastest clocks are not.
        const std::int64_t time = time_.Of(record) * unit_;
        holds_ = holds_ && (first_ || std::abs(time - period_) < unit_);
        first_ = false;
    }
}

std::uint64_t SampleRate(std::int64_t period) {
    constexpr std::int64_t second = 1'000'000'000'000;
    return static_cast<std::uint64_t>((second + period / 2) / period);
}

} // namespace busquill
