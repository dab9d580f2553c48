#pragma once

#include "capture/expression.h"
#include "capture/kept_expressions.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace CLI {
class App;
}

namespace busquill::cli {

/// The expressions of --where, which may be given several times.
struct Where {
    std::vector<std::string> texts; // all must hold
    KeptExpressions kept;           // those of the user, if one of them is used
};
void AddWhere(CLI::App& command, Where& into, const std::string& help);

/// Throws ExitRequest about the mistake in one of the expressions.
[[noreturn]] void WrongWhere(const Where& where, const std::string& text,
                             const ExpressionError& error);

/// What `parse` makes of each expression: a Condition or the mistake in it, for which ExitRequest
/// is thrown.
template <typename Condition, typename Parse>
[[nodiscard]] std::vector<Condition> ParseEach(const Where& where, Parse parse) {
    std::vector<Condition> conditions;
    conditions.reserve(where.texts.size());
    for (const std::string& text : where.texts) {
        std::variant<Condition, ExpressionError> parsed = parse(text);
        if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
            WrongWhere(where, text, *error);
        }
        conditions.push_back(std::get<Condition>(std::move(parsed)));
    }
    return conditions;
}

} // namespace busquill::cli
