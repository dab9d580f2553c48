#pragma once

#include "link/board_identity.h"

#include <optional>

namespace busquill {

class Settings;

/// The bus configuration that the user has saved; nothing when the board's own is to be used.
[[nodiscard]] std::optional<BusConfig> LoadSavedBusConfig(const Settings& settings);

/// Saves a configuration, or with none the choice to use the board's own; the values saved before
/// are kept then.
void SaveBusConfig(Settings& settings, const std::optional<BusConfig>& config);

} // namespace busquill
