#include "signals/signal_defs.h"

namespace busquill {

std::uint32_t CSignalDef::FlagsFor(std::uint32_t mode) const noexcept {
    switch (mode) {
    case ModeState:
        return stateFlags;
    case ModeWaveform:
        return waveformFlags;
    case ModeEvents:
    case ModeStimulus:
        return eventFlags;
    default:
        return 0;
    }
}

std::vector<int> CDecodedSignalDef::Positions() const {
    std::vector<int> positions;
    if (values.empty()) {
        return positions;
    }
    for (int p = 0; p < patternPositions; ++p) {
        if (values.front().pattern[static_cast<std::size_t>(p)] != CodeUnused) {
            positions.push_back(p);
        }
    }
    return positions;
}

} // namespace busquill
