#pragma once

#include "link/board_identity.h"
#include "ui/display/wave_geometry.h"
#include "ui/framework/display_colors.h"
#include "ui/framework/draw_style.h"

#include <QFont>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

class QPainter;

namespace busquill {

class CSignalList;
class CTesselDoc;

/// How waveforms are drawn.
struct WaveStyle {
    QFont body; // fixed pitch
    QFont title;
    QFont name;
    DrawStyle draw;

    /// y of the line below the header, and of the first band.
    [[nodiscard]] int HeaderLine() const noexcept { return draw.Length(waveHeaderLine); }
    [[nodiscard]] int FirstBand() const noexcept { return HeaderLine() + draw.line; }
};

/// Its fonts are a little smaller than its lengths.
[[nodiscard]] WaveStyle PaperWaves(double scale);

/// Everything that one frame of the waveforms is drawn from.
struct WaveFrame {
    CTesselDoc& document;
    const CSignalList& list;
    bool isZoom = false; // of the Power Zoom samples
    BoardTraits board;
    DisplayColors colors;
    QSize size;
    int nameWidth = 0; // of the columns, as on the screen
    int valueWidth = 0;
    int zoom = startZoom; // on the device
    WavePlace place;
    BandPlace top;
    WaveStyle style;
    // On paper, a part of the signals and rows.
    std::size_t endSignal = std::numeric_limits<std::size_t>::max(); // in the list
    std::int64_t lastRow = std::numeric_limits<std::int64_t>::max();

    /// The widths of the columns in the units of the device.
    [[nodiscard]] int Names() const noexcept { return style.draw.Length(nameWidth); }
    [[nodiscard]] int Values() const noexcept { return style.draw.Length(valueWidth); }
    /// The first pixel of the wave area.
    [[nodiscard]] int WaveLeft() const noexcept { return Names() + Values() + 1; }
    [[nodiscard]] WaveScale Scale() const noexcept {
        return {zoom, place.subPixel, WaveLeft(), size.width()};
    }
    /// The number of samples that count as visible, and of those that are drawn.
    [[nodiscard]] std::int64_t Visible() const noexcept {
        return VisibleSamples(size.width() - Names() - Values(), zoom);
    }
    [[nodiscard]] std::int64_t DrawnSamples() const;
    /// The row after the last that may be drawn.
    [[nodiscard]] std::int64_t EndRow() const;
};

/// The height of each signal's band; 0 for a signal without one.
[[nodiscard]] std::vector<int> BandHeights(const CSignalList& list, const DrawStyle& style = {});

// Each draws one part of the frame and its background.

void DrawWaveTitles(QPainter& painter, const WaveFrame& frame);
void DrawWaveNames(QPainter& painter, const WaveFrame& frame);
void DrawWaveValues(QPainter& painter, const WaveFrame& frame);
/// The wave area with its header. If samples in it have not arrived yet, it stays empty and the
/// first of them is returned, which is to be fetched next.
std::optional<std::int64_t> DrawWaves(QPainter& painter, const WaveFrame& frame);
/// All four parts; returns what DrawWaves returns.
std::optional<std::int64_t> DrawWaveFrame(QPainter& painter, const WaveFrame& frame);

} // namespace busquill
