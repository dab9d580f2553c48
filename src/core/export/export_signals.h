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

class TraceStream;

/// Which rows of a list are visible: in a listing those with a width, among waves those with a
/// height.
enum class ListUse { State, Wave };

/// The list of a capture whose signals are exported.
struct ExportList {
    const CSignalList& list;
    ListUse use;
};
/// With `zoom`, the list of the Power Zoom. Otherwise that of the waveforms, or that of the listing
/// if the file has no other.
[[nodiscard]] ExportList ListToExport(const TraceStream& stream, bool zoom);

/// A signal that is exported: a bit, a bus, or a decoded value.
struct ExportSignal {
    const CSignal* signal = nullptr;
    std::string name;
    RecordField field{std::vector<int>()};

    [[nodiscard]] bool IsDecoded() const noexcept { return signal->decoded != nullptr; }
};

/// The visible signals of a list that show bits, in order.
[[nodiscard]] std::vector<ExportSignal> ExportSignals(const CSignalList& list, ListUse use);

/// The text of a decoded signal in a sample, as in the listing. Texts are cached by the value and
/// its surroundings, which mostly repeat.
class DecodedText {
public:
    DecodedText(SignalTables& tables, const BoardTraits& board, const ExportSignal& signal,
                bool zoom);

    [[nodiscard]] const std::string& Of(const SampleRecord& record);
    /// Which digits of the value the listing shows; bit 0 is the last digit. Digits of disabled
    /// byte lanes are blank, and all digits in another phase of the bus. allDigits where the
    /// listing shows something other than hexadecimal digits.
    [[nodiscard]] std::uint64_t ShownDigits(const SampleRecord& record);
    static constexpr std::uint64_t allDigits = ~std::uint64_t{0};
    static constexpr std::size_t digitBits = 4;
    /// Length of the longest possible text in characters.
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
    std::unordered_map<std::uint16_t, std::uint64_t> shown_; // by the value's surroundings
    std::unordered_map<std::uint64_t, std::string> kept_;
    const std::string* text_ = nullptr; // of the previous sample
};

/// The time of each sample: the running sum of TIME, starting with 0 at the first sample, which
/// keeps gaps between samples. Nanoseconds, or picoseconds for Power Zoom samples. Taken from the
/// records, so no list needs to show TIME.
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
