#include "cli/board/line_output.h"

#include "cli/exit_request.h"
#include "platform/text.h"

#include <cerrno>
#include <unistd.h>

namespace busquill::cli::board {

LineOutput::LineOutput(const std::string& path) : path_(path == "-" ? "" : path) {
    if (!path_.empty() && !file_.CreateBeside(path_)) {
        Fail(Printf("Error creating file %s.", path_.c_str()));
    }
}

void LineOutput::Print(std::string_view line) {
    Write(std::string(line) + "\n");
}

void LineOutput::Write(std::string_view bytes) {
    if (!path_.empty()) {
        file_.Write(bytes);
        return;
    }
    while (!bytes.empty() && error_ == 0) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            error_ = errno;
        }
    }
}

void LineOutput::Close() {
    if (!path_.empty() && !file_.Close()) {
        Fail(Printf("Error writing file %s.", path_.c_str()));
    }
    if (error_ != 0 && error_ != EPIPE) {
        Fail("standard output cannot be written");
    }
}

} // namespace busquill::cli::board
