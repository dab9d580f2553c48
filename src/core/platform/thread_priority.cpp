#include "platform/thread_priority.h"

#if defined(__linux__)
#include <cerrno>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace busquill {

void LowerThreadPriority() noexcept {
#if defined(__linux__)
    // Linux keeps a nice value for each thread, by its thread id.
    const auto self = static_cast<id_t>(::syscall(SYS_gettid));
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, self);
    if (errno == 0) {
        static_cast<void>(::setpriority(PRIO_PROCESS, self, nice + 1));
    }
#endif
}

} // namespace busquill
