#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/stop.h"

namespace busquill::cli {

int RunStats(const Arguments&) {
    Fail("not there");
}

} // namespace busquill::cli
