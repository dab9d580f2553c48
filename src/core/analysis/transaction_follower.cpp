#include "analysis/transaction_follower.h"

#include "signals/value_text.h"

#include <algorithm>
#include <utility>

namespace busquill {

TransactionFollower::TransactionFollower(const BoardTraits& board, const SignalTables& tables)
    : traffic_(MakeBusTraffic(board, tables)) {
    if (const auto def = tables.busSignals.FindByName("TIME")) {
        sampleTime_.emplace(*def);
    }
    if (const auto def = tables.busSignals.FindByName("RULE CHECK")) {
        ruleCheck_.emplace(*def);
    }
}

void TransactionFollower::KeepWords(std::size_t count) {
    if (traffic_) {
        traffic_->KeepWords(count);
    }
}

bool TransactionFollower::IsIdle(const SampleRecord& record) const {
    return traffic_ && traffic_->IsIdle(record);
}

bool TransactionFollower::HasFinding(const SampleRecord& record) const {
    return ruleCheck_ && ruleCheck_->Word(record) != 0;
}

std::span<const Transaction> TransactionFollower::Add(std::int64_t number,
                                                      const SampleRecord& record) {
    const bool isFirst = std::exchange(isFirst_, false);
    const bool isAfterGap = !isFirst && number != number_ + 1;
    number_ = number;
    if (isFirst) {
        first_ = number;
    }
    // The time before the first sample is not part of the capture.
    if (!isFirst && sampleTime_) {
        time_ = AddTimes(time_, sampleTime_->Of(record));
    }
    endedCount_ = 0;
    if (!traffic_) {
        return {};
    }
    if (isAfterGap) {
        Break();
    }
    const std::uint64_t finding = HasFinding(record) ? 1 : 0;
    Transaction* const done = traffic_->Take({number, time_, record});
    if (done == nullptr) {
        findings_ += finding;
    } else {
        const bool isInside = done->lastSample == number;
        findings_ += isInside ? finding : 0;
        End(std::move(*done));
        findings_ = isInside ? 0 : finding;
    }
    if (traffic_->Open() == nullptr) {
        findings_ = 0;
    }
    return std::span(ended_).first(endedCount_);
}

/// Samples are missing: what was in progress is not known any more.
void TransactionFollower::Break() {
    if (auto open = Unfinished(TransactionEnd::Unknown)) {
        End(std::move(*open));
    }
    traffic_->Restart();
    lastEnd_.reset();
    splits_.clear();
    findings_ = 0;
}

void TransactionFollower::Restart() {
    if (traffic_) {
        traffic_->Restart();
    }
    isFirst_ = true;
    first_.reset();
    time_ = 0;
    transactions_ = 0;
    findings_ = 0;
    lastEnd_.reset();
    splits_.clear();
}

void TransactionFollower::Resume(const Place& place) {
    Restart();
    isFirst_ = false;
    number_ = place.number;
    time_ = place.time;
    transactions_ = place.transactions;
    lastEnd_ = place.lastEnd;
    if (traffic_ && place.before != nullptr) {
        traffic_->RestartAfter(*place.before, place.begins);
    }
}

std::optional<Transaction> TransactionFollower::Unfinished(TransactionEnd unseen) const {
    const Transaction* const open = traffic_ ? traffic_->Open() : nullptr;
    if (open == nullptr) {
        return std::nullopt;
    }
    Transaction transaction = *open;
    if (!transaction.HasEnd()) {
        transaction.end = unseen;
    }
    Complete(transaction);
    return transaction;
}

void TransactionFollower::Complete(Transaction& transaction) const {
    transaction.number = transactions_ + 1;
    transaction.hasClock = traffic_->HasClock();
    transaction.findings = ruleCheck_ ? std::optional(findings_) : std::nullopt;
    if (lastEnd_) {
        transaction.gap = AddTimes(transaction.time, -*lastEnd_);
    }
    if (transaction.isHeadless && transaction.sample == first_) {
        transaction.end = TransactionEnd::CutOff; // by the beginning of the capture
    }
    if (transaction.sequence && transaction.sequence->isCompletion) {
        const auto request = splits_.find(transaction.sequence->requester);
        if (request != splits_.end()) {
            transaction.splitRequest = request->second.number;
        }
    }
}

void TransactionFollower::End(Transaction ended) {
    Transaction& transaction = ended_[endedCount_++];
    transaction = std::move(ended);
    Complete(transaction);
    ++transactions_;
    lastEnd_ = transaction.lastTime;
    if (!transaction.sequence) {
        return;
    }
    const SplitSequence& sequence = *transaction.sequence;
    if (transaction.end == TransactionEnd::SplitResponse) {
        splits_[sequence.requester] = {transaction.number, sequence.byteCount};
    } else if (sequence.isCompletion && transaction.dataPhases != 0) {
        TakeCompletion(transaction);
    }
}

/// Another one completes the request if data are left.
void TransactionFollower::TakeCompletion(const Transaction& completion) {
    const SplitSequence& sequence = *completion.sequence;
    const auto request = splits_.find(sequence.requester);
    if (request == splits_.end()) {
        return;
    }
    std::uint32_t& left = request->second.bytesLeft;
    left = sequence.isCountOwn ? left : sequence.byteCount;
    left -= static_cast<std::uint32_t>(std::min<std::uint64_t>(left, completion.bytes));
    if (sequence.isMessage || left == 0) {
        splits_.erase(request);
    }
}

} // namespace busquill
