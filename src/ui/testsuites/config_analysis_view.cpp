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

} // namespace

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
        const ConfigAnalysis analysis = AnalyzeHeader(device_);
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::WindowText));
        int line = 0;
        for (const std::string& text : analysis.head) {
            DrawLine(painter, line++, 0, QString::fromStdString(text));
        }
        DrawBox(painter, line + gap, "Command", analysis.command);
        DrawBox(painter, line + gap + boxLines + gap, "Status", analysis.status);
    }

private:
    [[nodiscard]] int Pitch() const { return fontMetrics().height(); }
    [[nodiscard]] int Characters(int count) const {
        return count * fontMetrics().averageCharWidth();
    }
    void DrawLine(QPainter& painter, int line, int left, const QString& text) const {
        painter.drawText(left, line * Pitch(), width() - left, Pitch(),
                         Qt::AlignLeft | Qt::AlignVCenter, text);
    }
    void DrawBox(QPainter& painter, int firstLine, const char* title,
                 const std::vector<AnalysisLine>& lines) const {
        QStyleOptionGroupBox option;
        option.initFrom(this);
        option.rect = QRect(2, firstLine * Pitch(), NeededWidth() - 4, boxLines * Pitch() + 4);
        option.text = title;
        option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
        option.textAlignment = Qt::AlignLeft;
        style()->drawComplexControl(QStyle::CC_GroupBox, &option, &painter, this);
        int line = firstLine;
        for (const AnalysisLine& each : lines) {
            ++line;
            DrawLine(painter, line, Characters(leftAt), TextOf(each.text));
            DrawLine(painter, line, Characters(valueAt), QString::fromStdString(each.value));
        }
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
