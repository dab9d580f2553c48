#pragma once

#include "link/board_identity.h"

#include <optional>

namespace busquill {

class Settings;

/// The bus configuration that the user has saved; nothing when a board's own is to be used.
[[nodiscard]] std::optional<BusConfig> LoadSavedBusConfig(const Settings& settings);

/// Saves a configuration, or that a board's own is to be used; what was saved before then stays.
void SaveBusConfig(Settings& settings, const std::optional<BusConfig>& config);

} // namespace busquill
