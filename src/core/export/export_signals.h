#pragma once

#include "link/board_identity.h"
#include "signals/record_field.h"
#include "signals/signal_list.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace busquill {

/// Which rows of a list are seen: those of a listing by their width, waves by their height.
enum class ListUse { State, Wave };

/// A signal that is exported: a bit, a bus, or a decoded value.
struct ExportSignal {
    const CSignal* signal = nullptr;
    std::string name;
    RecordField field{std::vector<int>()};

    [[nodiscard]] bool IsDecoded() const noexcept { return signal->decoded != nullptr; }
};

/// The signals of a list that are seen and stand for bits, in their order.
[[nodiscard]] std::vector<ExportSignal> ExportSignals(const CSignalList& list, ListUse use);

/// What a decoded signal reads for a sample, as the listing has it. Texts are kept while the value
/// and what stands around it come again, which they mostly do.
class DecodedText {
public:
    DecodedText(SignalTables& tables, const BoardTraits& board, const ExportSignal& signal,
                bool zoom);

    [[nodiscard]] const std::string& Of(const SampleRecord& record);
    /// Which digits of the value the listing shows, bit 0 the last one: some are blank where byte
    /// lanes are off, all of them in another phase of the bus. All where it shows something else
    /// than hexadecimal digits.
    [[nodiscard]] std::uint64_t ShownDigits(const SampleRecord& record);
    static constexpr std::uint64_t allDigits = ~std::uint64_t{0};
    static constexpr std::size_t digitBits = 4;
    /// Characters of the longest text that there can be.
    [[nodiscard]] std::size_t Longest() const;

private:
    [[nodiscard]] std::string Read(const SampleRecord& record);
    [[nodiscard]] std::uint64_t DigitsIn(const std::string& text) const;

    BoardTraits board_;
    RecordField field_;
    bool zoom_;
    CSignalList list_; // the signal alone, with one sample
    std::vector<std::uint8_t> value_;
    std::vector<std::uint8_t> next_;
    std::uint16_t surroundings_ = 0;
    bool hasLabels_ = false;
    std::unordered_map<std::uint16_t, std::uint64_t> shown_; // by what stands around the value
    std::unordered_map<std::uint64_t, std::string> kept_;
    const std::string* text_ = nullptr; // of the sample before
};

/// The time of each sample: the running sum of TIME, from 0 for the first on, so that gaps between
/// samples stay true. Nanoseconds, or picoseconds for Power Zoom samples. Records hold it whether a
/// list shows it or not.
class ExportTime {
public:
    [[nodiscard]] std::int64_t Next(const SampleRecord& record) noexcept {
        if (std::exchange(begun_, true)) {
            time_.Add(record);
        }
        return time_.Sum();
    }

private:
    RunningTime time_;
    bool begun_ = false;
};

} // namespace busquill
