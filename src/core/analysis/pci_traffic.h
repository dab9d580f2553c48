#pragma once

#include "analysis/bus_traffic.h"
#include "analysis/signal_lines.h"
#include "analysis/transaction_tally.h"

#include <memory>
#include <optional>
#include <string_view>

namespace busquill {

/// What the lines say in a clock behind the address phase.
struct PciClock {
    bool frame = false;
    bool irdy = false;
    bool trdy = false;
    bool stop = false;
    bool devsel = false;
    bool ack64 = false;
    std::uint32_t enables = 0; // a bit for each byte lane that is enabled, of all eight
};

/// What the target does in a clock; Over when it is done and the initiator is not yet.
enum class PciAnswer { Wait, Data, LastData, Retry, Disconnect, TargetAbort, SplitResponse, Over };

/// What is known of the transaction under way.
struct PciTransaction {
    Transaction sum;
    bool req64 = false;
    bool secondAddressDue = false;
    bool clocked = false; // a clock behind the address phase was there
    bool claimed = false; // DEVSEL was asserted
    bool stopped = false; // STOP was asserted
    // PCI-X, once there was an attribute phase.
    std::optional<std::uint32_t> attributeEnables;
    std::optional<std::uint32_t> bytesAnnounced; // that have not come yet
};

/// PCI: an address phase, or two with a dual address cycle, then clocks in which both sides say
/// whether they are ready.
class PciTraffic : public BusTraffic {
public:
    explicit PciTraffic(const SignalTables& tables) : PciTraffic(tables, "COMMAND") {}

    [[nodiscard]] bool IsIdle(const SampleRecord& record) const final;
    void Take(const SampleRecord& record, std::int64_t elapsed) final;
    void Report(TraceSummary& summary) const final;

protected:
    PciTraffic(const SignalTables& tables, std::string_view commandTable);

    [[nodiscard]] virtual bool IsAddressPhase(const SampleRecord& record) const;
    /// Whether the sample is the attribute phase of the transaction, which then knows it.
    virtual bool TakeAttributes(const SampleRecord& record, PciTransaction& open) const;
    [[nodiscard]] virtual PciAnswer AnswerOf(const PciClock& clock,
                                             const PciTransaction& open) const;
    /// Of a data phase.
    [[nodiscard]] virtual std::uint32_t TakeBytes(const PciClock& clock,
                                                  PciTransaction& open) const;
    /// Whether no data can follow this clock.
    [[nodiscard]] virtual bool IsLast(const PciClock& clock) const;

    /// The command itself, of a dual address cycle too.
    [[nodiscard]] static std::uint32_t CommandOf(std::uint32_t code) noexcept;
    /// Lanes that take part.
    [[nodiscard]] static std::uint32_t Width(const PciClock& clock,
                                             const PciTransaction& open) noexcept;

    SignalLine ad_, enables_, addressPhase_;

private:
    void TakeAddress(const SampleRecord& record);
    void TakeClock(const SampleRecord& record);
    [[nodiscard]] bool CarriesData(PciAnswer answer) const;
    void CountEnd(PciAnswer answer);
    void Close();
    [[nodiscard]] PciClock ClockOf(const SampleRecord& record) const;
    [[nodiscard]] CommandName NameOf(std::uint32_t code) const;

    SignalLine frame_, irdy_, trdy_, stop_, devsel_, req64_, ack64_;
    std::shared_ptr<const CDecodedSignalDef> commands_;

    TransactionTally tally_;
    std::optional<PciTransaction> open_;
    WaitStates waitStates_;
    std::uint64_t retries_ = 0;
    std::uint64_t disconnects_ = 0;
    std::uint64_t targetAborts_ = 0;
    std::uint64_t masterAborts_ = 0;
    std::uint64_t splitResponses_ = 0;
};

} // namespace busquill
