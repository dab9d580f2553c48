#include "capture/expression.h"

#include "platform/text.h"

#include <optional>
#include <utility>

namespace busquill {

bool IsLike(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::optional<std::pair<std::size_t, std::size_t>> star; // after it in the pattern, in the text
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = {++in, at};
        } else if (in < pattern.size() && ToLower(pattern[in]) == ToLower(text[at])) {
            ++in;
            ++at;
        } else if (star) {
            in = star->first;
            at = ++star->second;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

} // namespace busquill
