#include "ui/display/print_painter.h"

#include "capture/trace_document.h"
#include "ui/display/state_painter.h"
#include "ui/display/wave_painter.h"

#include <QPainter>
#include <QPrinter>

#include <vector>

namespace busquill {

namespace {

void DrawStrips(QPainter& painter, const PageMargins& margins, const PrintJob& job, int number) {
    DrawPageStrips(painter,
                   {margins.Title(), margins.Footer(), margins.titleFont, margins.footerFont},
                   job.strips, number);
}

void DrawPageFrame(QPainter& painter, const QRect& frame, int line) {
    const QColor black(Qt::black);
    painter.fillRect(frame.left(), frame.top(), frame.width(), line, black);
    painter.fillRect(frame.left(), frame.bottom() + 1 - line, frame.width(), line, black);
    painter.fillRect(frame.left(), frame.top(), line, frame.height(), black);
    painter.fillRect(frame.right() + 1 - line, frame.top(), line, frame.height(), black);
}

PageSize SheetOf(const QPrinter& printer) {
    return {printer.width(), printer.height(), IsLandscape(printer)};
}

} // namespace

StatePages PagesOf(const PageSize& page, const StateFrame& screen, const PrintJob& job) {
    const auto rowOf = [&](std::int64_t sample) {
        return screen.document.SampleToRow(sample, screen.zoom);
    };
    const bool isEmpty = job.last < job.first || screen.document.RowCount(screen.zoom) == 0;
    const std::int64_t rows = isEmpty ? 0 : rowOf(job.last) - rowOf(job.first) + 1;
    return {page, job.scaleToPage, screen.sampleColumn, ColumnWidths(screen.list), rows};
}

void DrawStatePage(QPainter& painter, const StatePages& pages, const StateFrame& screen,
                   const PrintJob& job, int number) {
    const PrintedRows shown = pages.Page(number);
    const std::int64_t firstRow = screen.document.SampleToRow(job.first, screen.zoom);
    StateFrame frame = screen;
    frame.style = PaperState(pages.scale);
    frame.offset = 0;
    frame.topRow = firstRow + shown.firstRow;
    frame.endRow = firstRow + shown.endRow;
    frame.firstColumn = shown.columns.first;
    frame.endColumn = shown.columns.end;
    const int line = frame.style.draw.line;
    frame.size = pages.Frame().size() - QSize(2 * line, 2 * line);

    DrawStrips(painter, pages.margins, job, number);
    painter.save();
    painter.translate(line, pages.margins.margin + line);
    DrawState(painter, frame);
    painter.restore();
    DrawPageFrame(painter, pages.Frame(), line);
}

PrintFailure PrintState(QPrinter& printer, const StateFrame& screen, const PrintJob& job) {
    const StatePages pages = PagesOf(SheetOf(printer), screen, job);
    return PrintPages(printer, pages.count, [&](QPainter& painter, int number) {
        DrawStatePage(painter, pages, screen, job, number);
    });
}

WavePages PagesOf(const PageSize& page, int dotsPerInch, const WaveFrame& screen,
                  const PrintJob& job) {
    return {page,
            {dotsPerInch, screen.zoom, screen.nameWidth, screen.valueWidth,
             BandHeights(screen.list), job.first, job.last}};
}

void DrawWavePage(QPainter& painter, const WavePages& pages, const WaveFrame& screen,
                  const PrintJob& job, int number) {
    const PrintedWaves shown = pages.Page(number);
    CTesselDoc& document = screen.document;
    const auto rowOf = [&](std::int64_t sample) {
        return document.SampleToRow(sample, screen.isZoom);
    };
    WaveFrame frame = screen;
    frame.style = PaperWaves(pages.scale);
    frame.size = pages.Frame().size();
    frame.zoom = pages.zoom;
    // The row of a sample that the filter leaves out is the one before it.
    std::int64_t row = rowOf(shown.first);
    if (document.RowToSample(row, screen.isZoom) < shown.first) {
        ++row;
    }
    const std::int64_t last = shown.last < shown.first ? -1 : rowOf(shown.last);
    const bool isAfter = last >= 0 && document.RowToSample(last, screen.isZoom) > shown.last;
    frame.place = {row, 0};
    frame.lastRow = isAfter ? last - 1 : last;
    frame.top = {static_cast<std::int64_t>(shown.bands.first), 0};
    frame.endSignal = shown.bands.end;

    DrawStrips(painter, pages.margins, job, number);
    painter.save();
    painter.translate(0, pages.margins.margin);
    DrawWaveFrame(painter, frame);
    painter.restore();
    DrawPageFrame(painter, pages.Frame(), frame.style.draw.line);
}

PrintFailure PrintWaves(QPrinter& printer, const WaveFrame& screen, const PrintJob& job) {
    const WavePages pages = PagesOf(SheetOf(printer), printer.logicalDpiY(), screen, job);
    return PrintPages(printer, pages.count, [&](QPainter& painter, int number) {
        DrawWavePage(painter, pages, screen, job, number);
    });
}

} // namespace busquill
