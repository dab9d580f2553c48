#include "cli/name_list.h"

#include "platform/text.h"

namespace busquill::cli {

std::vector<std::string> SplitNames(const std::vector<std::string>& values) {
    std::vector<std::string> names;
    for (const std::string& value : values) {
        std::string name;
        bool quoted = false;
        for (const char c : value + ",") {
            if (c == '"') {
                quoted = !quoted;
            } else if (c == ',' && !quoted) {
                names.emplace_back(Trim(name));
                name.clear();
            } else {
                name += c;
            }
        }
    }
    return names;
}

} // namespace busquill::cli
