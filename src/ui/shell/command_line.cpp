#include "ui/shell/command_line.h"

namespace busquill {

std::string CommandLineSwitch(const std::vector<std::string>& arguments) {
    std::string found;
    for (const std::string& argument : arguments) {
        const bool dash = argument.size() > 1 && argument[0] == '-';
        const bool slash =
            argument.size() > 1 && argument[0] == '/' && argument.find('/', 1) == std::string::npos;
        if (dash || slash) {
            found = argument.substr(1);
        }
    }
    return found;
}

std::string ApplicationName(const std::string& commandLineSwitch) {
    return commandLineSwitch.empty() ? stockName : stockName + ("-" + commandLineSwitch);
}

} // namespace busquill
