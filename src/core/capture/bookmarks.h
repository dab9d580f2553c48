/// The bookmarks of a capture, and the file beside the capture that keeps them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace busquill {

/// Notes in UTF-8, perhaps empty, by the numbers of the samples that they are about. Numbers count
/// from the trigger, so they stay the same when a part of a capture is saved.
using Bookmarks = std::map<std::int64_t, std::string>;

/// New notes by the numbers of the samples; nothing removes the bookmark.
using BookmarkChanges = std::map<std::int64_t, std::optional<std::string>>;

constexpr std::size_t mostBookmarks = 10'000;
constexpr std::size_t longestNote = 4096; // bytes

/// The file that keeps the bookmarks of a capture: one, however the path is written and whatever
/// links lead to the capture.
[[nodiscard]] std::string BookmarkPathOf(const std::string& capture);

struct BookmarkFile {
    /// Of a file that is not understood as a whole, those that are.
    Bookmarks bookmarks;
    /// What is wrong with the file, and in which line; empty if it is understood or does not exist.
    std::string failure;
};

[[nodiscard]] BookmarkFile ReadBookmarks(const std::string& path);

/// Replaces the file, or removes it if there are no bookmarks. A file that is a link stays one.
/// False if that fails; then the old file is still there.
[[nodiscard]] bool WriteBookmarks(const std::string& path, const Bookmarks& bookmarks);

} // namespace busquill
