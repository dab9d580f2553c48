#pragma once

#include "link/board_identity.h"
#include "ui/display/wave_geometry.h"
#include "ui/framework/display_colors.h"

#include <QFont>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

class QPainter;

namespace busquill {

class CSignalList;
class CTesselDoc;

/// Everything that one frame of the waveforms is drawn from.
struct WaveFrame {
    CTesselDoc& document;
    const CSignalList& list;
    bool isZoom = false; // of the Power Zoom samples
    BoardTraits board;
    DisplayColors colors;
    QSize size;
    int nameWidth = 0;
    int valueWidth = 0;
    int zoom = startZoom;
    WavePlace place;
    BandPlace top;
    QFont bodyFont; // fixed pitch
    QFont titleFont;
    QFont nameFont;

    /// The first pixel of the wave area.
    [[nodiscard]] int WaveLeft() const noexcept { return nameWidth + valueWidth + 1; }
    [[nodiscard]] WaveScale Scale() const noexcept {
        return {zoom, place.subPixel, WaveLeft(), size.width()};
    }
    /// The number of samples that count as visible, and of those that are drawn.
    [[nodiscard]] std::int64_t Visible() const noexcept {
        return VisibleSamples(size.width() - nameWidth - valueWidth, zoom);
    }
    [[nodiscard]] std::int64_t DrawnSamples() const;
};

/// The height of each signal's band; 0 for a signal without one.
[[nodiscard]] std::vector<int> BandHeights(const CSignalList& list);

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
