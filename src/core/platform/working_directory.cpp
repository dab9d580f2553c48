#include "platform/working_directory.h"

#include <filesystem>

namespace busquill {

WorkingDirectory WorkingDirectory::AtStart() {
    std::error_code failed;
    const auto path = std::filesystem::current_path(failed);
    return WorkingDirectory(failed ? std::string(".") : path.string());
}

std::string WorkingDirectory::FilePath(std::string_view name) const {
    std::string path = path_;
    if (!path.empty() && path.back() != '/' && path.back() != '\\') {
        path += static_cast<char>(std::filesystem::path::preferred_separator);
    }
    return path.append(name);
}

std::string_view FileNameOf(std::string_view path) noexcept {
    const auto cut = path.find_last_of("/\\");
    return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

std::string_view FolderOf(std::string_view path) noexcept {
    return path.substr(0, path.size() - FileNameOf(path).size());
}

std::string_view BaseNameOf(std::string_view path) noexcept {
    const std::string_view name = FileNameOf(path);
    return name.substr(0, name.rfind('.'));
}

} // namespace busquill
