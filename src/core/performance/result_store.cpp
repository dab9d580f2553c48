#include "performance/result_store.h"

#include <algorithm>

namespace busquill {

namespace {

std::size_t Place(std::size_t item, std::int64_t position) noexcept {
    return item * static_cast<std::size_t>(ResultStore::ringSize) +
           static_cast<std::size_t>(position);
}

constexpr std::int64_t OldestOf(std::int64_t count) noexcept {
    return std::max<std::int64_t>(count - ResultStore::ringSize, 0);
}

} // namespace

PerformanceResults
ParsePerformanceResults(std::span<const std::uint8_t, performanceResultBytes> bytes) noexcept {
    PerformanceResults results{};
    for (std::size_t item = 0; item < results.size(); ++item) {
        std::uint32_t value = 0;
        for (std::size_t i = 4; i-- > 0;) {
            value = value << 8 | bytes[item * 4 + i];
        }
        results[item] = static_cast<std::int32_t>(value);
    }
    return results;
}

ResultStore::ResultStore() {
    rings_.Reset(Place(performanceItems, 0));
}

void ResultStore::Add(const PerformanceResults& results) {
    const LeafLock lock(lock_);
    for (std::size_t item = 0; item < results.size(); ++item) {
        rings_[Place(item, where_.next)] = results[item];
    }
    if (++where_.next == ringSize) {
        where_.next = 0;
        where_.wrapped = true;
    }
    ++where_.count;
}

void ResultStore::Clear() {
    const LeafLock lock(lock_);
    std::fill(rings_.begin(), rings_.end(), 0);
    where_ = {};
}

std::int64_t ResultStore::Count() const {
    const LeafLock lock(lock_);
    return where_.count;
}

bool ResultStore::Has(std::int64_t index) const {
    return index >= 0 && index < Count();
}

std::int64_t ResultStore::OldestHeld() const {
    return OldestOf(Count());
}

PerformanceResults ResultStore::At(std::int64_t index) const {
    PerformanceResults results{};
    const LeafLock lock(lock_);
    if (index < OldestOf(where_.count) || index >= where_.count) {
        return results;
    }
    std::int64_t position = where_.next - where_.count + index;
    if (position < 0) {
        position += ringSize;
    }
    for (std::size_t item = 0; item < results.size(); ++item) {
        results[item] = rings_[Place(item, position)];
    }
    return results;
}

ResultStore::Position ResultStore::Where() const {
    const LeafLock lock(lock_);
    return where_;
}

void ResultStore::SetWhere(Position where) {
    where.count = std::max<std::int64_t>(where.count, 0);
    if (where.next < 0 || where.next >= ringSize) {
        where.next = 0;
    }
    const LeafLock lock(lock_);
    where_ = where;
}

PerformanceResults ResultStore::Row(std::int64_t position) const {
    PerformanceResults results{};
    const LeafLock lock(lock_);
    for (std::size_t item = 0; item < results.size(); ++item) {
        const std::size_t place = Place(item, position);
        results[item] = place < rings_.size() ? rings_[place] : 0;
    }
    return results;
}

void ResultStore::SetRow(std::int64_t position, const PerformanceResults& results) {
    if (position < 0 || position >= ringSize) {
        return;
    }
    const LeafLock lock(lock_);
    for (std::size_t item = 0; item < results.size(); ++item) {
        rings_[Place(item, position)] = results[item];
    }
}

} // namespace busquill
