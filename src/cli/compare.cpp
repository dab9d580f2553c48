#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/stop.h"

namespace busquill::cli {

int RunCompare(const Arguments&) {
    Fail("not there");
}

} // namespace busquill::cli
