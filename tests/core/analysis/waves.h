#pragma once

#include "analysis/trace_stats.h"
#include "analysis/transaction_follower.h"
#include "support/board_tables.h"

#include <cstdint>
#include <ostream>
#include <set>
#include <string_view>
#include <vector>

namespace busquill {

// How a failed test prints them.
inline void PrintTo(const CommandCount& count, std::ostream* out) {
    *out << count.label << " " << count.transactions << " x, " << count.dataPhases << " phases, "
         << count.bytes << " bytes";
}
inline void PrintTo(const FindingCount& finding, std::ostream* out) {
    *out << int{finding.code} << " \"" << finding.label << "\" " << finding.count << " x from "
         << finding.firstSample;
}
inline std::string TextOf(const DataWord& word) {
    std::string text;
    AppendText(text, word);
    return text;
}
inline void PrintTo(const DataWord& word, std::ostream* out) {
    *out << TextOf(word);
}
inline void PrintTo(TransactionEnd end, std::ostream* out) {
    *out << NameOf(end);
}
inline void PrintTo(const WaitStates& waits, std::ostream* out) {
    *out << waits.initiator << " by the initiator, " << waits.target << " by the target";
}
inline void PrintTo(const AcknowledgeTime& time, std::ostream* out) {
    *out << time.total << " ns in " << time.transfers << " transfers";
}

} // namespace busquill

namespace busquill::test {

/// A capture drawn as waves, one character per sample: `Waves(bus).Line("AS", "~~___~~")`. Lines
/// that are not drawn are high; marks of a sample (address phase, anomaly, finding) are 0. Each
/// sample is 10 ns after the previous one.
class Waves {
public:
    explicit Waves(const BoardTables& bus) : bus_(bus) {}

    /// One line; `bit` picks one of a group.
    Waves& Line(std::string_view name, std::string_view wave, int bit = 0) {
        Lengthen(wave.size());
        for (std::size_t i = 0; i < wave.size(); ++i) {
            SetBit(records_[i], First(name) + bit, wave[i] == '~');
        }
        return *this;
    }
    /// Sets the value of a group in all samples so far.
    Waves& Set(std::string_view name, std::uint32_t value) {
        for (std::size_t i = 0; i < records_.size(); ++i) {
            At(i, name, value);
        }
        return *this;
    }
    /// Sets the value of a group in one sample.
    Waves& At(std::size_t sample, std::string_view name, std::uint32_t value) {
        const auto def = bus_.tables.busSignals.FindByName(name);
        for (int bit = 0; bit < def->Width(); ++bit) {
            SetBit(records_.at(sample), def->dataIndex + bit,
                   bit < 32 && ((value >> bit) & 1) != 0);
        }
        return *this;
    }

    /// The same for a group of up to 64 lines.
    Waves& Word(std::size_t sample, std::string_view name, std::uint64_t value) {
        const auto def = bus_.tables.busSignals.FindByName(name);
        for (int bit = 0; bit < def->Width(); ++bit) {
            SetBit(records_.at(sample), def->dataIndex + bit, ((value >> bit) & 1) != 0);
        }
        return *this;
    }

    [[nodiscard]] const std::vector<SampleRecord>& Records() const noexcept { return records_; }
    /// The transactions with all their words, the unfinished one too.
    [[nodiscard]] std::vector<Transaction> Transactions() const {
        std::vector<Transaction> transactions;
        TransactionFollower follower(bus_.board, bus_.tables);
        follower.KeepWords(1000);
        for (std::size_t i = 0; i < records_.size(); ++i) {
            if (isMissing_.contains(i)) {
                continue;
            }
            const auto number = static_cast<std::int64_t>(i);
            for (const Transaction& ended : follower.Add(number, records_[i])) {
                transactions.push_back(ended);
            }
        }
        if (const auto unfinished = follower.Unfinished()) {
            transactions.push_back(*unfinished);
        }
        return transactions;
    }
    /// Leaves samples out of Transactions.
    Waves& Missing(std::size_t first, std::size_t last) {
        for (std::size_t i = first; i <= last; ++i) {
            isMissing_.insert(i);
        }
        return *this;
    }
    [[nodiscard]] TraceSummary Summary() const {
        TraceStats stats(bus_.board, bus_.tables);
        stats.Add(records_);
        return stats.Summary();
    }

private:
    static constexpr int timeBit = 110;
    static constexpr std::uint32_t timeField = 10U << 2; // 10 ns

    [[nodiscard]] int First(std::string_view name) const {
        return bus_.tables.busSignals.FindByName(name)->dataIndex;
    }
    static void SetBit(SampleRecord& record, int n, bool value) {
        const auto mask = static_cast<std::uint8_t>(1U << (n % 8));
        std::uint8_t& byte = record.bytes[static_cast<std::size_t>(n) / 8];
        byte = static_cast<std::uint8_t>(value ? byte | mask : byte & ~mask);
    }
    void Lengthen(std::size_t count) {
        while (records_.size() < count) {
            SampleRecord record;
            record.bytes.fill(0xFF);
            record.bytes[16] = 0; // RULE CHECK
            for (int bit = 0; bit < 18; ++bit) {
                SetBit(record, timeBit + bit, ((timeField >> bit) & 1) != 0);
            }
            if (bus_.tables.busSignals.FindByName("ADR/DATA")) {
                SetBit(record, 94, false); // ANOMALY
                SetBit(record, 95, false); // ADR/DATA
            }
            records_.push_back(record);
        }
    }

    const BoardTables& bus_;
    std::vector<SampleRecord> records_;
    std::set<std::size_t> isMissing_;
};

/// The count of a command; zeros when it did not occur.
[[nodiscard]] inline CommandCount Command(const TraceSummary& summary, std::string_view label) {
    for (const CommandCount& command : summary.commands) {
        if (command.label == label) {
            return command;
        }
    }
    return {};
}

[[nodiscard]] inline std::vector<std::string> Labels(const TraceSummary& summary) {
    std::vector<std::string> labels;
    for (const CommandCount& command : summary.commands) {
        labels.push_back(command.label);
    }
    return labels;
}

} // namespace busquill::test
