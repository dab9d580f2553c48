#include "analysis/pci_traffic.h"

#include "analysis/value_labels.h"
#include "platform/text.h"

#include <bit>

namespace busquill {

namespace {

constexpr std::uint32_t specialCycle = 0x1;
constexpr std::uint32_t dualAddress = 0xD;
constexpr std::uint32_t lanes32 = 0x0F;
constexpr std::uint32_t lanes64 = 0xFF;

bool IsWrite(std::uint32_t command) {
    return (command & 1) != 0;
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

void PciTraffic::Take(const SampleRecord& record, std::int64_t /*elapsed*/) {
    if (IsIdle(record)) {
        Close();
    } else if (frame_.IsAsserted(record) && IsAddressPhase(record)) {
        TakeAddress(record);
    } else if (open_) {
        open_->secondAddressDue = false;
        if (!TakeAttributes(record, *open_)) {
            TakeClock(record);
        }
    }
}

void PciTraffic::TakeAddress(const SampleRecord& record) {
    const std::uint32_t code = enables_.Value(record);
    const std::uint32_t command = code & 0xF;
    if (open_ && open_->secondAddressDue) {
        // A 32-bit initiator gives the command only here: it does not drive C/BE[7:4].
        open_->sum.command = command << 4 | dualAddress;
        open_->secondAddressDue = false;
        return;
    }
    Close();
    open_.emplace();
    open_->sum.command = command == dualAddress ? code : command;
    open_->secondAddressDue = command == dualAddress;
    open_->req64 = req64_.IsAsserted(record);
}

void PciTraffic::TakeClock(const SampleRecord& record) {
    const PciClock clock = ClockOf(record);
    open_->clocked = true;
    open_->claimed |= clock.devsel;
    const PciAnswer answer = AnswerOf(clock, *open_);
    waitStates_.initiator += clock.irdy ? 0 : 1;
    waitStates_.target += answer == PciAnswer::Wait ? 1 : 0;
    CountEnd(answer);
    open_->stopped |= clock.stop;
    if (clock.irdy && CarriesData(answer)) {
        ++open_->sum.dataPhases;
        open_->sum.bytes += TakeBytes(clock, *open_);
    }
    if (IsLast(clock)) {
        Close();
    }
}

bool PciTraffic::CarriesData(PciAnswer answer) const {
    if (answer == PciAnswer::SplitResponse) {
        // Data that are read come with the split completion.
        return IsWrite(CommandOf(open_->sum.command));
    }
    return answer == PciAnswer::Data || answer == PciAnswer::LastData;
}

void PciTraffic::CountEnd(PciAnswer answer) {
    if (answer == PciAnswer::SplitResponse) {
        ++splitResponses_;
    }
    if (open_->stopped) {
        return; // the target holds STOP until the initiator has seen it
    }
    retries_ += answer == PciAnswer::Retry ? 1 : 0;
    disconnects_ += answer == PciAnswer::Disconnect || answer == PciAnswer::LastData ? 1 : 0;
    targetAborts_ += answer == PciAnswer::TargetAbort ? 1 : 0;
}

void PciTraffic::Close() {
    if (!open_) {
        return;
    }
    tally_.Add(open_->sum);
    // If only address phases were stored, it is unknown whether a target answered.
    const bool unanswered =
        open_->clocked && !open_->claimed && !open_->stopped && open_->sum.dataPhases == 0;
    if (unanswered && CommandOf(open_->sum.command) != specialCycle) {
        ++masterAborts_;
    }
    open_.reset();
}

void PciTraffic::Report(TraceSummary& summary) const {
    TransactionTally tally = tally_;
    if (open_) {
        tally.Add(open_->sum);
        summary.unfinished = 1;
    }
    tally.Report(summary, [this](std::uint32_t code) { return NameOf(code); });
    summary.waitStates = waitStates_;
    summary.retries = retries_;
    summary.disconnects = disconnects_;
    summary.targetAborts = targetAborts_;
    summary.masterAborts = masterAborts_;
    summary.splitResponses = splitResponses_;
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

std::uint32_t PciTraffic::TakeBytes(const PciClock& clock, PciTransaction& open) const {
    return static_cast<std::uint32_t>(std::popcount(clock.enables & Width(clock, open)));
}

bool PciTraffic::IsLast(const PciClock& clock) const {
    return !clock.frame && (clock.trdy || clock.stop);
}

std::uint32_t PciTraffic::CommandOf(std::uint32_t code) noexcept {
    return (code & 0xF) == dualAddress ? code >> 4 : code;
}

std::uint32_t PciTraffic::Width(const PciClock& clock, const PciTransaction& open) noexcept {
    return open.req64 && clock.ack64 ? lanes64 : lanes32;
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

std::unique_ptr<BusTraffic> MakePciTraffic(const SignalTables& tables) {
    return std::make_unique<PciTraffic>(tables);
}

} // namespace busquill
