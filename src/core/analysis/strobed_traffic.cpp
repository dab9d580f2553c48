#include "analysis/strobed_traffic.h"

namespace busquill {

StrobedTraffic::StrobedTraffic(const SignalTables& tables, const Names& names)
    : dataStrobes_(tables, names.data), addressStrobe_(tables, names.address),
      acknowledge_(tables, names.acknowledge), error_(tables, names.error) {}

StrobedTraffic::Lines StrobedTraffic::LinesOf(const SampleRecord& record) const {
    return {addressStrobe_.IsAsserted(record), dataStrobes_.Asserted(record) != 0,
            acknowledge_.IsAsserted(record), error_.IsAsserted(record)};
}

bool StrobedTraffic::IsIdle(const SampleRecord& record) const {
    const Lines lines = LinesOf(record);
    return !lines.address && !lines.data;
}

void StrobedTraffic::Take(const SampleRecord& record, std::int64_t elapsed) {
    const Lines lines = LinesOf(record);
    if (!lines.address) {
        Close();
    } else if (!before_.address) {
        Begin(record);
    }
    if (open_) {
        TakeStrobe(record, lines, elapsed);
    }
    before_ = lines;
}

void StrobedTraffic::Begin(const SampleRecord& record) {
    open_.emplace();
    open_->sum.command = CommandAt(record);
    open_->addressDue = FirstStrobeIsAddress(open_->sum.command);
}

void StrobedTraffic::TakeStrobe(const SampleRecord& record, const Lines& lines,
                                std::int64_t elapsed) {
    if (!lines.data) {
        return;
    }
    // A strobe already asserted before the address strobe belongs to the previous transaction.
    if (!before_.data) {
        waiting_ = true;
        waited_ = 0;
        if (!open_->strobed) {
            open_->strobed = true;
            open_->sum.command = CommandAtStrobe(open_->sum.command, record);
        }
    } else {
        waited_ += elapsed;
    }
    if (!waiting_) {
        return;
    }
    if (lines.acknowledge && !before_.acknowledge) {
        waiting_ = false;
        TakeAcknowledge(record);
    } else if (lines.error && !before_.error) {
        waiting_ = false;
        TakeError(record);
    }
}

void StrobedTraffic::TakeAcknowledge(const SampleRecord& record) {
    Transaction& sum = open_->sum;
    if (!CarriesData(sum.command)) {
        return;
    }
    if (open_->addressDue) {
        open_->addressDue = false;
        return;
    }
    ++sum.dataPhases;
    sum.bytes += BytesOf(sum.command, record);
    ++acknowledgeTime_.transfers;
    acknowledgeTime_.total += waited_;
}

void StrobedTraffic::Close() {
    if (open_) {
        tally_.Add(open_->sum);
        open_.reset();
    }
    waiting_ = false;
}

void StrobedTraffic::Report(TraceSummary& summary) const {
    TransactionTally tally = tally_;
    if (open_) {
        tally.Add(open_->sum);
        summary.unfinished = 1;
    }
    tally.Report(summary, [this](std::uint32_t command) { return NameOf(command); });
    summary.acknowledgeTime = acknowledgeTime_;
}

} // namespace busquill
