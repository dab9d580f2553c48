#pragma once

#include <filesystem>

namespace busquill {

/// The user's folder for the program's data, by the XDG base directories: in `XDG_DATA_HOME`, or in
/// `~/.local/share` if that is not an absolute path. The folder may not exist yet.
[[nodiscard]] std::filesystem::path UserDataFolder();
/// The same for what the program remembers: in `XDG_STATE_HOME` or `~/.local/state`.
[[nodiscard]] std::filesystem::path UserStateFolder();

/// Creates the folder `to` and copies the files of `from` into it. A file that is there stays as it
/// is. The file `record` lists all files that were ever copied, so that a file that the user
/// deleted is not copied again. False when something could not be created or copied. A missing
/// `from` counts as empty.
[[nodiscard]] bool FillFolder(const std::filesystem::path& from, const std::filesystem::path& to,
                              const std::filesystem::path& record);

} // namespace busquill
