#pragma once

#include <span>
#include <string>

namespace busquill::cli::board {

/// Runs the program with its arguments (without the program's name); returns the exit status.
[[nodiscard]] int Run(std::span<const std::string> texts);

} // namespace busquill::cli::board
