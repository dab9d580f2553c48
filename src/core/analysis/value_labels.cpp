#include "analysis/value_labels.h"

#include <algorithm>
#include <string_view>

namespace busquill {

namespace {

bool Matches(const CDecodedValue& value, std::uint32_t bits) {
    for (const std::uint8_t code : value.pattern) {
        if (code == CodeUnused) {
            continue;
        }
        if (code != CodeAny && (code == CodeOne) != ((bits & 1) != 0)) {
            return false;
        }
        bits >>= 1;
    }
    return true;
}

} // namespace

std::optional<ValueLabel> FindLabel(const CDecodedSignalDef& def, std::uint32_t bits) {
    const auto& values = def.values;
    const auto found = std::find_if(values.begin(), values.end(), [&](const CDecodedValue& value) {
        return (value.skipModes & ModeState) == 0 && Matches(value, bits);
    });
    if (found == values.end()) {
        return std::nullopt;
    }
    const std::string_view text = found->label;
    const auto first = std::find_if(
        values.begin(), found, [&](const CDecodedValue& value) { return text == value.label; });
    return ValueLabel{static_cast<std::size_t>(first - values.begin()), std::string(text)};
}

} // namespace busquill
