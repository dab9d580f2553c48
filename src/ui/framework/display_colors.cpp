#include "ui/framework/display_colors.h"

#include "platform/settings.h"
#include "ui/framework/painting.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace busquill {

namespace {

struct SettingRow {
    ColorSetting setting;
    const char* key;
    int values[3]; // in the order of ColorSet
};

// clang-format off
constexpr SettingRow rows[] = {
    //                                                                               Standard  Legible   Dark
    {ColorSetting::StateBackground,             "StateBackgroundColor",             {0xC0C0C0, 0xF8F8F8, 0x202020}},
    {ColorSetting::StateAlternateBackground,    "StateAlternateBackgroundColor",    {0xC0C0C0, 0xECECEC, 0x2C2C2C}},
    {ColorSetting::StateAlternate,              "StateAlternate",                   {0,        1,        1}},
    {ColorSetting::WaveformBackground,          "WaveformBackgroundColor",          {0xC0C0C0, 0xF8F8F8, 0x202020}},
    {ColorSetting::WaveformAlternateBackground, "WaveformAlternateBackgroundColor", {0xC0C0C0, 0xECECEC, 0x2C2C2C}},
    {ColorSetting::WaveformAlternate,           "WaveformAlternate",                {0,        1,        1}},
    {ColorSetting::OtherBackground,             "OtherBackgroundColor",             {0xC0C0C0, 0xE8E8E8, 0x303030}},
    {ColorSetting::StateTrigger,                "StateTriggerColor",                {0x0000FF, 0xB8B8FF, 0x282868}},
    {ColorSetting::StateMarker1,                "StateMarker1Color",                {0x00FF00, 0xB0F0B0, 0x205020}},
    {ColorSetting::StateMarker2,                "StateMarker2Color",                {0xFF0000, 0xFFD8A8, 0x703820}},
    {ColorSetting::WaveformTrigger,             "WaveformTriggerColor",             {0x0000FF, 0x0000C0, 0x7070FF}},
    {ColorSetting::WaveformMarker1,             "WaveformMarker1Color",             {0x00FF00, 0x007000, 0x60E060}},
    {ColorSetting::WaveformMarker2,             "WaveformMarker2Color",             {0xFF0000, 0xC04000, 0xFFA870}},
    {ColorSetting::AdaptText,                   "AdaptText",                        {0,        1,        1}},
};
// clang-format on
static_assert(std::size(rows) == colorSettings);

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

// As the guidelines for readable web pages define them.
constexpr double readableContrast = 7;
constexpr double disabledContrast = 2.5;
constexpr double signContrast = 3;

double Luminance(const QColor& color) {
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double Contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax({Luminance(a), Luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

bool IsDark(const QColor& ground) {
    return Contrast(ground, Qt::white) > Contrast(ground, Qt::black);
}

constexpr int mixSteps = 32;

/// The colour with so many parts of 32 of another one.
QColor Mixed(const QColor& color, const QColor& other, int step) {
    const auto mix = [&](int from, int to) { return from + (to - from) * step / mixSteps; };
    return {mix(color.red(), other.red()), mix(color.green(), other.green()),
            mix(color.blue(), other.blue())};
}

/// Mixes black or white into the colour until the contrast suffices.
QColor WithContrast(const QColor& ground, const QColor& color, double contrast) {
    const QColor end = IsDark(ground) ? Qt::white : Qt::black;
    QColor mixed = color;
    for (int step = 1; step <= mixSteps && Contrast(ground, mixed) < contrast; ++step) {
        mixed = Mixed(color, end, step);
    }
    return mixed;
}

} // namespace

int ValueIn(ColorSet set, ColorSetting which) {
    return RowOf(which).values[static_cast<std::size_t>(set)];
}

std::uint32_t LegibleOn(std::uint32_t ground, std::uint32_t color) {
    return NumberOf(WithContrast(ColorOf(ground), ColorOf(color), readableContrast));
}

std::uint32_t BookmarkOn(std::uint32_t ground) {
    return NumberOf(WithContrast(ColorOf(ground), QColor(0xC0, 0x00, 0xC0), signContrast));
}

std::uint32_t MarkedGround(std::uint32_t ground) {
    const QColor color = ColorOf(ground);
    return NumberOf(IsDark(color) ? Mixed(color, QColor(0x30, 0x60, 0xB0), mixSteps * 3 / 8)
                                  : Mixed(color, QColor(0xB8, 0xDC, 0xFF), mixSteps * 5 / 8));
}

int ReadColorSetting(const Settings& settings, ColorSetting which) {
    return settings.GetProfileInt(SettingsSection::display, RowOf(which).key,
                                  ValueIn(ColorSet::Standard, which));
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
    colors.adaptText = color(ColorSetting::AdaptText) != 0;
    return colors;
}

QColor ViewBackground(const Settings& settings) {
    return ColorOf(
        static_cast<std::uint32_t>(ReadColorSetting(settings, ColorSetting::OtherBackground)));
}

QPalette FormPalette(const Settings& settings, QPalette usual) {
    const QColor ground = ViewBackground(settings);
    for (const auto& [group, contrast] : {std::pair(QPalette::Active, readableContrast),
                                          std::pair(QPalette::Inactive, readableContrast),
                                          std::pair(QPalette::Disabled, disabledContrast)}) {
        usual.setColor(group, QPalette::WindowText,
                       WithContrast(ground, usual.color(group, QPalette::WindowText), contrast));
    }
    return usual;
}

void KeepUsualText(QWidget& widget) {
    QPalette own = widget.palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        own.setColor(group, QPalette::WindowText,
                     QApplication::palette().color(group, QPalette::WindowText));
    }
    if (own != widget.palette()) {
        widget.setPalette(own);
    }
}

} // namespace busquill
