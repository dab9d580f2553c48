#pragma once

#include <QString>

#include <vector>

namespace busquill {

/// One line of the list of keys.
struct KeyLine {
    QString place; // where the keys work: a menu, a kind of window
    QString keys;
    QString does;
    QString entry; // the command's path in the menus, or empty
};

/// All keys of the program: those of the commands, in the order of the menus, and after them those
/// that displays, cells and dialogs take themselves.
[[nodiscard]] std::vector<KeyLine> AllKeys();

} // namespace busquill
