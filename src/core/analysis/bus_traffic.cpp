#include "analysis/bus_traffic.h"

namespace busquill {

std::unique_ptr<BusTraffic> MakeBusTraffic(const BoardTraits& board, const SignalTables& tables) {
    // The names in the tables decide, as for the listing; no two buses share these names.
    const auto has = [&](const char* name) {
        return tables.busSignals.FindByName(name) != nullptr;
    };
    if (has("FRAME")) {
        return board.IsPciXMode() ? MakePciXTraffic(tables) : MakePciTraffic(tables);
    }
    if (has("DTACK")) {
        return MakeVmeTraffic(tables);
    }
    return has("PAS") ? MakeVsbTraffic(tables) : nullptr;
}

} // namespace busquill
