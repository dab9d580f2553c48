#pragma once

#include <optional>
#include <string>
#include <vector>

namespace busquill {

class Prompts;

/// A start by the desktop, from its menu or by a double click on files. `busquill-open` marks it by
/// the environment variable BUSQUILL_OPEN, which lists the files, one per line. Returns their
/// absolute paths (none after a start from the menu), or nothing if the program was started in
/// another way. Unsets the variable, so that programs started by this one do not inherit it.
[[nodiscard]] std::optional<std::vector<std::string>> TakeDesktopStart();

/// Makes the user's data folder the current directory. The first start fills it with the captures,
/// setups and lists that are installed. A failure is reported.
void EnterUserFolder(Prompts& prompts);

} // namespace busquill
