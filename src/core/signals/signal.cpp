#include "signals/signal.h"

#include <algorithm>

namespace busquill {

namespace {

bool TakesRoom(const CSignal& signal) noexcept {
    return !signal.hidden && (!signal.grouped || signal.IsGroupStart());
}

} // namespace

std::int32_t CSignal::VisibleHeight() const noexcept {
    return TakesRoom(*this) ? height : 0;
}

std::int32_t CSignal::VisibleWidth() const noexcept {
    return TakesRoom(*this) ? width : 0;
}

bool CSignal::Bit(std::size_t sample) const noexcept {
    return sample / 32 < data.size() && (data[sample / 32] >> (sample % 32) & 1) != 0;
}

std::size_t CSignal::RowBytes() const noexcept {
    return groupWidth == 0 ? 0 : (groupWidth - 1) / 8 + std::size_t{1};
}

std::span<const std::uint8_t> CSignal::GroupRow(std::size_t sample) const noexcept {
    const std::size_t bytes = RowBytes();
    if (bytes == 0 || (sample + 1) * bytes > groupData.size()) {
        return {};
    }
    return {groupData.data() + sample * bytes, bytes};
}

const char* CSignal::Label(std::size_t sample) const noexcept {
    if (!decoded || sample >= labelTable.size() || labelTable[sample] == 0) {
        return nullptr;
    }
    return decoded->values[labelTable[sample] - std::size_t{1}].label;
}

void CSignal::SetSampleBuffer(std::span<const std::uint32_t> words, std::uint32_t count) {
    data.assign(words.begin(), words.end());
    numSamples = count;
}

void CSignal::ResizeSamples(std::uint32_t count) {
    numSamples = count;
    data.assign(WordsFor(count), 0);
    if (IsGroupStart()) {
        groupData.assign(RowBytes() * count, 0);
    }
    if (decoded) {
        labelTable.assign(count, 0);
    }
}

void CSignal::AllocateMask(std::uint32_t count) {
    mask.assign(WordsFor(count), 0);
}

void CSignal::ExtractSamples(std::uint32_t first, std::span<const SampleRecord> records) {
    if (dataIndex < 0 || first >= numSamples) {
        return;
    }
    const std::size_t room = data.size() * 32 - std::min<std::size_t>(first, data.size() * 32);
    const std::size_t count = std::min(records.size(), room);
    for (std::size_t i = 0; i < count; ++i) {
        if (records[i].Bit(dataIndex)) {
            data[(first + i) / 32] |= 1U << ((first + i) % 32);
        }
    }
}

} // namespace busquill
