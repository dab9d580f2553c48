#include "cli/names.h"

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

std::string UnknownSignal(const std::string& name, const SignalTables& tables) {
    std::string names;
    for (const auto& def : tables.busSignals.Defs()) {
        names += (names.empty() ? "" : ", ") + def->name;
    }
    constexpr std::size_t enough = 400;
    return Printf("no signal \"%s\" on this bus; there are %s", name.c_str(),
                  names.size() <= enough ? names.c_str()
                                         : (names.substr(0, enough) + " ...").c_str());
}

} // namespace busquill::cli
