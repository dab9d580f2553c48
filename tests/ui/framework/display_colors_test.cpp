#include "platform/memory_settings.h"
#include "support/contrast_qt.h"
#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

double Contrast(std::uint32_t a, std::uint32_t b) {
    return test::Contrast(ColorOf(a), ColorOf(b));
}

void StoreSet(Settings& settings, ColorSet set) {
    for (std::size_t i = 0; i < colorSettings; ++i) {
        const auto which = static_cast<ColorSetting>(i);
        WriteColorSetting(settings, which, ValueIn(set, which));
    }
}

constexpr std::uint32_t signalColors[] = {0, 0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF, 0x808080};

TEST(LegibleOn, LeavesWhatCanBeRead) {
    EXPECT_EQ(LegibleOn(0xFFFFFF, 0), 0U);
    EXPECT_EQ(LegibleOn(0, 0xFFFFFF), 0xFFFFFFU);
    EXPECT_EQ(LegibleOn(0xF8F8F8, 0x800000), 0x800000U);
}

TEST(LegibleOn, KeepsTheHue) {
    const QColor green = ColorOf(LegibleOn(0xFFFFFF, 0x00FF00));
    EXPECT_GT(green.green(), 80);
    EXPECT_EQ(green.red(), 0);
    EXPECT_EQ(green.blue(), 0);
}

TEST(LegibleOn, CanBeReadOnAnyGround) {
    for (std::uint32_t ground = 0; ground < 0x1000000; ground += 0x0B0705) {
        for (const std::uint32_t color : {0U, 0xFFU, 0xFF00U, 0xFF0000U, 0xFFFFFFU, ground}) {
            EXPECT_GE(Contrast(ground, LegibleOn(ground, color)), readable)
                << ground << " " << color;
        }
    }
}

TEST(ColorSets, EverySignalCanBeReadOnEveryRow) {
    for (const ColorSet set : {ColorSet::Legible, ColorSet::Dark}) {
        MemorySettings settings;
        StoreSet(settings, set);
        for (const DisplaySettings& display : {stateDisplay, waveformDisplay}) {
            const DisplayColors colors = LoadDisplayColors(settings, display);
            for (const std::uint32_t ground : {colors.background, colors.alternate}) {
                for (const std::uint32_t color : signalColors) {
                    EXPECT_GE(Contrast(ground, colors.Ink(color, ground)), readable);
                }
            }
            EXPECT_NE(colors.background, colors.alternate);
        }
        const DisplayColors listing = LoadDisplayColors(settings, stateDisplay);
        const DisplayColors waves = LoadDisplayColors(settings, waveformDisplay);
        for (int which = 0; which < 3; ++which) {
            for (const std::uint32_t color : signalColors) {
                EXPECT_GE(Contrast(listing.Mark(which), listing.Ink(color, listing.Mark(which))),
                          readable);
            }
            EXPECT_GE(Contrast(waves.background, waves.Mark(which)), 3) << "a line on its ground";
        }
    }
}

TEST(ColorSets, BlackStaysBlackOnTheRowsOfTheLegibleSet) {
    MemorySettings settings;
    StoreSet(settings, ColorSet::Legible);
    const DisplayColors colors = LoadDisplayColors(settings, stateDisplay);
    for (int which = 0; which < 3; ++which) {
        EXPECT_EQ(colors.Ink(0, colors.Mark(which)), 0U);
    }
}

TEST(ColorSets, TextIsLeftAloneInTheStandardSet) {
    MemorySettings settings;
    StoreSet(settings, ColorSet::Dark);
    StoreSet(settings, ColorSet::Standard);
    const DisplayColors colors = LoadDisplayColors(settings, stateDisplay);
    EXPECT_EQ(colors, LoadDisplayColors(MemorySettings(), stateDisplay));
    EXPECT_EQ(colors.Ink(0x00FF00, colors.marker1), 0x00FF00U);
    QPalette usual;
    usual.setColor(QPalette::WindowText, Qt::black);
    EXPECT_EQ(FormPalette(settings, usual).color(QPalette::WindowText), QColor(Qt::black));
}

TEST(ColorSets, FormsHaveReadableTextOnADarkDesktopToo) {
    const MemorySettings settings; // a light ground
    QPalette dark;
    dark.setColor(QPalette::WindowText, QColor(0xE6, 0xE6, 0xE6));
    const QColor text = FormPalette(settings, dark).color(QPalette::WindowText);
    EXPECT_GE(Contrast(NumberOf(ViewBackground(settings)), NumberOf(text)), readable);
}

TEST(ColorSets, FormsOfTheDarkSetHaveLightTextEvenWhereDisabled) {
    MemorySettings settings;
    StoreSet(settings, ColorSet::Dark);
    QPalette usual;
    usual.setColor(QPalette::WindowText, Qt::black);
    usual.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x80));
    const QPalette palette = FormPalette(settings, usual);
    const std::uint32_t ground = NumberOf(ViewBackground(settings));
    EXPECT_GE(Contrast(ground, NumberOf(palette.color(QPalette::WindowText))), readable);
    const QColor disabled = palette.color(QPalette::Disabled, QPalette::WindowText);
    EXPECT_GE(Contrast(ground, NumberOf(disabled)), 2.5);
    EXPECT_NE(disabled, palette.color(QPalette::WindowText));
}

} // namespace
} // namespace busquill::test
