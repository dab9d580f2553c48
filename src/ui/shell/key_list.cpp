#include "ui/shell/key_list.h"

#include "ui/framework/bar_button.h"
#include "ui/framework/commands.h"

#include <iterator>

namespace busquill {

namespace {

struct FixedKey {
    const char* place;
    const char* keys;
    const char* does;
};

// clang-format off
constexpr FixedKey fixedKeys[] = {
    {"Windows",                "Ctrl+Tab, Ctrl+Shift+Tab", "Next window, previous window"},
    {"Windows",                "Ctrl+F4",                  "Close the active window"},
    {"Listing",                "Up, Down",                 "One row"},
    {"Listing",                "Page Up, Page Down",       "As many rows as fit"},
    {"Waveforms",              "Left, Right",              "Four pixels"},
    {"Waveforms",              "Page Up, Page Down",       "As many samples as fit"},
    {"Transactions",           "Up, Down, Page Up, Page Down", "Choose another row"},
    {"Transactions",           "Home, End",                "First row, last row"},
    {"Transactions",           "Enter",                    "Go to the chosen transaction again"},
    {"Transactions",           "Esc",                      "Back to the capture"},
    {"Findings and hits",      "Up, Down, Page Up, Page Down", "Choose another row"},
    {"Findings and hits",      "F3, Shift+F3",             "Next row, previous row"},
    {"Findings and hits",      "Home, End",                "First row, last row"},
    {"Findings and hits",      "Enter",                    "Go to the chosen sample again"},
    {"Findings and hits",      "Esc",                      "Back to the capture"},
    {"Bookmarks",              "Up, Down, Page Up, Page Down", "Choose another row"},
    {"Bookmarks",              "Home, End",                "First row, last row"},
    {"Bookmarks",              "Enter",                    "Go to the chosen bookmark again"},
    {"Bookmarks",              "F2",                       "Change the note"},
    {"Bookmarks",              "Delete",                   "Remove the selected bookmarks"},
    {"Bookmarks",              "Esc",                      "Back to the capture"},
    {"Bits of a pattern",      "0 to 9, A to F",           "Set the digit at the caret"},
    {"Bits of a pattern",      "X",                        "Ignore the digit at the caret"},
    {"Bits of a pattern",      "Left, Backspace, Right",   "Move the caret"},
    {"Bits of a pattern",      "Home, End",                "First digit, end of the value"},
    {"Fields of bits",         "Space",                    "Open the bits of the value"},
    {"Memory and data",        "Up, Down",                 "One row"},
    {"Memory and data",        "Page Up, Page Down",       "As many rows as fit"},
    {"Memory and data",        "Home, End",                "First row, last row"},
    {"Check lists",            "Space",                    "Check or clear the entry"},
    {"Check lists",            "Left, Right",              "Fold or unfold a group"},
    {"Dialogs",                "Tab, Shift+Tab",           "Next control, previous control"},
    {"Dialogs",                "Alt with the underlined letter", "Go to that control, or press it"},
    {"Dialogs",                "Space",                    "Press the button, change the check box"},
    {"Dialogs",                "Enter",                    "Press the default button"},
    {"Dialogs",                "Esc",                      "Cancel"},
    {"Help",                   "Alt+Left, Alt+Right",      "Back, forward"},
    {"Help",                   "Alt+Home",                 "Contents"},
    {"Help",                   "Ctrl+F",                   "Search"},
    {"Help",                   "F3, Shift+F3",             "Next place found, previous one"},
    {"Help",                   "Esc",                      "Close the help"},
};
// clang-format on

QString PlaceOf(const Command& command) {
    const QString menu = QString(command.menu).section('>', 0, 0).remove('&');
    return menu.isEmpty() ? "Windows" : "Menu " + menu;
}

QString EntryOf(const Command& command) {
    if (*command.menu == '\0') {
        return {};
    }
    QString path = QString("%1>%2").arg(command.menu, command.text);
    return path.remove('&').remove("...").replace(">", " > ");
}

} // namespace

std::vector<KeyLine> AllKeys() {
    std::vector<KeyLine> lines;
    lines.reserve(Commands().size() + std::size(fixedKeys));
    for (const Command& command : Commands()) {
        if (*command.shortcut != '\0') {
            lines.push_back(
                {PlaceOf(command), KeysOf(command.id).join(", "), command.tip, EntryOf(command)});
        }
    }
    for (const FixedKey& key : fixedKeys) {
        lines.push_back({key.place, key.keys, key.does, {}});
    }
    return lines;
}

} // namespace busquill
