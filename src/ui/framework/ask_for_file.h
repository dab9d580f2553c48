#pragma once

#include <string>
#include <vector>

class QWidget;

namespace busquill {

class Prompts;

enum class FileUse {
    Open,
    Save,
    Delete,
    Name, // of a file that need not exist; one that does is not asked about
};

struct FileType {
    std::string filter;    // "Setups (*.tsp)"
    std::string extension; // ".tsp"
};

/// Whether a file has the extension of one of the types.
[[nodiscard]] bool HasTypeOf(const std::string& path, const std::vector<FileType>& types);

/// What a file dialog shows.
struct FileQuestion {
    FileUse use = FileUse::Open;
    std::string title;
    std::string filter;      // "Setups (*.tsp)"
    std::string extension;   // ".tsp"; appended to a name to save that lacks it
    std::string folder = {}; // empty: the dialog's default
    std::string name = {};   // suggested
    /// Another one that a name to save may have.
    std::string otherExtension = {};
    /// Other types that the user can choose to save.
    std::vector<FileType> otherTypes = {};
};

/// The question for a file to load or save of one kind, "Stimulus" with ".stm". It begins at the
/// file at `path`, if that is not empty.
[[nodiscard]] FileQuestion QuestionFor(FileUse use, const std::string& kind,
                                       const std::string& extension, const std::string& path);

/// Returns the chosen path, empty when the user cancels. Before an existing file is overwritten,
/// the user is asked.
[[nodiscard]] std::string AskForFile(QWidget* parent, const FileQuestion& question,
                                     Prompts& prompts);

} // namespace busquill
