#include "ui/testsuites/result_list.h"

#include "testsuites/report_pages.h"
#include "ui/framework/painting.h"

#include <QPainter>
#include <QStyledItemDelegate>

namespace busquill {

namespace {

constexpr int fontHeight = 14;
constexpr int highestRow = 255;
constexpr float selectionOpacity = 0.25F;
constexpr const char* idColumn = "MMMMM";
constexpr const char* resultColumn = "MMMMMMMMMM";

} // namespace

class CResultList::Painter final : public QStyledItemDelegate {
public:
    explicit Painter(CResultList& list) : QStyledItemDelegate(&list), list_(list) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& index) const override {
        const QFontMetrics metrics(list_.font());
        const int lines = static_cast<int>(TitleOf(list_.Test(index.row()), metrics).size());
        return {0, std::min(lines * metrics.height(), highestRow)};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const CTestResult& test = list_.Test(index.row());
        const QFontMetrics metrics(list_.font());
        const QPalette& palette = option.palette;
        painter->fillRect(option.rect, palette.brush(QPalette::Base));
        if ((option.state & QStyle::State_Selected) != 0) {
            QColor faint = palette.color(QPalette::Highlight); // a failure's red stays readable
            faint.setAlphaF(selectionOpacity);
            painter->fillRect(option.rect, faint);
        }
        painter->setFont(list_.font());
        painter->setPen(palette.color(QPalette::Text));
        const QRect id(option.rect.left(), option.rect.top(), metrics.horizontalAdvance(idColumn),
                       metrics.height());
        painter->drawText(id.adjusted(2, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                          QString::fromStdString(TestLabel(test)));
        const int titleWidth = TitleWidth(metrics);
        int y = option.rect.top();
        for (const QString& line : FittingLines(test, metrics, option.rect.height())) {
            painter->drawText(id.right() + 1, y, titleWidth, metrics.height(),
                              Qt::AlignLeft | Qt::AlignVCenter, line);
            y += metrics.height();
        }
        if (test.result == TestOutcome::Failed) {
            painter->setPen(QColor(0xFF, 0, 0));
        }
        painter->drawText(
            QRect(option.rect.right() + 1 - metrics.horizontalAdvance(resultColumn),
                  option.rect.top(), metrics.horizontalAdvance(resultColumn), metrics.height()),
            Qt::AlignRight | Qt::AlignVCenter, QString::fromStdString(TestResultText(test)));
    }

private:
    [[nodiscard]] int TitleWidth(const QFontMetrics& metrics) const {
        return list_.viewport()->width() - metrics.horizontalAdvance(idColumn) -
               metrics.horizontalAdvance(resultColumn);
    }
    [[nodiscard]] std::vector<std::string> TitleOf(const CTestResult& test,
                                                   const QFontMetrics& metrics) const {
        // One more line than the highest row has, so that it is known to be cut.
        const auto most = static_cast<std::size_t>(highestRow / metrics.height()) + 1;
        return WrapWords(test.name, TitleWidth(metrics), most, [&metrics](std::string_view text) {
            return metrics.horizontalAdvance(
                QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        });
    }
    /// The lines of the title for which there is room; the last one ends in an ellipsis if there
    /// are more.
    [[nodiscard]] std::vector<QString> FittingLines(const CTestResult& test,
                                                    const QFontMetrics& metrics, int height) const {
        const std::vector<std::string> title = TitleOf(test, metrics);
        const auto room = static_cast<std::size_t>(std::max(1, height / metrics.height()));
        std::vector<QString> lines;
        for (std::size_t i = 0; i < std::min(room, title.size()); ++i) {
            lines.push_back(QString::fromStdString(title[i]));
        }
        if (title.size() > room) {
            lines.back() = metrics.elidedText(lines.back() + QString(QChar(0x2026)), Qt::ElideRight,
                                              TitleWidth(metrics));
        }
        return lines;
    }

    const CResultList& list_;
};

CResultList::CResultList(QWidget* parent) : QListWidget(parent) {
    setFont(FontOfCellHeight(fontHeight, QFont::Normal, FontFace::Proportional));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new Painter(*this));
}

void CResultList::Clear() {
    clear();
    tests_.clear();
}

void CResultList::Append(const CTestResult& test) {
    tests_.push_back(test);
    // The text is for those who cannot see the row.
    addItem(QString::fromStdString(TestLabel(test) + " " + test.name + " " + TestResultText(test))
                .trimmed());
    setCurrentRow(count() - 1);
    scrollToItem(currentItem());
}

void CResultList::ReplaceLast(const CTestResult& test) {
    if (tests_.empty()) {
        return;
    }
    delete takeItem(count() - 1);
    tests_.pop_back();
    Append(test);
}

void CResultList::resizeEvent(QResizeEvent* event) {
    QListWidget::resizeEvent(event);
    scheduleDelayedItemsLayout(); // the titles wrap elsewhere
}

} // namespace busquill
