#pragma once

#include <span>
#include <string>

namespace busquill::cli::board {

/// Runs the program with the words after its name; returns the exit status.
[[nodiscard]] int Run(std::span<const std::string> words);

} // namespace busquill::cli::board
