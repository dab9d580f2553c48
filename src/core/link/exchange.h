/// Exchanges with the board whose failure the user must hear of. Main thread.
#pragma once

#include "link/analyzer_link.h"

#include <cstdint>
#include <span>

namespace busquill {

class Prompts;

/// Sends a request and waits for its end. A failure is told above all windows, in the words of the
/// feature, and returned for those that must not go on.
bool ExchangeOrTell(CAnalyzerLink& link, LinkRequestPtr request, Prompts& prompts,
                    const char* failure);

/// Reads the board's memory from a register on. Without a board the bytes stay as they were: who
/// looks at a status sets them anew before each look.
[[nodiscard]] bool ReadOrTell(CAnalyzerLink& link, std::uint32_t address,
                              std::span<std::uint8_t> bytes, Prompts& prompts, const char* failure);

/// Of every status byte that a function of the board has: it is still running.
constexpr std::uint8_t statusRunning = 0x80;

} // namespace busquill
