/// Listings and waveforms on paper.
#pragma once

#include "ui/display/print_pages.h"
#include "ui/framework/printing.h"

#include <cstdint>

class QPainter;
class QPrinter;

namespace busquill {

struct StateFrame;
struct WaveFrame;

/// What to print of a capture.
struct PrintJob {
    std::int64_t first = 0; // samples
    std::int64_t last = -1; // below `first`: none
    bool scaleToPage = false;
    PageStrips strips;
};

// Each takes the frame that the screen shows, of which it prints the job's samples.

[[nodiscard]] StatePages PagesOf(const PageSize& page, const StateFrame& screen,
                                 const PrintJob& job);
void DrawStatePage(QPainter& painter, const StatePages& pages, const StateFrame& screen,
                   const PrintJob& job, int number);
[[nodiscard]] PrintFailure PrintState(QPrinter& printer, const StateFrame& screen,
                                      const PrintJob& job);

[[nodiscard]] WavePages PagesOf(const PageSize& page, int dotsPerInch, const WaveFrame& screen,
                                const PrintJob& job);
void DrawWavePage(QPainter& painter, const WavePages& pages, const WaveFrame& screen,
                  const PrintJob& job, int number);
[[nodiscard]] PrintFailure PrintWaves(QPrinter& printer, const WaveFrame& screen,
                                      const PrintJob& job);

} // namespace busquill
