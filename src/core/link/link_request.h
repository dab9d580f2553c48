/// One command for the board, and the verbs that make one: run, write, read.
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
    /// Where data go; the caller's, and outlives the request.
    std::span<std::uint8_t> reply;
    /// Called at each start and restart, on the thread that starts; what it looks at outlives the
    /// request.
    PayloadMaker makePayload;
    /// What it made at the last start.
    std::vector<std::uint8_t> payload;
    /// Runs on the link's thread, with no port on the caller's. Null: nobody asks.
    Completion completion;
};
using LinkRequestPtr = std::unique_ptr<LinkRequest>;

/// The plain maker beneath the verbs: everything else is zero.
[[nodiscard]] LinkRequestPtr NewRequest(std::int32_t command,
                                        LinkRequest::Completion completion = nullptr);

/// A function of the board alone.
[[nodiscard]] LinkRequestPtr RunCommand(FunctionCommand command);

/// Writes to the command's register. What the maker gives is cut or filled with zeros to the size
/// that the board takes there.
[[nodiscard]] LinkRequestPtr WritePayload(RegisterCommand command, LinkRequest::PayloadMaker make);
/// Writes all that the maker gives from an address on.
[[nodiscard]] LinkRequestPtr WriteMemory(MemoryCommand command, std::uint32_t address,
                                         LinkRequest::PayloadMaker make);

/// Fills the span with the board's memory from a register on.
[[nodiscard]] LinkRequestPtr ReadRegisters(std::uint32_t address, std::span<std::uint8_t> into);
/// The same from the target's memory.
[[nodiscard]] LinkRequestPtr ReadTarget(std::uint32_t address, std::span<std::uint8_t> into);
/// As many samples as the span has room for, the first at a distance from the trigger.
[[nodiscard]] LinkRequestPtr ReadSamples(SampleCommand command, std::uint32_t distance,
                                         std::span<std::uint8_t> into);

/// The maker of a payload of one byte.
[[nodiscard]] LinkRequest::PayloadMaker OneByte(std::uint8_t value);

/// The board's code of a rate in bits per second; 0 for one that it does not know, and for 9600.
[[nodiscard]] std::uint8_t BaudCode(std::int32_t rate) noexcept;

/// Makes the payload of a request that starts; a register's address and size come from its row.
/// False for a writing command without a maker, which must not go out.
[[nodiscard]] bool PreparePayload(LinkRequest& request);

} // namespace busquill
