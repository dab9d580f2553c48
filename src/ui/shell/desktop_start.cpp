#include "ui/shell/desktop_start.h"

#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/user_folder.h"

#include <QCoreApplication>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace busquill {

namespace {

constexpr auto openVariable = "BUSQUILL_OPEN";

/// The folder of the installed data, which has a fixed place relative to the program.
std::filesystem::path InstalledData() {
    return std::filesystem::path(QCoreApplication::applicationDirPath().toStdString()) /
           BUSQUILL_DATA_FROM_PROGRAM;
}

} // namespace

std::optional<std::vector<std::string>> TakeDesktopStart() {
    const char* set = std::getenv(openVariable);
    if (set == nullptr) {
        return std::nullopt;
    }
    std::vector<std::string> files;
    std::istringstream lines(set);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            std::error_code failed;
            const auto path = std::filesystem::absolute(line, failed);
            files.push_back(failed ? line : path.string());
        }
    }
    qunsetenv(openVariable);
    return files;
}

void EnterUserFolder(Prompts& prompts) {
    const std::filesystem::path folder = UserDataFolder();
    const bool filled = FillFolder(InstalledData(), folder, UserStateFolder() / "copied-files");
    std::error_code failed;
    std::filesystem::current_path(folder, failed);
    if (!filled || failed) {
        prompts.Message(Printf("The folder %s for your captures and setups could not be filled.",
                               folder.c_str()),
                        "Is the disk full, or may the folder not be written?");
    }
}

} // namespace busquill
