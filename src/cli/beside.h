#pragma once

#include <string>

namespace busquill::cli {

/// Writes the bookmarks of a capture beside a new one that has its samples, in place of those of
/// the capture that was there. An empty path, or "-", is a capture without bookmarks. What cannot
/// be done is said.
void WriteBookmarksBeside(const std::string& written, const std::string& source);

} // namespace busquill::cli
