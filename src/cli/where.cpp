#include "cli/where.h"

#include "cli/exit_request.h"
#include "platform/text.h"

namespace busquill::cli {

void WrongWhere(const std::string& text, const ExpressionError& error) {
    const std::string rest = text.substr(error.place);
    WrongUse(Printf("--where is wrong at %s: %s",
                    rest.empty() ? "its end" : ("\"" + Shortened(rest) + "\"").c_str(),
                    error.message.c_str()));
}

} // namespace busquill::cli
