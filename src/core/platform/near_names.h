#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Names for a message that tells what would have been right: with commas between them, those that
/// are nearest to the word that was given first, the others in their order. A list that would be
/// too long for a message ends in "...".
[[nodiscard]] std::string ListNearest(std::string_view word, std::vector<std::string> names);

} // namespace busquill
