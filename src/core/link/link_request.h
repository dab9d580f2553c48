/// One command for the board, and the verbs that create one: run, write, read.
#pragma once

#include "link/command_rows.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace busquill {

enum LinkResult : std::int32_t {
    LinkPending = 0,
    LinkOk,
    LinkBadReply,
    LinkTimeout,
    LinkBadState,
    LinkTransferFailed,
};

/// One command in flight. Belongs to the caller until Submit, to the link until its completion,
/// then to the completion.
struct LinkRequest {
    using Completion = std::function<void(std::unique_ptr<LinkRequest>)>;
    using PayloadMaker = std::function<std::vector<std::uint8_t>()>;

    std::int32_t command = 0;
    std::int32_t state = 0;
    std::int32_t retries = 0;
    std::int32_t replyLength = 0;
    std::int32_t bytesSeen = 0;
    std::int32_t result = LinkPending;
    std::uint32_t commErrors = 0;
    std::int32_t ringReadAtFail = 0;
    std::int32_t ringWriteAtFail = 0;
    std::uint8_t firstByte = 0;
    std::uint8_t lastByte = 0;

    std::uint32_t address = 0; // or the distance from the trigger
    std::uint32_t length = 0;  // bytes or samples
    /// Where data go. Owned by the caller; outlives the request.
    std::span<std::uint8_t> reply;
    /// Called at each start and restart, on the thread that starts the request. What it refers to
    /// outlives the request.
    PayloadMaker makePayload;
    /// Made by `makePayload` at the last start.
    std::vector<std::uint8_t> payload;
    /// Runs on the link's thread; with no port, on the caller's. May be null.
    Completion completion;
};
using LinkRequestPtr = std::unique_ptr<LinkRequest>;

/// A request whose other fields are zero. The verbs below use it.
[[nodiscard]] LinkRequestPtr NewRequest(std::int32_t command,
                                        LinkRequest::Completion completion = nullptr);

/// Runs a function of the board, without data.
[[nodiscard]] LinkRequestPtr RunCommand(FunctionCommand command);

/// Writes to the command's register. The payload is cut or padded with zeros to the size that the
/// board expects there.
[[nodiscard]] LinkRequestPtr WritePayload(RegisterCommand command, LinkRequest::PayloadMaker make);
/// Writes the whole payload, starting at an address.
[[nodiscard]] LinkRequestPtr WriteMemory(MemoryCommand command, std::uint32_t address,
                                         LinkRequest::PayloadMaker make);

/// Fills the span with the board's memory, starting at a register.
[[nodiscard]] LinkRequestPtr ReadRegisters(std::uint32_t address, std::span<std::uint8_t> into);
/// The same from the target's memory.
[[nodiscard]] LinkRequestPtr ReadTarget(std::uint32_t address, std::span<std::uint8_t> into);
/// Reads as many samples as the span has room for, the first at a distance from the trigger.
[[nodiscard]] LinkRequestPtr ReadSamples(SampleCommand command, std::uint32_t distance,
                                         std::span<std::uint8_t> into);

/// The maker of a payload of one byte.
[[nodiscard]] LinkRequest::PayloadMaker OneByte(std::uint8_t value);

/// The board's code for a rate in bits per second; 0 for an unknown rate, and for 9600.
[[nodiscard]] std::uint8_t BaudCode(std::int32_t rate) noexcept;

/// Makes the payload of a request that is about to start; a register's address and size come from
/// its row. False for a writing command without a maker, which must not be sent.
[[nodiscard]] bool PreparePayload(LinkRequest& request);

} // namespace busquill
