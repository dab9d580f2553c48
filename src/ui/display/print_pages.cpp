#include "ui/display/print_pages.h"

#include "ui/display/wave_geometry.h"
#include "ui/framework/draw_style.h"

#include <algorithm>
#include <numeric>

namespace busquill {

namespace {

constexpr int portraitWidth = 900; // pixels of the screen that a page takes
constexpr int landscapeWidth = 1350;
constexpr int usualDotsPerInch = 300;
constexpr int bandGap = 1;

/// Divides signals among strips. The first size of a strip is `start`; a signal that makes it more
/// than `limit` opens the next strip, unless it is alone in its own, where it is cut.
std::vector<SignalStrip> DivideSignals(std::span<const int> sizes, std::int64_t start,
                                       std::int64_t limit) {
    std::vector<SignalStrip> strips = {{0, sizes.size()}};
    std::int64_t filled = start;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        if (sizes[i] < 1) {
            continue;
        }
        if (filled > start && filled + sizes[i] > limit) {
            strips.back().end = i;
            strips.push_back({i, sizes.size()});
            filled = start;
        }
        filled += sizes[i];
    }
    return strips;
}

double StateScale(const PageSize& page, bool scaleToPage, std::int64_t tableWidth) {
    const int usual = page.landscape ? landscapeWidth : portraitWidth;
    return double(page.width) / static_cast<double>(scaleToPage ? tableWidth : usual);
}

} // namespace

PageMargins::PageMargins(const PageSize& page) noexcept
    : width(page.width), height(page.height), margin(page.height / 20),
      titleFont(std::max(margin / 3, 1)), footerFont(std::max(margin / 4, 1)) {}

StatePages::StatePages(const PageSize& page, bool scaleToPage, int sampleColumn,
                       std::span<const int> widths, std::int64_t rowCount)
    : margins(page), rows(std::max<std::int64_t>(rowCount, 0)) {
    const std::int64_t start = std::int64_t{sampleColumn} + 1;
    const std::int64_t tableWidth =
        std::accumulate(widths.begin(), widths.end(), start,
                        [](std::int64_t sum, int width) { return sum + std::max(width, 0); });
    scale = StateScale(page, scaleToPage, tableWidth);
    strips = scaleToPage
                 ? std::vector<SignalStrip>{{0, widths.size()}}
                 : DivideSignals(widths, start, page.landscape ? landscapeWidth : portraitWidth);
    const DrawStyle style = PaperStyle(scale);
    headerHeight = style.Length(18);
    rowPitch = style.Size(14);
    rowsPerPage = std::max((page.height - 2 * margins.margin - headerHeight) / rowPitch, 1);
    const auto rowStrips = rows == 0 ? 1 : 1 + (rows - 1) / rowsPerPage;
    count = rowStrips * static_cast<std::int64_t>(strips.size());
}

QRect StatePages::Frame() const noexcept {
    return {0, margins.margin, margins.width,
            headerHeight + static_cast<int>(rowsPerPage) * rowPitch};
}

PrintedRows StatePages::Page(std::int64_t number) const noexcept {
    const auto perRows = static_cast<std::int64_t>(strips.size());
    const std::int64_t first = (number - 1) / perRows * rowsPerPage;
    return {strips[static_cast<std::size_t>((number - 1) % perRows)], first,
            std::min(first + rowsPerPage, rows)};
}

WavePages::WavePages(const PageSize& page, const WaveJob& job)
    : margins(page), first(job.first), last(job.last) {
    const double dots =
        static_cast<double>(job.dotsPerInch > 0 ? job.dotsPerInch : usualDotsPerInch) /
        usualDotsPerInch;
    scale = scaleAt300Dots * dots;
    zoom = static_cast<int>(job.zoom * dots);
    if (zoom == 0) {
        zoom = 1; // a coarse printer has no place for less
    }
    const DrawStyle style = PaperStyle(scale);
    std::vector<int> heights;
    heights.reserve(job.heights.size());
    for (const int height : job.heights) {
        const int scaled = style.Length(height);
        heights.push_back(scaled > 0 ? scaled + bandGap : 0);
    }
    const int room = page.height - 2 * margins.margin - style.Length(waveHeaderLine) - 1;
    strips = DivideSignals(heights, 0, room - 1); // a band that reaches the end does not fit
    const int columns = style.Length(job.nameWidth) + style.Length(job.valueWidth);
    samplesPerPage = VisibleSamples(page.width - columns, zoom);
    // At a zoom below 0 more samples than these would fit; the page is filled as far as they go.
    right =
        zoom > 0 ? static_cast<int>(1 + columns + std::int64_t{zoom} * samplesPerPage) : page.width;
    const auto timeStrips =
        samplesPerPage == 0 || last < first ? 1 : (last - first) / samplesPerPage + 1;
    count = timeStrips * static_cast<std::int64_t>(strips.size());
}

QRect WavePages::Frame() const noexcept {
    return {0, margins.margin, right, margins.height - 2 * margins.margin};
}

PrintedWaves WavePages::Page(std::int64_t number) const noexcept {
    const auto perTime = static_cast<std::int64_t>(strips.size());
    const std::int64_t begin = first + (number - 1) / perTime * samplesPerPage;
    return {strips[static_cast<std::size_t>((number - 1) % perTime)], begin,
            std::min(begin + samplesPerPage - 1, last)};
}

} // namespace busquill
