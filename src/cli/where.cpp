#include "cli/where.h"

#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/output.h"
#include "platform/text.h"

#include <algorithm>

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

void AddWhere(CLI::App& command, Where& into, const std::string& help) {
    AddTexts(
        command, "--where",
        [&into](const std::vector<std::string>& texts) {
            into.texts = texts;
            const bool usesKept = std::ranges::any_of(
                texts, [](const std::string& text) { return text.find('@') != std::string::npos; });
            into.kept = usesKept ? ReadKept() : KeptExpressions();
        },
        "EXPR", (help + "; may be given several times, all must hold").c_str());
}

void WrongWhere(const Where& where, const std::string& text, const ExpressionError& error) {
    const std::string rest = text.substr(error.place);
    const std::string which =
        where.texts.size() == 1 ? "--where" : "the --where \"" + Shortened(text) + "\"";
    WrongUse(Printf("%s is wrong at %s: %s", which.c_str(),
                    rest.empty() ? "its end" : ("\"" + Shortened(rest) + "\"").c_str(),
                    error.message.c_str()));
}

} // namespace busquill::cli
