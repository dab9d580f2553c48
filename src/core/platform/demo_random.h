/// Random numbers for what Demo Mode shows.
#pragma once

namespace busquill {

/// They are from 0 to this.
inline constexpr int largestDemoRandom = 32767;

} // namespace busquill
