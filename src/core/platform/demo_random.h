/// Random numbers for what Demo Mode shows.
#pragma once

namespace busquill {

/// The numbers are from 0 to this value.
inline constexpr int largestDemoRandom = 32767;

} // namespace busquill
