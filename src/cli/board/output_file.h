#pragma once

#include <string>

namespace busquill::cli::board {

/// Throws ExitRequest if the folder of a file that is written after the run does not exist: before
/// the run, whose results would be lost. An empty path passes.
void CheckFolderOf(const std::string& path);
/// The same for a file that is written in addition to the results on standard output. It also
/// refuses "-", which makes no sense there.
void CheckFileBeside(const std::string& path);

} // namespace busquill::cli::board
