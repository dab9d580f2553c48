/// The tool tip over samples: what they show at the pointer, which they are, and when they were
/// taken.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <string>

namespace busquill {

class CSignal;
class CSignalList;
class CTesselDoc;

/// Samples of which a pixel shows one or several: `first` and `last` are equal, or nearby.
struct TippedSamples {
    const CTesselDoc& document;
    const CSignalList& list; // for the times
    bool zoom = false;       // of the Power Zoom
    std::int64_t firstRow = 0;
    std::int64_t lastRow = 0;
};

/// `signal` is the one under the pointer, or null; `textOf` gives its value in a sample as the
/// display shows it. Of samples that have not arrived, the tip says only that. The time is left out
/// where samples are missing between these and the trigger, since it would be too short.
[[nodiscard]] QString SampleTip(const TippedSamples& samples, const CSignal* signal,
                                const std::function<std::string(std::int64_t)>& textOf);

} // namespace busquill
