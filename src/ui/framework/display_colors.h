/// The colours of the windows, which the user chooses, and where they are kept.
#pragma once

#include <QColor>
#include <QPalette>

#include <cstddef>
#include <cstdint>

class QWidget;

namespace busquill {

class Settings;

/// What the user can set. Colours are 0x00BBGGRR.
enum class ColorSetting {
    StateBackground,
    StateAlternateBackground, // of odd samples
    StateAlternate,           // whether they have it
    WaveformBackground,
    WaveformAlternateBackground, // of every second band
    WaveformAlternate,
    OtherBackground, // of the functions' windows
    StateTrigger,
    StateMarker1,
    StateMarker2,
    WaveformTrigger,
    WaveformMarker1,
    WaveformMarker2,
    AdaptText, // whether text that is hard to read on its ground is drawn in another shade
};
constexpr std::size_t colorSettings = 14;

/// Colours that go together. Standard is how they come.
enum class ColorSet { Standard, Legible, Dark };

/// The value of a setting in a set.
[[nodiscard]] int ValueIn(ColorSet set, ColorSetting which);

/// The colour, or as near a shade of it as can be read on that ground.
[[nodiscard]] std::uint32_t LegibleOn(std::uint32_t ground, std::uint32_t color);

/// The colour of a bookmark's sign on a ground.
[[nodiscard]] std::uint32_t BookmarkOn(std::uint32_t ground);
/// The ground of samples that are marked, in place of the usual one: a shade of blue on which text
/// is as legible.
[[nodiscard]] std::uint32_t MarkedGround(std::uint32_t ground);

/// The stored value, or the one as it comes.
[[nodiscard]] int ReadColorSetting(const Settings& settings, ColorSetting which);
void WriteColorSetting(Settings& settings, ColorSetting which, int value);

/// Colours of one of the two displays, as 0x00BBGGRR.
struct DisplayColors {
    std::uint32_t background = 0;
    std::uint32_t alternate = 0;
    std::uint32_t trigger = 0;
    std::uint32_t marker1 = 0;
    std::uint32_t marker2 = 0;
    bool adaptText = false;

    /// The colour of the trigger (0) or of a marker (1 or 2).
    [[nodiscard]] std::uint32_t Mark(int which) const noexcept {
        return which == 0 ? trigger : which == 1 ? marker1 : marker2;
    }
    /// The colour in which text or a line of that colour is drawn on a ground.
    [[nodiscard]] std::uint32_t Ink(std::uint32_t color, std::uint32_t ground) const {
        return adaptText ? LegibleOn(ground, color) : color;
    }
    friend bool operator==(const DisplayColors&, const DisplayColors&) = default;
};

/// The settings of one of the two displays.
struct DisplaySettings {
    ColorSetting background;
    ColorSetting alternateBackground;
    ColorSetting alternate;
    ColorSetting trigger;
    ColorSetting marker1;
    ColorSetting marker2;
};
constexpr DisplaySettings stateDisplay{
    ColorSetting::StateBackground, ColorSetting::StateAlternateBackground,
    ColorSetting::StateAlternate,  ColorSetting::StateTrigger,
    ColorSetting::StateMarker1,    ColorSetting::StateMarker2};
constexpr DisplaySettings waveformDisplay{
    ColorSetting::WaveformBackground, ColorSetting::WaveformAlternateBackground,
    ColorSetting::WaveformAlternate,  ColorSetting::WaveformTrigger,
    ColorSetting::WaveformMarker1,    ColorSetting::WaveformMarker2};

/// The user's colours for a display; while alternation is off, the alternate colour is the
/// background.
[[nodiscard]] DisplayColors LoadDisplayColors(const Settings& settings,
                                              const DisplaySettings& display);

/// The user's background colour for a function's window.
[[nodiscard]] QColor ViewBackground(const Settings& settings);
/// The colours of a form on that background; `usual` are those of the program. The text is readable
/// on it, whatever the theme of the desktop.
[[nodiscard]] QPalette FormPalette(const Settings& settings, QPalette usual);
/// Gives a widget inside a form the text of the program, since it has a ground of its own.
void KeepUsualText(QWidget& widget);

} // namespace busquill
