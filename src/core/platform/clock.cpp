#include "platform/clock.h"

#include <thread>

namespace busquill {

std::time_t SystemClock::Time() const {
    return std::time(nullptr);
}

void SystemClock::Sleep(std::chrono::milliseconds pause) {
    std::this_thread::sleep_for(pause);
}

} // namespace busquill
