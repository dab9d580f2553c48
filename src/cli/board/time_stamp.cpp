#include "cli/board/time_stamp.h"

#include "platform/text.h"

#include <array>
#include <ctime>

namespace busquill::cli::board {

std::string TimeStamp(std::chrono::system_clock::time_point time) {
    const auto milliseconds =
        std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const std::time_t seconds =
        std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local);
    return Printf("%s.%03d", text.data(), static_cast<int>(milliseconds % 1000));
}

} // namespace busquill::cli::board
