#pragma once

#include "signals/signal_tables.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace busquill {

struct ValueLabel {
    std::size_t row = 0; // of the first value with that label
    std::string text;
};

/// The label that the listing shows for a value; bit i of `bits` is the i-th of the definition's
/// positions.
[[nodiscard]] std::optional<ValueLabel> FindLabel(const CDecodedSignalDef& def, std::uint32_t bits);

} // namespace busquill
