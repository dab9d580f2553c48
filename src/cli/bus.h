#pragma once

#include "signals/signal_tables.h"

#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace busquill::cli {

/// The options that say how a capture is read.
struct BusOptions {
    std::string model; // empty: any that has the bus
    std::optional<std::int32_t> mode;
    std::int32_t width = 0; // as in BusConfig
};
/// The option that names the bus, as "--bus VMEP2".
[[nodiscard]] std::string NameOf(const BusOptions& options);
void AddBusOptions(CLI::App& command, BusOptions& into);

/// The signal tables of the board and bus that the options name.
class Bus {
public:
    /// Throws ExitRequest if the model has no such bus.
    explicit Bus(const BusOptions& options);

    [[nodiscard]] const BoardTraits& Board() const noexcept { return board_; }
    [[nodiscard]] SignalTables& Tables() noexcept { return tables_; }
    [[nodiscard]] const SignalTables& Tables() const noexcept { return tables_; }

private:
    BoardTraits board_;
    SignalTables tables_;
};

} // namespace busquill::cli
