#pragma once

#include "link/board_identity.h"
#include "ui/display/display_colors.h"

#include <QFont>
#include <QSize>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QPainter;

namespace busquill {

class CSignal;
class CSignalList;
class CTesselDoc;

/// Running sums of a capture's TIME, kept from frame to frame, so that the time from the trigger to
/// a far place costs the walk once. Forget when samples come or the list changes.
class TimeSums {
public:
    /// The sum over the samples from 0 to this one.
    [[nodiscard]] std::int64_t UpTo(const CSignal& time, std::int64_t sample);
    void Forget();

private:
    const CSignal* time_ = nullptr;
    std::vector<std::int64_t> sums_; // up to every so many samples
    std::int64_t lastSample_ = -1;
    std::int64_t lastSum_ = 0;
};

/// Everything that one frame of the listing is drawn from.
struct StateFrame {
    CTesselDoc& document;
    const CSignalList& list;
    bool zoom = false;
    BoardTraits board;
    DisplayColors colors;
    QSize size;
    int sampleColumn = 0; // width of the SAMPLE column
    std::int64_t topRow = 0;
    int offset = 0; // horizontal scroll of the signal columns
    QFont bodyFont;
    QFont headerFont;
    TimeSums* timeSums = nullptr; // without it, the frame sums for itself
};

/// The text of a cell. `previous` is the sample of the row above, 0 for the first row.
[[nodiscard]] std::string CellText(const StateFrame& frame, const CSignal& signal,
                                   std::int64_t sample, std::int64_t previous);

/// Draws the header alone.
void DrawStateHeader(QPainter& painter, const StateFrame& frame);

/// Draws a frame: background, header and the rows that fit. Returns the first of its samples that
/// has not arrived yet, which is the one to fetch next.
std::optional<std::int64_t> DrawState(QPainter& painter, const StateFrame& frame);

} // namespace busquill
