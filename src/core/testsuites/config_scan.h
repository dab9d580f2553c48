/// The scan of the bus for its devices, one at a time, which the board makes.
#pragma once

#include "testsuites/config_space_data.h"

#include <cstdint>
#include <optional>

namespace busquill {

class CAnalyzerLink;

enum class ScanDirection { First, Next, Back };

/// Looks for a device and imports it. Returns its function number; nothing when none was found,
/// which is reported, and the data then stay as they were. A scan that takes too long is left
/// running on the board. Main thread, which waits for the scan.
[[nodiscard]] std::optional<int> ScanForDevice(CAnalyzerLink& link, ScanDirection direction,
                                               CConfigSpaceData& data, Prompts& prompts);

} // namespace busquill
