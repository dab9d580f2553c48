#pragma once

#include "platform/settings.h"
#include "ui/framework/painting.h"

namespace busquill {

/// The user's background colour for a function's window.
[[nodiscard]] inline QColor ViewBackground(const Settings& settings) {
    constexpr int lightGrey = 0xC0C0C0;
    return ColorOf(static_cast<std::uint32_t>(
        settings.GetProfileInt(SettingsSection::display, "OtherBackgroundColor", lightGrey)));
}

} // namespace busquill
