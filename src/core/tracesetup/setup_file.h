#pragma once

#include "tracesetup/trace_setup.h"

#include <string>
#include <vector>

namespace busquill {

class Prompts;
class TextReader;
class TextWriter;

/// Reads a setup from the line after its header to "End of Setup Data" or the end of the file.
/// What it cannot understand leaves the defaults.
void ReadSetupBody(TraceSetup& setup, TextReader& file);

/// Reads one level row; `stimulus` picks the form of its last three fields and the level's limit.
void ParseLevelRow(TraceSetup& setup, const std::vector<std::string>& tokens, bool stimulus);

} // namespace busquill
