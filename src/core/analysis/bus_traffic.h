#pragma once

#include "analysis/trace_summary.h"
#include "link/board_identity.h"
#include "signals/signal.h"
#include "signals/signal_tables.h"

#include <cstdint>
#include <memory>

namespace busquill {

/// Follows the transactions of one kind of bus, sample by sample.
class BusTraffic {
public:
    virtual ~BusTraffic() = default;

    /// Nobody uses the bus.
    [[nodiscard]] virtual bool IsIdle(const SampleRecord& record) const = 0;
    /// The next sample, so many nanoseconds after the one before.
    virtual void Take(const SampleRecord& record, std::int64_t elapsed) = 0;
    /// Fills in what was counted, with the transaction that is under way.
    virtual void Report(TraceSummary& summary) const = 0;
};

/// Null where the tables name no bus, only pins.
[[nodiscard]] std::unique_ptr<BusTraffic> MakeBusTraffic(const BoardTraits& board,
                                                         const SignalTables& tables);

[[nodiscard]] std::unique_ptr<BusTraffic> MakePciTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakePciXTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakeVmeTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakeVsbTraffic(const SignalTables& tables);

} // namespace busquill
