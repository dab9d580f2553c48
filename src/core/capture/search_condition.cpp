#include "capture/search_condition.h"

#include "capture/signal_bits.h"
#include "platform/near_names.h"
#include "platform/text.h"
#include "signals/signal_list.h"

#include <cctype>

namespace busquill {

namespace {

constexpr int digitBits = 4;

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

} // namespace

std::string SearchCondition::ParseDigits(std::string_view text, const NamedSignal& signal,
                                         const BoardTraits& board, RecordBits& bits) {
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
                                        const BoardTraits& board, std::vector<RecordBits>& ways) {
    const std::string_view value = Trim(text);
    if (signal.decoded && signal.decoded->ReadsAsLabel()) {
        for (const CDecodedValue& each : signal.decoded->values) {
            if (each.label[0] == '\0' || !EqualIgnoringCase(each.label, value)) {
                continue;
            }
            ways.push_back(BitsOf(each));
        }
    }
    if (!ways.empty()) {
        return {};
    }
    ways.emplace_back();
    return ParseDigits(value, signal, board, ways.back());
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
    std::vector<RecordBits> ways;
    if (std::string wrong = ParseValue(text.substr(sign + 1), *signal, tables.Board(), ways);
        !wrong.empty()) {
        return wrong;
    }
    std::vector<RecordBits> joined;
    for (const RecordBits& way : InPhase(ways, *signal, tables.Board())) {
        for (const RecordBits& before : ways_) {
            if (RecordBits both = before; both.Join(way)) {
                joined.push_back(both);
            }
        }
    }
    ways_ = std::move(joined);
    added_ = true;
    patterns_.clear();
    for (const RecordBits& way : ways_) {
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
