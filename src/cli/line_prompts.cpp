#include "cli/line_prompts.h"

#include <algorithm>
#include <utility>

namespace busquill::cli {

std::string AsLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

Answer LinePrompts::Show(const Box& box) {
    if (answer_ && box.buttons != BoxButtons::Ok) {
        return answer_(box);
    }
    said_.push_back(AsLine(box.text));
    const bool isQuestion =
        box.buttons == BoxButtons::YesNo || box.buttons == BoxButtons::YesNoCancel;
    return isQuestion                            ? Answer::No
           : box.buttons == BoxButtons::OkCancel ? Answer::Cancel
                                                 : Answer::Ok;
}

std::vector<std::string> LinePrompts::Take() {
    return std::exchange(said_, {});
}

std::string LinePrompts::TakeFirst(const std::string& otherwise) {
    const auto said = Take();
    return said.empty() ? otherwise : said.front();
}

} // namespace busquill::cli
