#include "capture/bookmarks.h"
#include "support/temp_dir.h"

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace busquill;
using namespace busquill::test;

/// What has been read is written, and read again alike.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const BookmarkFile file = ReadBookmarks(dir.Write("a.tra.bookmarks", text));
    const std::string copy = dir.File("b.tra.bookmarks");
    if (!WriteBookmarks(copy, file.bookmarks)) {
        return 0; // the disk may be full
    }
    const bool isSame =
        ReadBookmarks(copy).failure.empty() && ReadBookmarks(copy).bookmarks == file.bookmarks;
    if (!isSame) {
        std::abort();
    }
    return 0;
}
