#pragma once

#include <functional>
#include <string>
#include <vector>

namespace busquill::test {

/// What a run of busquill-trace has left behind.
struct ProgramRun {
    int status = -1; // -1: it ended by a signal, or did not end in time
    std::string out;
    std::string err;
};

struct ProgramInput {
    std::string folder = {}; // in which it runs; the test's own where it is empty
    std::string standardInput = {};
    std::string temporaryFolder = {};     // for its temporary files; the usual where it is empty
    std::function<void()> meanwhile = {}; // called again and again while it runs
    std::function<bool()> interruptWhen =
        {};                      // the same; where it is true first, an interrupt is sent
    std::size_t memoryBytes = 0; // of addresses that it gets; 0: any number
    std::size_t diskBytes = 0;   // that a file can have before its disk is full; 0: any number
    std::size_t readAtMost = 0;  // of its standard output, which is then closed; 0: all
};

/// Runs busquill-trace as a process of its own, for at most a minute.
[[nodiscard]] ProgramRun RunTrace(const std::vector<std::string>& arguments,
                                  const ProgramInput& input = {});

} // namespace busquill::test
