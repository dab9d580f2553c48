#include "ui/performance/performance_view.h"

#include "link/analyzer_link.h"
#include "performance/performance_document.h"
#include "platform/periodic_timer.h"
#include "platform/prompts.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/mdi_child.h"
#include "ui/performance/graph_painter.h"
#include "ui/performance/min_max_average_graph.h"
#include "ui/performance/time_graph.h"

#include <QLabel>
#include <QPainter>
#include <QPen>

namespace busquill {

namespace {

constexpr int rowsInColumn = 4;
constexpr int rowPitch = 23;
constexpr int firstRowTop = 5;
constexpr int rowHeight = 20;
constexpr std::array columnLeft{50, 410};
constexpr int labelWidth = 200;
constexpr int valueGap = 3;
constexpr int valueWidth = 50;
// The letter and the line by which the graphs show a row stand to the left of it.
constexpr int letterWidth = 12;
constexpr int sampleWidth = 24;
constexpr int graphTop = 120;
constexpr int graphBottom = 40; // from the bottom of the view
constexpr int graphMargin = 10;
constexpr int graphGap = 15; // on each side of the centre

QRect RowPlace(std::size_t row) {
    return {columnLeft[row / rowsInColumn],
            rowPitch * static_cast<int>(row % rowsInColumn) + firstRowTop, labelWidth, rowHeight};
}

} // namespace

CPerformanceView::CPerformanceView(Parts parts, ValueDisplay display)
    : CFormView(parts.settings), document_(parts.document), link_(parts.link),
      prompts_(parts.prompts), display_(display),
      timeGraph_(new CTimeGraph(this, parts.mainThread, parts.document.Results())),
      rangeGraph_(new CMinMaxAverageGraph(this)),
      run_({parts.link, parts.prompts, parts.document.Results(), std::move(parts.timer)}, *this) {
    for (std::size_t row = 0; row < performanceItems; ++row) {
        labels_[row] = new QLabel(this);
        values_[row] = new QLabel(this);
        for (QLabel* field : {labels_[row], values_[row]}) {
            field->setFrameStyle(QFrame::Panel | QFrame::Sunken);
            field->setTextFormat(Qt::PlainText);
            const QRect place = RowPlace(row);
            field->setGeometry(field == labels_[row] ? place
                                                     : QRect(place.left() + labelWidth + valueGap,
                                                             place.top(), valueWidth, rowHeight));
        }
        const QChar letter('A' + static_cast<char>(row));
        labels_[row]->setObjectName(QString("Label ") + letter);
        values_[row]->setObjectName(QString("Value ") + letter);
        values_[row]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    AddButton("&Load", Form::SlotLeft(0), [this] { Load(); });
    AddButton("&Save", Form::SlotLeft(1), [this] { Save(); });
    AddButton("&Help", Form::SlotLeft(5), std::move(parts.showHelp));
    AddButton("&Close", Form::SlotLeft(6), [this] { CMDIChildWnd::FrameOf(*this)->close(); });
    connect(timeGraph_, &CTimeGraph::ResultCountChanged, this,
            &CPerformanceView::ResultCountChanged);
}

CPerformanceView::~CPerformanceView() {
    blockSignals(true); // the frame is being destroyed too
    run_.Stop();
}

void CPerformanceView::Go() {
    run_.Go(document_.Setup());
}

void CPerformanceView::Stop() {
    run_.Stop();
}

void CPerformanceView::SetValueDisplay(ValueDisplay display) {
    display_ = display;
    ShowValues();
}

void CPerformanceView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) {
    ShowRowTexts();
    if (hint == CDocument::hintLoaded) {
        emit TypeShown(document_.Setup().type);
        SetUpGraphs();
        rangeGraph_->AddAll(document_.Results());
    }
    update();
}

void CPerformanceView::OnResultsCleared() {
    SetUpGraphs();
}

void CPerformanceView::OnRunning(bool running) {
    emit RunningChanged(running);
}

/// Several readings before the next turn of the event loop are shown once.
void CPerformanceView::OnReading(const PerformanceResults& results) {
    rangeGraph_->AddResults(results);
    statistics_.Add(results);
    if (!valuesOutdated_.exchange(true)) {
        QMetaObject::invokeMethod(this, &CPerformanceView::ShowValues, Qt::QueuedConnection);
    }
}

void CPerformanceView::ShowRowTexts() {
    const BoardTraits board = link_.Traits();
    for (std::size_t row = 0; row < labels_.size(); ++row) {
        labels_[row]->setText(
            QString::fromStdString(PerformanceRowText(document_.Setup(), row, board)));
    }
}

void CPerformanceView::SetUpGraphs() {
    timeGraph_->SetUp(document_.Setup());
    rangeGraph_->SetUp(document_.Setup());
    statistics_.Clear(document_.Setup());
    ShowValues();
}

void CPerformanceView::ShowValues() {
    valuesOutdated_ = false;
    for (std::size_t row = 0; row < values_.size(); ++row) {
        const auto value = statistics_.Shown(row, display_);
        values_[row]->setText(value ? QString::number(*value) : QString());
    }
}

void CPerformanceView::Load() {
    Stop();
    const std::string path = AskForFile(
        this, QuestionFor(FileUse::Open, "Performance", ".per", document_.GetPathName()), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnOpenDocument(path)); // reports its failure, updates the views
    }
}

void CPerformanceView::Save() {
    const std::string path = AskForFile(
        this, QuestionFor(FileUse::Save, "Performance", ".per", document_.GetPathName()), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnSaveDocument(path)); // reports its failure
    }
}

void CPerformanceView::LayOut() {
    const int bottom = height() - graphBottom;
    const int center = width() / 2;
    timeGraph_->setGeometry(
        QRect(QPoint(graphMargin, graphTop), QPoint(center - graphGap - 1, bottom - 1)));
    rangeGraph_->setGeometry(
        QRect(QPoint(center + graphGap, graphTop), QPoint(width() - graphMargin - 1, bottom - 1)));
}

/// The letter of each row that is on, and the line that stands for it in the graphs, on their
/// ground.
void CPerformanceView::paintEvent(QPaintEvent* event) {
    CFormView::paintEvent(event);
    QPainter painter(this);
    for (std::size_t row = 0; row < performanceItems; ++row) {
        const PerformanceItem& item = document_.Setup().items[row];
        if (item.item == 0) {
            continue;
        }
        const QRect label = RowPlace(row);
        const QRect letter(label.left() - letterWidth - 4, label.top(), letterWidth, rowHeight);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(letter, Qt::AlignCenter, QChar('A' + static_cast<char>(row)));
        const QRect sample(letter.left() - 2 - sampleWidth, label.top(), sampleWidth, rowHeight);
        painter.fillRect(sample, ScreenGraphStyle().background);
        painter.setPen(GraphPen(item.color, item.style, 2));
        const int y = label.center().y();
        painter.drawLine(sample.left(), y, sample.right(), y);
    }
}

} // namespace busquill
