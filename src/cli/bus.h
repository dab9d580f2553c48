#pragma once

#include "signals/signal_tables.h"

namespace busquill::cli {

struct Arguments;

/// The signal tables of the board and bus that the options name.
class Bus {
public:
    explicit Bus(const Arguments& arguments);

    [[nodiscard]] const BoardTraits& Board() const noexcept { return board_; }
    [[nodiscard]] SignalTables& Tables() noexcept { return tables_; }
    [[nodiscard]] const SignalTables& Tables() const noexcept { return tables_; }

private:
    BoardTraits board_;
    SignalTables tables_;
};

} // namespace busquill::cli
