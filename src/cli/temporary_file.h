#pragma once

#include "platform/text_file.h"

#include <string>

namespace busquill::cli {

/// A file in the system's temporary folder that goes with the object. Throws ExitRequest when it
/// cannot be made.
class TemporaryFile {
public:
    /// `ending` begins with its point.
    explicit TemporaryFile(const std::string& ending);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] const std::string& Path() const noexcept { return path_; }
    [[nodiscard]] TextReader Open() const;
    /// Empty, to be written and read; it goes when the handle goes, whatever becomes of the object.
    [[nodiscard]] FileHandle Create() const;

private:
    std::string folder_;
    std::string path_;
};

} // namespace busquill::cli
