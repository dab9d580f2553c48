#include "exerciser/form_lists.h"

#include <algorithm>

namespace busquill {

std::int32_t IndexInList(std::span<const std::string_view> list, std::string_view text) noexcept {
    const auto found = std::ranges::find(list, text);
    return found == list.end() ? 0 : static_cast<std::int32_t>(found - list.begin());
}

std::string_view TextInList(std::span<const std::string_view> list, std::int32_t index) noexcept {
    const bool inside = index >= 0 && static_cast<std::size_t>(index) < list.size();
    return inside ? list[static_cast<std::size_t>(index)] : std::string_view();
}

} // namespace busquill
