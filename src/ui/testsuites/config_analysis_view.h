#pragma once

#include "testsuites/config_header.h"

#include <QScrollArea>

namespace busquill {

/// Pixels of the analysis.
struct AnalysisLayout {
    int pitch = 0;     // of lines
    int textLeft = 0;  // of the names of bits
    int valueLeft = 0; // of what they say
    int width = 0;
};

/// Draws the texts of an analysis on any painter, from the top down, without the boxes around them.
void DrawAnalysisTexts(QPainter& painter, const AnalysisLayout& layout,
                       const ConfigAnalysis& analysis);

/// A device in words: class, vendor and device, and each bit of its command and status.
class CConfigAnalysisView final : public QScrollArea {
    Q_OBJECT
public:
    /// The device outlives the view.
    CConfigAnalysisView(const CConfigSpaceData& device, QWidget* parent);

    /// Shows the device as it is now.
    void Refresh();
    /// The width of the form in which the view lies. The text takes half of it, or what is visible
    /// if that is less.
    void SetFormWidth(int width);

private:
    class Text;

    Text* text_;
    int formWidth_ = 0;
};

} // namespace busquill
