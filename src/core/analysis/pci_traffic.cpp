#include "analysis/pci_traffic.h"

#include "analysis/value_labels.h"
#include "platform/text.h"

#include <bit>
#include <utility>

namespace busquill {

namespace {

constexpr std::uint32_t interruptAcknowledge = 0x0;
constexpr std::uint32_t specialCycle = 0x1;
constexpr std::uint32_t dualAddress = 0xD;
constexpr std::uint32_t lanes32 = 0x0F;
constexpr std::uint32_t lanes64 = 0xFF;

bool IsWrite(std::uint32_t command) {
    return (command & 1) != 0;
}

/// Whether the AD lines carry an address. An interrupt acknowledge and a special cycle speak to
/// nobody in particular.
bool HasAddress(std::uint32_t command) {
    return command != interruptAcknowledge && command != specialCycle;
}

} // namespace

PciTraffic::PciTraffic(const SignalTables& tables, std::string_view commandTable)
    : ad_(tables, "AD"), enables_(tables, "C/BE"), addressPhase_(tables, "ADR/DATA"),
      frame_(tables, "FRAME"), irdy_(tables, "IRDY"), trdy_(tables, "TRDY"), stop_(tables, "BSTOP"),
      devsel_(tables, "DEVSEL"), req64_(tables, "REQ64"), ack64_(tables, "ACK64"),
      commands_(tables.decodedSignals.FindByName(commandTable)) {}

bool PciTraffic::IsIdle(const SampleRecord& record) const {
    return !frame_.IsAsserted(record) && !irdy_.IsAsserted(record);
}

Transaction* PciTraffic::Take(const TimedSample& sample) {
    const bool isFirst = std::exchange(isFirst_, false);
    const bool isSecondHalf = std::exchange(isSecondHalf_, false);
    if (IsIdle(sample.record)) {
        return Close(true);
    }
    const bool isAddress = frame_.IsAsserted(sample.record) && IsAddressPhase(sample.record);
    if (isAddress && !isSecondHalf) {
        return TakeAddress(sample);
    }
    if (isFirst || isAddress || FollowsUnseenAddress(sample.record)) {
        return TakeWithoutAddress(sample);
    }
    if (!open_) {
        return nullptr;
    }
    open_->secondAddressDue = false;
    open_->sum.lastSample = sample.number;
    open_->sum.lastTime = sample.time;
    return TakeAttributes(sample.record, *open_) ? nullptr : TakeClock(sample);
}

void PciTraffic::Restart() {
    open_.reset();
    isFirst_ = true;
    isSecondHalf_ = false;
}

void PciTraffic::RestartAfter(const SampleRecord& before, bool begins) {
    open_.reset();
    isFirst_ = begins;
    isSecondHalf_ = !begins && frame_.IsAsserted(before) && IsAddressPhase(before) &&
                    (enables_.Value(before) & 0xF) == dualAddress;
}

PciTransaction& PciTraffic::Begin(const TimedSample& sample) {
    Transaction& sum = open_.emplace().sum;
    sum.sample = sum.lastSample = sample.number;
    sum.time = sum.lastTime = sample.time;
    return *open_;
}

Transaction* PciTraffic::TakeAddress(const TimedSample& sample) {
    const SampleRecord& record = sample.record;
    const std::uint32_t code = enables_.Value(record);
    const std::uint32_t command = code & 0xF;
    const std::uint64_t lines = ad_.Word(record);
    const std::uint64_t low = lines & 0xFFFFFFFF;
    if (open_ && open_->secondAddressDue) {
        Transaction& sum = open_->sum;
        sum.command = command << 4 | dualAddress;
        SetAddress(sum, open_->lowAddress | low << 32);
        sum.isHeadless = false;
        sum.lastSample = sample.number;
        sum.lastTime = sample.time;
        open_->secondAddressDue = false;
        return nullptr;
    }
    // If idle samples are not stored, the last clock tells whether the initiator wanted more.
    Transaction* const before = Close(open_ && !open_->frame);
    PciTransaction& open = Begin(sample);
    open.req64 = req64_.IsAsserted(record);
    open.lowAddress = low;
    open.secondAddressDue = command == dualAddress;
    // A 32-bit initiator does not drive C/BE[7:4] and AD[63:32]: it gives the command and the upper
    // half of the address only in the second phase.
    open.sum.isHeadless = open.secondAddressDue && !open.req64;
    if (!open.sum.isHeadless) {
        open.sum.command = open.secondAddressDue ? code : command;
        SetAddress(open.sum, open.secondAddressDue ? lines : low);
    }
    return before;
}

/// Whether a sample moves data of a transaction whose address was not stored: those so far are
/// over, or FRAME is asserted again, as it never is within one. A line that is asserted by mistake
/// does not make a transaction.
bool PciTraffic::FollowsUnseenAddress(const SampleRecord& record) const {
    if (open_ && (open_->frame || !frame_.IsAsserted(record))) {
        return false;
    }
    return irdy_.IsAsserted(record) && (trdy_.IsAsserted(record) || stop_.IsAsserted(record));
}

void PciTraffic::SetAddress(Transaction& sum, std::uint64_t address) {
    sum.address = HasAddress(CommandOf(sum.command)) ? std::optional(address) : std::nullopt;
}

/// The first sample of a transaction whose address is not among the samples.
Transaction* PciTraffic::TakeWithoutAddress(const TimedSample& sample) {
    Transaction* const before = Close(true);
    PciTransaction& open = Begin(sample);
    open.sum.isHeadless = true;
    const PciClock clock = ClockOf(sample.record);
    open.frame = clock.frame;
    return IsLast(clock) ? Close(true) : before; // with FRAME after one before, it is not the last
}

Transaction* PciTraffic::TakeClock(const TimedSample& sample) {
    const PciClock clock = ClockOf(sample.record);
    open_->clocked = true;
    open_->claimed |= clock.devsel;
    // ACK64 goes with DEVSEL, and the width stays after both: a target that takes one word only, or
    // splits, has released them when it says so.
    open_->isWide |= open_->req64 && clock.devsel && clock.ack64;
    open_->frame = clock.frame;
    if (!open_->sum.isHeadless) {
        const PciAnswer answer = AnswerOf(clock, *open_);
        open_->sum.waitStates.initiator += clock.irdy ? 0 : 1;
        // A special cycle speaks to all: nobody answers, and nobody waits for an answer.
        const bool isSpecial = CommandOf(open_->sum.command) == specialCycle;
        open_->sum.waitStates.target += answer == PciAnswer::Wait && !isSpecial ? 1 : 0;
        if (!open_->sum.HasEnd()) { // the target holds STOP until the initiator has seen it
            open_->sum.end = StopOf(answer);
        }
        const bool isMessage = isSpecial && open_->sum.dataPhases == 0;
        if (clock.irdy && (isMessage || CarriesData(answer))) {
            TakeData(sample, clock);
            if (!open_->sum.HasEnd() && HasMovedAll(*open_)) {
                open_->sum.end = TransactionEnd::Complete;
            }
        }
    }
    return IsLast(clock) ? Close(true) : nullptr;
}

void PciTraffic::TakeData(const TimedSample& sample, const PciClock& clock) {
    Transaction& sum = open_->sum;
    const std::uint32_t lanes = TakeLanes(clock, *open_);
    const bool isWide = Width(*open_) == lanes64;
    const std::uint64_t lines = ad_.Word(sample.record);
    ++sum.dataPhases;
    sum.bytes += static_cast<std::uint32_t>(std::popcount(lanes));
    AddWord(sum, {isWide ? lines : lines & 0xFFFFFFFF, static_cast<std::uint8_t>(isWide ? 8 : 4),
                  static_cast<std::uint8_t>(lanes)});
    if (!sum.firstData) {
        sum.firstData = sample.time;
    }
}

bool PciTraffic::CarriesData(PciAnswer answer) const {
    if (answer == PciAnswer::SplitResponse) {
        // Data that are read come with the split completion.
        return IsWrite(CommandOf(open_->sum.command));
    }
    return answer == PciAnswer::Data || answer == PciAnswer::LastData;
}

TransactionEnd PciTraffic::StopOf(PciAnswer answer) {
    switch (answer) {
    case PciAnswer::Retry:
        return TransactionEnd::Retry;
    case PciAnswer::LastData:
        return TransactionEnd::DisconnectWithData;
    case PciAnswer::Disconnect:
        return TransactionEnd::DisconnectWithoutData;
    case PciAnswer::TargetAbort:
        return TransactionEnd::TargetAbort;
    case PciAnswer::SplitResponse:
        return TransactionEnd::SplitResponse;
    case PciAnswer::Wait:
    case PciAnswer::Data:
    case PciAnswer::Over:
        break;
    }
    return TransactionEnd::Unknown;
}

TransactionEnd PciTraffic::EndOf(const PciTransaction& open, bool sawEnd) {
    if (open.sum.HasEnd()) {
        return open.sum.end;
    }
    // If only address phases were stored, it is unknown whether a target answered.
    if (!sawEnd || !open.clocked || open.sum.isHeadless) {
        return TransactionEnd::Unknown;
    }
    if (CommandOf(open.sum.command) == specialCycle) {
        return TransactionEnd::Complete;
    }
    if (open.sum.dataPhases != 0) { // after a reset, the initiator may still have wanted more
        return open.frame ? TransactionEnd::Unknown : TransactionEnd::Complete;
    }
    return open.claimed ? TransactionEnd::Unknown : TransactionEnd::MasterAbort;
}

Transaction* PciTraffic::Close(bool sawEnd) {
    if (!open_) {
        return nullptr;
    }
    open_->sum.end = EndOf(*open_, sawEnd);
    closed_ = std::move(open_->sum);
    open_.reset();
    return &closed_;
}

int PciTraffic::AddressDigits(const Transaction& transaction) const {
    return (transaction.command & 0xF) == dualAddress ? 16 : 8;
}

bool PciTraffic::IsAddressPhase(const SampleRecord& record) const {
    return addressPhase_.IsHigh(record);
}

bool PciTraffic::TakeAttributes(const SampleRecord& /*record*/, PciTransaction& /*open*/) const {
    return false;
}

PciAnswer PciTraffic::AnswerOf(const PciClock& clock, const PciTransaction& open) const {
    if (!clock.stop) {
        return clock.trdy ? PciAnswer::Data : PciAnswer::Wait;
    }
    if (!clock.devsel) {
        return PciAnswer::TargetAbort;
    }
    if (clock.trdy) {
        return PciAnswer::LastData;
    }
    return open.sum.dataPhases == 0 ? PciAnswer::Retry : PciAnswer::Disconnect;
}

std::uint32_t PciTraffic::TakeLanes(const PciClock& clock, PciTransaction& open) const {
    return clock.enables & Width(open);
}

bool PciTraffic::IsLast(const PciClock& clock) const {
    return !clock.frame && (clock.trdy || clock.stop);
}

std::uint32_t PciTraffic::CommandOf(std::uint32_t code) noexcept {
    return (code & 0xF) == dualAddress ? code >> 4 : code;
}

std::uint32_t PciTraffic::Width(const PciTransaction& open) noexcept {
    return open.isWide ? lanes64 : lanes32;
}

PciClock PciTraffic::ClockOf(const SampleRecord& record) const {
    PciClock clock;
    clock.frame = frame_.IsAsserted(record);
    clock.irdy = irdy_.IsAsserted(record);
    clock.trdy = trdy_.IsAsserted(record);
    clock.stop = stop_.IsAsserted(record);
    clock.devsel = devsel_.IsAsserted(record);
    clock.ack64 = ack64_.IsAsserted(record);
    clock.enables = enables_.Asserted(record);
    return clock;
}

CommandName PciTraffic::NameOf(std::uint32_t code) const {
    if (const auto label = FindLabel(*commands_, code)) {
        return {label->row, label->text};
    }
    const std::uint32_t command = CommandOf(code);
    const bool dual = command != code;
    const auto plain = FindLabel(*commands_, command);
    const std::string text = plain && dual ? plain->text : Printf("C/BE %X", command);
    return {commands_->values.size() + code, (dual ? "DAC-" : "") + text};
}

std::vector<std::uint32_t> PciTraffic::Commands() const {
    std::vector<std::uint32_t> codes;
    for (std::uint32_t command = 0; command <= 0xF; ++command) {
        codes.insert(codes.end(), {command, command << 4 | dualAddress});
    }
    return codes;
}

std::unique_ptr<BusTraffic> MakePciTraffic(const SignalTables& tables) {
    return std::make_unique<PciTraffic>(tables);
}

} // namespace busquill
