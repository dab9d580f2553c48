#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace busquill::cli::board {

/// busquill-board with its commands, for RunProgram.
[[nodiscard]] std::shared_ptr<CLI::App> MakeBoardProgram();

} // namespace busquill::cli::board
