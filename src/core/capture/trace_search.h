/// Searches of a document: on the host in its samples, and by the board itself.
#pragma once

#include <cstdint>

namespace busquill {

class CAnalyzerLink;
class CTesselDoc;
class Prompts;

enum class SearchDirection { Forward = 0, Backward = 1 };

/// Searches for the document's search pattern from sample `start` and sets marker 1 to the hit, or
/// reports that there is none.
void SearchHost(CTesselDoc& document, SearchDirection direction, std::int64_t start,
                Prompts& prompts);
/// The same on the board, in its own memory. Reports a failed step, and gives up after six seconds.
void SearchOnAnalyzer(CAnalyzerLink& link, CTesselDoc& document, SearchDirection direction,
                      std::int64_t start, Prompts& prompts);

/// Where a search of the document begins: next to marker 1, or at the first visible sample.
[[nodiscard]] std::int64_t SearchStart(const CTesselDoc& document, SearchDirection direction,
                                       std::int64_t firstShown);
/// Whether searching and going to a sample are possible: not during a capture.
[[nodiscard]] bool CanSearch(const CTesselDoc& document);
/// A filter also needs all samples.
[[nodiscard]] bool CanFilter(const CTesselDoc& document);

} // namespace busquill
