#include "cli/program.h"

#include "cli/command_line.h"
#include "cli/commands.h"

namespace busquill::cli {

std::shared_ptr<CLI::App> MakeTraceProgram() {
    auto program = MakeProgram(
        "busquill-trace", "Captures of bus analyzer boards from the command line.",
        "\"busquill-trace COMMAND -h\" tells the others. \"-\" as a file is standard input or "
        "output.\n"
        "Exit status: 0 done, 1 nothing found or captures differ, 2 wrong use, 3 failure.\n");
    AddInfo(*program);
    AddList(*program);
    AddSearch(*program);
    AddFilter(*program);
    AddConvert(*program);
    AddCompare(*program);
    AddStats(*program);
    AddTransactions(*program);
    AddNames(*program);
    AddSetup(*program);
    AddBoard(*program);
    AddCapture(*program);
    return program;
}

} // namespace busquill::cli
