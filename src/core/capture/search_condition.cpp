#include "capture/search_condition.h"

#include "platform/near_names.h"
#include "platform/text.h"
#include "signals/signal_list.h"

#include <cctype>

namespace busquill {

namespace {

constexpr int digitBits = 4;
// Bits of a PCI sample that mark its phase.
constexpr int attributeBit = 93;
constexpr int addressBit = 95;
constexpr int commandBit = 64;
constexpr unsigned splitCompletion = 12;

/// The PCI phase in which a decoded value is shown.
enum class Phase { Any, Address, Data, AttributeOrSplit };

Phase PhaseOf(const NamedSignal& signal, const BoardTraits& board) {
    if (!signal.decoded || board.IsVmeFamily() || board.IsVsbFamily()) {
        return Phase::Any;
    }
    switch (signal.decoded->decodeKind) {
    case DecodeKind::Command:
    case DecodeKind::Address:
        return Phase::Address;
    case DecodeKind::Data:
        return Phase::Data;
    case DecodeKind::Tag:
    case DecodeKind::BusNumber:
    case DecodeKind::DeviceFunction:
    case DecodeKind::ByteCount:
    case DecodeKind::Attribute:
        return board.IsPciXMode() ? Phase::AttributeOrSplit : Phase::Any;
    default:
        return Phase::Any;
    }
}

std::size_t DigitCount(const NamedSignal& signal) {
    return (signal.positions.size() - 1) / digitBits + 1;
}

/// The text without the blanks that listings put between digits, and without a leading "0x", unless
/// the "0x" is part of a value with all its digits.
std::string DigitsOf(std::string_view text, std::size_t digits) {
    std::string found;
    for (const char c : text) {
        if (c != ' ' && c != '_') {
            found += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
    }
    return found.size() != digits && found.starts_with("0x") ? found.substr(2) : found;
}

/// Whether a line belongs to the upper half of a bus that has only the lower: the board leaves it
/// high, and a condition means it only by naming it.
bool IsBeyondBus(int position, const BoardTraits& board) {
    constexpr int upperData = 32;
    constexpr int upperEnables = 68;
    const bool isNarrow = board.bus.busWidth == 0 && !board.IsVmeFamily() && !board.IsVsbFamily();
    return isNarrow && ((position >= upperData && position < commandBit) ||
                        (position >= upperEnables && position < upperEnables + 4));
}

} // namespace

void SearchCondition::Bits::Set(int position, bool bit) noexcept {
    care.SetBit(position);
    value.SetBit(position, bit);
}

bool SearchCondition::Bits::Join(const Bits& other) noexcept {
    for (std::size_t i = 0; i < value.bytes.size(); ++i) {
        const unsigned shared = care.bytes[i] & other.care.bytes[i];
        if (((value.bytes[i] ^ other.value.bytes[i]) & shared) != 0) {
            return false;
        }
        care.bytes[i] |= other.care.bytes[i];
        value.bytes[i] |= other.value.bytes[i];
    }
    return true;
}

std::string SearchCondition::ParseDigits(std::string_view text, const NamedSignal& signal,
                                         const BoardTraits& board, Bits& bits) {
    const std::size_t all = DigitCount(signal);
    const std::string digits = DigitsOf(text, all);
    const auto wrong = [&] {
        const std::string labels =
            signal.decoded ? ListNearest(text, LabelsOf(*signal.decoded)) : "";
        return Printf("%s takes %zu hexadecimal digit%s, x for any%s%s; not \"%s\"",
                      signal.name.c_str(), all, all == 1 ? "" : "s",
                      labels.empty() ? "" : ", or a label: ", labels.c_str(),
                      std::string(text).c_str());
    };
    if (digits.empty() || digits.size() > all ||
        digits.find_first_not_of("0123456789abcdefx") != std::string::npos) {
        return wrong();
    }
    for (std::size_t i = 0; i < signal.positions.size(); ++i) {
        const std::size_t digit = i / digitBits;
        const char padding = IsBeyondBus(signal.positions[i], board) ? 'x' : '0';
        const char c = digit < digits.size() ? digits[digits.size() - 1 - digit] : padding;
        if (c != 'x') {
            const unsigned value = std::isdigit(static_cast<unsigned char>(c)) != 0
                                       ? static_cast<unsigned>(c - '0')
                                       : static_cast<unsigned>(c - 'a') + 10;
            bits.Set(signal.positions[i], (value >> (i % digitBits) & 1) != 0);
            // The topmost digit may have fewer than four bits.
            const std::size_t left = signal.positions.size() - digit * digitBits;
            if (left < digitBits && value >> left != 0) {
                return wrong();
            }
        }
    }
    return {};
}

std::string SearchCondition::ParseValue(std::string_view text, const NamedSignal& signal,
                                        const BoardTraits& board, std::vector<Bits>& ways) {
    const std::string_view value = Trim(text);
    if (signal.decoded && signal.decoded->ReadsAsLabel()) {
        for (const CDecodedValue& each : signal.decoded->values) {
            if (each.label[0] == '\0' || !EqualIgnoringCase(each.label, value)) {
                continue;
            }
            Bits bits;
            for (int p = 0; p < SampleRecord::bitCount; ++p) {
                const std::uint8_t code = each.pattern[static_cast<std::size_t>(p)];
                if (code == CodeZero || code == CodeOne) {
                    bits.Set(p, code == CodeOne);
                }
            }
            ways.push_back(bits);
        }
    }
    if (!ways.empty()) {
        return {};
    }
    ways.emplace_back();
    return ParseDigits(value, signal, board, ways.back());
}

std::vector<SearchCondition::Bits> SearchCondition::InPhase(const std::vector<Bits>& ways,
                                                            const NamedSignal& signal,
                                                            const BoardTraits& board) {
    const Phase phase = PhaseOf(signal, board);
    if (phase == Phase::Any) {
        return ways;
    }
    std::vector<Bits> found;
    for (Bits way : ways) {
        if (phase == Phase::AttributeOrSplit) {
            Bits split = way;
            way.Set(attributeBit, true);
            split.Set(attributeBit, false);
            split.Set(addressBit, true);
            Bits command;
            for (int i = 0; i < digitBits; ++i) {
                command.Set(commandBit + i, (splitCompletion >> i & 1) != 0);
            }
            if (split.Join(command)) {
                found.push_back(split);
            }
        } else {
            way.Set(addressBit, phase == Phase::Address);
            if (board.IsPciXMode()) {
                way.Set(attributeBit, false);
            }
        }
        found.push_back(way);
    }
    return found;
}

std::string SearchCondition::CheckPattern(std::string_view text) {
    const std::size_t sign = text.find('=');
    return sign == std::string_view::npos || sign == 0
               ? Printf("a pattern is NAME=VALUE, such as AD[31:0]=FEBF00xx; not \"%s\"",
                        std::string(text).c_str())
               : "";
}

std::string SearchCondition::Add(std::string_view text, const SignalTables& tables,
                                 std::initializer_list<const CSignalList*> lists) {
    if (std::string wrong = CheckPattern(text); !wrong.empty()) {
        return wrong;
    }
    const std::size_t sign = text.find('=');
    const std::string_view name = Trim(text.substr(0, sign));
    const auto signal = FindSignal(name, tables, lists);
    if (!signal) {
        return UnknownSignal(name, tables, lists);
    }
    std::vector<Bits> ways;
    if (std::string wrong = ParseValue(text.substr(sign + 1), *signal, tables.Board(), ways);
        !wrong.empty()) {
        return wrong;
    }
    std::vector<Bits> joined;
    for (const Bits& way : InPhase(ways, *signal, tables.Board())) {
        for (const Bits& before : ways_) {
            if (Bits both = before; both.Join(way)) {
                joined.push_back(both);
            }
        }
    }
    ways_ = std::move(joined);
    added_ = true;
    patterns_.clear();
    for (const Bits& way : ways_) {
        patterns_.emplace_back(way.value, way.care);
    }
    return {};
}

std::uint32_t SearchCondition::MatchesOf(std::span<const SampleRecord> records) const noexcept {
    std::uint32_t matches = 0;
    for (const RecordPattern& pattern : patterns_) {
        matches |= pattern.MatchesOf(records);
    }
    return matches;
}

} // namespace busquill
