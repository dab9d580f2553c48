#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace busquill::cli {

/// busquill-trace with its commands, for RunProgram.
[[nodiscard]] std::shared_ptr<CLI::App> MakeTraceProgram();

} // namespace busquill::cli
