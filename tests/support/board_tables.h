#pragma once

#include "signals/signal_tables.h"

namespace busquill::test {

/// The signal tables of a board, given by its model.
class BoardTables {
public:
    explicit BoardTables(const std::string& model, std::int32_t mode = BusPci,
                         std::int32_t width = 0, const std::string& directory = "/nonexistent")
        : board{model, model == "Demo Mode", {mode, width, 0, 0, 0}},
          tables([this] { return board; }, WorkingDirectory(directory)) {
        tables.Load();
    }

    BoardTraits board;
    SignalTables tables;
};

/// Tables without definitions, for lists whose signals are added by hand.
inline SignalTables& NoTables() {
    static SignalTables none([] { return BoardTraits(); }, WorkingDirectory("/nonexistent"));
    return none;
}

} // namespace busquill::test
