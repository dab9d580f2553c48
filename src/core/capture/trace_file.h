#pragma once

#include <cstdint>
#include <string>

namespace busquill {

class CSignalList;
class CTesselDoc;
class Prompts;

/// What a trace file holds beyond its samples.
struct TraceFileContents {
    bool loaded = false;
    bool stateList = false;   // the file asks for the State display
    bool zoomSamples = false; // and for a Power Zoom window
};

/// Reads a trace file into a new document. Reports in its own words and loads nothing when the
/// file cannot be opened, is of another type or version, or holds a range that no capture has. A
/// file that ends early keeps the samples that it has.
[[nodiscard]] TraceFileContents ReadTraceFile(CTesselDoc& document, const std::string& path,
                                              Prompts& prompts);

/// Makes what a file does not hold of a list that it has, or the default list where it has none.
void CompleteList(CSignalList& list, bool present, std::uint32_t mode);
/// The same for the Power Zoom list, whose default begins with the clock.
void CompleteZoomList(CSignalList& list, bool present);

} // namespace busquill
