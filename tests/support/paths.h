#pragma once

#include <string>

// Where the tests find built programs and files of the source tree.

namespace busquill::test {

/// A file of the source tree, by its path from the top: SourceFile("data/Trigger1.tra").
std::string SourceFile(const std::string& path);
/// The program of the simulated board.
std::string BoardSimulator();
/// `busquill-trace`.
std::string TraceProgramPath();
/// `busquill-board`.
std::string BoardProgramPath();

} // namespace busquill::test
