#include "signals/record_field.h"

#include "signals/signal_list.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace busquill {

namespace {

std::vector<int> PositionsOf(const CSignalList& list, const CSignal* signal) {
    std::vector<int> positions;
    const std::size_t first = list.IndexOf(signal);
    if (first == list.Size()) {
        return positions;
    }
    for (std::size_t i = first; i < list.GroupEnd(first); ++i) {
        positions.push_back(list[i].dataIndex);
    }
    return positions;
}

bool IsInside(int position) noexcept {
    return position >= 0 && position < SampleRecord::bitCount;
}

bool IsRun(const std::vector<int>& positions) {
    return !positions.empty() && IsInside(positions.front()) && IsInside(positions.back()) &&
           std::adjacent_find(positions.begin(), positions.end(),
                              [](int a, int b) { return b != a + 1; }) == positions.end();
}

std::vector<int> RunOf(int first, int width) {
    std::vector<int> positions(static_cast<std::size_t>(std::max(width, 0)));
    std::iota(positions.begin(), positions.end(), first);
    return positions;
}

} // namespace

RecordField::RecordField(std::vector<int> positions)
    : positions_(std::move(positions)), isRun_(IsRun(positions_)) {}

RecordField::RecordField(const CSignalList& list, const CSignal& signal)
    : RecordField(PositionsOf(list, &signal)) {}

RecordField::RecordField(const CBusSignalDef& def)
    : RecordField(RunOf(def.dataIndex, def.Width())) {}

void RecordField::Take(const SampleRecord& record, std::uint8_t* into) const noexcept {
    const std::size_t bytes = Bytes();
    if (!isRun_) {
        std::fill_n(into, bytes, std::uint8_t{0});
        for (std::size_t i = 0; i < positions_.size(); ++i) {
            if (record.Bit(positions_[i])) {
                SetBit(std::span(into, bytes), i);
            }
        }
        return;
    }
    std::array<std::uint8_t, sizeof(SampleRecord) + 2> padded{};
    std::memcpy(padded.data(), record.bytes.data(), sizeof(SampleRecord));
    const auto first = static_cast<unsigned>(positions_.front());
    const std::size_t from = first / 8;
    const unsigned shift = first % 8;
    for (std::size_t i = 0; i < bytes; ++i) {
        const unsigned pair = padded[from + i] | static_cast<unsigned>(padded[from + i + 1]) << 8;
        into[i] = static_cast<std::uint8_t>(pair >> shift);
    }
    if (const std::size_t rest = positions_.size() % 8; rest != 0) {
        into[bytes - 1] &= LowBits<std::uint8_t>(rest);
    }
}

std::uint64_t RecordField::Word(const SampleRecord& record) const noexcept {
    if (isRun_) {
        return record.Field(positions_.front(), positions_.size());
    }
    std::array<std::uint8_t, sizeof(std::uint64_t)> bytes{};
    if (FitsWord()) {
        Take(record, bytes.data());
    }
    return BitsAt(bytes, 0, positions_.size());
}

SampleTime::SampleTime() : field_(RunOf(110, 18)) {}

SampleTime::SampleTime(const CSignalList& list) : field_(PositionsOf(list, list.TimeGroup())) {}

std::int64_t SampleTime::Of(const SampleRecord& record) const noexcept {
    constexpr std::size_t longest = 32; // wider fields do not hold a time
    return field_.Width() <= longest ? TimeOfBits(static_cast<std::uint32_t>(field_.Word(record)))
                                     : 0;
}

void RunningTime::Add(const SampleRecord& record) noexcept {
    sum_ = AddTimes(sum_, time_.Of(record));
}

} // namespace busquill
