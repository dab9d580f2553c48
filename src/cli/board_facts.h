#pragma once

#include "cli/facts.h"
#include "link/board_identity.h"

#include <vector>

namespace busquill::cli {

/// What a board is, and its bus configuration.
[[nodiscard]] std::vector<Fact> BoardFacts(const BoardIdentity& identity, const BusConfig& bus);

} // namespace busquill::cli
