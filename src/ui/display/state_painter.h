#pragma once

#include "link/board_identity.h"
#include "signals/cell_text.h"
#include "ui/framework/display_colors.h"
#include "ui/patterns/columns.h"

#include <QSize>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

class QPainter;

namespace busquill {

class CSignalList;
class CTesselDoc;

/// How a listing is drawn.
struct StateStyle : TableStyle {
    int rowPitch = 0;
    int rowText = 0; // the part of a row that texts and stripes take
};

[[nodiscard]] StateStyle ScreenState(const TableFonts& fonts);
/// Rows on paper touch.
[[nodiscard]] StateStyle PaperState(double scale);

/// Everything that one frame of the listing is drawn from.
struct StateFrame {
    CTesselDoc& document;
    const CSignalList& list;
    bool zoom = false;
    BoardTraits board;
    DisplayColors colors;
    QSize size;
    int sampleColumn = 0; // width of the SAMPLE column, as on the screen
    std::int64_t topRow = 0;
    int offset = 0; // horizontal scroll of the signal columns
    StateStyle style;
    // On paper, a part of the columns and rows.
    std::size_t firstColumn = 0; // in the list
    std::size_t endColumn = std::numeric_limits<std::size_t>::max();
    std::int64_t endRow = std::numeric_limits<std::int64_t>::max();
};

/// The times in the rows of a frame. Only times that a visible column shows are computed.
class FrameTimes {
public:
    /// The frame outlives the object.
    explicit FrameTimes(const StateFrame& frame);
    FrameTimes(const FrameTimes&) = delete;
    FrameTimes& operator=(const FrameTimes&) = delete;

    /// `above` is the sample of the row above, 0 for the first row of a frame.
    [[nodiscard]] RowTimes At(std::int64_t sample, std::int64_t above) const;

private:
    const StateFrame& frame_;
    const std::int64_t trigger_;
    bool showsAccum_ = false;
    bool showsTime_ = false;
};

/// The texts in the row of a sample that has arrived.
class RowTexts {
public:
    /// The frame outlives the object; `above` as for FrameTimes::At.
    RowTexts(const StateFrame& frame, const FrameTimes& times, std::int64_t sample,
             std::int64_t above);
    RowTexts(const RowTexts&) = delete;
    RowTexts& operator=(const RowTexts&) = delete;

    [[nodiscard]] std::string Of(const CSignal& signal) const {
        return CellText(frame_.board, signal, listed_, frame_.zoom);
    }

private:
    const StateFrame& frame_;
    const std::optional<SampleRecord> record_;
    const ListedSample listed_;
};

/// Draws only the header.
void DrawStateHeader(QPainter& painter, const StateFrame& frame);

/// Draws a frame: background, header and the rows that fit. Returns the first of its samples that
/// has not arrived yet and is to be fetched next.
std::optional<std::int64_t> DrawState(QPainter& painter, const StateFrame& frame);

} // namespace busquill
