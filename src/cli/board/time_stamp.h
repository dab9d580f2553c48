#pragma once

#include <chrono>
#include <string>

namespace busquill::cli::board {

/// The local time to the millisecond, without a zone: "2026-11-22T03:15:00.250".
[[nodiscard]] std::string TimeStamp(std::chrono::system_clock::time_point time);

} // namespace busquill::cli::board
