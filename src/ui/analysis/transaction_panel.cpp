#include "ui/analysis/transaction_panel.h"

#include "analysis/bus_traffic.h"
#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "platform/prompts.h"
#include "platform/settings.h"
#include "platform/text.h"
#include "signals/value_text.h"
#include "ui/analysis/expression_line.h"
#include "ui/analysis/kept_button.h"
#include "ui/analysis/panel_table.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>
#include <variant>

namespace busquill {

namespace {

/// Selected rows that are found again among other rows.
constexpr std::size_t mostKeptRows = 1000;

/// The section of the settings.
constexpr const char* transactionSettings = "Transactions";
constexpr const char* columnsKey = "Columns";
constexpr const char* hiddenKey = "HiddenColumns";

/// A text as long as most in a column.
QString SampleText(TransactionField field, bool hasClock) {
    switch (field) {
    case TransactionField::Command:
        return hasClock ? "DAC-Mem Wr & Inv" : "A32 NON PRVL DATA Wr";
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

int ColumnOf(TransactionField field) {
    const auto columns = FieldColumns();
    const auto found = std::ranges::find(columns, field, &FieldColumn::field);
    return static_cast<int>(found - columns.begin());
}

/// What the rows add up to; empty without transactions.
QString Summary(const TransactionModel& model) {
    const TransactionTotals* const totals = model.Totals();
    if (totals == nullptr || model.TransactionCount() == 0) {
        return {};
    }
    std::uint64_t bytes = 0;
    TimeSpread latency;
    for (const TransactionTotals::OfCommand& command : totals->Commands(*model.Traffic())) {
        bytes += command.bytes;
        latency.Add(command.latency);
    }
    QString text = Grouped(totals->Transactions());
    if (totals->Transactions() != model.TransactionCount()) {
        text += " of " + Grouped(model.TransactionCount());
    }
    const bool isOne = totals->Transactions() == 1 && model.TransactionCount() == 1;
    text += (isOne ? " transaction, " : " transactions, ") + Grouped(bytes) + " bytes";
    if (latency.count > 0) {
        text += ", mean latency " + QString::fromStdString(FormatTime(latency.Mean(), false));
    }
    const char* before = "; ";
    for (std::size_t i = 0; i < transactionEndCount; ++i) {
        const auto end = static_cast<TransactionEnd>(i);
        if (totals->EndsBy(end) != 0) {
            text += before + QString::fromStdString(std::string(NameOf(end))) + ' ' +
                    Grouped(totals->EndsBy(end));
            before = ", ";
        }
    }
    return text;
}

} // namespace

TransactionPanel::TransactionPanel(const FeatureParts& parts)
    : parts_(parts), stack_(new QStackedWidget), table_(new PanelTable("TransactionTable")),
      reason_(new QLabel), summary_(new QLabel) {
    SetHelpPage(*this, "transactions.md#in-the-windows");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    MakeFilter(*layout);
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
    MakeCommands();
    ShowState();
}

TransactionPanel::~TransactionPanel() = default;

void TransactionPanel::MakeTable() {
    table_->installEventFilter(this);
    table_->horizontalHeader()->setSectionsMovable(true);
    QHeaderView* const header = table_->horizontalHeader();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicatorClearable(true);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QHeaderView::sortIndicatorChanged, this, &TransactionPanel::SortBy);
    connect(header, &QHeaderView::customContextMenuRequested, this,
            [this, header](const QPoint& place) { ChooseColumns(header->mapToGlobal(place)); });
    connect(table_, &QTableView::clicked, this, &TransactionPanel::RowChosen);
    connect(table_, &QTableView::activated, this, &TransactionPanel::RowChosen);
}

void TransactionPanel::MakeFilter(QVBoxLayout& layout) {
    auto* explanation = new QLabel;
    explanation->setObjectName("FilterMistake");
    explanation->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    filter_ = new ExpressionLine(parts_.settings, transactionSettings, *explanation);
    filter_->setObjectName("TransactionFilter");
    filter_->lineEdit()->setPlaceholderText("such as: wait > 4 and end == retry");
    filter_->setToolTip("Show only transactions for which this holds");
    filter_->SetLanguage(
        {[this](std::string_view text,
                const KeptExpressions& kept) -> std::optional<ExpressionError> {
             const auto parsed = TransactionCondition::Parse(text, FilterBus(kept));
             const auto* const mistake = std::get_if<ExpressionError>(&parsed);
             return mistake == nullptr ? std::nullopt : std::optional(*mistake);
         },
         [this](std::string_view text, std::size_t cursor, const KeptExpressions& kept) {
             return TransactionCondition::Complete(text, cursor, FilterBus(kept));
         }});
    filter_->installEventFilter(this);
    auto* label = new QLabel("Filter:");
    label->setBuddy(filter_);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(4, 2, 4, 0);
    line->addWidget(label);
    line->addWidget(filter_, 1);
    line->addWidget(new KeptButton(*filter_, parts_.prompts));
    line->addWidget(explanation, 1);
    layout.addLayout(line);
    connect(filter_, &ExpressionLine::Changed, this, &TransactionPanel::ApplyFilter);
}

void TransactionPanel::MakeCommands() {
    commands.On(
        CommandId::Copy, [this] { CopyRows(); },
        [this] { return Model() != nullptr && table_->selectionModel()->hasSelection(); });
    commands.On(
        CommandId::SignalMenu,
        [this] {
            const QHeaderView& header = *table_->horizontalHeader();
            ChooseColumns(header.mapToGlobal(QPoint(0, header.height())));
        },
        [this] { return Model() != nullptr; });
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
    const BoardTraits board = parts_.analyzer.Link().Traits();
    if (!IsSameBus(board, board_)) {
        board_ = board;
        ForgetRows();
    }
    if (document != document_) {
        Show(document);
    }
}

void TransactionPanel::Show(CTesselDoc* document) {
    if (TransactionModel* old = Model()) {
        document_->MarkSamples(std::nullopt);
        RememberPlace();
        StoreColumns();
        captures_.at(document_).typed = filter_->currentText();
        old->SetActive(false);
    }
    document_ = document;
    if (document != nullptr && Model() == nullptr) {
        MakeModel(*document);
    }
    const QItemSelectionModel* const oldSelection = table_->selectionModel();
    table_->setModel(Model());
    delete oldSelection;
    if (TransactionModel* model = Model()) {
        connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                &TransactionPanel::RowChosen);
        ShowColumns();
        const Capture& capture = captures_.at(document);
        filter_->Show(capture.filter, capture.typed);
        RestorePlace();
        model->SetActive(isVisible());
    } else {
        filter_->Show({}, {});
    }
    ShowState();
}

void TransactionPanel::MakeModel(CTesselDoc& document) {
    Capture& capture = captures_[&document];
    capture.model = std::make_unique<TransactionModel>(document, board_, parts_.analyzer.Tables());
    TransactionModel* const model = capture.model.get();
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this, model] {
        if (model == Model()) {
            RememberPlace();
        }
    });
    connect(model, &TransactionModel::Renewed, this, [this, model] {
        if (model == Model()) {
            RestorePlace();
            MarkRow(table_->currentIndex()); // the row may have gone
        }
    });
    connect(model, &TransactionModel::Worked, this, &TransactionPanel::ShowState);
    Listen(document);
}

/// On another bus the same samples are other transactions. The text of a filter stays: it is
/// applied to them, unless it names something that this bus does not have.
void TransactionPanel::ForgetRows() {
    Show(nullptr);
    for (auto& [document, capture] : captures_) {
        capture.model.reset();
        capture.filter.clear();
    }
}

TransactionBus TransactionPanel::FilterBus(const KeptExpressions& kept) const {
    const BusTraffic* const traffic = Model() == nullptr ? nullptr : Model()->Traffic();
    TransactionBus bus = traffic == nullptr
                             ? TransactionBus{.tables = &parts_.analyzer.Tables()}
                             : TransactionBus::Of(*traffic, parts_.analyzer.Tables());
    bus.kept = &kept;
    return bus;
}

/// Nothing that could have the keyboard is hidden or disabled before the next event: the keyboard
/// would go to another window, perhaps to the one that is being destroyed.
void TransactionPanel::Detach() {
    StoreColumns();
    document_ = nullptr;
    const QItemSelectionModel* const selection = table_->selectionModel();
    table_->setModel(nullptr);
    delete selection;
    QMetaObject::invokeMethod(this, &TransactionPanel::ShowState, Qt::QueuedConnection);
}

/// The views of a document leave it before it is destroyed. One of them tells of its changes.
void TransactionPanel::Listen(CTesselDoc& document) {
    for (DocumentView* each : document.Views()) {
        if (auto* view = dynamic_cast<CTraceView*>(each)) {
            captures_.at(&document).source = view;
            view->disconnect(this);
            connect(view, &CTraceView::Updated, this,
                    [this, &document](int hint) { DocumentUpdated(document, hint); });
            connect(view, &QObject::destroyed, this, [this, &document] { SourceGone(document); });
            return;
        }
    }
    if (document_ == &document) {
        Detach();
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
    if (found == captures_.end() || found->second.model == nullptr) {
        return;
    }
    found->second.model->DocumentChanged(hint);
    if (hint == HintMarker1 && &document == document_ && isVisible()) {
        ShowMarker();
    }
}

void TransactionPanel::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    Follow(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    if (TransactionModel* model = Model()) {
        model->SetActive(true);
        MarkRow(table_->currentIndex());
    }
}

void TransactionPanel::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    if (TransactionModel* model = Model()) {
        StoreColumns();
        model->SetActive(false);
        MarkRow({});
    }
    busy_.reset();
}

// What is shown.

void TransactionPanel::ShowColumns() {
    const TransactionModel& model = *Model();
    QHeaderView& header = *table_->horizontalHeader();
    const QSignalBlocker quiet(header);
    const std::string stored =
        parts_.settings.GetProfileString(transactionSettings, columnsKey, "");
    const bool isRestored =
        header.restoreState(QByteArray::fromBase64(QByteArray::fromStdString(stored)));
    const QStringList hidden = HiddenColumns();
    for (int column = 0; column < model.columnCount(); ++column) {
        const char* const title = FieldColumns()[static_cast<std::size_t>(column)].title;
        table_->setColumnHidden(column, !model.HasColumn(column) || hidden.contains(title));
        if (!isRestored) {
            table_->setColumnWidth(column, UsualWidth(column));
        }
    }
    const TransactionQuery& query = model.Query();
    const bool isInOrder = query.sortBy == TransactionField::Number && !query.descending;
    header.setSortIndicator(isInOrder ? -1 : ColumnOf(query.sortBy),
                            query.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

int TransactionPanel::UsualWidth(int column) const {
    constexpr int margin = 10;
    const int arrow = table_->style()->pixelMetric(QStyle::PM_HeaderMarkSize);
    const FieldColumn& shown = FieldColumns()[static_cast<std::size_t>(column)];
    const QFontMetrics text(shown.field == TransactionField::Address
                                ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                : table_->font());
    return margin +
           std::max(
               text.horizontalAdvance(SampleText(shown.field, Model()->Traffic() == nullptr ||
                                                                  Model()->Traffic()->HasClock())),
               arrow + table_->horizontalHeader()->fontMetrics().horizontalAdvance(shown.title));
}

QStringList TransactionPanel::HiddenColumns() const {
    const std::string stored = parts_.settings.GetProfileString(transactionSettings, hiddenKey, "");
    return QString::fromStdString(stored).split(',', Qt::SkipEmptyParts);
}

void TransactionPanel::StoreColumns() {
    parts_.settings.WriteProfileString(
        transactionSettings, columnsKey,
        table_->horizontalHeader()->saveState().toBase64().toStdString());
}

void TransactionPanel::ChooseColumns(const QPoint& place) {
    if (Model() == nullptr) {
        return;
    }
    QMenu menu(this);
    for (int column = 0; column < Model()->columnCount(); ++column) {
        if (!Model()->HasColumn(column)) {
            continue;
        }
        const QString title = FieldColumns()[static_cast<std::size_t>(column)].title;
        QAction* const action = menu.addAction(title);
        action->setCheckable(true);
        action->setChecked(!table_->isColumnHidden(column));
        connect(action, &QAction::toggled, this,
                [this, column, title](bool isShown) { ShowColumn(column, title, isShown); });
    }
    menu.exec(place);
}

void TransactionPanel::ShowColumn(int column, const QString& title, bool isShown) {
    QStringList hidden = HiddenColumns();
    hidden.removeAll(title);
    if (!isShown) {
        hidden << title;
    }
    parts_.settings.WriteProfileString(transactionSettings, hiddenKey,
                                       hidden.join(',').toStdString());
    table_->setColumnHidden(column, !isShown);
    if (isShown && table_->columnWidth(column) == 0) { // it was hidden when the widths were stored
        table_->setColumnWidth(column, UsualWidth(column));
    }
}

// Filter, order and copies.

void TransactionPanel::SortBy(int column, Qt::SortOrder order) {
    if (TransactionModel* model = Model()) {
        TransactionQuery query = model->Query();
        query.sortBy = column < 0 ? TransactionField::Number
                                  : FieldColumns()[static_cast<std::size_t>(column)].field;
        query.descending = column >= 0 && order == Qt::DescendingOrder;
        model->SetQuery(std::move(query));
    }
}

void TransactionPanel::ApplyFilter() {
    if (TransactionModel* model = Model()) {
        captures_.at(document_).filter = filter_->Applied();
        TransactionQuery query = model->Query();
        query.where = Condition(filter_->Applied());
        model->SetQuery(std::move(query));
    }
}

std::optional<TransactionCondition> TransactionPanel::Condition(const QString& filter) const {
    if (filter.isEmpty()) {
        return std::nullopt;
    }
    const KeptExpressions kept = UserExpressions();
    auto parsed = TransactionCondition::Parse(filter.toStdString(), FilterBus(kept));
    auto* const condition = std::get_if<TransactionCondition>(&parsed);
    return condition == nullptr ? std::nullopt : std::optional(std::move(*condition));
}

std::vector<int> TransactionPanel::SelectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : table_->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::ranges::sort(rows);
    return rows;
}

/// A line of titles, then the selected rows, their cells separated by tabs.
void TransactionPanel::CopyRows() {
    const TransactionModel& model = *Model();
    const std::vector<int> rows = SelectedRows();
    if (rows.size() > mostCopiedRows) {
        parts_.prompts.Message(Printf("%d rows are selected; at most %d can be copied at once.",
                                      static_cast<int>(rows.size()), mostCopiedRows));
        return;
    }
    const WaitCursor wait;
    std::vector<int> columns;
    for (int place = 0; place < model.columnCount(); ++place) {
        const int column = table_->horizontalHeader()->logicalIndex(place);
        if (!table_->isColumnHidden(column)) {
            columns.push_back(column);
        }
    }
    QStringList lines;
    const auto addLine = [&](const auto& cell) {
        QStringList cells;
        for (const int column : columns) {
            cells << cell(column);
        }
        lines << cells.join('\t');
    };
    addLine([](int column) -> QString {
        return FieldColumns()[static_cast<std::size_t>(column)].title;
    });
    for (const int row : rows) {
        addLine([&](int column) { return model.Text(row, column); });
    }
    QGuiApplication::clipboard()->setText(lines.join('\n') + '\n');
}

QString TransactionPanel::WhyEmpty() const {
    const TransactionModel* const model = Model();
    if (model == nullptr) {
        return "The active window shows no capture.";
    }
    if (model->Traffic() == nullptr) {
        return "This bus is a connector: its pins are shown, but it has no transactions.";
    }
    if (document_->CaptureActive()) {
        return "The capture has not ended yet.";
    }
    if (document_->SampleCount(false) == 0) {
        return "There are no samples yet.";
    }
    if (model->IsWorking()) {
        return "Looking for transactions ...";
    }
    return model->TransactionCount() == 0 ? "There are no transactions in the samples."
                                          : "The filter hides all transactions.";
}

void TransactionPanel::ShowState() {
    const TransactionModel* const model = Model();
    const bool hasRows = model != nullptr && model->rowCount() > 0;
    reason_->setText(hasRows ? QString() : WhyEmpty());
    ShowEither(*stack_, *table_, *reason_, hasRows);
    const bool isWorking = model != nullptr && model->IsWorking();
    QString summary = model == nullptr ? QString() : Summary(*model);
    if (isWorking) {
        summary += QString(summary.isEmpty() ? "%1 %" : "; looking for transactions, %1 %")
                       .arg(model->Progress());
    }
    if (hasRows && !document_->sampling.storedAll) {
        summary += "; the setup did not store every sample";
    }
    summary_->setText(summary);
    summary_->setToolTip(summary); // for a window too narrow for the text
    filter_->setEnabled(model != nullptr && model->Traffic() != nullptr);
    if (!isWorking || document_->IsUploading()) {
        busy_.reset();
    } else if (!busy_) {
        busy_.emplace(Qt::BusyCursor);
    }
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
    const QModelIndex top = table_->indexAt({0, 0});
    capture.top = sampleOf(top);
    const int below = table_->currentIndex().row() - top.row();
    const bool isVisible =
        table_->currentIndex().isValid() && below >= 0 &&
        table_->visualRect(table_->currentIndex()).bottom() <= table_->viewport()->height();
    capture.currentBelowTop = isVisible ? below : -1;
    capture.selected.clear();
    const std::vector<int> rows = SelectedRows();
    if (rows.size() <= mostKeptRows) { // rather none than some of them
        for (const int row : rows) {
            capture.selected.push_back(model.FirstSample(row));
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
    if (current >= 0 && capture.currentBelowTop >= 0) {
        table_->verticalScrollBar()->setValue(current - capture.currentBelowTop);
    } else if (top >= 0) {
        table_->verticalScrollBar()->setValue(top);
    }
}

// Rows and samples.

void TransactionPanel::RowChosen(const QModelIndex& index) {
    if (!follows_ && index.isValid()) {
        document_->GoToSample(Model()->FirstSample(index.row()), false);
    }
    MarkRow(index);
}

/// Its samples have another ground in the windows of the capture.
void TransactionPanel::MarkRow(const QModelIndex& index) {
    const TransactionModel* const model = Model();
    if (model != nullptr) {
        document_->MarkSamples(index.isValid() && isVisible()
                                   ? std::optional(SampleSpan{model->FirstSample(index.row()),
                                                              model->LastSample(index.row())})
                                   : std::nullopt);
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

/// Esc leads back to the capture.
bool TransactionPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress ||
        static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) {
        return Panel::eventFilter(watched, event);
    }
    if (auto* active = dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow())) {
        active->window()->activateWindow(); // the dock may float
        active->GetActiveView()->setFocus();
    }
    return true;
}

} // namespace busquill
