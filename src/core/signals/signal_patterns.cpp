/// Writing patterns: a change in one row of a pattern table is copied to every row of the same
/// bits.
#include "signals/signal_list.h"

#include <algorithm>

namespace busquill {

namespace {

/// Replaces words by bit `k` of the packed rows.
void TakeColumn(std::span<std::uint32_t> words, std::span<const std::uint8_t> rows,
                std::size_t rowBytes, std::size_t k) {
    std::fill(words.begin(), words.end(), 0);
    for (std::size_t sample = 0; sample < rows.size() / rowBytes; ++sample) {
        AssignBit(words, sample, TestBit(rows.subspan(sample * rowBytes), k));
    }
}

} // namespace

void CSignalList::UnpackRows(const CSignal& group, const std::vector<int>& dataIndexes) {
    if (group.groupData.empty()) {
        return;
    }
    const std::size_t count = std::min<std::size_t>(dataIndexes.size(), group.groupWidth);
    for (std::size_t k = 0; k < count; ++k) {
        for (const auto& signal : signals_) {
            // A blank row has no bit.
            if (dataIndexes[k] < 0 || signal->dataIndex != dataIndexes[k]) {
                continue;
            }
            TakeColumn(signal->data, group.groupData, group.RowBytes(), k);
            if (!group.groupMask.empty()) {
                TakeColumn(signal->mask, group.groupMask, group.RowBytes(), k);
            }
        }
    }
    std::uint32_t numSamples = 0;
    for (const auto& signal : signals_) {
        numSamples = std::max(numSamples, signal->numSamples);
    }
    RebuildGroupRows(0, numSamples);
    RebuildLabels(0, numSamples);
}

void CSignalList::UnpackGroup(CSignal* group) {
    if (group->dataIndex < 0) {
        return;
    }
    std::vector<int> dataIndexes;
    for (std::uint32_t k = 0; k < group->groupWidth; ++k) {
        const auto offset = static_cast<int>(k);
        dataIndexes.push_back(group->bitReverse ? group->dataIndex - offset
                                                : group->dataIndex + offset);
    }
    UnpackRows(*group, dataIndexes);
}

void CSignalList::UnpackDecoded(CSignal* signal) {
    if (signal->decoded) {
        UnpackRows(*signal, signal->decoded->Positions());
    }
}

void CSignalList::ApplyDecodedValue(CSignal* signal, std::uint32_t sample, std::size_t valueIndex) {
    if (!signal->decoded || signal->decoded->values.empty()) {
        return;
    }
    const auto& values = signal->decoded->values;
    const auto& pattern = values[std::min(valueIndex, values.size() - 1)].pattern;
    for (const auto& each : signals_) {
        if (each->dataIndex < 0 || each->dataIndex >= patternPositions) {
            continue;
        }
        const std::uint8_t code = pattern[static_cast<std::size_t>(each->dataIndex)];
        if (code != CodeUnused) {
            AssignBit(each->data, sample, code == CodeOne);
            AssignBit(each->mask, sample, code != CodeAny);
        }
    }
    RebuildGroupRows(sample, 1);
    RebuildLabels(sample, 1);
}

void CSignalList::SpreadBit(const CSignal* signal, std::uint32_t sample) {
    for (const auto& each : signals_) {
        if (each.get() == signal || signal->dataIndex < 0 || each->dataIndex != signal->dataIndex) {
            continue;
        }
        AssignBit(each->data, sample, signal->Bit(sample));
        AssignBit(each->mask, sample, signal->MaskBit(sample));
    }
    RebuildGroupRows(sample, 1);
    RebuildLabels(sample, 1);
}

} // namespace busquill
