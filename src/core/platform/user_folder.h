#pragma once

#include <filesystem>

namespace busquill {

/// The user's folder for the program's data, by the XDG base directories: in `XDG_DATA_HOME`, or in
/// `~/.local/share` where that is no absolute path. It need not exist.
[[nodiscard]] std::filesystem::path UserDataFolder();
/// The same for what the program remembers: in `XDG_STATE_HOME` or `~/.local/state`.
[[nodiscard]] std::filesystem::path UserStateFolder();

/// Creates the folder `to` and copies the files of `from` into it. A file that is there stays as it
/// is. The file `record` lists what was ever copied, so that what the user deletes stays away.
/// False when something could not be created or copied. A missing `from` is an empty one.
[[nodiscard]] bool FillFolder(const std::filesystem::path& from, const std::filesystem::path& to,
                              const std::filesystem::path& record);

} // namespace busquill
