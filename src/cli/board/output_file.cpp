#include "cli/board/output_file.h"

#include "cli/exit_request.h"
#include "platform/text.h"
#include "platform/working_directory.h"

#include <filesystem>

namespace busquill::cli::board {

void CheckFolderOf(const std::string& path) {
    const std::string folder(FolderOf(path));
    std::error_code unknown;
    if ((!folder.empty() && !std::filesystem::is_directory(folder, unknown)) ||
        std::filesystem::is_directory(path, unknown)) {
        Fail(Printf("Error creating file %s.", path.c_str()));
    }
}

void CheckFileBeside(const std::string& path) {
    if (path == "-") {
        WrongUse(
            "the results go to standard output already; give the name of a file instead of \"-\"");
    }
    CheckFolderOf(path);
}

} // namespace busquill::cli::board
