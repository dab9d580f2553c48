#pragma once

#include <string>
#include <string_view>

namespace busquill {

/// The program's folder: the directory in which it was started.
class WorkingDirectory {
public:
    /// The process's current directory at the time of the call.
    [[nodiscard]] static WorkingDirectory AtStart();
    explicit WorkingDirectory(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string& Path() const noexcept { return path_; }
    /// The path of a file in it; a separator is added where the directory does not end in one.
    /// An empty directory is the process's current one.
    [[nodiscard]] std::string FilePath(std::string_view name) const;

private:
    std::string path_;
};

/// The part of a path after its last separator; a backslash counts as one too.
[[nodiscard]] std::string_view FileNameOf(std::string_view path) noexcept;

/// The part of a path up to and with its last separator; empty for a bare file name.
[[nodiscard]] std::string_view FolderOf(std::string_view path) noexcept;

/// The file name up to its last dot.
[[nodiscard]] std::string_view BaseNameOf(std::string_view path) noexcept;

} // namespace busquill
