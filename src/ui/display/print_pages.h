/// A listing and waveforms as pages, in numbers: what is where, in the units of the printer. The
/// corner of the printable part of a page is the origin.
#pragma once

#include <QRect>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace busquill {

/// The printable part of a sheet.
struct PageSize {
    int width = 0;
    int height = 0;
    bool landscape = false;
};

/// The strips above and below what is printed, for title and footer.
struct PageMargins {
    explicit PageMargins(const PageSize& page) noexcept;

    int width = 0;
    int height = 0; // of the page
    int margin = 0; // of each strip
    int titleFont = 0;
    int footerFont = 0;

    [[nodiscard]] QRect Title() const noexcept { return {0, 0, width, margin}; }
    /// One line, at the bottom of the page.
    [[nodiscard]] QRect Footer() const noexcept {
        return {0, height - footerFont, width, footerFont};
    }
};

/// The signals that share a page: those from `first` to before `end` in their list.
struct SignalStrip {
    std::size_t first = 0;
    std::size_t end = 0;

    friend bool operator==(const SignalStrip&, const SignalStrip&) = default;
};

/// What is on one page of a listing; rows count from the first printed one.
struct PrintedRows {
    SignalStrip columns;
    std::int64_t firstRow = 0;
    std::int64_t endRow = 0;
};

/// The pages of a listing. All columns of the first rows come before the next rows.
struct StatePages {
    /// `widths` are those on the screen; 0 for a signal without a column.
    StatePages(const PageSize& page, bool scaleToPage, int sampleColumn,
               std::span<const int> widths, std::int64_t rows);

    PageMargins margins;
    double scale = 1;
    int headerHeight = 0;
    int rowPitch = 1;
    std::int64_t rowsPerPage = 1;
    std::vector<SignalStrip> strips;
    std::int64_t rows = 0;
    std::int64_t count = 0;

    /// The frame around the table.
    [[nodiscard]] QRect Frame() const noexcept;
    /// A page by its number, from 1.
    [[nodiscard]] PrintedRows Page(std::int64_t number) const noexcept;
};

/// What waveforms on paper are computed from.
struct WaveJob {
    int dotsPerInch = 0; // 0: not known
    int zoom = 0;        // on the screen
    int nameWidth = 0;   // of the columns, as on the screen
    int valueWidth = 0;
    std::span<const int> heights; // of the bands, as on the screen; 0 for a signal without one
    std::int64_t first = 0;       // samples
    std::int64_t last = -1;       // below `first`: none
};

/// What is on one page of waveforms.
struct PrintedWaves {
    SignalStrip bands;
    std::int64_t first = 0; // samples
    std::int64_t last = 0;
};

/// The pages of waveforms. All signals of the first samples come before the next samples.
struct WavePages {
    WavePages(const PageSize& page, const WaveJob& job);

    PageMargins margins;
    double scale = 1;
    int zoom = 1;  // on the printer
    int right = 0; // the frame's right edge
    std::int64_t samplesPerPage = 0;
    std::vector<SignalStrip> strips;
    std::int64_t first = 0;
    std::int64_t last = -1;
    std::int64_t count = 0;

    [[nodiscard]] QRect Frame() const noexcept;
    /// A page by its number, from 1.
    [[nodiscard]] PrintedWaves Page(std::int64_t number) const noexcept;
};

} // namespace busquill
