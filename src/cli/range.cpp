#include "cli/range.h"

#include "cli/arguments.h"
#include "cli/exit_request.h"
#include "platform/text.h"

namespace busquill::cli {

NumberRange RangeOf(const Arguments& arguments) {
    NumberRange range;
    range.from = arguments.Number("from").value_or(range.from);
    range.to = arguments.Number("to").value_or(range.to);
    if (range.from > range.to) {
        WrongUse(Printf("--from %lld lies behind --to %lld", static_cast<long long>(range.from),
                        static_cast<long long>(range.to)));
    }
    return range;
}

} // namespace busquill::cli
