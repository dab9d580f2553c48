#pragma once

#include "capture/expression.h"

#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// What could stand after a text: names, operators, labels and words. None after a mistake.
[[nodiscard]] std::vector<std::string> OffersAfter(std::string_view text, ExpressionNames& names,
                                                   const KeptExpressions* kept);

} // namespace busquill
