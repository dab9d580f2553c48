#include "cli/command_line.h"
#include "cli/program.h"

#include <csignal>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    // Writing to a pipe without a reader then fails with an error instead.
    std::signal(SIGPIPE, SIG_IGN);
    const std::vector<std::string> words(argv + 1, argv + argc);
    return busquill::cli::RunProgram(*busquill::cli::MakeTraceProgram(), words);
}
