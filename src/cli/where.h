#pragma once

#include "capture/expression.h"
#include "capture/kept_expressions.h"

#include <string>
#include <utility>
#include <variant>

namespace CLI {
class App;
}

namespace busquill::cli {

/// The expression of --where.
struct Where {
    std::string text;     // empty if none is given
    KeptExpressions kept; // those of the user, if it uses any
};
void AddWhere(CLI::App& command, Where& into, const char* help);

/// Throws ExitRequest about the mistake in the expression of --where.
[[noreturn]] void WrongWhere(const Where& where, const ExpressionError& error);

/// The condition that was parsed from the expression of --where; throws ExitRequest on a mistake.
template <typename Condition>
[[nodiscard]] Condition TakeCondition(std::variant<Condition, ExpressionError> parsed,
                                      const Where& where) {
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        WrongWhere(where, *error);
    }
    return std::get<Condition>(std::move(parsed));
}

} // namespace busquill::cli
