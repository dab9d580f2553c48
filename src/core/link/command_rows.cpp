#include "link/command_rows.h"

namespace busquill {

const CommandRow* FindCommand(std::int32_t command) noexcept {
    if (command < 1 || command > linkCommandCount) {
        return nullptr;
    }
    return &commandRows[static_cast<std::size_t>(command - 1)];
}

std::string_view LinkCommandName(std::int32_t command) noexcept {
    const CommandRow* row = FindCommand(command);
    return row == nullptr ? std::string_view("unknown command") : row->name;
}

} // namespace busquill
