#pragma once

#include "analysis/bus_traffic.h"
#include "analysis/signal_lines.h"
#include "analysis/transaction_tally.h"

#include <optional>
#include <string_view>

namespace busquill {

/// The transaction in progress.
struct StrobedTransaction {
    Transaction sum;
    bool strobed = false;    // there was a data strobe
    bool addressDue = false; // the next answered strobe carries an address
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
    void Take(const SampleRecord& record, std::int64_t elapsed) final;
    void Report(TraceSummary& summary) const override;

protected:
    struct Names {
        std::string_view address, data, acknowledge, error;
    };

    StrobedTraffic(const SignalTables& tables, const Names& names);

    /// The command on the lines at the address strobe.
    [[nodiscard]] virtual std::uint32_t CommandAt(const SampleRecord& record) const = 0;
    /// The same at the first data strobe.
    [[nodiscard]] virtual std::uint32_t CommandAtStrobe(std::uint32_t command,
                                                        const SampleRecord& record) const = 0;
    /// Whether the first acknowledged strobe carries an address, not data.
    [[nodiscard]] virtual bool FirstStrobeIsAddress(std::uint32_t command) const = 0;
    [[nodiscard]] virtual bool CarriesData(std::uint32_t command) const = 0;
    [[nodiscard]] virtual std::uint32_t BytesOf(std::uint32_t command,
                                                const SampleRecord& record) const = 0;
    /// A strobe was answered by an error.
    virtual void TakeError(const SampleRecord& record) = 0;
    [[nodiscard]] virtual CommandName NameOf(std::uint32_t command) const = 0;

    SignalLine dataStrobes_;

private:
    /// Which lines are asserted.
    struct Lines {
        bool address = false;
        bool data = false;
        bool acknowledge = false;
        bool error = false;
    };

    [[nodiscard]] Lines LinesOf(const SampleRecord& record) const;
    void Begin(const SampleRecord& record);
    void TakeStrobe(const SampleRecord& record, const Lines& lines, std::int64_t elapsed);
    void TakeAcknowledge(const SampleRecord& record);
    void Close();

    SignalLine addressStrobe_, acknowledge_, error_;

    TransactionTally tally_;
    std::optional<StrobedTransaction> open_;
    /// Of the previous sample. Before the first one, any transaction may be in progress.
    Lines before_{true, true, true, true};
    bool waiting_ = false; // for the answer to a strobe of the open transaction
    std::int64_t waited_ = 0;
    AcknowledgeTime acknowledgeTime_;
};

} // namespace busquill
