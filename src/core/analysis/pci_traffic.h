#pragma once

#include "analysis/bus_traffic.h"
#include "analysis/signal_lines.h"

#include <memory>
#include <optional>
#include <string_view>

namespace busquill {

/// The control lines in a clock after the address phase.
struct PciClock {
    bool frame = false;
    bool irdy = false;
    bool trdy = false;
    bool stop = false;
    bool devsel = false;
    bool ack64 = false;
    std::uint32_t enables = 0; // a bit for each of the eight byte lanes, set if enabled
};

/// The target's response in a clock; Over when the target is done and the initiator is not yet.
enum class PciAnswer { Wait, Data, LastData, Retry, Disconnect, TargetAbort, SplitResponse, Over };

/// The transaction in progress.
struct PciTransaction {
    Transaction sum;
    bool req64 = false;
    bool secondAddressDue = false;
    std::uint64_t lowAddress = 0; // the first half of a dual address
    bool clocked = false;         // there was a clock after the address phase
    bool claimed = false;         // DEVSEL was asserted
    bool isWide = false;          // ACK64 was asserted with it, after REQ64
    bool frame = true;            // FRAME in the last clock
    // PCI-X only, after an attribute phase.
    std::optional<std::uint32_t> attributeEnables;
    std::optional<std::uint32_t> bytesAnnounced; // not transferred yet, also in disabled lanes
};

/// PCI: an address phase, or two with a dual address cycle, then clocks in which both sides signal
/// whether they are ready.
class PciTraffic : public BusTraffic {
public:
    explicit PciTraffic(const SignalTables& tables) : PciTraffic(tables, "COMMAND") {}

    [[nodiscard]] bool IsIdle(const SampleRecord& record) const final;
    [[nodiscard]] Transaction* Take(const TimedSample& sample) final;
    [[nodiscard]] const Transaction* Open() const final { return open_ ? &open_->sum : nullptr; }
    void Restart() final;
    void RestartAfter(const SampleRecord& before, bool begins) final;
    [[nodiscard]] CommandName NameOf(std::uint32_t command) const final;
    [[nodiscard]] std::vector<std::uint32_t> Commands() const final;
    [[nodiscard]] bool HasClock() const final { return true; }
    [[nodiscard]] int AddressDigits(const Transaction& transaction) const final;

protected:
    PciTraffic(const SignalTables& tables, std::string_view commandTable);

    [[nodiscard]] virtual bool IsAddressPhase(const SampleRecord& record) const;
    /// Whether the sample is the attribute phase of the transaction; then stores it there.
    virtual bool TakeAttributes(const SampleRecord& record, PciTransaction& open) const;
    [[nodiscard]] virtual PciAnswer AnswerOf(const PciClock& clock,
                                             const PciTransaction& open) const;
    /// The lanes of the bytes moved in a data phase.
    [[nodiscard]] virtual std::uint32_t TakeLanes(const PciClock& clock,
                                                  PciTransaction& open) const;
    /// Whether all has moved that the initiator announced.
    [[nodiscard]] virtual bool HasMovedAll(const PciTransaction& /*open*/) const { return false; }
    /// Whether this clock is the last that can move data.
    [[nodiscard]] virtual bool IsLast(const PciClock& clock) const;

    /// The command of a code; for a dual address cycle, the command that it carries.
    [[nodiscard]] static std::uint32_t CommandOf(std::uint32_t code) noexcept;
    /// The byte lanes of the agreed width.
    [[nodiscard]] static std::uint32_t Width(const PciTransaction& open) noexcept;

    SignalLine ad_, enables_, addressPhase_;

private:
    Transaction* TakeAddress(const TimedSample& sample);
    Transaction* TakeWithoutAddress(const TimedSample& sample);
    [[nodiscard]] bool FollowsUnseenAddress(const SampleRecord& record) const;
    Transaction* TakeClock(const TimedSample& sample);
    PciTransaction& Begin(const TimedSample& sample);
    /// Of a transaction that has one.
    static void SetAddress(Transaction& sum, std::uint64_t address);
    void TakeData(const TimedSample& sample, const PciClock& clock);
    [[nodiscard]] bool CarriesData(PciAnswer answer) const;
    /// How an answer ends the transaction; Unknown if it does not.
    [[nodiscard]] static TransactionEnd StopOf(PciAnswer answer);
    [[nodiscard]] static TransactionEnd EndOf(const PciTransaction& open, bool sawEnd);
    Transaction* Close(bool sawEnd);
    [[nodiscard]] PciClock ClockOf(const SampleRecord& record) const;

    SignalLine frame_, irdy_, trdy_, stop_, devsel_, req64_, ack64_;
    std::shared_ptr<const CDecodedSignalDef> commands_;

    std::optional<PciTransaction> open_;
    Transaction closed_;
    bool isFirst_ = true; // the next sample does not follow another
    // An address phase in the next sample is the second of a dual address.
    bool isSecondHalf_ = false;
};

} // namespace busquill
