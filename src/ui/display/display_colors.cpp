#include "ui/display/display_colors.h"

#include "platform/settings.h"

#include <string>

namespace busquill {

DisplayColors LoadDisplayColors(const Settings& settings, const char* display) {
    const auto color = [&](const char* part, std::uint32_t fallback) {
        return static_cast<std::uint32_t>(settings.GetProfileInt(
            SettingsSection::display, std::string(display) + part, static_cast<int>(fallback)));
    };
    DisplayColors colors;
    colors.background = color("BackgroundColor", 0xC0C0C0);
    colors.alternate = color("Alternate", 0) != 0 ? color("AlternateBackgroundColor", 0xC0C0C0)
                                                  : colors.background;
    colors.trigger = color("TriggerColor", 0x0000FF);
    colors.marker1 = color("Marker1Color", 0x00FF00);
    colors.marker2 = color("Marker2Color", 0xFF0000);
    return colors;
}

} // namespace busquill
