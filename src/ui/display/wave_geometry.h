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

// The zoom is never 0: above 0 it counts pixels per sample, below 0 samples per pixel. The three
// ways to change it skip 0 differently; this is kept, since users are used to it.

[[nodiscard]] int ZoomedIn(int zoom) noexcept;
[[nodiscard]] int ZoomedOut(int zoom) noexcept;
[[nodiscard]] int ZoomAfterLine(int zoom, bool right) noexcept;
[[nodiscard]] int ZoomAfterPage(int zoom, bool right) noexcept;
[[nodiscard]] int ZoomOfThumb(int position) noexcept;

/// Samples that count as visible in a wave area of `width` pixels.
[[nodiscard]] std::int64_t VisibleSamples(int width, int zoom) noexcept;

/// The position of the wave area's left edge in the capture.
struct WavePlace {
    std::int64_t row = 0;
    int subPixel = 0; // pixels of the first sample that are left of the edge

    friend bool operator==(const WavePlace&, const WavePlace&) = default;
};

/// A step by one pixel, or at a negative zoom by the samples that share one. A step forward is left
/// out if less than a full window would remain before the end.
[[nodiscard]] WavePlace StepForward(WavePlace place, int zoom, std::int64_t visible,
                                    std::int64_t rows) noexcept;
[[nodiscard]] WavePlace StepBackward(WavePlace place, int zoom) noexcept;
[[nodiscard]] WavePlace Page(WavePlace place, bool forward, std::int64_t visible,
                             std::int64_t rows) noexcept;

/// The page of the bar along the samples, at least so large that its thumb can be dragged.
[[nodiscard]] int WavePage(std::int64_t visible, std::int64_t rows) noexcept;
[[nodiscard]] int WavePosition(std::int64_t row, std::int64_t rows) noexcept;

/// Drawn samples, counted from the one at the left edge.
struct DrawnSpan {
    std::int64_t first = 0;
    std::int64_t last = 0;

    friend bool operator==(const DrawnSpan&, const DrawnSpan&) = default;
};

/// Converts between samples and pixels. `k` counts the drawn samples from the one at the left edge.
/// At a zoom of -n, n + 1 samples are drawn in each pixel, though only n count as visible.
struct WaveScale {
    int zoom = startZoom;
    int subPixel = 0;
    int left = 0;
    int right = 0; // the pixel after the last one

    /// The pixels of the first sample that are left of the edge. Zooming out keeps `subPixel`,
    /// which may then exceed a sample's width, so it is limited here.
    [[nodiscard]] int Skipped() const noexcept;
    /// Samples up to the right edge.
    [[nodiscard]] std::int64_t Count() const noexcept;
    /// The pixel at which a sample begins; at most `right`.
    [[nodiscard]] int XOf(std::int64_t k) const noexcept;
    /// The first sample that begins right of pixel `x`.
    [[nodiscard]] std::int64_t FirstAfter(int x) const noexcept;
    /// The samples that pixel `x` of the waves shows: one at a positive zoom.
    [[nodiscard]] DrawnSpan SpanAt(int x) const noexcept;
    /// The place at which another zoom shows the first sample of pixel `x` in the same pixel. Near
    /// the beginning of a capture the sample moves to the left, as there is nothing before it.
    [[nodiscard]] WavePlace PlaceAfterZoom(std::int64_t row, int x, int newZoom) const noexcept;
    /// The row, counted from the first, for a click `d` pixels right of the left edge. At a
    /// positive zoom it is the sample with the nearest beginning.
    [[nodiscard]] std::int64_t RowAt(int d) const noexcept;
    /// The pixel at which the mark of a row is drawn.
    [[nodiscard]] std::int64_t MarkOf(std::int64_t row) const noexcept;
    /// The pixel up to which samples are drawn when `rowsLeft` rows remain, including the first
    /// one.
    [[nodiscard]] int EndOf(std::int64_t rowsLeft, std::int64_t visible) const noexcept;
    /// The distance and number of the header's ticks, which begin at `left`.
    [[nodiscard]] int TickStep() const noexcept { return zoom > 0 ? zoom : 1; }
    [[nodiscard]] int TickCount() const noexcept;
    /// The number of rows that the ticks cover.
    [[nodiscard]] std::int64_t TickedRows() const noexcept;
};

/// A visible band.
struct WaveBand {
    std::size_t signal = 0; // index in the list of heights
    int top = 0;            // may lie above the first visible pixel
    int height = 0;

    friend bool operator==(const WaveBand&, const WaveBand&) = default;
};

/// The band at the top of the window. An index of -1 is before the first signal: then no band
/// shows.
struct BandPlace {
    std::int64_t signal = 0;
    int offset = 0; // pixels of that band that are above the top

    friend bool operator==(const BandPlace&, const BandPlace&) = default;
};

/// The bands that show from `firstBand` down to `bottom`. A height below 1 means that there is no
/// band; each band is followed by a gap of one pixel.
[[nodiscard]] std::vector<WaveBand> VisibleBands(std::span<const int> heights, BandPlace top,
                                                 int bottom, int firstBand = waveFirstBand);
/// The height of all bands with their gaps.
[[nodiscard]] int BandsHeight(std::span<const int> heights) noexcept;
/// The position of the bar along the signals for a place, and back. The first leaves out the gaps
/// between bands, the second counts them.
[[nodiscard]] int PositionOf(std::span<const int> heights, BandPlace place) noexcept;
[[nodiscard]] BandPlace PlaceOf(std::span<const int> heights, int position, int page) noexcept;
/// The place one pixel up or down.
[[nodiscard]] BandPlace StepBands(std::span<const int> heights, BandPlace place, bool down,
                                  int page) noexcept;
/// The place one signal up or down.
[[nodiscard]] BandPlace PageBands(std::span<const int> heights, BandPlace place, bool down,
                                  int page) noexcept;

} // namespace busquill
