/// A trigger program from two plain questions: what to trigger on, and what to store.
#pragma once

#include "tracesetup/trace_setup.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace busquill {

class Prompts;

/// An address or data value as the user entered it: none, one value or a range.
struct WizardValue {
    using Bytes = std::array<std::uint8_t, 8>; // little-endian; mask bit 1: compared

    bool single = false;
    bool range = false;
    Bytes low{};
    Bytes lowMask{};
    Bytes high{};
    Bytes highMask{};

    [[nodiscard]] bool IsGiven() const noexcept { return single || range; }
    friend bool operator==(const WizardValue&, const WizardValue&) = default;
};

/// Parses hexadecimal digits, "x" for any digit, and "to" between the ends of a range. Reports an
/// error to the user and returns nothing for other text.
[[nodiscard]] std::optional<WizardValue> ParseWizardValue(std::string_view text, Prompts& prompts);

enum class WizardCycle { Memory, Io, Configuration, All };

/// Directions by their index in the question.
namespace WizardDirection {
enum : std::size_t { Read = 0, Write = 1, Both = 2, VmeInterrupt = 2, VmeAll = 3 };
}

/// The answer to one of the two questions.
struct WizardAnswer {
    WizardCycle cycle = WizardCycle::All; // PCI only; VME has memory cycles only
    std::size_t direction = WizardDirection::Both;
    WizardValue address;
    WizardValue data;
};

/// Replaces the setup, its name included, by the program for the answers on its board.
void BuildWizardSetup(TraceSetup& setup, const WizardAnswer& trigger, const WizardAnswer& store);

} // namespace busquill
