/// Exchanges with the board whose failures are reported to the user. Main thread, which waits for
/// each.
#pragma once

#include "link/analyzer_link.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

class Prompts;

/// Sends a request and waits until it is done. Shows `failure` above all windows when it fails, and
/// returns whether it succeeded.
bool ExchangeOrReport(CAnalyzerLink& link, LinkRequestPtr request, Prompts& prompts,
                      const char* failure);

/// Reads the board's memory starting at a register. Without a board the bytes are unchanged.
[[nodiscard]] bool ReadOrReport(CAnalyzerLink& link, std::uint32_t address,
                                std::span<std::uint8_t> bytes, Prompts& prompts,
                                const char* failure);

/// What to do when a step fails.
enum class IfRefused { GoOn, End };

/// One of several commands that are sent to the board in order.
struct RunStep {
    LinkRequestPtr request;
    const char* failure;
    IfRefused then = IfRefused::GoOn;
};

/// Which steps were sent.
enum class Sent {
    All,  // all succeeded
    Some, // some failed, which was reported, and the others were sent all the same
    Ended // a step that must succeed failed, or the board is gone
};
Sent SendSteps(CAnalyzerLink& link, std::vector<RunStep> steps, Prompts& prompts);

/// Where the board reports the progress of a function.
struct StatusRegister {
    std::uint32_t address;
    /// The status to assume without a board, when nothing is read.
    std::uint8_t preset;
    /// Between two polls.
    std::chrono::milliseconds period;
    const char* failure;
};

/// Set in the status byte of every function of the board while it is running.
constexpr std::uint8_t statusRunning = 0x80;

/// Reads a status, which may have more bytes after the first. Reports a failure and returns false.
[[nodiscard]] bool ReadStatus(CAnalyzerLink& link, const StatusRegister& from,
                              std::span<std::uint8_t> status, Prompts& prompts);

} // namespace busquill
