#include "cli/temporary_file.h"

#include "cli/exit_request.h"

#include <cstdlib>
#include <filesystem>

namespace busquill::cli {

// In a private folder, so that nobody else can put a file in its place.
TemporaryFile::TemporaryFile(const std::string& ending) {
    std::error_code wrong;
    folder_ = (std::filesystem::temp_directory_path(wrong) / "busquill-XXXXXX").string();
    if (wrong || ::mkdtemp(folder_.data()) == nullptr) {
        Fail("no temporary file can be made");
    }
    path_ = folder_ + "/capture" + ending;
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

FileHandle TemporaryFile::Create() const {
    FileHandle file(std::fopen(path_.c_str(), "w+b"));
    if (!file) {
        Fail("no temporary file can be made");
    }
    return file;
}

TextReader TemporaryFile::Open() const {
    TextReader file;
    if (!file.Open(path_)) {
        Fail("a temporary file cannot be read");
    }
    return file;
}

} // namespace busquill::cli
