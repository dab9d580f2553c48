#pragma once

#include <string>

namespace busquill {

class CTesselDoc;
class Prompts;

/// Reads a trace file into a document that is new; reports in its own words and returns false
/// when it cannot be opened, is of another type or version, or holds a range that no capture has.
[[nodiscard]] bool LoadTraceFile(CTesselDoc& document, const std::string& path);

} // namespace busquill
