#pragma once

namespace busquill {

/// Lowers the calling thread's priority a little; no effect where the system refuses.
void LowerThreadPriority() noexcept;

} // namespace busquill
