#pragma once

#include "tracesetup/trace_setup.h"

#include <string>
#include <vector>

namespace busquill {

class Prompts;
class TextReader;
class TextWriter;

/// The texts of the header that setup and trace files begin with.
constexpr auto fileTypeMissing = "Error: File type of '%s' not found.";
constexpr auto fileVersionMissing = "Error: File version of %s not found.";
constexpr auto fileVersion = "1.0";
constexpr auto setupFileType = "Trace Setup File";

/// Reads a setup up to "End of Setup Data" or the end of the file, over a setup of defaults. What
/// it cannot understand leaves the default.
void ReadSetupBody(TraceSetup& setup, TextReader& file);

/// Reads one level row; `stimulus` picks the form of its last three fields and the highest level.
void ParseLevelRow(TraceSetup& setup, const std::vector<std::string>& tokens, bool stimulus);

/// Writes what ReadSetupBody reads.
void WriteSetupBody(const TraceSetup& setup, TextWriter& file);

/// One level row, and the row of titles above it.
[[nodiscard]] std::string LevelRow(const TraceSetup& setup, int level, bool stimulus);
[[nodiscard]] std::string LevelHeader(bool stimulus);

/// A setup file and what it calls its setup.
struct SetupFileEntry {
    std::string path;
    std::string name;
};

/// What a setup file calls its setup; its base name, where it does not say.
[[nodiscard]] std::string SetupNameOf(const std::string& path);

/// The setup files of a directory, by their file names.
[[nodiscard]] std::vector<SetupFileEntry> FindSetupFiles(const std::string& directory);

/// Reports in its own words and returns false when the file cannot be opened or is of another
/// type or version; the setup then holds whatever the file had.
[[nodiscard]] bool LoadSetupFile(TraceSetup& setup, const std::string& path, Prompts& prompts);

/// The same for a file that is open.
[[nodiscard]] bool LoadSetupFile(TraceSetup& setup, TextReader& file, Prompts& prompts);

/// Reports in its own words and returns false when the file cannot be written; a file that was
/// there is then as it was.
[[nodiscard]] bool SaveSetupFile(const TraceSetup& setup, const std::string& path,
                                 Prompts& prompts);

} // namespace busquill
