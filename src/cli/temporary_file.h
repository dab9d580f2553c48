#pragma once

#include "platform/text_file.h"

#include <string>

namespace busquill::cli {

/// A file in the system's temporary folder, removed by the destructor. Throws ExitRequest when it
/// cannot be created.
class TemporaryFile {
public:
    /// `ending` begins with a dot.
    explicit TemporaryFile(const std::string& ending);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] const std::string& Path() const noexcept { return path_; }
    [[nodiscard]] TextReader Open() const;
    /// Creates the empty file for writing and reading. The handle stays usable after this object is
    /// destroyed.
    [[nodiscard]] FileHandle Create() const;

private:
    std::string folder_;
    std::string path_;
};

} // namespace busquill::cli
