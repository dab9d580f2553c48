#include "analysis/transaction_fields.h"

#include "analysis/bus_traffic.h"
#include "platform/text.h"
#include "signals/value_text.h"

#include <algorithm>
#include <optional>

namespace busquill {

namespace {

using enum TransactionField;

// clang-format off
constexpr FieldColumn columns[] = {
    {Number,        "Number",         "number in the capture, from 1",                             true},
    {Sample,        "Sample",         "sample of the address; the trigger is 0",                   true},
    {Time,          "Time",           "from the first sample of the capture",                      true},
    {Command,       "Command",        "command as in the listing",                                 false},
    {Address,       "Address",        "address, in hexadecimal digits",                            true},
    {Words,         "Words",          "data phases",                                               true},
    {Bytes,         "Bytes",          "bytes in enabled lanes",                                    true},
    {Wait,          "Wait",           "how long the initiator waited for the target",              true},
    {InitiatorWait, "I-Wait",         "clocks in which the initiator was not ready",               true},
    {Latency,       "Latency",        "from the address to the first data",                        true},
    {End,           "End",            "how the transaction ended",                                 false},
    {Gap,           "Gap",            "from the last sample of the transaction before",            true},
    {Tag,           "Tag",            "tag of the sequence",                                       true},
    {SplitRequest,  "Split",          "number of the transaction that a split completion answers", true},
    {Findings,      "Findings",       "samples with a finding of the protocol checker",            true},
    {Data,          "Data",           "first data words",                                          false},
};
// clang-format on

/// A key that is not 0.
std::uint64_t Key(std::uint64_t value) {
    return std::max(value, value + 1);
}
/// The same for a number that may be negative.
std::uint64_t Key(std::int64_t value) {
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    return Key(static_cast<std::uint64_t>(value) ^ sign);
}
template <typename Value>
std::uint64_t Key(const std::optional<Value>& value) {
    return value ? Key(*value) : 0;
}

std::string TimeText(const std::optional<std::int64_t>& time) {
    return time ? FormatTime(*time, false) : std::string();
}

std::string DataText(const Transaction& transaction) {
    std::string text;
    for (const DataWord& word : transaction.words) {
        text += text.empty() ? "" : " ";
        AppendText(text, word);
    }
    if (!text.empty() && transaction.words.size() < transaction.dataPhases) {
        text += " ...";
    }
    return text;
}

} // namespace

std::span<const FieldColumn> FieldColumns() noexcept {
    return columns;
}

bool HasField(const BusTraffic& traffic, bool hasSplits, TransactionField field) noexcept {
    switch (field) {
    case InitiatorWait:
        return traffic.HasClock();
    case Tag:
    case SplitRequest:
        return hasSplits;
    default:
        return true;
    }
}

std::string TransactionFields::Text(const Transaction& transaction, TransactionField field) {
    switch (field) {
    case Number:
        return std::to_string(transaction.number);
    case Sample:
        return std::to_string(transaction.sample);
    case Time:
        return FormatTime(transaction.time, false);
    case TransactionField::Command:
        return transaction.isHeadless ? "(begun before)" : labels_.Of(transaction);
    case Address: {
        if (!transaction.address || transaction.isHeadless) {
            return {};
        }
        const unsigned long long address = *transaction.address;
        return Printf("%0*llX", traffic_.AddressDigits(transaction), address);
    }
    case Words:
        return std::to_string(transaction.dataPhases);
    case Bytes:
        return std::to_string(transaction.bytes);
    case Wait:
        return traffic_.HasClock() ? std::to_string(transaction.Wait())
                                   : FormatTime(transaction.Wait(), false);
    case InitiatorWait:
        return std::to_string(transaction.waitStates.initiator);
    case Latency:
        return TimeText(transaction.Latency());
    case End:
        return std::string(NameOf(transaction.end));
    case Gap:
        return TimeText(transaction.gap);
    case Tag:
        return transaction.sequence ? std::to_string(transaction.sequence->Tag()) : std::string();
    case SplitRequest:
        return transaction.splitRequest ? std::to_string(*transaction.splitRequest) : std::string();
    case Findings:
        return std::to_string(transaction.findings);
    case Data:
        return DataText(transaction);
    }
    return {};
}

std::uint64_t TransactionFields::SortKey(const Transaction& transaction,
                                         TransactionField field) const {
    switch (field) {
    case Number:
        return Key(transaction.number);
    case Sample:
        return Key(transaction.sample);
    case Time:
        return Key(transaction.time);
    case TransactionField::Command: {
        // The bus's table may give commands of one kind the same place.
        const std::uint64_t place = traffic_.NameOf(transaction.command).place;
        return transaction.isHeadless ? 0 : Key(place << 32 | transaction.command);
    }
    case Address:
        return transaction.isHeadless ? 0 : Key(transaction.address);
    case Words:
        return Key(transaction.dataPhases);
    case Bytes:
        return Key(transaction.bytes);
    case Wait:
        return Key(transaction.Wait());
    case InitiatorWait:
        return Key(static_cast<std::uint64_t>(transaction.waitStates.initiator));
    case Latency:
        return Key(transaction.Latency());
    case End:
        return Key(static_cast<std::uint64_t>(transaction.end));
    case Gap:
        return Key(transaction.gap);
    case Tag:
        return transaction.sequence ? Key(std::uint64_t{transaction.sequence->Tag()}) : 0;
    case SplitRequest:
        return Key(transaction.splitRequest);
    case Findings:
        return Key(transaction.findings);
    case Data:
        return transaction.words.empty() ? 0 : Key(transaction.words.front().value);
    }
    return 0;
}

} // namespace busquill
