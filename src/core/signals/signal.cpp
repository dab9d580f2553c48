#include "signals/signal.h"

#include <algorithm>

namespace busquill {

namespace {

std::span<const std::uint8_t> RowOf(const ZeroedArray<std::uint8_t>& rows, std::size_t rowBytes,
                                    std::size_t sample) noexcept {
    if (rowBytes == 0 || sample >= rows.size() / rowBytes) {
        return {};
    }
    return {rows.data() + sample * rowBytes, rowBytes};
}

} // namespace

std::int32_t CSignal::VisibleHeight() const noexcept {
    return hidden || (grouped && !IsGroupStart()) ? 0 : height;
}

std::int32_t CSignal::VisibleWidth() const noexcept {
    return hidden || (grouped && !IsGroupStart()) ? 0 : width;
}

std::uint32_t CSignal::Room() const noexcept {
    return static_cast<std::uint32_t>(std::min<std::size_t>(numSamples, data.size() * wordBits));
}

bool CSignal::Bit(std::size_t sample) const noexcept {
    return TestBit(data, sample);
}

bool CSignal::MaskBit(std::size_t sample) const noexcept {
    return sample / wordBits >= mask.size() || TestBit(mask, sample);
}

std::span<const std::uint8_t> CSignal::GroupRow(std::size_t sample) const noexcept {
    return RowOf(groupData, RowBytes(), sample);
}

std::span<const std::uint8_t> CSignal::GroupMaskRow(std::size_t sample) const noexcept {
    return RowOf(groupMask, RowBytes(), sample);
}

std::size_t CSignal::RowBytes() const noexcept {
    return BytesFor(groupWidth);
}

const char* CSignal::Label(std::size_t sample) const noexcept {
    if (!decoded || sample >= labelTable.size() || labelTable[sample] == 0) {
        return nullptr;
    }
    const std::size_t value = labelTable[sample] - std::size_t{1};
    return value < decoded->values.size() ? decoded->values[value].label : nullptr;
}

void CSignal::ResizeSamples(std::uint32_t count) {
    data.Reset(WordsFor(count));
    numSamples = count;
    if (IsGroupStart()) {
        groupData.Reset(RowBytes() * count);
    }
    // A decoded signal of an empty list already has a label table, with no entries.
    if (decoded) {
        labelTable.Reset(count);
    }
}

void CSignal::AllocateMask(std::uint32_t count) {
    mask.Reset(WordsFor(count));
}

} // namespace busquill
