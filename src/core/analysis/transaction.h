/// One transaction of a bus, as plain data.
#pragma once

#include "analysis/trace_summary.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

enum class TransactionEnd : std::uint8_t {
    Complete,
    Retry,
    DisconnectWithData,
    DisconnectWithoutData,
    TargetAbort,
    MasterAbort,
    SplitResponse,
    BusError,
    Unknown, // not in the samples: some are missing, or were not stored
    CutOff,  // the capture begins or ends inside the transaction
};
constexpr std::size_t transactionEndCount = 10;

/// One word, such as "disconnect-with-data".
[[nodiscard]] std::string_view NameOf(TransactionEnd end) noexcept;

/// What moved in one data phase.
struct DataWord {
    std::uint64_t value = 0;
    std::uint8_t width = 4; // bytes of the data path: 2, 4 or 8
    std::uint8_t lanes = 0; // a bit for each byte that was transferred

    friend bool operator==(const DataWord&, const DataWord&) = default;
};

/// Hexadecimal digits, "--" for a byte that was not transferred.
void AppendText(std::string& text, const DataWord& word);

/// PCI-X: the sequence that a transaction belongs to, from its attributes.
struct SplitSequence {
    std::uint32_t requester = 0; // tag, bus, device and function, as in the attributes
    std::uint32_t byteCount = 0; // still to be transferred when the transaction begins
    bool isCompletion = false;
    bool isMessage = false;  // a completion that carries a message instead of data
    bool isCountOwn = false; // the byte count is that of this completion: others follow

    [[nodiscard]] std::uint32_t Tag() const noexcept { return requester >> 16; }

    friend bool operator==(const SplitSequence&, const SplitSequence&) = default;
};

struct Transaction {
    std::uint64_t number = 0; // from 1, in the order of the capture

    std::int64_t sample = 0; // of its address
    std::int64_t lastSample = 0;
    std::int64_t time = 0; // of its address; ns from the first sample of the capture
    std::int64_t lastTime = 0;
    /// The samples that tell its command are not all in the capture: nothing is known but when it
    /// was on the bus.
    bool isHeadless = false;

    std::uint32_t command = 0;            // a code specific to the bus
    std::optional<std::uint64_t> address; // nothing if there is none, or not wholly in the capture
    std::uint64_t dataPhases = 0;
    std::uint64_t bytes = 0;
    std::vector<DataWord> words;           // the first ones, as many as were asked for
    std::optional<std::int64_t> firstData; // time of the first data phase
    TransactionEnd end = TransactionEnd::Unknown;

    bool hasClock = true;            // whether the bus has one
    WaitStates waitStates;           // on a bus with a clock
    AcknowledgeTime acknowledgeTime; // on a bus without one
    std::optional<SplitSequence> sequence;

    /// From the last sample of the transaction before; nothing if there is none, or if samples are
    /// missing between them.
    std::optional<std::int64_t> gap;
    /// Samples with a finding of the rule checker; nothing if the board has none.
    std::optional<std::uint64_t> findings = 0;
    std::optional<std::uint64_t> splitRequest; // the number of the transaction that this completes

    /// Whether its end was seen. It may still be on the bus.
    [[nodiscard]] bool HasEnd() const noexcept {
        return end != TransactionEnd::Unknown && end != TransactionEnd::CutOff;
    }
    /// From the address to the first data.
    [[nodiscard]] std::optional<std::int64_t> Latency() const noexcept {
        return firstData ? std::optional(*firstData - time) : std::nullopt;
    }
    /// How long the initiator waited for the target: clocks, or ns on a bus without a clock.
    [[nodiscard]] std::int64_t Wait() const noexcept {
        return static_cast<std::int64_t>(waitStates.target) + acknowledgeTime.total;
    }

    friend bool operator==(const Transaction&, const Transaction&) = default;
};

} // namespace busquill
