#include "analysis/strobed_traffic.h"

#include "signals/value_text.h"

#include <utility>

namespace busquill {

StrobedTraffic::StrobedTraffic(const SignalTables& tables, const Names& names)
    : dataStrobes_(tables, names.data), addressStrobe_(tables, names.address),
      acknowledge_(tables, names.acknowledge), error_(tables, names.error) {}

StrobedTraffic::Lines StrobedTraffic::LinesOf(const SampleRecord& record) const {
    return {addressStrobe_.IsAsserted(record), dataStrobes_.Asserted(record),
            acknowledge_.IsAsserted(record), error_.IsAsserted(record), IsRetry(record)};
}

bool StrobedTraffic::IsIdle(const SampleRecord& record) const {
    const Lines lines = LinesOf(record);
    return !lines.address && !lines.HasData();
}

Transaction* StrobedTraffic::Take(const TimedSample& sample) {
    const Lines lines = LinesOf(sample.record);
    Transaction* ended = nullptr;
    if (!lines.address) {
        TakeLateAnswer(sample, lines);
        ended = Close();
    } else if (isFirst_) {
        // It may have begun before, and so may its strobe.
        Begin(sample);
        open_->sum.isHeadless = true;
    } else if (!before_.address) {
        Begin(sample);
    }
    if (open_) {
        open_->sum.lastSample = sample.number;
        open_->sum.lastTime = sample.time;
        if (open_->sum.isHeadless) {
            // nothing is known about it
        } else if (IsOther(open_->sum.command)) {
            TakeOther(sample, lines, before_, *open_);
        } else {
            TakeStrobe(sample, lines);
        }
    }
    before_ = lines;
    isFirst_ = false;
    return ended;
}

void StrobedTraffic::Restart() {
    open_.reset();
    waiting_ = false;
    isFirst_ = true;
}

void StrobedTraffic::RestartAfter(const SampleRecord& before, bool /*begins*/) {
    Restart();
    before_ = LinesOf(before);
    isFirst_ = false;
}

void StrobedTraffic::Begin(const TimedSample& sample) {
    Transaction& sum = open_.emplace().sum;
    sum.sample = sample.number;
    sum.time = sample.time;
    sum.command = CommandAt(sample.record);
    open_->address = AddressAt(sum.command, sample.record);
    if (HasWholeAddress(sum.command)) {
        sum.address = open_->address;
    }
    open_->addressDue = FirstStrobeIsAddress(sum.command);
    settling_ = false;
    Latch(sample, sum);
}

void StrobedTraffic::TakeStrobe(const TimedSample& sample, const Lines& lines) {
    TakeSettled(sample, lines);
    if (!lines.HasData() && !before_.HasData()) {
        return;
    }
    // A strobe already asserted before the address strobe belongs to the previous transaction.
    if (!before_.HasData()) {
        // It may not begin until the answer to the one before is over. An answer that is there with
        // it is its own, even if the sample clock missed the time between them.
        before_.acknowledge = before_.error = false;
        waiting_ = true;
        strobes_ = 0;
        strobeTime_ = sample.time;
        Transaction& sum = open_->sum;
        sum.command = CommandAtStrobe(sum.command, !open_->strobed, sample.record);
        open_->strobed = !open_->addressDue;
        if (open_->addressDue) {
            sum.address = CompleteAddress(*open_, sample.record);
        }
    }
    strobes_ |= lines.strobes;
    TakeAnswer(sample, lines);
}

/// The target may drive the data it gives a little after its acknowledge arrives, and holds them
/// until a strobe is released. So the last sample before that has them, if there are several.
void StrobedTraffic::TakeSettled(const TimedSample& sample, const Lines& lines) {
    settling_ = settling_ && lines.strobes == before_.strobes && lines.acknowledge;
    Transaction& sum = open_->sum;
    if (settling_ && sum.words.size() == sum.dataPhases) {
        sum.words.back() = BeatOf(sum, strobes_, sample.record).word;
    }
}

void StrobedTraffic::TakeAnswer(const TimedSample& sample, const Lines& lines) {
    if (!waiting_) {
        return;
    }
    if (lines.acknowledge && !before_.acknowledge) {
        waiting_ = false;
        TakeAcknowledge(sample, lines);
    } else if ((lines.error && !before_.error) || (lines.retry && !before_.retry)) {
        waiting_ = false;
        if (!open_->sum.HasEnd()) {
            open_->sum.end = lines.error ? MeaningOfError(sample.record) : TransactionEnd::Retry;
        }
    }
}

/// A strobe may be answered, and the data that it reads may settle, in the sample in which the
/// address strobe is already over.
void StrobedTraffic::TakeLateAnswer(const TimedSample& sample, const Lines& lines) {
    if (open_ && !open_->sum.isHeadless && !IsOther(open_->sum.command)) {
        TakeSettled(sample, lines);
        TakeAnswer(sample, lines);
    }
}

void StrobedTraffic::TakeAcknowledge(const TimedSample& sample, const Lines& lines) {
    Transaction& sum = open_->sum;
    if (open_->addressDue) {
        open_->addressDue = false;
        return;
    }
    // If the strobe is already over, so are the data.
    if (!CarriesData(sum.command) || !lines.HasData()) {
        return;
    }
    settling_ = IsRead(sum.command, sample.record);
    AddData(sum, BeatOf(sum, strobes_, sample.record), sample.time);
    ++sum.acknowledgeTime.transfers;
    sum.acknowledgeTime.total =
        AddTimes(sum.acknowledgeTime.total, AddTimes(sample.time, -strobeTime_));
}

void StrobedTraffic::AddData(Transaction& transaction, const Beat& beat, std::int64_t time) const {
    ++transaction.dataPhases;
    transaction.bytes += beat.bytes;
    AddWord(transaction, beat.word);
    if (!transaction.firstData) {
        transaction.firstData = time;
    }
}

Transaction* StrobedTraffic::Close() {
    const bool wasWaiting = std::exchange(waiting_, false);
    if (!open_) {
        return nullptr;
    }
    Transaction& sum = open_->sum;
    const bool isUnanswered = IsOther(sum.command) ? IsOtherWaiting() : wasWaiting;
    if (!sum.HasEnd() && !sum.isHeadless) {
        sum.end = isUnanswered ? TransactionEnd::MasterAbort : TransactionEnd::Complete;
    }
    closed_ = std::move(sum);
    open_.reset();
    return &closed_;
}

} // namespace busquill
