#pragma once

#include "ui/patterns/columns.h"
#include "ui/patterns/pattern_geometry.h"

#include <QColor>

#include <optional>
#include <string>

class QPainter;

namespace busquill {

class CSignalList;

struct PatternStyle {
    TableFonts fonts;
    QColor background;
};

/// Everything that a pattern grid is drawn from.
struct PatternFrame {
    const CSignalList& list;
    PatternGeometry geometry;
    PatternStyle style;
    std::string heading;            // of the fixed column
    std::string rowFormat;          // with one %d for the row's number from 1
    std::optional<PatternCell> hot; // drawn sunken
};

/// Draws the header alone.
void DrawPatternHeader(QPainter& painter, const PatternFrame& frame);
/// Draws background, header and the rows that show.
void DrawPatterns(QPainter& painter, const PatternFrame& frame);

} // namespace busquill
