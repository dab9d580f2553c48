/// The tool tip over samples: what they show at the pointer, which they are, and when they were
/// taken.
#pragma once

#include "capture/trace_document.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace busquill {

class CSignal;
class CSignalList;

/// Samples of which a pixel shows one or several: `first` and `last` are equal, or nearby.
struct TippedSamples {
    const CTesselDoc& document;
    const CSignalList& list; // for the times
    bool zoom = false;       // of the Power Zoom
    std::int64_t firstRow = 0;
    std::int64_t lastRow = 0;
    /// Those whose notes are told, where they are not the same: a flag may be beside its sample.
    std::optional<SampleSpan> noted = {};
};

/// The time of a sample since the trigger; empty where samples are missing between them, since it
/// would be too short.
[[nodiscard]] QString TimeSinceTrigger(const CTesselDoc& document, const CSignalList& list,
                                       std::int64_t sample, bool zoom);

/// `signal` is the one under the pointer, or null; `textOf` gives its value in a sample as the
/// display shows it. Notes of bookmarks come last. Of samples that have not arrived, the tip says
/// only that. The time is left out where samples are missing between these and the trigger, since
/// it would be too short.
[[nodiscard]] QString SampleTip(const TippedSamples& samples, const CSignal* signal,
                                const std::function<std::string(std::int64_t)>& textOf);

} // namespace busquill
