#include "cli/beside.h"

#include "capture/capture_bookmarks.h"
#include "cli/line_prompts.h"
#include "cli/output.h"

#include <filesystem>
#include <system_error>

namespace busquill::cli {

void WriteBookmarksBeside(const std::string& written, const std::string& source) {
    const auto isFile = [](const std::string& name) {
        std::error_code unknown; // a device or a pipe has nothing beside it
        return name != "-" && std::filesystem::is_regular_file(name, unknown);
    };
    if (!isFile(written)) {
        return;
    }
    LinePrompts prompts;
    CaptureBookmarks bookmarks(prompts);
    if (isFile(source)) {
        bookmarks.Open(source);
    }
    bookmarks.SaveBeside(written);
    for (const std::string& text : prompts.Take()) {
        Say(text);
    }
}

} // namespace busquill::cli
