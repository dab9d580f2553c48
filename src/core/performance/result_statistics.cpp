#include "performance/result_statistics.h"

#include "platform/settings.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr const char* valueDisplayKey = "PerfValueDisplay";

} // namespace

bool ItemStatistics::Add(std::int32_t value) noexcept {
    const bool lowest = minimum == none || value < minimum;
    const bool highest = maximum == none || value > maximum;
    minimum = lowest ? value : minimum;
    maximum = highest ? value : maximum;
    sum += value;
    ++count;
    return lowest || highest;
}

std::int32_t ItemStatistics::Average() const noexcept {
    return count < 1 ? 0 : static_cast<std::int32_t>(sum / static_cast<double>(count));
}

void RangeStatistics::SetMaximum(std::int32_t maximum) {
    const LeafLock lock(lock_);
    top_ = maximum;
}

void RangeStatistics::Clear() {
    const LeafLock lock(lock_);
    items_ = {};
}

void RangeStatistics::Clear(const PerformanceSetup& setup) {
    const LeafLock lock(lock_);
    items_ = {};
    for (std::size_t item = 0; item < items_.size(); ++item) {
        items_[item].enabled = setup.items[item].item != 0;
    }
}

void RangeStatistics::Enable(std::size_t item) {
    const LeafLock lock(lock_);
    if (item < items_.size()) {
        items_[item].enabled = true;
    }
}

bool RangeStatistics::Add(const PerformanceResults& results) {
    const LeafLock lock(lock_);
    bool moved = false;
    for (std::size_t item = 0; item < items_.size(); ++item) {
        if (items_[item].enabled && items_[item].Add(std::min(results[item], top_))) {
            moved = true;
        }
    }
    return moved;
}

void RangeStatistics::AddAll(const ResultStore& results) {
    const std::int64_t count = results.Count();
    for (std::int64_t index = results.OldestHeld(); index < count; ++index) {
        static_cast<void>(Add(results.At(index)));
    }
}

RangeStatistics::Items RangeStatistics::Current() const {
    const LeafLock lock(lock_);
    return items_;
}

ValueDisplay ReadValueDisplay(const Settings& settings) {
    const int stored = settings.GetProfileInt(SettingsSection::display, valueDisplayKey, 0);
    const bool known = stored >= 0 && stored < static_cast<int>(valueDisplayTexts.size());
    return known ? static_cast<ValueDisplay>(stored) : ValueDisplay::Instantaneous;
}

void WriteValueDisplay(Settings& settings, ValueDisplay display) {
    settings.WriteProfileInt(SettingsSection::display, valueDisplayKey, static_cast<int>(display));
}

void RowStatistics::Clear(const PerformanceSetup& setup) {
    const LeafLock lock(lock_);
    rows_ = {};
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        rows_[row].enabled = setup.items[row].item > 0;
    }
}

void RowStatistics::Add(const PerformanceResults& results) {
    const LeafLock lock(lock_);
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (rows_[row].enabled) {
            rows_[row].Add(results[row]);
            rows_[row].last = results[row];
        }
    }
}

std::optional<std::int32_t> RowStatistics::Shown(std::size_t row, ValueDisplay display) const {
    const LeafLock lock(lock_);
    if (row >= rows_.size() || rows_[row].count == 0) {
        return std::nullopt;
    }
    switch (display) {
    case ValueDisplay::Average:
        return rows_[row].Average();
    case ValueDisplay::Min:
        return rows_[row].minimum;
    case ValueDisplay::Max:
        return rows_[row].maximum;
    case ValueDisplay::Instantaneous:
        break;
    }
    return rows_[row].last;
}

} // namespace busquill
