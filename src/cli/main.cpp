#include "cli/program.h"

#include <csignal>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    // A pipe that nobody reads shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    const std::vector<std::string> texts(argv + 1, argv + argc);
    return busquill::cli::Run(texts);
}
