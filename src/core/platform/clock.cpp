#include "platform/clock.h"

#include "platform/main_thread.h"

#include <thread>

namespace busquill {

std::time_t SystemClock::Time() const {
    return std::time(nullptr);
}

void SystemClock::Sleep(std::chrono::milliseconds pause) {
    if (MainThread* main = MainThread::OnThisThread(); main != nullptr) {
        static_cast<void>(main->WaitUntil(pause, [] { return false; }));
    } else {
        std::this_thread::sleep_for(pause);
    }
}

} // namespace busquill
