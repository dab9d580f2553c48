#include "platform/thread_priority.h"

#if defined(__linux__)
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace busquill {

void LowerThreadPriority() noexcept {
#if defined(__linux__)
    const auto thread = static_cast<id_t>(::syscall(SYS_gettid));
    static_cast<void>(::setpriority(PRIO_PROCESS, thread, 1));
#endif
}

} // namespace busquill
