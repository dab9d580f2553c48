#include "signals/signal_list.h"

#include <algorithm>

namespace busquill {

namespace {

void SetBit(std::vector<std::uint32_t>& words, std::size_t sample, bool value) {
    if (sample / 32 >= words.size()) {
        return;
    }
    const std::uint32_t bit = 1U << (sample % 32);
    words[sample / 32] = value ? words[sample / 32] | bit : words[sample / 32] & ~bit;
}

bool BitOf(const std::vector<std::uint32_t>& words, std::size_t sample) {
    return sample / 32 < words.size() && (words[sample / 32] >> (sample % 32) & 1) != 0;
}

} // namespace

void CSignalList::UnpackGroup(CSignal* group) {
    std::vector<int> dataIndexes;
    for (std::uint32_t k = 0; k < group->groupWidth; ++k) {
        const auto step = static_cast<int>(k);
        dataIndexes.push_back(group->dataIndex + (group->bitReverse ? -step : step));
    }
    Unpack(group, dataIndexes);
}

void CSignalList::UnpackDecoded(CSignal* signal) {
    if (signal->decoded) {
        Unpack(signal, signal->decoded->Positions());
    }
}

// Goes to every signal with the data index, in and outside the group: two rows over the same bit
// stay the same.
void CSignalList::Unpack(CSignal* group, std::span<const int> dataIndexes) {
    const std::size_t rowBytes = group->RowBytes();
    if (rowBytes == 0) {
        return;
    }
    const auto unpackInto = [&](const std::vector<std::uint8_t>& rows, CSignal& signal,
                                std::vector<std::uint32_t>& words, std::size_t k) {
        std::fill(words.begin(), words.end(), 0);
        for (std::size_t s = 0; (s + 1) * rowBytes <= rows.size() && s < signal.numSamples; ++s) {
            SetBit(words, s, (rows[s * rowBytes + k / 8] >> (k % 8) & 1) != 0);
        }
    };
    for (std::size_t k = 0; k < std::min<std::size_t>(dataIndexes.size(), group->groupWidth); ++k) {
        for (const auto& signal : signals_) {
            if (signal->dataIndex < 0 || signal->dataIndex != dataIndexes[k]) {
                continue;
            }
            unpackInto(group->groupData, *signal, signal->data, k);
            if (!group->groupMask.empty()) {
                unpackInto(group->groupMask, *signal, signal->mask, k);
            }
        }
    }
    RebuildGroupRows(0, group->numSamples);
    RebuildLabels(0, group->numSamples);
}

void CSignalList::ApplyDecodedValue(CSignal* signal, std::uint32_t sample, std::size_t valueIndex) {
    if (!signal->decoded || signal->decoded->values.empty()) {
        return;
    }
    const auto& values = signal->decoded->values;
    const CDecodedValue& value = values[std::min(valueIndex, values.size() - 1)];
    for (const auto& target : signals_) {
        if (target->dataIndex < 0 || target->dataIndex >= patternPositions) {
            continue;
        }
        const std::uint8_t code = value.pattern[static_cast<std::size_t>(target->dataIndex)];
        if (code != CodeUnused) {
            SetBit(target->data, sample, code == CodeOne);
            SetBit(target->mask, sample, code != CodeAny);
        }
    }
    RebuildGroupRows(sample, 1);
    RebuildLabels(sample, 1);
}

void CSignalList::SpreadBit(const CSignal* signal, std::uint32_t sample) {
    if (signal->dataIndex < 0) {
        return;
    }
    const bool value = BitOf(signal->data, sample);
    const bool compared = BitOf(signal->mask, sample);
    for (const auto& target : signals_) {
        if (target.get() != signal && target->dataIndex == signal->dataIndex) {
            SetBit(target->data, sample, value);
            SetBit(target->mask, sample, compared);
        }
    }
    RebuildGroupRows(sample, 1);
    RebuildLabels(sample, 1);
}

} // namespace busquill
