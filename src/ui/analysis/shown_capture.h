#pragma once

#include "analysis/transaction_index.h"

#include <QString>

#include <cstdint>
#include <vector>

class QMdiArea;

namespace busquill {

class CMDIChildWnd;
class CTesselDoc;
class CTraceView;

/// The view of a capture in a window; null if the window is null or shows something else.
[[nodiscard]] CTraceView* ViewOf(const CMDIChildWnd* frame);

/// The first sample in a window of a capture, if possible in the active one.
[[nodiscard]] std::int64_t TopSampleOf(const CTesselDoc& document, const QMdiArea& area);

/// A count for the reader's eye, such as "1,048,576".
[[nodiscard]] QString Grouped(std::uint64_t count);

/// A bit for each sample of a document that is not in the file, or has not arrived.
[[nodiscard]] std::vector<std::uint32_t> AbsentSamples(const CTesselDoc& document);
/// The samples of a document; `absent` outlives them.
[[nodiscard]] CapturedSamples SamplesOf(const CTesselDoc& document,
                                        const std::vector<std::uint32_t>& absent);

} // namespace busquill
