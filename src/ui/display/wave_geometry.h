/// Scale, stepping, bands and marks of the waveforms, without pixels or widgets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

constexpr int waveHeaderLine = 17; // y of the line below the header
constexpr int waveFirstBand = 18;  // y where the bands begin
constexpr int smallestZoom = -7;
constexpr int largestZoom = 400;
constexpr int startZoom = 20;
constexpr int zoomStep = 5;

// The zoom is never 0: above it counts pixels for a sample, below it samples for a pixel. The three
// ways to change it step over 0 each in its own manner, which users know by heart.

[[nodiscard]] int ZoomedIn(int zoom) noexcept;
[[nodiscard]] int ZoomedOut(int zoom) noexcept;
[[nodiscard]] int ZoomAfterLine(int zoom, bool right) noexcept;
[[nodiscard]] int ZoomAfterPage(int zoom, bool right) noexcept;
[[nodiscard]] int ZoomOfThumb(int position) noexcept;

/// Samples that count as visible in a wave area of `width` pixels.
[[nodiscard]] std::int64_t VisibleSamples(int width, int zoom) noexcept;

/// Where the left edge of the wave area is in the capture.
struct WavePlace {
    std::int64_t row = 0;
    int subPixel = 0; // pixels of the first sample that are scrolled past

    friend bool operator==(const WavePlace&, const WavePlace&) = default;
};

/// One step of a line: a pixel, or at a negative zoom the samples of one. A step forward that would
/// leave less than a window before the end is not taken at all.
[[nodiscard]] WavePlace StepForward(WavePlace place, int zoom, std::int64_t visible,
                                    std::int64_t rows) noexcept;
[[nodiscard]] WavePlace StepBackward(WavePlace place, int zoom) noexcept;
[[nodiscard]] WavePlace Page(WavePlace place, bool forward, std::int64_t visible,
                             std::int64_t rows) noexcept;

/// Page of the bar along the samples, at least so much that there is something to grip.
[[nodiscard]] int WavePage(std::int64_t visible, std::int64_t rows) noexcept;
[[nodiscard]] int WavePosition(std::int64_t row, std::int64_t rows) noexcept;

/// From samples to pixels. `k` counts the samples that are drawn, from the one at the left edge.
/// With a negative zoom n + 1 samples share a pixel, though n of them count as visible.
struct WaveScale {
    int zoom = startZoom;
    int subPixel = 0;
    int left = 0;
    int right = 0; // the pixel behind the last one

    /// The pixels scrolled past that are still there: a zoom out leaves their number as it was.
    [[nodiscard]] int Skipped() const noexcept;
    /// Samples up to the right edge.
    [[nodiscard]] std::int64_t Count() const noexcept;
    /// Where a sample begins; `right` from the edge on.
    [[nodiscard]] int XOf(std::int64_t k) const noexcept;
    /// The first sample that begins right of a pixel.
    [[nodiscard]] std::int64_t FirstAfter(int x) const noexcept;
    /// The row, counted from the first, that a click `d` pixels right of the left edge means: at a
    /// positive zoom the sample whose beginning is nearest.
    [[nodiscard]] std::int64_t RowAt(int d) const noexcept;
    /// Where the mark of a row stands.
    [[nodiscard]] std::int64_t MarkOf(std::int64_t row) const noexcept;
    /// How far right the samples reach when so many rows are left, the first included.
    [[nodiscard]] int EndOf(std::int64_t rowsLeft, std::int64_t visible) const noexcept;
    /// The ticks of the header, from `left` on.
    [[nodiscard]] int TickStep() const noexcept { return zoom > 0 ? zoom : 1; }
    [[nodiscard]] int TickCount() const noexcept;
    /// Rows from the first to the last that the ticks tell of.
    [[nodiscard]] std::int64_t TickedRows() const noexcept;
};

/// The band of a signal that shows.
struct WaveBand {
    std::size_t signal = 0; // place in the list of heights
    int top = 0;            // may lie above the first pixel that shows
    int height = 0;

    friend bool operator==(const WaveBand&, const WaveBand&) = default;
};

/// What the top of the bands shows. The index may be -1, before the first: then no band shows.
struct BandPlace {
    std::int64_t signal = 0;
    int offset = 0; // pixels of that band that are scrolled past

    friend bool operator==(const BandPlace&, const BandPlace&) = default;
};

/// The bands that show above `bottom`. Heights below 1 take no room, any other one pixel more.
[[nodiscard]] std::vector<WaveBand> VisibleBands(std::span<const int> heights, BandPlace top,
                                                 int bottom);
/// The room of all bands, with the pixel below each.
[[nodiscard]] int BandsHeight(std::span<const int> heights) noexcept;
/// The position of the bar along the signals, which leaves out the pixels between the bands, and
/// the place for a position, which does not.
[[nodiscard]] int PositionOf(std::span<const int> heights, BandPlace place) noexcept;
[[nodiscard]] BandPlace PlaceOf(std::span<const int> heights, int position, int page) noexcept;
/// A pixel up or down.
[[nodiscard]] BandPlace StepBands(std::span<const int> heights, BandPlace place, bool down,
                                  int page) noexcept;
/// A signal up or down.
[[nodiscard]] BandPlace PageBands(std::span<const int> heights, BandPlace place, bool down,
                                  int page) noexcept;

} // namespace busquill
