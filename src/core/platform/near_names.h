#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// A list of valid names for an error message, separated by commas: first those nearest to `word`,
/// then the others in their order. A list with more than so many characters is cut and ends in
/// "...".
[[nodiscard]] std::string ListNearest(std::string_view word, const std::vector<std::string>& names,
                                      std::size_t enough = 400);

} // namespace busquill
