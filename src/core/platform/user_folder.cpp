#include "platform/user_folder.h"

#include "platform/text_file.h"

#include <cstdlib>
#include <set>
#include <string>
#include <system_error>

namespace busquill {

namespace fs = std::filesystem;

namespace {

/// An XDG base directory with the program's folder in it.
fs::path FolderIn(const char* variable, const char* usual) {
    const char* set = std::getenv(variable);
    if (set != nullptr && fs::path(set).is_absolute()) {
        return fs::path(set) / "busquill";
    }
    const char* home = std::getenv("HOME");
    return fs::path(home != nullptr ? home : "") / usual / "busquill";
}

std::set<std::string> ReadNames(const fs::path& list) {
    std::set<std::string> names;
    TextReader reader;
    if (reader.Open(list.string())) {
        while (const auto line = reader.ReadLine()) {
            names.emplace(*line);
        }
    }
    return names;
}

bool WriteNames(const fs::path& list, const std::set<std::string>& names) {
    std::error_code failed;
    fs::create_directories(list.parent_path(), failed);
    TextWriter writer;
    if (failed || !writer.CreateBeside(list.string())) {
        return false;
    }
    for (const std::string& name : names) {
        writer.Write(name + "\n");
    }
    return writer.Close();
}

/// Copies to another name first, so that an interrupted copy is not taken for the file.
bool CopyWhole(const fs::path& from, const fs::path& to) {
    const fs::path part = to.string() + ".part";
    std::error_code failed;
    fs::copy_file(from, part, fs::copy_options::overwrite_existing, failed);
    if (!failed) {
        // An installed file may be read-only.
        fs::permissions(part, fs::perms::owner_write, fs::perm_options::add, failed);
    }
    if (!failed) {
        fs::rename(part, to, failed);
    }
    if (failed) {
        std::error_code ignored;
        fs::remove(part, ignored);
    }
    return !failed;
}

} // namespace

fs::path UserDataFolder() {
    return FolderIn("XDG_DATA_HOME", ".local/share");
}

fs::path UserStateFolder() {
    return FolderIn("XDG_STATE_HOME", ".local/state");
}

bool FillFolder(const fs::path& from, const fs::path& to, const fs::path& record) {
    std::error_code failed;
    fs::create_directories(to, failed);
    if (failed) {
        return false;
    }
    const std::set<std::string> before = ReadNames(record);
    std::set<std::string> copied = before;
    bool whole = true;
    std::error_code ended;
    for (fs::directory_iterator file(from, ended); file != fs::directory_iterator();
         file.increment(ended)) {
        const std::string name = file->path().filename().string();
        const fs::path target = to / name;
        std::error_code ignored;
        if (!file->is_regular_file(ignored) || before.contains(name)) {
            continue;
        }
        if (fs::exists(fs::symlink_status(target, ignored)) || CopyWhole(file->path(), target)) {
            copied.insert(name);
        } else {
            whole = false;
        }
    }
    return (copied == before || WriteNames(record, copied)) && whole;
}

} // namespace busquill
