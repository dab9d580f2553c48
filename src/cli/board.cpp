#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/stop.h"

namespace busquill::cli {

int RunBoard(const Arguments&) {
    Fail("not there");
}

} // namespace busquill::cli
