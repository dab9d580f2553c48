#include "cli/range.h"

#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "platform/text.h"

namespace busquill::cli {

void AddRange(CLI::App& command, NumberRange& into) {
    AddNumber(command, "--from", into.from, "N", {}, "begin at sample N (the trigger is 0)");
    AddNumber(command, "--to", into.to, "N", {}, "end at sample N");
}

void CheckRange(const NumberRange& range) {
    if (range.from > range.to) {
        WrongUse(Printf("--from %lld lies behind --to %lld", static_cast<long long>(range.from),
                        static_cast<long long>(range.to)));
    }
}

} // namespace busquill::cli
