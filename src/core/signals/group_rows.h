/// The packed rows of a group. A row holds one sample of all members: bit k is member k.
#pragma once

#include "signals/signal.h"

#include <cstddef>
#include <memory>
#include <span>

namespace busquill {

/// Packs the rows of the group of these members again, and its mask rows if it has any, for the
/// samples in the words `firstWord` to `endWord - 1`. Rows past the end of the first member's
/// buffers are skipped; a member without data for a sample counts as 0.
void PackGroupRows(std::span<const std::unique_ptr<CSignal>> members, std::size_t firstWord,
                   std::size_t endWord);

} // namespace busquill
