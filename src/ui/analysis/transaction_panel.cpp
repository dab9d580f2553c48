#include "ui/analysis/transaction_panel.h"

#include "analysis/bus_traffic.h"
#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "signals/value_text.h"
#include "ui/display/trace_view.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMdiArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

/// Selected rows that are found again among other rows.
constexpr int mostKeptRows = 1000;

/// A text as long as most in a column.
QString SampleText(TransactionField field) {
    switch (field) {
    case TransactionField::Command:
        return "Mem Rd Multiple ";
    case TransactionField::Address:
        return "00000000FEBF0380";
    case TransactionField::End:
        return "disconnect-without-data";
    case TransactionField::Data:
        return "00000000 00000000 00000000 00000000 ...";
    case TransactionField::Bytes:
    case TransactionField::Wait:
    case TransactionField::Words:
    case TransactionField::Tag:
        return "00000";
    default:
        return "-0000000";
    }
}

CTraceView* ViewOf(const CMDIChildWnd* frame) {
    return frame == nullptr ? nullptr : dynamic_cast<CTraceView*>(frame->GetActiveView());
}

} // namespace

TransactionPanel::TransactionPanel(Analyzer& analyzer, const QMdiArea& area)
    : analyzer_(analyzer), area_(area), stack_(new QStackedWidget), table_(new QTableView),
      reason_(new QLabel), summary_(new QLabel) {
    SetHelpPage(*this, "transactions.md#in-the-windows");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(stack_, 1);
    layout->addWidget(summary_);
    stack_->addWidget(table_);
    stack_->addWidget(reason_);
    reason_->setAlignment(Qt::AlignCenter);
    reason_->setWordWrap(true);
    summary_->setObjectName("TransactionSummary");
    reason_->setObjectName("TransactionReason");
    summary_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    summary_->setContentsMargins(4, 0, 4, 2);
    MakeTable();
    ShowState();
}

TransactionPanel::~TransactionPanel() = default;

void TransactionPanel::MakeTable() {
    table_->setObjectName("TransactionTable");
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setWordWrap(false);
    table_->setTabKeyNavigation(false);
    table_->setShowGrid(false);
    table_->setAlternatingRowColors(true);
    table_->installEventFilter(this);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setMinimumSectionSize(1);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 4);
    table_->horizontalHeader()->setHighlightSections(false);
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->horizontalHeader()->setSectionsMovable(true);
    connect(table_, &QTableView::clicked, this, &TransactionPanel::RowChosen);
    connect(table_, &QTableView::activated, this, &TransactionPanel::RowChosen);
}

TransactionModel* TransactionPanel::Model() const {
    const auto found = captures_.find(document_);
    return found == captures_.end() ? nullptr : found->second.model.get();
}

void TransactionPanel::TakeKeyboard() {
    table_->setFocus();
}

// Which capture is shown.

void TransactionPanel::Follow(CMDIChildWnd* active) {
    if (!isVisible()) {
        return;
    }
    const CTraceView* view = ViewOf(active);
    CTesselDoc* const document = view == nullptr ? nullptr : &view->Trace();
    const BoardTraits board = analyzer_.Link().Traits();
    const TransactionModel* const model = Model();
    const bool isOtherBus = model != nullptr && (model->Board().modelString != board.modelString ||
                                                 model->Board().bus.busMode != board.bus.busMode ||
                                                 model->Board().bus.busWidth != board.bus.busWidth);
    if (isOtherBus) {
        Show(nullptr);
        captures_.clear();
    }
    if (document != document_) {
        Show(document);
    }
}

void TransactionPanel::Show(CTesselDoc* document) {
    if (TransactionModel* old = Model()) {
        RememberPlace();
        old->SetActive(false);
    }
    document_ = document;
    if (document != nullptr && Model() == nullptr) {
        Capture& added = captures_[document];
        added.model = std::make_unique<TransactionModel>(*document, analyzer_.Link().Traits(),
                                                         analyzer_.Tables());
        TransactionModel* const model = added.model.get();
        connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this, model] {
            if (model == Model()) {
                RememberPlace();
            }
        });
        connect(model, &QAbstractItemModel::modelReset, this, [this, model] {
            if (model == Model()) {
                RestorePlace();
            }
        });
        connect(model, &TransactionModel::Worked, this, &TransactionPanel::ShowState);
        Listen(*document);
    }
    const QItemSelectionModel* const oldSelection = table_->selectionModel();
    table_->setModel(Model());
    delete oldSelection;
    if (TransactionModel* model = Model()) {
        connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                &TransactionPanel::RowChosen);
        ShowColumns();
        RestorePlace();
        model->SetActive(isVisible());
    }
    ShowState();
}

/// The views of a document leave it before it is destroyed. One of them tells of its changes.
void TransactionPanel::Listen(CTesselDoc& document) {
    for (DocumentView* each : document.Views()) {
        if (auto* view = dynamic_cast<CTraceView*>(each)) {
            captures_.at(&document).source = view;
            connect(view, &CTraceView::Updated, this,
                    [this, &document](int hint) { DocumentUpdated(document, hint); });
            connect(view, &QObject::destroyed, this, [this, &document] { SourceGone(document); });
            return;
        }
    }
    if (document_ == &document) {
        Show(nullptr);
    }
    captures_.erase(&document);
}

void TransactionPanel::SourceGone(CTesselDoc& document) {
    if (captures_.contains(&document)) {
        Listen(document);
    }
}

void TransactionPanel::DocumentUpdated(CTesselDoc& document, int hint) {
    const auto found = captures_.find(&document);
    if (found == captures_.end()) {
        return;
    }
    found->second.model->DocumentChanged(hint);
    if (hint == HintMarker1 && &document == document_ && isVisible()) {
        ShowMarker();
    }
}

void TransactionPanel::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    Follow(dynamic_cast<CMDIChildWnd*>(area_.activeSubWindow()));
    if (TransactionModel* model = Model()) {
        model->SetActive(true);
    }
}

void TransactionPanel::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    if (TransactionModel* model = Model()) {
        model->SetActive(false);
    }
}

// What is shown.

void TransactionPanel::ShowColumns() {
    const TransactionModel& model = *Model();
    const QFontMetrics text = table_->fontMetrics();
    const QFontMetrics title = table_->horizontalHeader()->fontMetrics();
    constexpr int margin = 16;
    for (int column = 0; column < model.columnCount(); ++column) {
        const FieldColumn& shown = FieldColumns()[static_cast<std::size_t>(column)];
        table_->setColumnHidden(column, !model.HasColumn(column));
        table_->setColumnWidth(column, std::max(text.horizontalAdvance(SampleText(shown.field)),
                                                title.horizontalAdvance(shown.title)) +
                                           margin);
    }
}

QString TransactionPanel::WhyEmpty() const {
    const TransactionModel* const model = Model();
    if (model == nullptr) {
        return "The active window shows no capture.";
    }
    if (model->Traffic() == nullptr) {
        return "A connector has pins, and no transactions.";
    }
    if (document_->CaptureActive()) {
        return "The capture has not ended yet.";
    }
    if (document_->SampleCount(false) == 0) {
        return "There are no samples yet.";
    }
    if (model->IsWorking()) {
        return "Following the samples ...";
    }
    return model->TransactionCount() == 0 ? "No transaction is in the samples."
                                          : "The filter hides all transactions.";
}

void TransactionPanel::ShowState() {
    const TransactionModel* const model = Model();
    const bool hasRows = model != nullptr && model->rowCount() > 0;
    reason_->setText(hasRows ? QString() : WhyEmpty());
    stack_->setCurrentWidget(hasRows ? static_cast<QWidget*>(table_) : reason_);
    summary_->setText(hasRows ? QString("%1 transactions").arg(model->rowCount()) : QString());
}

void TransactionPanel::RememberPlace() {
    Capture& capture = captures_.at(document_);
    const TransactionModel& model = *capture.model;
    if (model.rowCount() == 0) {
        return; // the rows may come back
    }
    const auto sampleOf = [&](const QModelIndex& index) {
        return index.isValid() ? model.FirstSample(index.row()) : -1;
    };
    capture.current = sampleOf(table_->currentIndex());
    capture.top = sampleOf(table_->indexAt({0, 0}));
    capture.selected.clear();
    for (const QItemSelectionRange& range : table_->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            if (capture.selected.size() < mostKeptRows) {
                capture.selected.push_back(model.FirstSample(row));
            }
        }
    }
}

/// Rows are found again by their samples. The current row stays where it is in the window, else
/// the first one does.
void TransactionPanel::RestorePlace() {
    const Capture& capture = captures_.at(document_);
    const TransactionModel& model = *capture.model;
    if (model.rowCount() == 0) {
        return;
    }
    follows_ = true;
    const int current = model.RowOfSample(capture.current);
    if (current >= 0) {
        table_->selectionModel()->setCurrentIndex(model.index(current, 0),
                                                  QItemSelectionModel::NoUpdate);
    }
    QItemSelection selection;
    for (const std::int64_t sample : capture.selected) {
        const int row = model.RowOfSample(sample);
        if (row >= 0) {
            selection.select(model.index(row, 0), model.index(row, model.columnCount() - 1));
        }
    }
    table_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    follows_ = false;
    const int top = model.RowOfSample(capture.top);
    if (top >= 0) {
        table_->verticalScrollBar()->setValue(top);
    } else if (current >= 0) {
        table_->scrollTo(model.index(current, 0), QAbstractItemView::PositionAtCenter);
    }
}

// Rows and samples.

void TransactionPanel::RowChosen(const QModelIndex& index) {
    if (!follows_ && index.isValid()) {
        document_->GoToSample(Model()->FirstSample(index.row()), false);
    }
}

void TransactionPanel::SelectRow(int row) {
    follows_ = true;
    const QModelIndex index = Model()->index(row, 0);
    table_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                         QItemSelectionModel::Rows);
    table_->scrollTo(index);
    follows_ = false;
}

void TransactionPanel::ShowMarker() {
    const int row = Model()->RowOfSample(document_->Marker(1, false));
    if (row >= 0) {
        SelectRow(row);
    }
}

/// Home and End lead to the first and the last row, and Esc back to the capture.
bool TransactionPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || Model() == nullptr) {
        return Panel::eventFilter(watched, event);
    }
    const auto* const key = static_cast<QKeyEvent*>(event);
    const int rows = Model()->rowCount();
    switch (key->key()) {
    case Qt::Key_Home:
    case Qt::Key_End:
        if (rows > 0 && key->modifiers() == Qt::NoModifier) {
            table_->setCurrentIndex(Model()->index(key->key() == Qt::Key_Home ? 0 : rows - 1, 0));
            return true;
        }
        break;
    case Qt::Key_Escape:
        if (CTraceView* view = captures_.at(document_).source) {
            view->setFocus();
        }
        return true;
    default:
        break;
    }
    return Panel::eventFilter(watched, event);
}

} // namespace busquill
