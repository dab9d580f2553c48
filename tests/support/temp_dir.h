#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace busquill::test {

/// A temporary directory, removed with the object.
class TempDir {
public:
    TempDir() {
        std::string name = (std::filesystem::temp_directory_path() / "busquill-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    [[nodiscard]] std::string Path() const { return path_; }
    [[nodiscard]] std::string File(const std::string& name) const { return path_ + "/" + name; }
    /// Writes a file with this content and returns its path.
    std::string Write(const std::string& name, std::string_view content) const {
        std::ofstream(File(name), std::ios::binary) << content;
        return File(name);
    }

private:
    std::string path_;
};

[[nodiscard]] inline std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace busquill::test
