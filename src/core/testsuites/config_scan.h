/// The scan of the bus for its devices, one at a time, which the board makes.
#pragma once

#include "testsuites/config_space_data.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace busquill {

class CAnalyzerLink;

enum class ScanDirection { First, Next, Back };

/// How a scan ended.
enum class ScanEnd {
    Found,
    NoDevice, // also when the board's status could not be read, which is reported
    Failed,   // it was not sent, took too long or its result could not be read: reported
    GivenUp,
};

struct Scan {
    ScanEnd end;
    int function = 0; // of the device that was found
};

/// Looks for a device and imports it; otherwise the data stay as they were. An empty bus
/// is not reported. A scan that takes too long is left running on the board, and so is one that the
/// caller gives up: `givesUp` is called at each look at the board. Main thread, which waits for the
/// scan.
[[nodiscard]] Scan FindDevice(CAnalyzerLink& link, ScanDirection direction, CConfigSpaceData& data,
                              Prompts& prompts, const std::function<bool()>& givesUp = {});

/// The same, without giving up; reports it also when there is no device. Returns the function
/// number of the device.
[[nodiscard]] std::optional<int> ScanForDevice(CAnalyzerLink& link, ScanDirection direction,
                                               CConfigSpaceData& data, Prompts& prompts);

} // namespace busquill
