/// Searches of a document: on the host in its samples, and by the board itself.
#pragma once

#include <cstdint>

namespace busquill {

class CAnalyzerLink;
class CTesselDoc;
class Prompts;

enum class SearchDirection { Forward = 0, Backward = 1 };

/// Looks for the document's search pattern from the sample `start` on and sets marker 1 to the hit,
/// or says that there is none.
void SearchHost(CTesselDoc& document, SearchDirection direction, std::int64_t start,
                Prompts& prompts);
/// The same by the board, which has the samples. Says which step failed, and gives up after six
/// seconds.
void SearchOnAnalyzer(CAnalyzerLink& link, CTesselDoc& document, SearchDirection direction,
                      std::int64_t start, Prompts& prompts);

/// Where a search of the document begins: next to marker 1, or at the first sample that shows.
[[nodiscard]] std::int64_t SearchStart(const CTesselDoc& document, SearchDirection direction,
                                       std::int64_t firstShown);
/// Whether searches and steps to a sample are possible: not while a capture runs.
[[nodiscard]] bool CanSearch(const CTesselDoc& document);
/// Filters also need all samples.
[[nodiscard]] bool CanFilter(const CTesselDoc& document);

} // namespace busquill
