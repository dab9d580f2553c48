#include "ui/analysis/finding_panel.h"

#include "capture/analyzer.h"
#include "capture/sample_condition.h"
#include "capture/trace_document.h"
#include "capture/trace_search.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "ui/analysis/expression_line.h"
#include "ui/analysis/kept_button.h"
#include "ui/analysis/panel_table.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/wait_cursor.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <utility>
#include <variant>

namespace busquill {

namespace {

/// The section of the settings.
constexpr const char* hitSettings = "Hits";

QString Counted(std::size_t count, const char* one, const char* several) {
    return Grouped(count) + ' ' + (count == 1 ? one : several);
}

} // namespace

FindingPanel::FindingPanel(const FeatureParts& parts)
    : parts_(parts), stack_(new QStackedWidget), table_(new PanelTable("FindingTable")),
      reason_(new QLabel), summary_(new QLabel), listed_(new QComboBox),
      onlyShown_(new QCheckBox("Only samples that are shown")), onlyHits_(new QToolButton) {
    SetHelpPage(*this, "findings.md");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    MakeLine(*layout);
    layout->addWidget(stack_, 1);
    stack_->addWidget(table_);
    stack_->addWidget(reason_);
    reason_->setObjectName("FindingReason");
    reason_->setAlignment(Qt::AlignCenter);
    reason_->setWordWrap(true);
    MakeTable();
    MakeChoices(*layout);
    MakeCommands();
    ShowState();
}

FindingPanel::~FindingPanel() = default;

void FindingPanel::MakeLine(QVBoxLayout& layout) {
    auto* explanation = new QLabel;
    explanation->setObjectName("HitMistake");
    explanation->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line_ = new ExpressionLine(parts_.settings, hitSettings, *explanation);
    line_->setObjectName("HitExpression");
    line_->lineEdit()->setPlaceholderText("such as: FRAME falls and COMMAND == \"Mem*\"");
    line_->setToolTip("List the samples for which this holds");
    const auto check = [this](std::string_view text,
                              const KeptExpressions& kept) -> std::optional<ExpressionError> {
        if (document_ == nullptr) {
            return std::nullopt;
        }
        const auto parsed =
            SampleCondition::Parse(text, parts_.analyzer.Tables(),
                                   {&document_->stateList, &document_->waveformList}, &kept);
        const auto* const mistake = std::get_if<ExpressionError>(&parsed);
        return mistake == nullptr ? std::nullopt : std::optional(*mistake);
    };
    const auto complete = [this](std::string_view text, std::size_t cursor,
                                 const KeptExpressions& kept) {
        return document_ == nullptr
                   ? ExpressionCompletion()
                   : SampleCondition::Complete(text, cursor, parts_.analyzer.Tables(),
                                               {&document_->stateList, &document_->waveformList},
                                               &kept);
    };
    line_->SetLanguage({check, complete});
    auto* label = new QLabel("H&its:");
    label->setBuddy(line_);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(4, 2, 4, 0);
    line->addWidget(label);
    line->addWidget(line_, 1);
    line->addWidget(new KeptButton(*line_, parts_.prompts));
    line->addWidget(explanation, 1);
    layout.addLayout(line);
    connect(line_, &ExpressionLine::Changed, this, &FindingPanel::ApplyExpression);
}

void FindingPanel::MakeTable() {
    table_->setShowGrid(false);
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& place) { OpenMenu(table_->viewport()->mapToGlobal(place)); });
    connect(table_, &QTableView::clicked, this, &FindingPanel::RowChosen);
    connect(table_, &QTableView::activated, this, &FindingPanel::RowChosen);
    constexpr int margin = 16;
    for (const char* longest : {"-00000000", "-000.000us", "Rule, anomaly"}) {
        widths_.push_back(table_->fontMetrics().horizontalAdvance(longest) + margin);
    }
}

/// A table forgets the widths of its columns with its model.
void FindingPanel::ShowModel(FindingModel* model) {
    for (int column = 0; table_->model() != nullptr && column < widths_.size(); ++column) {
        widths_[column] = table_->columnWidth(column);
    }
    const QItemSelectionModel* const selection = table_->selectionModel();
    table_->setModel(model);
    delete selection;
    if (model == nullptr) {
        return;
    }
    for (int column = 0; column < widths_.size(); ++column) {
        table_->setColumnWidth(column, widths_[column]);
    }
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &FindingPanel::RowChosen);
}

void FindingPanel::MakeChoices(QVBoxLayout& layout) {
    summary_->setObjectName("FindingSummary");
    summary_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    listed_->setObjectName("ListedFindings");
    listed_->addItems({"Findings and hits", "Findings", "Hits"});
    listed_->setToolTip("What is listed");
    onlyShown_->setObjectName("OnlyShown");
    onlyShown_->setToolTip("Leave out samples that a filter hides in the windows of the capture");
    onlyHits_->setObjectName("OnlyHits");
    onlyHits_->setText("Show Only Hits");
    onlyHits_->setCheckable(true);
    onlyHits_->setToolTip("Show only the hits in the windows of the capture");
    auto* line = new QHBoxLayout;
    line->setContentsMargins(4, 0, 4, 2);
    line->addWidget(summary_, 1);
    line->addWidget(listed_);
    line->addWidget(onlyShown_);
    line->addWidget(onlyHits_);
    layout.addLayout(line);
    connect(listed_, &QComboBox::activated, this, [this](int index) {
        if (FindingModel* model = Model()) {
            captures_.at(document_).listed = static_cast<FindingModel::Listed>(index);
            model->SetListed(static_cast<FindingModel::Listed>(index));
            ShowState();
        }
    });
    connect(onlyShown_, &QCheckBox::clicked, this, [this](bool isOn) {
        if (FindingModel* model = Model()) {
            captures_.at(document_).onlyShown = isOn;
            model->SetOnlyShown(isOn);
            ShowState();
        }
    });
    connect(onlyHits_, &QToolButton::clicked, this, &FindingPanel::FilterByHits);
}

void FindingPanel::MakeCommands() {
    const auto hasRows = [this] { return Model() != nullptr && Model()->rowCount() > 0; };
    commands.On(
        CommandId::Copy, [this] { CopyRows(); },
        [this] { return Model() != nullptr && table_->selectionModel()->hasSelection(); });
    commands.On(
        CommandId::SignalMenu, [this] { OpenMenu(table_->mapToGlobal(QPoint(20, 20))); },
        [this] { return Model() != nullptr; });
    commands.On(
        CommandId::FindNext, [this] { Step(true); }, hasRows);
    commands.On(
        CommandId::FindPrevious, [this] { Step(false); }, hasRows);
}

FindingModel* FindingPanel::Model() const {
    const auto found = captures_.find(document_);
    return found == captures_.end() ? nullptr : found->second.model.get();
}

void FindingPanel::TakeKeyboard() {
    if (Model() != nullptr && Model()->rowCount() > 0) {
        table_->setFocus();
    } else {
        line_->setFocus();
    }
}

// Which capture is shown.

void FindingPanel::Follow(CMDIChildWnd* active) {
    if (!isVisible()) {
        return;
    }
    const CTraceView* const view = ViewOf(active);
    CTesselDoc* const document = view == nullptr ? nullptr : &view->Trace();
    const BoardTraits board = parts_.analyzer.Link().Traits();
    if (!IsSameBus(board, board_)) {
        board_ = board;
        ForgetRows();
    }
    if (document != document_) {
        Show(document);
    }
    ShowChoices();
}

void FindingPanel::Show(CTesselDoc* document) {
    if (FindingModel* old = Model()) {
        Capture& capture = captures_.at(document_);
        capture.place.Remember(*table_, [old](int row) { return old->KeyOf(row); });
        capture.typed = line_->currentText();
        old->SetActive(false);
    }
    document_ = document;
    if (document != nullptr && Model() == nullptr) {
        MakeModel(*document);
    }
    FindingModel* const model = Model();
    ShowModel(model);
    if (model != nullptr) {
        const Capture& capture = captures_.at(document);
        line_->Show(capture.applied, capture.typed);
        RestorePlace(capture);
        model->SetActive(isVisible());
    } else {
        line_->Show({}, {});
    }
    ShowState();
}

void FindingPanel::MakeModel(CTesselDoc& document) {
    Capture& capture = captures_[&document];
    capture.model = std::make_unique<FindingModel>(document, board_, parts_.analyzer.Tables());
    FindingModel* const model = capture.model.get();
    model->SetListed(capture.listed);
    model->SetOnlyShown(capture.onlyShown);
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this, model, &capture] {
        if (model == Model()) {
            capture.place.Remember(*table_, [model](int row) { return model->KeyOf(row); });
        }
    });
    connect(model, &FindingModel::Renewed, this, [this, model, &capture] {
        if (model == Model()) {
            RestorePlace(capture);
        }
    });
    connect(model, &FindingModel::Worked, this, [this, model, &document] {
        if (model == Model()) {
            ShowState();
        }
        RenewFilter(document);
    });
    if (capture.watch == nullptr) {
        capture.watch = std::make_unique<CaptureWatch>(document);
        connect(capture.watch.get(), &CaptureWatch::Updated, this,
                [this, &document](int hint) { DocumentUpdated(document, hint); });
        connect(capture.watch.get(), &CaptureWatch::Gone, this,
                [this, &document] { CaptureGone(document); });
    }
}

void FindingPanel::RestorePlace(const Capture& capture) {
    follows_ = true;
    capture.place.Restore(*table_,
                          [&capture](std::int64_t key) { return capture.model->RowOfKey(key); });
    follows_ = false;
}

/// On another bus the same bits are other signals. The text of an expression stays: it is applied
/// to them, unless it names something that this bus does not have.
void FindingPanel::ForgetRows() {
    Show(nullptr);
    for (auto& [document, capture] : captures_) {
        capture.model.reset();
        capture.applied.clear();
    }
}

/// Nothing that could have the keyboard is hidden or disabled before the next event: the keyboard
/// would go to another window, perhaps to the one that is being destroyed.
void FindingPanel::CaptureGone(CTesselDoc& document) {
    if (document_ == &document) {
        document_ = nullptr;
        ShowModel(nullptr);
        line_->Show({}, {});
        QMetaObject::invokeMethod(this, &FindingPanel::ShowState, Qt::QueuedConnection);
    }
    const auto gone = captures_.find(&document);
    gone->second.watch.release()->deleteLater(); // it has told of this
    captures_.erase(gone);
}

void FindingPanel::DocumentUpdated(CTesselDoc& document, int hint) {
    Capture& capture = captures_.at(&document);
    if (capture.model != nullptr) {
        capture.model->DocumentChanged(hint);
    }
    if (hint == HintCaptureStarted) { // the rows that have gone are not those of the next capture
        capture.place = TablePlace();
    }
    if (&document != document_ || !isVisible()) {
        return;
    }
    if (hint == HintMarker1) {
        ShowMarker();
    } else if (hint == HintFilterChanged ||
               (hint >= HintCaptureStarted && hint <= HintDataComplete)) {
        ShowState(); // perhaps for another reason empty
    }
}

void FindingPanel::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    Follow(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    if (FindingModel* model = Model()) {
        model->SetActive(true);
        ShowState();
    }
}

void FindingPanel::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    if (FindingModel* model = Model()) {
        model->SetActive(false);
    }
}

// The expression.

void FindingPanel::ApplyExpression() {
    if (FindingModel* model = Model()) {
        captures_.at(document_).applied = line_->Applied();
        model->SetExpression(line_->Applied().toStdString(), Condition(line_->Applied()));
        ShowState();
    }
}

std::optional<SampleCondition> FindingPanel::Condition(const QString& expression) const {
    if (expression.isEmpty()) {
        return std::nullopt;
    }
    const KeptExpressions kept = UserExpressions();
    auto parsed = SampleCondition::Parse(expression.toStdString(), parts_.analyzer.Tables(),
                                         {&document_->stateList, &document_->waveformList}, &kept);
    auto* const condition = std::get_if<SampleCondition>(&parsed);
    return condition == nullptr ? std::nullopt : std::optional(std::move(*condition));
}

// The filter of the displays.

CTesselDoc* FindingPanel::ActiveDocument() const {
    const CTraceView* const view =
        ViewOf(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    return view == nullptr || !captures_.contains(&view->Trace()) ? nullptr : &view->Trace();
}

bool FindingPanel::IsFilteredByHits() const {
    const CTesselDoc* const document = ActiveDocument();
    return document != nullptr && !document->FilterExpression().empty();
}

bool FindingPanel::CanFilterByHits() const {
    CTesselDoc* const document = ActiveDocument();
    if (document == nullptr || !CanFilter(*document)) {
        return false;
    }
    const auto& model = captures_.at(document).model;
    const bool isOfThisBus = IsSameBus(parts_.analyzer.Link().Traits(), board_);
    return IsFilteredByHits() || (isOfThisBus && model != nullptr && model->HasAllHits());
}

void FindingPanel::FilterByHits() {
    if (CanFilterByHits()) {
        CTesselDoc& document = *ActiveDocument();
        const WaitCursor wait;
        IsFilteredByHits() ? ShowAll(document) : ShowOnly(document, *captures_.at(&document).model);
    }
    ShowChoices();
}

void FindingPanel::RenewFilter(CTesselDoc& document) {
    const Capture& capture = captures_.at(&document);
    const FindingModel& model = *capture.model;
    const std::string& filter = document.FilterExpression();
    const bool isSame = filter == model.Expression() && capture.filteredBy == model.Searches();
    if (filter.empty() || isSame || !CanFilter(document)) {
        return;
    }
    if (model.Expression().empty()) {
        ShowAll(document);
    } else if (model.HasAllHits()) {
        ShowOnly(document, model);
    }
}

std::int64_t FindingPanel::TopSample(const CTesselDoc& document) const {
    const CTraceView* const active =
        ViewOf(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    if (active != nullptr && !active->IsZoom() && &active->Trace() == &document) {
        return active->TopSample();
    }
    for (const DocumentView* each : document.Views()) {
        const auto* const view = dynamic_cast<const CTraceView*>(each);
        if (view != nullptr && !view->IsZoom()) {
            return view->TopSample();
        }
    }
    return 0;
}

void FindingPanel::ShowOnly(CTesselDoc& document, const FindingModel& model) {
    captures_.at(&document).filteredBy = model.Searches();
    document.ApplyFilter(model.Expression(), model.Hits(), TopSample(document));
}

void FindingPanel::ShowAll(CTesselDoc& document) {
    document.filterPattern.BuildFromTables(1, ModeEvents);
    document.ApplyFilter(TopSample(document));
}

// What is shown.

QString FindingPanel::WhyEmpty() const {
    const FindingModel* const model = Model();
    if (model == nullptr) {
        return "The active window shows no capture.";
    }
    if (document_->CaptureActive()) {
        return "The capture has not ended yet.";
    }
    if (document_->SampleCount(false) == 0) {
        return "There are no samples yet.";
    }
    if (model->IsWorking()) {
        return "Searching ...";
    }
    const bool hasFindings =
        model->WhatIsListed() != FindingModel::Listed::Hits && model->FindingCount() > 0;
    const bool hasHits =
        model->WhatIsListed() != FindingModel::Listed::Findings && model->HitCount() > 0;
    if (hasFindings || hasHits) {
        return "A filter hides all of these samples in the windows of the capture.";
    }
    QStringList reasons;
    if (model->WhatIsListed() != FindingModel::Listed::Hits) {
        reasons << (model->RecordsFindings() ? "The board has found nothing in the samples."
                                             : "Samples of this bus record no findings.");
    }
    if (model->WhatIsListed() != FindingModel::Listed::Findings) {
        reasons << (model->Expression().empty() ? "Type an expression to find samples."
                                                : "No sample fulfils the expression.");
    }
    return reasons.join(' ');
}

QString FindingPanel::Summary() const {
    const FindingModel* const model = Model();
    if (model == nullptr || document_->SampleCount(false) == 0) {
        return {};
    }
    QStringList counts;
    if (model->RecordsFindings()) {
        counts << Counted(model->FindingCount(), "finding", "findings");
    }
    if (!model->Expression().empty()) {
        counts << Counted(model->HitCount(), "hit", "hits");
    }
    QStringList parts;
    if (!counts.isEmpty()) {
        parts << counts.join(", ");
    }
    const auto listed = static_cast<std::size_t>(model->rowCount());
    if (listed != model->FindingCount() + model->HitCount()) {
        parts << Grouped(listed) + " listed";
    }
    if (!document_->FilterExpression().empty()) {
        parts << "the windows show only hits";
    }
    if (model->IsWorking()) {
        parts << QString("searching, %1 %").arg(model->Progress());
    }
    return parts.join("; ");
}

void FindingPanel::ShowState() {
    const FindingModel* const model = Model();
    const bool hasRows = model != nullptr && model->rowCount() > 0;
    reason_->setText(hasRows ? QString() : WhyEmpty());
    ShowEither(*stack_, *table_, *reason_, hasRows);
    summary_->setText(Summary());
    summary_->setToolTip(summary_->text()); // for a window too narrow for the text
    line_->setEnabled(model != nullptr);
    listed_->setEnabled(model != nullptr);
    onlyShown_->setEnabled(model != nullptr);
    if (model != nullptr) {
        listed_->setCurrentIndex(static_cast<int>(model->WhatIsListed()));
        onlyShown_->setChecked(model->OnlyShown());
    }
    ShowChoices();
}

void FindingPanel::ShowChoices() {
    onlyHits_->setEnabled(CanFilterByHits());
    onlyHits_->setChecked(IsFilteredByHits());
}

void FindingPanel::OpenMenu(const QPoint& place) {
    if (Model() == nullptr) {
        return;
    }
    QMenu menu(this);
    const auto add = [&menu](const QString& text, bool isEnabled, const auto& run) {
        QAction* const action = menu.addAction(text, run);
        action->setEnabled(isEnabled);
        return action;
    };
    const bool hasRows = Model()->rowCount() > 0;
    add("&Copy", table_->selectionModel()->hasSelection(), [this] { CopyRows(); });
    add("&Next", hasRows, [this] { Step(true); });
    add("&Previous", hasRows, [this] { Step(false); });
    menu.addSeparator();
    for (int i = 0; i < listed_->count(); ++i) {
        QAction* const action = add(listed_->itemText(i), true, [this, i] {
            listed_->setCurrentIndex(i);
            emit listed_->activated(i);
        });
        action->setCheckable(true);
        action->setChecked(listed_->currentIndex() == i);
    }
    menu.addSeparator();
    for (QAbstractButton* const button :
         {static_cast<QAbstractButton*>(onlyShown_), static_cast<QAbstractButton*>(onlyHits_)}) {
        QAction* const action =
            add(button->text(), button->isEnabled(), [button] { button->click(); });
        action->setCheckable(true);
        action->setChecked(button->isChecked());
    }
    menu.exec(place);
}

/// A line of titles, then the selected rows, their cells separated by tabs.
void FindingPanel::CopyRows() {
    const FindingModel& model = *Model();
    std::vector<int> rows;
    qsizetype count = 0;
    const QItemSelection selection = table_->selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        count += range.height();
    }
    if (count > mostCopiedRows) {
        parts_.prompts.Message(Printf("%d rows are selected; at most %d can be copied at once.",
                                      static_cast<int>(count), mostCopiedRows));
        return;
    }
    const WaitCursor wait;
    rows.reserve(static_cast<std::size_t>(count));
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::ranges::sort(rows);
    QString text;
    const auto addLine = [&text](const auto& cell) {
        for (int column = 0; column < FindingModel::columns; ++column) {
            text += cell(column) + (column + 1 < FindingModel::columns ? '\t' : '\n');
        }
    };
    addLine([&model](int column) {
        return model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    });
    for (const int row : rows) {
        addLine([&model, row](int column) { return model.Text(row, column); });
    }
    QGuiApplication::clipboard()->setText(text);
}

// Rows and samples.

void FindingPanel::RowChosen(const QModelIndex& index) {
    if (!follows_ && index.isValid()) {
        document_->GoToSample(Model()->SampleOf(index.row()), false);
    }
}

void FindingPanel::Step(bool forward) {
    const QModelIndex current = table_->currentIndex();
    const int before = current.isValid() ? current.row() - (forward ? 0 : 1)
                                         : Model()->RowFrom(TopSample(*document_)) - 1;
    const int row = forward ? before + 1 : before;
    if (row >= 0 && row < Model()->rowCount()) {
        table_->setCurrentIndex(Model()->index(row, 0));
    }
}

void FindingPanel::ShowMarker() {
    const std::int64_t marker = document_->Marker(1, false);
    const int row = Model()->RowOfSample(marker);
    const QModelIndex current = table_->currentIndex();
    const bool isChosen = current.isValid() && Model()->SampleOf(current.row()) == marker;
    if (row >= 0 && !isChosen) {
        follows_ = true;
        table_->setCurrentIndex(Model()->index(row, 0));
        follows_ = false;
    }
}

/// Esc leads back to the capture. Other keys that nothing uses end here.
void FindingPanel::keyPressEvent(QKeyEvent* event) {
    auto* const active = dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow());
    if (event->key() == Qt::Key_Escape && active != nullptr) {
        active->window()->activateWindow(); // the dock may float
        active->GetActiveView()->setFocus();
    }
    event->accept();
}

void FindingPanel::wheelEvent(QWheelEvent* event) {
    event->accept();
}

} // namespace busquill
