/// What the 144 bits of a sample record mean on the connected board.
#pragma once

#include "link/board_identity.h"
#include "platform/working_directory.h"
#include "signals/signal_defs.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

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
    /// Colours the first definition of exactly this name and rewrites the whole colour file.
    void SetColor(std::string_view name, std::uint32_t color);

private:
    std::string colorFile_;
    std::vector<std::shared_ptr<Def>> defs_;
};

/// The tables of one board. Main thread.
class SignalTables {
public:
    /// `board` returns the traits of the board that is connected at the time of the call.
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
    /// Whether the definition's condition holds on this board.
    [[nodiscard]] static bool Applies(DefCondition condition, const BoardTraits& board) noexcept;

private:
    std::function<BoardTraits()> board_;
};

} // namespace busquill
