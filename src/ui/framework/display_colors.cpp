#include "ui/framework/display_colors.h"

#include "platform/settings.h"
#include "ui/framework/painting.h"

#include <iterator>

namespace busquill {

namespace {

struct SettingRow {
    ColorSetting setting;
    const char* key;
    int fallback;
};

// clang-format off
constexpr SettingRow rows[] = {
    {ColorSetting::StateBackground,             "StateBackgroundColor",             0xC0C0C0},
    {ColorSetting::StateAlternateBackground,    "StateAlternateBackgroundColor",    0xC0C0C0},
    {ColorSetting::StateAlternate,              "StateAlternate",                   0},
    {ColorSetting::WaveformBackground,          "WaveformBackgroundColor",          0xC0C0C0},
    {ColorSetting::WaveformAlternateBackground, "WaveformAlternateBackgroundColor", 0xC0C0C0},
    {ColorSetting::WaveformAlternate,           "WaveformAlternate",                0},
    {ColorSetting::OtherBackground,             "OtherBackgroundColor",             0xC0C0C0},
    {ColorSetting::StateTrigger,                "StateTriggerColor",                0x0000FF},
    {ColorSetting::StateMarker1,                "StateMarker1Color",                0x00FF00},
    {ColorSetting::StateMarker2,                "StateMarker2Color",                0xFF0000},
    {ColorSetting::WaveformTrigger,             "WaveformTriggerColor",             0x0000FF},
    {ColorSetting::WaveformMarker1,             "WaveformMarker1Color",             0x00FF00},
    {ColorSetting::WaveformMarker2,             "WaveformMarker2Color",             0xFF0000},
};
// clang-format on

constexpr bool InOrder() {
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        if (rows[i].setting != static_cast<ColorSetting>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(InOrder());

const SettingRow& RowOf(ColorSetting which) {
    return rows[static_cast<std::size_t>(which)];
}

} // namespace

int ReadColorSetting(const Settings& settings, ColorSetting which) {
    return settings.GetProfileInt(SettingsSection::display, RowOf(which).key,
                                  RowOf(which).fallback);
}

void WriteColorSetting(Settings& settings, ColorSetting which, int value) {
    settings.WriteProfileInt(SettingsSection::display, RowOf(which).key, value);
}

DisplayColors LoadDisplayColors(const Settings& settings, const DisplaySettings& display) {
    const auto color = [&](ColorSetting which) {
        return static_cast<std::uint32_t>(ReadColorSetting(settings, which));
    };
    DisplayColors colors;
    colors.background = color(display.background);
    colors.alternate =
        color(color(display.alternate) != 0 ? display.alternateBackground : display.background);
    colors.trigger = color(display.trigger);
    colors.marker1 = color(display.marker1);
    colors.marker2 = color(display.marker2);
    return colors;
}

QColor ViewBackground(const Settings& settings) {
    return ColorOf(
        static_cast<std::uint32_t>(ReadColorSetting(settings, ColorSetting::OtherBackground)));
}

} // namespace busquill
