#include "cli/line_prompts.h"

#include <algorithm>
#include <utility>

namespace busquill::cli {

Answer LinePrompts::Show(const Box& box) {
    std::string line = box.text;
    std::ranges::replace(line, '\n', ' ');
    said_.push_back(std::move(line));
    const bool isQuestion =
        box.buttons == BoxButtons::YesNo || box.buttons == BoxButtons::YesNoCancel;
    return isQuestion                            ? Answer::No
           : box.buttons == BoxButtons::OkCancel ? Answer::Cancel
                                                 : Answer::Ok;
}

std::vector<std::string> LinePrompts::Take() {
    return std::exchange(said_, {});
}

} // namespace busquill::cli
