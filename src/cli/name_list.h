/// Names of signals on the command line.
#pragma once

#include <string>
#include <vector>

namespace busquill::cli {

/// "A,B" and "C" as A, B and C; a name with a comma in it is put in double quotes.
[[nodiscard]] std::vector<std::string> SplitNames(const std::vector<std::string>& values);

} // namespace busquill::cli
