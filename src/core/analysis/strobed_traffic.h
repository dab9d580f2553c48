#pragma once

#include "analysis/bus_traffic.h"
#include "analysis/signal_lines.h"

#include <optional>
#include <string_view>

namespace busquill {

/// The transaction in progress.
struct StrobedTransaction {
    Transaction sum;
    bool strobed = false;      // there was a data strobe
    bool addressDue = false;   // the next answered strobe carries an address
    std::uint64_t address = 0; // as far as it is known
};

/// A bus without a clock: an address strobe frames a transaction, in which each data strobe is
/// answered by an acknowledge or an error.
///
///   address strobe  ~~\___________________________/~~
///   data strobe     ~~~~~\_______/~~\_______/~~~~~~~~
///   acknowledge     ~~~~~~~~~\____/~~~~\_____/~~~~~~~
///                         |wait|    |wait|
class StrobedTraffic : public BusTraffic {
public:
    [[nodiscard]] bool IsIdle(const SampleRecord& record) const final;
    [[nodiscard]] Transaction* Take(const TimedSample& sample) final;
    [[nodiscard]] const Transaction* Open() const final { return open_ ? &open_->sum : nullptr; }
    void Restart() final;
    void RestartAfter(const SampleRecord& before, bool begins) final;
    [[nodiscard]] bool HasClock() const final { return false; }

protected:
    struct Names {
        std::string_view address, data, acknowledge, error;
    };
    /// Which lines are asserted.
    struct Lines {
        bool address = false;
        std::uint32_t strobes = 0; // a bit for each data strobe
        bool acknowledge = false;
        bool error = false;
        bool retry = false;

        [[nodiscard]] bool HasData() const noexcept { return strobes != 0; }
    };

    struct Beat {
        DataWord word;
        std::uint32_t bytes = 0;
    };

    StrobedTraffic(const SignalTables& tables, const Names& names);

    /// The command on the lines at the address strobe.
    [[nodiscard]] virtual std::uint32_t CommandAt(const SampleRecord& record) const = 0;
    /// The same at a data strobe; `isFirst` unless data were strobed before.
    [[nodiscard]] virtual std::uint32_t CommandAtStrobe(std::uint32_t command, bool isFirst,
                                                        const SampleRecord& record) const = 0;
    [[nodiscard]] virtual std::uint64_t AddressAt(std::uint32_t command,
                                                  const SampleRecord& record) const = 0;
    /// Whether the first acknowledged strobe carries an address, not data.
    [[nodiscard]] virtual bool FirstStrobeIsAddress(std::uint32_t command) const = 0;
    /// Whether that address is whole; otherwise a strobe completes it.
    [[nodiscard]] virtual bool HasWholeAddress(std::uint32_t command) const = 0;
    /// The address, completed by what the first strobe carries.
    [[nodiscard]] virtual std::uint64_t CompleteAddress(const StrobedTransaction& open,
                                                        const SampleRecord& record) const = 0;
    [[nodiscard]] virtual bool CarriesData(std::uint32_t command) const = 0;
    /// What an acknowledged strobe moves. `strobes` are those that were asserted for it.
    [[nodiscard]] virtual Beat BeatOf(const Transaction& transaction, std::uint32_t strobes,
                                      const SampleRecord& record) const = 0;
    /// Whether a strobe asks for data, rather than bringing them.
    [[nodiscard]] virtual bool IsRead(std::uint32_t command, const SampleRecord& record) const = 0;
    /// Keeps what is valid at the address strobe only.
    virtual void Latch(const TimedSample& /*sample*/, const Transaction& /*transaction*/) {}
    /// Whether the target refuses the transaction for now.
    [[nodiscard]] virtual bool IsRetry(const SampleRecord& /*record*/) const { return false; }
    /// What an error that answers a strobe means.
    [[nodiscard]] virtual TransactionEnd MeaningOfError(const SampleRecord& record) const = 0;

    /// For transactions whose data do not move by strobe and acknowledge: whether this is one. Then
    /// `TakeOther` gets its samples.
    [[nodiscard]] virtual bool IsOther(std::uint32_t /*command*/) const { return false; }
    virtual void TakeOther(const TimedSample& /*sample*/, const Lines& /*lines*/,
                           const Lines& /*before*/, StrobedTransaction& /*open*/) {}
    /// Whether its last strobe was not answered.
    [[nodiscard]] virtual bool IsOtherWaiting() const { return false; }

    void AddData(Transaction& transaction, const Beat& beat, std::int64_t time) const;

private:
    [[nodiscard]] Lines LinesOf(const SampleRecord& record) const;
    void Begin(const TimedSample& sample);
    void TakeStrobe(const TimedSample& sample, const Lines& lines);
    void TakeAnswer(const TimedSample& sample, const Lines& lines);
    void TakeLateAnswer(const TimedSample& sample, const Lines& lines);
    void TakeAcknowledge(const TimedSample& sample, const Lines& lines);
    void TakeSettled(const TimedSample& sample, const Lines& lines);
    Transaction* Close();

    SignalLine dataStrobes_, addressStrobe_, acknowledge_, error_;

    std::optional<StrobedTransaction> open_;
    Transaction closed_;
    Lines before_; // of the previous sample
    bool isFirst_ = true;
    bool waiting_ = false;      // for the answer to a strobe of the open transaction
    std::uint32_t strobes_ = 0; // that were asserted since it began
    std::int64_t strobeTime_ = 0;
    bool settling_ = false; // data that are read may still change
};

} // namespace busquill
