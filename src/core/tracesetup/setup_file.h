#pragma once

#include "tracesetup/trace_setup.h"

#include <string>
#include <vector>

namespace busquill {

class Prompts;
class TextReader;
class TextWriter;

/// The header of setup and trace files, and the messages when it is wrong.
constexpr auto fileTypeMissing = "Error: File type of '%s' not found.";
constexpr auto fileVersionMissing = "Error: File version of %s not found.";
constexpr auto fileVersion = "1.0";
constexpr auto setupFileType = "Trace Setup File";

/// Reads a setup up to "End of Setup Data" or the end of the file. Missing and invalid values
/// become defaults.
void ReadSetupBody(TraceSetup& setup, TextReader& file);

/// Reads one level row; `stimulus` picks the form of its last three fields and the highest level.
void ParseLevelRow(TraceSetup& setup, const std::vector<std::string>& tokens, bool stimulus);

/// Writes what ReadSetupBody reads.
void WriteSetupBody(const TraceSetup& setup, TextWriter& file);

/// One level row, and the row of titles above it.
[[nodiscard]] std::string LevelRow(const TraceSetup& setup, int level, bool stimulus);
[[nodiscard]] std::string LevelHeader(bool stimulus);

/// A setup file and the name of its setup.
struct SetupFileEntry {
    std::string path;
    std::string name;
};

/// The name of the setup in a file; the base name of the file if it holds none.
[[nodiscard]] std::string SetupNameOf(const std::string& path);

/// The setup files of a directory, sorted by file name.
[[nodiscard]] std::vector<SetupFileEntry> FindSetupFiles(const std::string& directory);

/// Loads a setup file. When it cannot be opened or is of another type or version, reports that to
/// the user and returns false; the setup then holds whatever the file had.
[[nodiscard]] bool LoadSetupFile(TraceSetup& setup, const std::string& path, Prompts& prompts);

/// The same for an open file.
[[nodiscard]] bool LoadSetupFile(TraceSetup& setup, TextReader& file, Prompts& prompts);

/// Saves a setup. When the file cannot be written, reports that to the user and returns false; an
/// existing file is then unchanged.
[[nodiscard]] bool SaveSetupFile(const TraceSetup& setup, const std::string& path,
                                 Prompts& prompts);

} // namespace busquill
