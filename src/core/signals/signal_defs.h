/// The definitions of a board's signals, and how their bits are decoded.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace busquill {

/// What a list of signals is for. Picks the column of flags in the definition tables.
enum SignalMode : std::uint32_t {
    ModeState = 1,
    ModeWaveform = 2,
    ModeEvents = 4,
    ModeStimulus = 8
};

/// Bits of a definition's flags.
constexpr std::uint32_t flagShown = 1;      // a signal is added by default
constexpr std::uint32_t flagNotOffered = 2; // not offered to the user
constexpr std::uint32_t flagPermanent = 4; // always created, hidden unless shown, cannot be removed

/// When a decoded definition applies.
enum class DefCondition : std::uint32_t { Always, Pci32, Pci64, PciX, NotPciX };

/// Positions of a pattern table; a sample record has 144.
constexpr int patternPositions = 148;

/// Codes in a pattern.
enum PatternCode : std::uint8_t { CodeZero = 0, CodeOne = 1, CodeUnused = 2, CodeAny = 3 };

/// How a decoded cell is printed.
enum class DecodeKind : std::uint32_t {
    Label = 0,
    Data = 1,
    Address = 2,
    Command = 3,
    Time = 4,
    Delta = 5,
    Sample = 6,
    Tag = 7,
    BusNumber = 8,
    DeviceFunction = 9,
    ByteCount = 10,
    Attribute = 11,
    Plain = 12,
    DataVme = 13,
    AddressVme = 14,
    DataVsb = 15,
    AddressVsb = 16,
    Accum = 17,
};

class CSignalDef {
public:
    virtual ~CSignalDef() = default;

    std::string name;
    std::uint32_t defKind = 0; // 0 bus, 1 decoded
    std::uint32_t stateFlags = 0;
    std::uint32_t waveformFlags = 0;
    std::uint32_t eventFlags = 0;
    std::uint32_t color = 0; // 0x00BBGGRR
    DefCondition condition = DefCondition::Always;

    /// The flags for a mode; both pattern modes use the same flags; 0 for other values.
    [[nodiscard]] std::uint32_t FlagsFor(std::uint32_t mode) const noexcept;
};

class CBusSignalDef final : public CSignalDef {
public:
    std::int32_t firstPosition = 0; // the lower index
    std::int32_t lastPosition = 0;
    std::int32_t dataIndex = 0; // sample record bit of position 0
    bool bitReverse = false;

    [[nodiscard]] std::int32_t Width() const noexcept { return lastPosition - firstPosition + 1; }
};

struct CDecodedValue {
    const char* label = nullptr; // table text
    std::array<std::uint8_t, patternPositions> pattern{};
    std::uint32_t skipModes = 0; // modes in which the value is not matched
};

class CDecodedSignalDef final : public CSignalDef {
public:
    std::vector<CDecodedValue> values; // in table order
    std::uint32_t labelWidth = 0;      // characters of the longest label
    std::string insertBefore;          // row before which it is inserted; empty for none
    DecodeKind decodeKind = DecodeKind::Label;

    /// Positions of the first value's pattern that are part of the signal, ascending.
    [[nodiscard]] std::vector<int> Positions() const;
    /// Whether a cell shows labels. Otherwise it shows the value itself, and the definition's label
    /// is only a template of its digits.
    [[nodiscard]] bool ReadsAsLabel() const noexcept {
        return decodeKind == DecodeKind::Label || decodeKind == DecodeKind::Command;
    }
};

} // namespace busquill
