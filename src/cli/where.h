#pragma once

#include "capture/expression.h"

#include <string>
#include <utility>
#include <variant>

namespace busquill::cli {

/// Throws ExitRequest about the mistake in the expression of --where.
[[noreturn]] void WrongWhere(const std::string& text, const ExpressionError& error);

/// The condition that was parsed from the expression of --where; throws ExitRequest on a mistake.
template <typename Condition>
[[nodiscard]] Condition TakeCondition(std::variant<Condition, ExpressionError> parsed,
                                      const std::string& text) {
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        WrongWhere(text, *error);
    }
    return std::get<Condition>(std::move(parsed));
}

} // namespace busquill::cli
