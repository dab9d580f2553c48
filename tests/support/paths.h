#pragma once

#include <string>

// Where the tests find what the build has made and what the tree ships.

namespace busquill::test {

/// A file of the tree, by its path from the top: SourceFile("data/Trigger1.tra").
std::string SourceFile(const std::string& path);
/// The simulated board, a program.
std::string BoardSimulator();
/// `busquill-trace`.
std::string TraceProgramPath();

} // namespace busquill::test
