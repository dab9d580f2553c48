#include "analysis/transaction_fields.h"

#include "analysis/bus_traffic.h"
#include "capture/expression.h"
#include "platform/text.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>
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

template <typename Number>
void AppendNumber(std::string& text, Number number) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

void AppendTime(std::string& text, const std::optional<std::int64_t>& time) {
    if (time) {
        text += FormatTime(*time, false);
    }
}

void AppendData(std::string& text, const Transaction& transaction) {
    const char* before = "";
    for (const DataWord& word : transaction.words) {
        text += before;
        AppendText(text, word);
        before = " ";
    }
    if (transaction.words.size() < transaction.dataPhases) {
        text += before;
        text += "...";
    }
}

} // namespace

std::string_view NameOf(TransactionField field) noexcept {
    static_assert(transactionFields[static_cast<std::size_t>(Address)] == "address" &&
                  transactionFields[static_cast<std::size_t>(Findings)] == "findings");
    return field == Data ? "data" : transactionFields[static_cast<std::size_t>(field)];
}

std::optional<std::int64_t> NumberOf(const Transaction& transaction, TransactionField field) {
    const auto positive = [](std::uint64_t value) { return static_cast<std::int64_t>(value); };
    switch (field) {
    case Number:
        return positive(transaction.number);
    case Sample:
        return transaction.sample;
    case Time:
        return transaction.time;
    case Words:
        return positive(transaction.dataPhases);
    case Bytes:
        return positive(transaction.bytes);
    case Wait:
        return transaction.Wait();
    case InitiatorWait:
        return transaction.hasClock ? std::optional(positive(transaction.waitStates.initiator))
                                    : std::nullopt;
    case Latency:
        return transaction.Latency();
    case Gap:
        return transaction.gap;
    case Tag:
        return transaction.sequence ? std::optional(positive(transaction.sequence->Tag()))
                                    : std::nullopt;
    case SplitRequest:
        return transaction.splitRequest ? std::optional(positive(*transaction.splitRequest))
                                        : std::nullopt;
    case Findings:
        return transaction.findings ? std::optional(positive(*transaction.findings)) : std::nullopt;
    default:
        return std::nullopt;
    }
}

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
    std::string text;
    Append(text, transaction, field);
    return text;
}

void TransactionFields::AppendAddress(std::string& text, const Transaction& transaction) const {
    if (!transaction.address || transaction.isHeadless) {
        return;
    }
    for (int digit = traffic_.AddressDigits(transaction); digit-- > 0;) {
        text += "0123456789ABCDEF"[*transaction.address >> (4 * digit) & 0xF];
    }
}

void TransactionFields::Append(std::string& text, const Transaction& transaction,
                               TransactionField field) {
    switch (field) {
    case Number:
        AppendNumber(text, transaction.number);
        break;
    case Sample:
        AppendNumber(text, transaction.sample);
        break;
    case Time:
        AppendTime(text, transaction.time);
        break;
    case TransactionField::Command:
        text += transaction.isHeadless ? begunBefore : labels_.Of(transaction);
        break;
    case Address:
        AppendAddress(text, transaction);
        break;
    case Words:
        AppendNumber(text, transaction.dataPhases);
        break;
    case Bytes:
        AppendNumber(text, transaction.bytes);
        break;
    case Wait:
        if (traffic_.HasClock()) {
            AppendNumber(text, transaction.Wait());
        } else {
            AppendTime(text, transaction.Wait());
        }
        break;
    case InitiatorWait:
        AppendNumber(text, transaction.waitStates.initiator);
        break;
    case Latency:
        AppendTime(text, transaction.Latency());
        break;
    case End:
        text += NameOf(transaction.end);
        break;
    case Gap:
        AppendTime(text, transaction.gap);
        break;
    case Tag:
        if (transaction.sequence) {
            text += Printf("0x%02X", transaction.sequence->Tag()); // as in the listing
        }
        break;
    case SplitRequest:
        if (transaction.splitRequest) {
            AppendNumber(text, *transaction.splitRequest);
        }
        break;
    case Findings:
        if (transaction.findings) {
            AppendNumber(text, *transaction.findings);
        }
        break;
    case Data:
        AppendData(text, transaction);
        break;
    }
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
