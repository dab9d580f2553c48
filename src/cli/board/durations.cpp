#include "cli/board/durations.h"

#include <charconv>

namespace busquill::cli::board {

namespace {

struct Unit {
    std::string_view name;
    Milliseconds length;
};
using namespace std::chrono_literals;
constexpr Unit units[] = {{"", 1s}, {"ms", 1ms}, {"s", 1s}, {"m", 1min}, {"h", 1h}};

constexpr Milliseconds longest = std::chrono::hours(366 * 24);

} // namespace

std::optional<Milliseconds> ParseDuration(std::string_view text) noexcept {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const std::string_view name(stop, static_cast<std::size_t>(end - stop));
    for (const Unit& unit : units) {
        const bool fits = number > 0 && number <= longest / unit.length;
        if (error == std::errc() && name == unit.name && fits) {
            return number * unit.length;
        }
    }
    return std::nullopt;
}

} // namespace busquill::cli::board
