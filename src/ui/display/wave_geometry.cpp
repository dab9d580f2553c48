#include "ui/display/wave_geometry.h"

#include "ui/display/state_geometry.h"

#include <algorithm>
#include <limits>

namespace busquill {

namespace {

constexpr int smallestPage = 250;
constexpr int bandGap = 1;

/// The first signal at or after an index that has a band; the number of signals when there is none.
std::int64_t NextBand(std::span<const int> heights, std::int64_t index) noexcept {
    const auto count = static_cast<std::int64_t>(heights.size());
    while (index < count && heights[static_cast<std::size_t>(index)] < 1) {
        ++index;
    }
    return index;
}

/// The last signal at or before an index that has a band; -1 when there is none.
std::int64_t PreviousBand(std::span<const int> heights, std::int64_t index) noexcept {
    while (index >= 0 && heights[static_cast<std::size_t>(index)] < 1) {
        --index;
    }
    return index;
}

/// Whether the bands from a place on do not fit in the page.
bool ExceedPage(std::span<const int> heights, BandPlace place, int page) noexcept {
    const auto first = static_cast<std::size_t>(std::max<std::int64_t>(place.signal, 0));
    return BandsHeight(heights.subspan(std::min(first, heights.size()))) - place.offset > page;
}

} // namespace

int ZoomedIn(int zoom) noexcept {
    if (zoom >= largestZoom) {
        return zoom;
    }
    const int zoomed = std::min(zoom + zoomStep, largestZoom);
    return zoomed == 0 ? 1 : zoomed;
}

int ZoomedOut(int zoom) noexcept {
    if (zoom <= smallestZoom) {
        return zoom;
    }
    const int zoomed = std::max(zoom - zoomStep, smallestZoom);
    return zoomed == 0 ? -1 : zoomed;
}

int ZoomAfterLine(int zoom, bool right) noexcept {
    if (right) {
        return zoom >= largestZoom ? zoom : zoom == -1 ? 1 : zoom + 1;
    }
    return zoom <= smallestZoom ? zoom : zoom == 1 ? -2 : zoom - 1;
}

int ZoomAfterPage(int zoom, bool right) noexcept {
    if (right) {
        return ZoomedIn(zoom);
    }
    return zoom == zoomStep ? -2 : ZoomedOut(zoom);
}

int ZoomOfThumb(int position) noexcept {
    return position == 0 ? 1 : std::clamp(position, smallestZoom, largestZoom);
}

std::int64_t VisibleSamples(int width, int zoom) noexcept {
    const std::int64_t pixels = std::max(width, 0);
    return zoom > 0 ? pixels / zoom : pixels * -zoom;
}

WavePlace StepForward(WavePlace place, int zoom, std::int64_t visible, std::int64_t rows) noexcept {
    WavePlace stepped = place;
    if (zoom < 0) {
        stepped = {place.row - zoom, 0};
    } else if (++stepped.subPixel >= zoom) {
        stepped = {place.row + 1, 0};
    }
    return stepped.row + visible >= rows ? place : stepped;
}

WavePlace StepBackward(WavePlace place, int zoom) noexcept {
    if (zoom < 0) {
        return {std::max<std::int64_t>(place.row + zoom, 0), 0};
    }
    if (place.subPixel > 0) {
        return {place.row, place.subPixel - 1};
    }
    return place.row > 0 ? WavePlace{place.row - 1, zoom - 1} : place;
}

WavePlace Page(WavePlace place, bool forward, std::int64_t visible, std::int64_t rows) noexcept {
    std::int64_t row = place.row;
    if (!forward) {
        row = std::max<std::int64_t>(row - visible, 0);
    } else if (row + visible < rows) {
        row = std::min(row + visible, rows - visible);
    }
    return row == place.row ? place : WavePlace{row, 0};
}

int WavePage(std::int64_t visible, std::int64_t rows) noexcept {
    const std::int64_t share = rows == 0 ? scrollRange : visible * scrollRange / rows;
    return static_cast<int>(std::clamp<std::int64_t>(share, smallestPage, scrollRange));
}

int WavePosition(std::int64_t row, std::int64_t rows) noexcept {
    return rows == 0 ? 0
                     : static_cast<int>(static_cast<double>(row) * scrollRange /
                                        static_cast<double>(rows));
}

int WaveScale::Skipped() const noexcept {
    return zoom > 0 ? std::min(subPixel, zoom - 1) : 0;
}

std::int64_t WaveScale::Count() const noexcept {
    const std::int64_t pixels = std::max(right - left, 0);
    if (zoom < 0) {
        return pixels * (1 - zoom);
    }
    return pixels == 0 ? 0 : (pixels + Skipped() + zoom - 1) / zoom;
}

int WaveScale::XOf(std::int64_t k) const noexcept {
    if (k <= 0) {
        return left;
    }
    const std::int64_t x = left - Skipped() + (zoom > 0 ? k * zoom : k / (1 - zoom));
    return static_cast<int>(std::min<std::int64_t>(x, right));
}

std::int64_t WaveScale::FirstAfter(int x) const noexcept {
    if (zoom < 0) {
        return std::int64_t{x - left + 1} * (1 - zoom);
    }
    return (std::int64_t{x - left} + Skipped()) / zoom + 1;
}

DrawnSpan WaveScale::SpanAt(int x) const noexcept {
    return {zoom < 0 ? FirstAfter(x - 1) : FirstAfter(x) - 1, FirstAfter(x) - 1};
}

WavePlace WaveScale::PlaceAfterZoom(std::int64_t row, int x, int newZoom) const noexcept {
    const std::int64_t pixels = std::int64_t{x} - left; // from the left edge
    const std::int64_t kept = row + SpanAt(x).first;
    if (newZoom < 0) {
        return {std::max<std::int64_t>(kept - pixels * (1 - newZoom), 0), 0};
    }
    // The pointer stays at the same part of the sample.
    const std::int64_t inSample = zoom > 0 ? (pixels + Skipped()) % zoom * newZoom / zoom : 0;
    const std::int64_t hidden = kept * newZoom + inSample - pixels; // left of the edge
    return hidden <= 0 ? WavePlace{}
                       : WavePlace{hidden / newZoom, static_cast<int>(hidden % newZoom)};
}

std::int64_t WaveScale::RowAt(int d) const noexcept {
    return zoom > 0 ? (std::int64_t{d} + Skipped() + zoom / 2) / zoom : std::int64_t{d} * -zoom;
}

std::int64_t WaveScale::MarkOf(std::int64_t row) const noexcept {
    return left - Skipped() + (zoom > 0 ? row * zoom : row / -zoom) + 1;
}

int WaveScale::EndOf(std::int64_t rowsLeft, std::int64_t visible) const noexcept {
    const int edge = right - 1;
    if (visible <= rowsLeft) {
        return edge;
    }
    const std::int64_t length = zoom > 0 ? rowsLeft * zoom : rowsLeft / -zoom;
    return static_cast<int>(std::min<std::int64_t>(left + length, edge));
}

int WaveScale::TickCount() const noexcept {
    return (std::max(right - left, 0) + TickStep() - 1) / TickStep();
}

std::int64_t WaveScale::TickedRows() const noexcept {
    const std::int64_t ticks = std::int64_t{TickCount()} + 1;
    return zoom > 0 ? ticks : ticks * -zoom;
}

std::vector<WaveBand> VisibleBands(std::span<const int> heights, BandPlace top, int bottom,
                                   int firstBand) {
    std::vector<WaveBand> bands;
    if (top.signal < 0) {
        return bands;
    }
    int y = firstBand - top.offset;
    for (auto i = static_cast<std::size_t>(top.signal); i < heights.size() && y < bottom; ++i) {
        if (heights[i] > 0) {
            bands.push_back({i, y, heights[i]});
            y += heights[i] + bandGap;
        }
    }
    return bands;
}

int BandsHeight(std::span<const int> heights) noexcept {
    std::int64_t total = 0;
    for (const int height : heights) {
        total += height > 0 ? height + bandGap : 0;
    }
    return static_cast<int>(std::min<std::int64_t>(total, std::numeric_limits<int>::max()));
}

int PositionOf(std::span<const int> heights, BandPlace place) noexcept {
    std::int64_t above = place.offset;
    for (std::int64_t i = 0; i < place.signal; ++i) {
        above += std::max(heights[static_cast<std::size_t>(i)], 0);
    }
    return static_cast<int>(std::min<std::int64_t>(above, std::numeric_limits<int>::max()));
}

BandPlace PlaceOf(std::span<const int> heights, int position, int page) noexcept {
    int rest = std::clamp(position, 0, std::max(BandsHeight(heights) - page, 0));
    std::int64_t signal = NextBand(heights, 0);
    const auto count = static_cast<std::int64_t>(heights.size());
    while (signal < count) {
        const int height = heights[static_cast<std::size_t>(signal)];
        if (rest <= height) {
            return {signal, rest};
        }
        rest -= height + bandGap;
        signal = NextBand(heights, signal + 1);
    }
    return {};
}

BandPlace StepBands(std::span<const int> heights, BandPlace place, bool down, int page) noexcept {
    const auto count = static_cast<std::int64_t>(heights.size());
    if (place.signal < 0 || place.signal >= count) {
        const std::int64_t first = NextBand(heights, 0);
        return {first < count ? first : 0, 0};
    }
    const int height = heights[static_cast<std::size_t>(place.signal)];
    if (!down) {
        if (place.offset > 0) {
            return {place.signal, place.offset - 1};
        }
        const std::int64_t previous = PreviousBand(heights, place.signal - 1);
        return previous < 0 ? place
                            : BandPlace{previous, heights[static_cast<std::size_t>(previous)] - 1};
    }
    if (!ExceedPage(heights, place, page)) {
        return place;
    }
    if (place.offset + 1 < height) {
        return {place.signal, place.offset + 1};
    }
    const std::int64_t next = NextBand(heights, place.signal + 1);
    return next < count ? BandPlace{next, 0} : place;
}

BandPlace PageBands(std::span<const int> heights, BandPlace place, bool down, int page) noexcept {
    if (down) {
        const bool hasNext = place.signal + 1 < static_cast<std::int64_t>(heights.size());
        return hasNext && ExceedPage(heights, place, page) ? BandPlace{place.signal + 1, 0} : place;
    }
    const bool canGoUp = place.signal > 0 || (place.signal == 0 && place.offset > 0);
    return canGoUp ? BandPlace{place.signal - 1, 0} : place;
}

} // namespace busquill
