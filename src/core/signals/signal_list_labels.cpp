/// Labels of decoded signals: which value of a definition a sample shows.
#include "signals/signal_list.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace busquill {

namespace {

/// The bits of a packed row, enough for the positions of any pattern.
struct RowBits {
    static constexpr std::size_t capacity = 192;
    static_assert(capacity >= patternPositions);

    std::array<std::uint64_t, capacity / 64> words{};

    static RowBits Of(std::span<const std::uint8_t> row) noexcept {
        RowBits bits;
        for (std::size_t i = 0; i < std::min(row.size(), capacity / 8); ++i) {
            bits.words[i / 8] |= std::uint64_t{row[i]} << (i % 8 * 8);
        }
        return bits;
    }
    void Set(std::size_t bit) { SetBit(words, bit); }
    [[nodiscard]] RowBits operator&(const RowBits& other) const noexcept {
        RowBits result;
        for (std::size_t i = 0; i < words.size(); ++i) {
            result.words[i] = words[i] & other.words[i];
        }
        return result;
    }
    friend bool operator==(const RowBits&, const RowBits&) = default;
};

/// A value of a definition as bits of the packed row.
struct RowValue {
    RowBits value;          // bits that must be set
    RowBits compare;        // bits that are compared at all
    RowBits used;           // bits that belong to the value
    std::uint8_t label = 0; // as in CSignal::labelTable
    bool comparesNothing = true;
};

RowValue MakeRowValue(const CDecodedValue& value, std::size_t index) {
    RowValue result;
    result.label = static_cast<std::uint8_t>(index + 1);
    std::size_t bit = 0;
    for (const std::uint8_t code : value.pattern) {
        if (code == CodeUnused) {
            continue;
        }
        result.used.Set(bit);
        if (code == CodeZero || code == CodeOne) {
            result.compare.Set(bit);
            result.comparesNothing = false;
        }
        if (code == CodeOne) {
            result.value.Set(bit);
        }
        ++bit;
    }
    return result;
}

/// Looks up the label of packed rows.
class RowLabels {
public:
    RowLabels(const CDecodedSignalDef& def, std::uint32_t mode) {
        const std::size_t count = std::min(def.values.size(), mostLabels);
        for (std::size_t i = 0; i < count; ++i) {
            if ((def.values[i].skipModes & mode) == 0) {
                values_.push_back(MakeRowValue(def.values[i], i));
            }
        }
    }

    /// A signal that gets a new definition takes no label from a value that compares nothing.
    void DropAllAny() {
        std::erase_if(values_, [](const RowValue& value) { return value.comparesNothing; });
    }

    /// Builds a table of the labels of all one-byte rows.
    void Tabulate() {
        for (unsigned row = 0; row < table_.size(); ++row) {
            const auto byte = static_cast<std::uint8_t>(row);
            table_[row] = Find(RowBits::Of({&byte, 1}));
        }
    }
    [[nodiscard]] std::uint8_t Tabulated(std::uint8_t row) const noexcept { return table_[row]; }

    [[nodiscard]] bool AnyMatchesFirst() const noexcept {
        return !values_.empty() && values_.front().comparesNothing;
    }
    [[nodiscard]] std::uint8_t First() const noexcept { return values_.front().label; }
    [[nodiscard]] bool Empty() const noexcept { return values_.empty(); }

    [[nodiscard]] std::uint8_t Find(const RowBits& row) const noexcept {
        const auto found = std::find_if(values_.begin(), values_.end(), [&](const RowValue& each) {
            return (row & each.compare) == each.value;
        });
        return found == values_.end() ? 0 : found->label;
    }
    /// The label of a row with a mask: the mask must select exactly the bits that the value
    /// compares.
    [[nodiscard]] std::uint8_t Find(const RowBits& row, const RowBits& mask) const noexcept {
        const auto found = std::find_if(values_.begin(), values_.end(), [&](const RowValue& each) {
            return (row & each.compare) == each.value && (mask & each.used) == each.compare;
        });
        return found == values_.end() ? 0 : found->label;
    }

private:
    static constexpr std::size_t mostLabels = std::numeric_limits<std::uint8_t>::max();

    std::vector<RowValue> values_;
    std::array<std::uint8_t, 256> table_{};
};

/// Number of samples from which a table of all rows is cheaper than looking up each row.
constexpr std::size_t worthTabulating = 256;

void LabelRows(CSignal& signal, RowLabels& labels, std::size_t first, std::size_t end) {
    std::uint8_t* const out = signal.labelTable.data();
    if (!signal.groupMask.empty()) {
        for (std::size_t s = first; s < end; ++s) {
            out[s] =
                labels.Find(RowBits::Of(signal.GroupRow(s)), RowBits::Of(signal.GroupMaskRow(s)));
        }
    } else if (labels.Empty() || labels.AnyMatchesFirst()) {
        std::fill(out + first, out + end, labels.Empty() ? std::uint8_t{0} : labels.First());
    } else if (signal.RowBytes() == 1 && end - first >= worthTabulating) {
        labels.Tabulate();
        for (std::size_t s = first; s < end; ++s) {
            out[s] = labels.Tabulated(signal.groupData[s]);
        }
    } else {
        for (std::size_t s = first; s < end; ++s) {
            out[s] = labels.Find(RowBits::Of(signal.GroupRow(s)));
        }
    }
}

/// A single bit has a label for each of its states: that of the last value with the state's code.
void LabelBits(CSignal& signal, std::size_t first, std::size_t end) {
    std::array<std::uint8_t, 4> labelOfCode{};
    const auto& values = signal.decoded->values;
    const std::size_t most = std::numeric_limits<std::uint8_t>::max();
    for (std::size_t i = 0; i < std::min(values.size(), most); ++i) {
        for (const std::uint8_t code : values[i].pattern) {
            labelOfCode[code & 3U] = static_cast<std::uint8_t>(i + 1);
        }
    }
    for (std::size_t s = first; s < end; ++s) {
        const PatternCode state = signal.Bit(s) ? CodeOne : CodeZero;
        signal.labelTable[s] = labelOfCode[signal.MaskBit(s) ? state : CodeAny];
    }
}

void LabelSamples(CSignal& signal, RowLabels&& labels, std::size_t first, std::size_t end) {
    end = std::min(end, signal.labelTable.size());
    if (signal.groupData.empty()) {
        LabelBits(signal, first, end);
        return;
    }
    // Samples without a row have no label.
    const std::size_t rows = signal.groupData.size() / signal.RowBytes();
    LabelRows(signal, labels, std::min(first, rows), std::min(end, rows));
}

} // namespace

void CSignalList::Decode(CSignal& signal) const {
    signal.labelTable.Reset(signal.Room());
    RowLabels labels(*signal.decoded, mode);
    if (signal.groupMask.empty()) {
        labels.DropAllAny();
    }
    LabelSamples(signal, std::move(labels), 0, signal.labelTable.size());
}

void CSignalList::LabelRange(std::size_t begin, std::size_t end, std::size_t first,
                             std::size_t count) {
    for (std::size_t i = begin; i < end; ++i) {
        CSignal& signal = *signals_[i];
        if (signal.decoded && first < signal.labelTable.size()) {
            LabelSamples(signal, RowLabels(*signal.decoded, mode), first, first + count);
        }
    }
}

void CSignalList::RebuildLabels(std::uint32_t first, std::uint32_t count) {
    LabelRange(0, signals_.size(), first, count);
}

} // namespace busquill
