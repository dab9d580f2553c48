#include "cli/where.h"

#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/output.h"
#include "platform/text.h"

namespace busquill::cli {

namespace {

KeptExpressions ReadKept() {
    const std::string file = KeptExpressions::UsualFile().string();
    KeptExpressions kept;
    if (!kept.Read(file)) {
        Fail(file + " cannot be read");
    }
    for (const std::size_t line : kept.WrongLines()) {
        Say(Printf("%s: line %zu is not \"name: expression\" with a new name", file.c_str(), line));
    }
    return kept;
}

} // namespace

void AddWhere(CLI::App& command, Where& into, const char* help) {
    AddText(
        command, "--where",
        [&into](const std::string& text) {
            into.text = text;
            into.kept = text.find('@') != std::string::npos ? ReadKept() : KeptExpressions();
        },
        "EXPR", help);
}

void WrongWhere(const Where& where, const ExpressionError& error) {
    const std::string rest = where.text.substr(error.place);
    WrongUse(Printf("--where is wrong at %s: %s",
                    rest.empty() ? "its end" : ("\"" + Shortened(rest) + "\"").c_str(),
                    error.message.c_str()));
}

} // namespace busquill::cli
