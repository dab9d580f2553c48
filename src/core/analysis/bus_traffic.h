#pragma once

#include "analysis/transaction.h"
#include "link/board_identity.h"
#include "signals/signal.h"
#include "signals/signal_tables.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace busquill {

/// A sample with its place in the capture.
struct TimedSample {
    std::int64_t number = 0;
    std::int64_t time = 0; // ns from the first sample
    const SampleRecord& record;
};

/// The name of a command, and its position in the order of commands.
struct CommandName {
    std::size_t place = 0;
    std::string label;

    friend bool operator<(const CommandName& a, const CommandName& b) {
        return std::tie(a.place, a.label) < std::tie(b.place, b.label);
    }
};

/// Follows the transactions of one kind of bus, sample by sample. A sample that belongs to a
/// transaction whose beginning it has not seen starts one that is headless.
class BusTraffic {
public:
    virtual ~BusTraffic() = default;

    /// Whether the bus is idle in a sample.
    [[nodiscard]] virtual bool IsIdle(const SampleRecord& record) const = 0;
    /// Takes the next sample. Returns the transaction that ends with it or has ended before it, or
    /// null; it is valid until the next call.
    [[nodiscard]] virtual Transaction* Take(const TimedSample& sample) = 0;
    /// The transaction in progress as far as it has been seen, or null.
    [[nodiscard]] virtual const Transaction* Open() const = 0;
    /// Forgets everything about the samples so far: the next ones do not follow them.
    virtual void Restart() = 0;
    /// The same, but the sample before the next one is known, and its transaction does not matter.
    /// `begins` if another one begins with the next sample.
    virtual void RestartAfter(const SampleRecord& before, bool begins) = 0;
    [[nodiscard]] virtual CommandName NameOf(std::uint32_t command) const = 0;
    /// All commands that a transaction can have.
    [[nodiscard]] virtual std::vector<std::uint32_t> Commands() const = 0;

    /// Whether waiting is counted in clocks; otherwise it is measured in time.
    [[nodiscard]] virtual bool HasClock() const = 0;
    /// Digits of an address.
    [[nodiscard]] virtual int AddressDigits(const Transaction& transaction) const = 0;

    /// How many data words of each transaction are kept.
    void KeepWords(std::size_t count) noexcept { wordsKept_ = count; }

protected:
    void AddWord(Transaction& transaction, const DataWord& word) const {
        if (transaction.words.size() < wordsKept_) {
            transaction.words.push_back(word);
        }
    }

private:
    std::size_t wordsKept_ = 0;
};

/// Null for a connector, whose tables name only pins.
[[nodiscard]] std::unique_ptr<BusTraffic> MakeBusTraffic(const BoardTraits& board,
                                                         const SignalTables& tables);

[[nodiscard]] std::unique_ptr<BusTraffic> MakePciTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakePciXTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakeVmeTraffic(const SignalTables& tables);
[[nodiscard]] std::unique_ptr<BusTraffic> MakeVsbTraffic(const SignalTables& tables);

} // namespace busquill
