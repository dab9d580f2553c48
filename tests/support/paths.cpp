#include "support/paths.h"

namespace busquill::test {

std::string SourceFile(const std::string& path) {
    return BUSQUILL_SOURCE_DIR "/" + path;
}

std::string BoardSimulator() {
#ifdef BUSQUILL_BOARDSIM
    return BUSQUILL_BOARDSIM;
#else
    return {};
#endif
}

std::string TraceProgramPath() {
    return BUSQUILL_TRACE;
}

std::string BoardProgramPath() {
    return BUSQUILL_BOARD;
}

} // namespace busquill::test
