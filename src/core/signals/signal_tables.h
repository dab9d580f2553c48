/// What the 144 bits of a sample record mean on the board at hand.
#pragma once

#include "link/board_identity.h"
#include "platform/working_directory.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
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
constexpr std::uint32_t flagPermanent = 4;  // made, hidden unless shown, cannot be removed

/// When a decoded definition applies.
enum class DefCondition : std::uint32_t { Always, Pci32, Pci64, PciX, NotPciX };

/// Positions of a pattern table; a sample record has 144.
constexpr int patternPositions = 148;

/// Codes of a pattern.
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

    /// The flags for a mode; the two pattern modes share theirs; 0 for anything else.
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
    std::uint32_t skipModes = 0; // modes in which the value is not tried
};

class CDecodedSignalDef final : public CSignalDef {
public:
    std::vector<CDecodedValue> values; // in table order
    std::uint32_t labelWidth = 0;      // characters of the longest label
    std::string insertBefore;          // row before which it is placed; empty for none
    DecodeKind decodeKind = DecodeKind::Label;

    /// Positions of the first value's pattern that are part of the signal, ascending.
    [[nodiscard]] std::vector<int> Positions() const;
    /// Whether a cell shows labels. Other values are shown as such, and the label of their
    /// definition is only a picture of the field.
    [[nodiscard]] bool ReadsAsLabel() const noexcept {
        return decodeKind == DecodeKind::Label || decodeKind == DecodeKind::Command;
    }
};

/// The definitions of one kind, in table order, with the file that keeps their colours.
template <class Def>
class DefinitionTable {
public:
    explicit DefinitionTable(std::string colorFile) : colorFile_(std::move(colorFile)) {}

    [[nodiscard]] const std::vector<std::shared_ptr<Def>>& Defs() const noexcept { return defs_; }
    /// The first definition of exactly this name, or null.
    [[nodiscard]] std::shared_ptr<Def> FindByName(std::string_view name) const;
    /// Replaces the definitions and applies the colour file. Signals keep the old ones alive.
    void Replace(std::vector<std::shared_ptr<Def>> defs);
    void ApplyColorFile();
    /// Colours the first definition of exactly this name and writes the whole colour file anew.
    void SetColor(std::string_view name, std::uint32_t color);

private:
    std::string colorFile_;
    std::vector<std::shared_ptr<Def>> defs_;
};

/// The tables of one board. Main thread.
class SignalTables {
public:
    /// `board` tells what is connected, at each call.
    SignalTables(std::function<BoardTraits()> board, const WorkingDirectory& directory);
    SignalTables(const SignalTables&) = delete;
    SignalTables& operator=(const SignalTables&) = delete;

    /// Loads both tables for the board, the bus table first.
    void Load();
    [[nodiscard]] BoardTraits Board() const { return board_(); }

    DefinitionTable<CBusSignalDef> busSignals;
    DefinitionTable<CDecodedSignalDef> decodedSignals;

    /// The first bus definition whose positions cover the data index, or null.
    [[nodiscard]] std::shared_ptr<CBusSignalDef> FindBusDefByDataIndex(int index) const;
    /// Whether the definition's condition holds on the board at hand.
    [[nodiscard]] static bool Applies(DefCondition condition, const BoardTraits& board) noexcept;

private:
    std::function<BoardTraits()> board_;
};

} // namespace busquill
