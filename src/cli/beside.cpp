#include "cli/beside.h"

#include "capture/capture_bookmarks.h"
#include "cli/line_prompts.h"
#include "cli/output.h"

#include <filesystem>
#include <system_error>

namespace busquill::cli {

void WriteBookmarksBeside(const std::string& written, const std::string& source) {
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(written, unknown)) {
        return; // a device or a pipe
    }
    LinePrompts prompts;
    CaptureBookmarks bookmarks(prompts);
    if (std::filesystem::is_regular_file(source, unknown)) {
        bookmarks.Open(source);
    }
    bookmarks.SaveBeside(written);
    for (const std::string& text : prompts.Take()) {
        Say(text);
    }
}

} // namespace busquill::cli
