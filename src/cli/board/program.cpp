#include "cli/board/program.h"

#include "cli/board/commands.h"
#include "cli/command_line.h"

namespace busquill::cli::board {

std::shared_ptr<CLI::App> MakeBoardProgram() {
    auto program =
        MakeProgram("busquill-board", "The functions of the board without windows.",
                    "\"busquill-board COMMAND -h\" lists the options of a command. A time is in "
                    "seconds, or ends in\nms, s, m or h.\n");
    AddCommands(*program);
    return program;
}

} // namespace busquill::cli::board
