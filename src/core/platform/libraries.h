#pragma once

#include <string>
#include <vector>

namespace busquill {

/// The libraries that the core runs on, with their versions: "libusb 1.0.26".
[[nodiscard]] std::vector<std::string> Libraries();

} // namespace busquill
