#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace busquill::cli {

/// The files that operands name: a file is itself, a folder stands for those below it.
struct FileList {
    std::vector<std::string> files;
    /// There is one operand, and it is a file.
    bool isOneFile = false;
    /// A folder could not be read.
    bool isIncomplete = false;
};

/// Searches folders for files with this ending, in upper or lower case. Operands keep their order;
/// the files of a folder are sorted by path. Links to files are followed, links to folders only
/// where they are an operand. Pipes and devices in folders are left out. Reports folders that
/// cannot be read, or have no such file.
[[nodiscard]] FileList ListFiles(const std::vector<std::string>& operands, std::string_view ending);

} // namespace busquill::cli
