#pragma once

#include <span>
#include <string>

namespace busquill::cli {

/// The whole program, from the texts behind its name to the exit status.
[[nodiscard]] int Run(std::span<const std::string> texts);

} // namespace busquill::cli
