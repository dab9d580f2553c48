#pragma once

#include <string>

namespace busquill {

class CTesselDoc;
class Prompts;

constexpr auto traceFileType = "Trace Data File";

/// What a trace file holds beyond its samples.
struct TraceFileContents {
    bool loaded = false;
    bool stateList = false; // the file asks for the State display
};

/// Reads a trace file into a new document. Reports in its own words and loads nothing when the
/// file cannot be opened, is of another type or version, or holds a range that no capture has. A
/// file that ends early keeps the samples that it has.
[[nodiscard]] TraceFileContents ReadTraceFile(CTesselDoc& document, const std::string& path,
                                              Prompts& prompts);

} // namespace busquill
