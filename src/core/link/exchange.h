/// Exchanges with the board whose failure the user must hear of. Main thread, which waits for each.
#pragma once

#include "link/analyzer_link.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

class Prompts;

/// Sends a request and waits for its end. A failure is told above all windows, in the words of the
/// feature, and returned for those that must not go on.
bool ExchangeOrReport(CAnalyzerLink& link, LinkRequestPtr request, Prompts& prompts,
                      const char* failure);

/// Reads the board's memory from a register on. Without a board the bytes stay as they were.
[[nodiscard]] bool ReadOrReport(CAnalyzerLink& link, std::uint32_t address,
                                std::span<std::uint8_t> bytes, Prompts& prompts,
                                const char* failure);

/// What follows when the board does not take a step.
enum class IfRefused { GoOn, End };

/// One of several commands that go to the board in their order.
struct RunStep {
    LinkRequestPtr request;
    const char* failure;
    IfRefused then = IfRefused::GoOn;
};

/// How far steps have gone.
enum class Sent {
    All,  // the board has taken each
    Some, // some were refused, which the user has heard, and the others have gone all the same
    Ended // a step was refused that ends the row, or the board is gone
};
Sent SendSteps(CAnalyzerLink& link, std::vector<RunStep> steps, Prompts& prompts);

/// Where the board tells how far something has come.
struct StatusRegister {
    std::uint32_t address;
    /// What the status is where there is no board: no look reads anything then.
    std::uint8_t preset;
    /// Between two looks.
    std::chrono::milliseconds period;
    const char* failure;
};

/// Of every status byte that a function of the board has: it is still running.
constexpr std::uint8_t statusRunning = 0x80;

/// One look at a status, which may have more bytes after the first. False when it cannot be read.
[[nodiscard]] bool ReadStatus(CAnalyzerLink& link, const StatusRegister& from,
                              std::span<std::uint8_t> status, Prompts& prompts);

} // namespace busquill
