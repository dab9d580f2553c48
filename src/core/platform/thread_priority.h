#pragma once

namespace busquill {

/// Puts the calling thread a little below the others; a system that refuses leaves it as it is.
void LowerThreadPriority() noexcept;

} // namespace busquill
