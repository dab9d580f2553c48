#include "capture/expression.h"

#include "capture/expression_reader.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace busquill {

std::string QuotedName(std::string_view name) {
    const std::size_t bracket = std::min(name.find_last_of('['), name.size());
    const bool hasSlice = SliceLength(name.substr(bracket)) == name.size() - bracket;
    const std::string_view base = hasSlice ? name.substr(0, bracket) : name;
    const bool isPlain = !base.empty() && NameLength(base) == base.size() && !IsKeyword(base);
    return (isPlain ? std::string(base) : Quoted(base, '`')) +
           std::string(name.substr(base.size()));
}

bool IsLike(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::optional<std::pair<std::size_t, std::size_t>> star; // after it in the pattern, in the text
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = {++in, at};
        } else if (in < pattern.size() && Lower(pattern[in]) == Lower(text[at])) {
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
