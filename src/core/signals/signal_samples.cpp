#include "signals/bit_matrix.h"
#include "signals/signal_list.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr std::uint32_t lookupBits = 8;

/// Packs the members' words of one chunk into rows: bit k of a row is member k.
template <class WordOf>
void PackRows(std::size_t members, std::uint32_t rows, std::uint8_t* out, std::size_t rowBytes,
              WordOf wordOf) {
    for (std::size_t byte = 0; byte < rowBytes; ++byte) {
        const std::size_t count = std::min<std::size_t>(8, members - byte * 8);
        std::array<std::uint32_t, 8> words{};
        for (std::size_t k = 0; k < count; ++k) {
            words[k] = wordOf(byte * 8 + k);
        }
        for (std::uint32_t eight = 0; eight * 8 < rows; ++eight) {
            std::uint64_t bits = 0;
            for (std::size_t k = 0; k < count; ++k) {
                bits |= std::uint64_t{words[k] >> (8 * eight) & 0xFF} << (8 * k);
            }
            bits = Transpose8(bits);
            const std::uint32_t last = std::min<std::uint32_t>(8, rows - eight * 8);
            for (std::uint32_t r = 0; r < last; ++r) {
                out[(eight * 8 + r) * rowBytes + byte] = static_cast<std::uint8_t>(bits >> (8 * r));
            }
        }
    }
}

std::uint32_t WordAt(const std::vector<std::uint32_t>& words, std::size_t index) {
    return index < words.size() ? words[index] : 0;
}

bool RowBit(std::span<const std::uint8_t> row, std::size_t bit) noexcept {
    return (row[bit / 8] >> (bit % 8) & 1) != 0;
}

/// Whether a packed row, and its mask where there is one, fit a value's pattern.
bool Fits(const CDecodedValue& value, std::span<const std::uint8_t> row,
          std::span<const std::uint8_t> mask) noexcept {
    std::size_t k = 0;
    for (const std::uint8_t code : value.pattern) {
        if (code == CodeUnused) {
            continue;
        }
        if (k / 8 >= row.size()) {
            return false;
        }
        const bool compared = mask.empty() || RowBit(mask, k);
        if (code == CodeAny) {
            if (!mask.empty() && compared) {
                return false;
            }
        } else if (!compared || RowBit(row, k) != (code == CodeOne)) {
            return false;
        }
        ++k;
    }
    return true;
}

bool Compares(const CDecodedValue& value) noexcept {
    return std::any_of(value.pattern.begin(), value.pattern.end(),
                       [](std::uint8_t code) { return code == CodeZero || code == CodeOne; });
}

/// 1 + the place of the first value that fits, 0 for none.
std::uint8_t FindLabel(const CDecodedSignalDef& def, std::uint32_t mode,
                       std::span<const std::uint8_t> row, std::span<const std::uint8_t> mask,
                       bool keepAny) {
    for (std::size_t i = 0; i < def.values.size(); ++i) {
        const CDecodedValue& value = def.values[i];
        const bool tried =
            (value.skipModes & mode) == 0 && (keepAny || !mask.empty() || Compares(value));
        if (tried && Fits(value, row, mask)) {
            return static_cast<std::uint8_t>(i + 1);
        }
    }
    return 0;
}

/// The last value that has the code anywhere, as for FindLabel.
std::uint8_t LastWithCode(const CDecodedSignalDef& def, std::uint8_t code) {
    for (std::size_t i = def.values.size(); i-- > 0;) {
        const auto& pattern = def.values[i].pattern;
        if (std::find(pattern.begin(), pattern.end(), code) != pattern.end()) {
            return static_cast<std::uint8_t>(i + 1);
        }
    }
    return 0;
}

} // namespace

void CSignalList::ResizeSamples(std::uint32_t count) {
    for (const auto& signal : signals_) {
        signal->ResizeSamples(count);
    }
}

void CSignalList::RebuildRows(std::size_t start, std::uint32_t first, std::uint32_t count) {
    CSignal& head = *signals_[start];
    const std::size_t rowBytes = head.RowBytes();
    if (rowBytes == 0 || head.groupData.empty() || count == 0) {
        return;
    }
    const auto rowCount = static_cast<std::uint32_t>(head.groupData.size() / rowBytes);
    const std::size_t members = std::min<std::size_t>(head.groupWidth, signals_.size() - start);
    const std::uint64_t end = std::min<std::uint64_t>(std::uint64_t{first} + count, rowCount);
    // Rows are rebuilt in whole source words.
    for (std::uint64_t row = first / 32 * 32; row < end; row += chunkSamples) {
        const auto rows =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(chunkSamples, rowCount - row));
        const std::size_t word = row / 32;
        PackRows(members, rows, head.groupData.data() + row * rowBytes, rowBytes,
                 [&](std::size_t k) { return WordAt(signals_[start + k]->data, word); });
        if (!head.groupMask.empty()) {
            PackRows(members, rows, head.groupMask.data() + row * rowBytes, rowBytes,
                     [&](std::size_t k) { return WordAt(signals_[start + k]->mask, word); });
        }
    }
}

void CSignalList::RebuildGroupRows(std::uint32_t first, std::uint32_t count) {
    for (std::size_t i = 0; i < signals_.size(); ++i) {
        if (signals_[i]->IsGroupStart()) {
            RebuildRows(i, first, count);
        }
    }
}

void CSignalList::RebuildLabels(std::uint32_t first, std::uint32_t count) {
    for (const auto& signal : signals_) {
        if (signal->decoded) {
            LabelSamples(*signal, first, count, true);
        }
    }
}

void CSignalList::PrepareLabels(CSignal& signal) const {
    signal.labelTable.assign(signal.numSamples, 0);
    signal.labelLookup.clear();
    if (!signal.grouped || signal.groupWidth > lookupBits || !signal.groupMask.empty() ||
        !signal.mask.empty()) {
        return;
    }
    for (unsigned row = 0; row < 1U << lookupBits; ++row) {
        const auto byte = static_cast<std::uint8_t>(row);
        signal.labelLookup.push_back(FindLabel(*signal.decoded, mode, {&byte, 1}, {}, true));
    }
}

void CSignalList::LabelAll(CSignal& signal) const {
    LabelSamples(signal, 0, signal.numSamples, false);
}

void CSignalList::LabelSamples(CSignal& signal, std::uint32_t first, std::uint32_t count,
                               bool keepAny) const {
    const CDecodedSignalDef& def = *signal.decoded;
    const std::uint64_t end =
        std::min<std::uint64_t>(std::uint64_t{first} + count, signal.labelTable.size());
    if (!signal.groupData.empty()) {
        const std::size_t rowBytes = signal.RowBytes();
        for (std::uint64_t s = first; s < end; ++s) {
            const auto row = signal.GroupRow(s);
            if (keepAny && !signal.labelLookup.empty() && !row.empty()) {
                signal.labelTable[s] = signal.labelLookup[row[0]];
                continue;
            }
            const auto mask = signal.groupMask.empty()
                                  ? std::span<const std::uint8_t>()
                                  : std::span<const std::uint8_t>(
                                        signal.groupMask.data() + s * rowBytes, rowBytes);
            signal.labelTable[s] = row.empty() ? 0 : FindLabel(def, mode, row, mask, keepAny);
        }
        return;
    }
    const std::uint8_t ofZero = LastWithCode(def, CodeZero);
    const std::uint8_t ofOne = LastWithCode(def, CodeOne);
    const std::uint8_t ofAny = LastWithCode(def, CodeAny);
    for (std::uint64_t s = first; s < end; ++s) {
        const bool compared =
            signal.mask.empty() || (WordAt(signal.mask, s / 32) >> (s % 32) & 1) != 0;
        signal.labelTable[s] = !compared ? ofAny : signal.Bit(s) ? ofOne : ofZero;
    }
}

void CSignalList::LoadSamples(std::uint32_t first, std::span<const SampleRecord> records) {
    std::uint64_t next = first;
    while (!records.empty()) {
        const std::uint64_t chunk = next / chunkSamples;
        const std::uint64_t offset = next % chunkSamples;
        const auto part =
            records.first(std::min<std::size_t>(records.size(), chunkSamples - offset));
        const ChunkWords words = TransposeRecords(part);
        for (const auto& signal : signals_) {
            if (signal->dataIndex >= 0 && chunk < signal->data.size() &&
                next < signal->numSamples) {
                signal->data[chunk] |= words[static_cast<std::size_t>(signal->dataIndex)] << offset;
            }
        }
        RebuildGroupRows(static_cast<std::uint32_t>(next), static_cast<std::uint32_t>(part.size()));
        RebuildLabels(static_cast<std::uint32_t>(next), static_cast<std::uint32_t>(part.size()));
        next += part.size();
        records = records.subspan(part.size());
    }
}

void CSignalList::LoadSignal(CSignal* signal, std::uint32_t first,
                             std::span<const SampleRecord> records) {
    const std::size_t start = IndexOf(signal);
    const std::size_t end = signal->IsGroupStart() ? GroupEnd(start) : start + 1;
    for (std::size_t i = start; i < end; ++i) {
        signals_[i]->ResizeSamples(static_cast<std::uint32_t>(first + records.size()));
        signals_[i]->ExtractSamples(first, records);
    }
    const auto count = static_cast<std::uint32_t>(records.size());
    RebuildRows(start, first, count);
    if (signal->decoded) {
        LabelSamples(*signal, first, count, true);
    }
}

} // namespace busquill
