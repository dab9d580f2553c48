/// Durations on the command line.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace busquill::cli::board {

using Milliseconds = std::chrono::milliseconds;

/// "90", "90s", "250ms", "5m", "8h": above 0 and at most a year. Nothing for any other text.
[[nodiscard]] std::optional<Milliseconds> ParseDuration(std::string_view text) noexcept;
/// The same for an option, whose name a message begins with; throws ExitRequest for another text.
[[nodiscard]] Milliseconds DurationOf(const std::string& option, const std::string& text);

} // namespace busquill::cli::board
