#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace busquill::test {

/// The result of a run of one of the programs for the command line.
struct ProgramRun {
    int status = -1; // -1: ended by a signal, or not in time
    std::string out;
    std::string err;
};

struct ProgramInput {
    std::string folder = {}; // working directory; if empty, that of the test
    std::string standardInput = {};
    bool onTerminal = false; // standard input is a terminal, where `standardInput` is typed
    std::vector<std::pair<std::string, std::string>> environment = {}; // variables to be set
    std::string temporaryFolder = {};     // for its temporary files; if empty, the default
    std::function<void()> meanwhile = {}; // called repeatedly while it runs
    /// Called repeatedly while it runs; the first time that it returns true, an interrupt is sent.
    std::function<bool()> interruptWhen = {};
    std::size_t memoryBytes = 0;    // limit of its address space; 0: none
    std::size_t diskBytes = 0;      // limit of a file's size, as on a full disk; 0: none
    std::chrono::seconds limit{60}; // after which it is killed
    std::size_t readAtMost = 0;     // of its standard output, which is then closed; 0: all
};

/// Runs busquill-trace as a separate process.
[[nodiscard]] ProgramRun RunTrace(const std::vector<std::string>& arguments,
                                  const ProgramInput& input = {});
/// The same for busquill-board.
[[nodiscard]] ProgramRun RunBoard(const std::vector<std::string>& arguments,
                                  const ProgramInput& input = {});
/// Runs a program that the system has, by its path.
[[nodiscard]] ProgramRun RunSystemProgram(const std::string& program,
                                          const std::vector<std::string>& arguments,
                                          const ProgramInput& input = {});

} // namespace busquill::test
