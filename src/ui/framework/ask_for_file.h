#pragma once

#include <string>

class QWidget;

namespace busquill {

class Prompts;

enum class FileUse { Open, Save, Delete };

/// What a file dialog shows.
struct FileQuestion {
    FileUse use = FileUse::Open;
    std::string title;
    std::string filter;    // "Setups (*.tsp)"
    std::string extension; // ".tsp"; a name that is saved gets it where it is missing
    std::string folder;    // empty: the program's own
    std::string name;      // suggested
};

/// The path that the user chooses, or nothing. An existing file is overwritten only when the user
/// says so.
[[nodiscard]] std::string AskForFile(QWidget* parent, const FileQuestion& question,
                                     Prompts& prompts);

} // namespace busquill
