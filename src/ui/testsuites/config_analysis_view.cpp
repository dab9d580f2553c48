#include "ui/testsuites/config_analysis_view.h"

#include "ui/framework/painting.h"

#include <QPainter>
#include <QStyleOptionGroupBox>

namespace busquill {

namespace {

constexpr int textHeight = 1000;
constexpr int gap = 2;       // lines before a box
constexpr int boxLines = 11; // of a box: its label, and a line for each bit
constexpr int valueAt = 20;  // characters from the left
constexpr int leftAt = 1;    // the same for the names of bits
constexpr int valueWidth = 10;

QString TextOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

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
        DrawLine(painter, layout, box, leftAt * layout.character, TextOf(each.text));
        DrawLine(painter, layout, box, valueAt * layout.character,
                 QString::fromStdString(each.value));
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
        int needed = Characters(valueAt + valueWidth);
        for (const std::string& line : AnalyzeHeader(device_).head) {
            needed =
                std::max(needed, fontMetrics().horizontalAdvance(QString::fromStdString(line)) + 4);
        }
        return needed;
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        DrawBox(painter, commandBox, "Command");
        DrawBox(painter, statusBox, "Status");
        painter.setPen(palette().color(QPalette::WindowText));
        DrawAnalysisTexts(painter, {Pitch(), fontMetrics().averageCharWidth(), width()},
                          AnalyzeHeader(device_));
    }

private:
    [[nodiscard]] int Pitch() const { return fontMetrics().height(); }
    [[nodiscard]] int Characters(int count) const {
        return count * fontMetrics().averageCharWidth();
    }
    void DrawBox(QPainter& painter, int line, const char* title) const {
        QStyleOptionGroupBox option;
        option.initFrom(this);
        option.rect = QRect(2, line * Pitch(), NeededWidth() - 4, boxLines * Pitch() + 4);
        option.text = title;
        option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
        option.textAlignment = Qt::AlignLeft;
        style()->drawComplexControl(QStyle::CC_GroupBox, &option, &painter, this);
    }

    const CConfigSpaceData& device_;
};

CConfigAnalysisView::CConfigAnalysisView(const CConfigSpaceData& device, QWidget* parent)
    : QScrollArea(parent), text_(new Text(device)) {
    setWidget(text_);
    Refresh();
}

void CConfigAnalysisView::Refresh() {
    text_->resize(std::max(formWidth_ / 2, text_->NeededWidth()), textHeight);
    text_->update();
}

void CConfigAnalysisView::SetFormWidth(int width) {
    formWidth_ = width;
    Refresh();
}

} // namespace busquill
