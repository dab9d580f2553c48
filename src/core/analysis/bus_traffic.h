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

    /// Whether the bus is idle in a sample.
    [[nodiscard]] virtual bool IsIdle(const SampleRecord& record) const = 0;
    /// Adds the next sample, `elapsed` nanoseconds after the one before.
    virtual void Take(const SampleRecord& record, std::int64_t elapsed) = 0;
    /// Fills in the counts, including the transaction in progress.
    virtual void Report(TraceSummary& summary) const = 0;
};

/// Null for a connector, whose tables name only pins.
[[nodiscard]] std::unique_ptr<BusTraffic> MakeBusTraffic(const BoardTraits& board,
                                                         const SignalTables& tables);

[[nodiscard]] std::unique_ptr<BusTraffic> MakePciTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakePciXTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakeVmeTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakeVsbTraffic(const SignalTables& tables);

} // namespace busquill
