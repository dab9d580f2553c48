#pragma once

namespace busquill {

/// Follows "samples of the capture", or the like, wherever figures are made of samples.
inline constexpr const char* areMissing = "are missing, so times and counts are too small";

} // namespace busquill
