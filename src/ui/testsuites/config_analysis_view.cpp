#include "ui/testsuites/config_analysis_view.h"

#include "ui/framework/display_colors.h"
#include "ui/framework/painting.h"

#include <QPainter>

namespace busquill {

namespace {

constexpr int textHeight = 1000;
constexpr int gap = 2;         // lines before a box
constexpr int boxLines = 11;   // of a box: its label, and a line for each bit
constexpr int valueAt = 20;    // characters from the left
constexpr int leftAt = 1;      // the same for the names of bits
constexpr int valueWidth = 14; // characters, with a margin

/// The lines at which the boxes begin.
constexpr int commandBox = 3 + gap;
constexpr int statusBox = commandBox + boxLines + gap;

void DrawLine(QPainter& painter, const AnalysisLayout& layout, int line, int left,
              const QString& text) {
    painter.drawText(left, line * layout.pitch, layout.width - left, layout.pitch,
                     Qt::AlignLeft | Qt::AlignVCenter, text);
}

void DrawBits(QPainter& painter, const AnalysisLayout& layout, int box,
              const std::vector<AnalysisLine>& lines) {
    for (const AnalysisLine& each : lines) {
        ++box;
        DrawLine(painter, layout, box, layout.textLeft, QString::fromUtf8(each.text));
        DrawLine(painter, layout, box, layout.valueLeft, QString::fromStdString(each.value));
    }
}

} // namespace

void DrawAnalysisTexts(QPainter& painter, const AnalysisLayout& layout,
                       const ConfigAnalysis& analysis) {
    int line = 0;
    for (const std::string& text : analysis.head) {
        DrawLine(painter, layout, line++, 0, QString::fromStdString(text));
    }
    DrawBits(painter, layout, commandBox, analysis.command);
    DrawBits(painter, layout, statusBox, analysis.status);
}

class CConfigAnalysisView::Text final : public QWidget {
public:
    explicit Text(const CConfigSpaceData& device) : device_(device) {}

    /// The widest line.
    [[nodiscard]] int NeededWidth() const {
        int needed = ValueLeft() + Characters(valueWidth);
        for (const std::string& line : AnalyzeHeader(device_).head) {
            needed =
                std::max(needed, fontMetrics().horizontalAdvance(QString::fromStdString(line)) + 4);
        }
        return needed;
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        KeepUsualText(*this);
        QPainter painter(this);
        DrawBox(painter, commandBox, "Command");
        DrawBox(painter, statusBox, "Status");
        painter.setPen(palette().color(QPalette::WindowText));
        DrawAnalysisTexts(painter, {Pitch(), Characters(leftAt), ValueLeft(), width()},
                          AnalyzeHeader(device_));
    }

private:
    [[nodiscard]] int Pitch() const { return fontMetrics().height(); }
    [[nodiscard]] int Characters(int count) const {
        return count * fontMetrics().averageCharWidth();
    }
    /// Right of the names of all bits.
    [[nodiscard]] int ValueLeft() const {
        int left = Characters(valueAt);
        const ConfigAnalysis analysis = AnalyzeHeader(device_);
        for (const AnalysisLine& line : analysis.status) {
            left = std::max(left, Characters(leftAt + 1) + fontMetrics().horizontalAdvance(
                                                               QString::fromUtf8(line.text)));
        }
        return left;
    }
    /// The frame lies a little outside its lines, and starts below its label.
    void DrawBox(QPainter& painter, int line, const char* title) const {
        constexpr int space = 4;
        DrawGroupBox(painter, *this,
                     {2, line * Pitch() - space, NeededWidth() - 4, boxLines * Pitch() + 2 * space},
                     title);
    }

    const CConfigSpaceData& device_;
};

CConfigAnalysisView::CConfigAnalysisView(const CConfigSpaceData& device, QWidget* parent)
    : QScrollArea(parent), text_(new Text(device)) {
    setWidget(text_);
    Refresh();
}

void CConfigAnalysisView::Refresh() {
    const int room = std::min(formWidth_ / 2, viewport()->width());
    text_->resize(std::max(room, text_->NeededWidth()), textHeight);
    text_->update();
}

void CConfigAnalysisView::SetFormWidth(int width) {
    formWidth_ = width;
    Refresh();
}

} // namespace busquill
