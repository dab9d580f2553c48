/// Durations on the command line.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace busquill::cli::board {

using Milliseconds = std::chrono::milliseconds;

/// "90", "90s", "250ms", "5m", "8h": above 0 and at most a year. Nothing for any other text.
[[nodiscard]] std::optional<Milliseconds> ParseDuration(std::string_view text) noexcept;

} // namespace busquill::cli::board
