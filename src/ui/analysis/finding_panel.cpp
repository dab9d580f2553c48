#include "ui/analysis/finding_panel.h"

#include "capture/analyzer.h"
#include "capture/sample_condition.h"
#include "capture/trace_document.h"
#include "ui/analysis/capture_table.h"
#include "ui/analysis/shown_capture.h"
#include "ui/framework/help_page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>
#include <variant>

namespace busquill {

namespace {

QString Counted(std::size_t count, const char* one, const char* several) {
    return Grouped(count) + ' ' + (count == 1 ? one : several);
}

} // namespace

FindingPanel::FindingPanel(const FeatureParts& parts)
    : parts_(parts), list_(new CaptureTable(parts,
                                            {.section = "Hits",
                                             .label = "H&its:",
                                             .line = "HitExpression",
                                             .mistake = "HitMistake",
                                             .table = "FindingTable",
                                             .reason = "FindingReason"},
                                            [this](CTesselDoc& document, const BoardTraits& board) {
                                                return MakeRows(document, board);
                                            })),
      filter_(parts, *list_), summary_(new QLabel), listed_(new QComboBox),
      onlyShown_(new QCheckBox("Only samples that are shown")), onlyHits_(new QToolButton) {
    SetHelpPage(*this, "findings.md");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(list_, 1);
    MakeLine();
    MakeColumns();
    MakeChoices(*layout);
    MakeCommands();
    PanelTable& table = list_->Table();
    table.setShowGrid(false);
    table.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(
        &table, &QWidget::customContextMenuRequested, this,
        [this, &table](const QPoint& place) { OpenMenu(table.viewport()->mapToGlobal(place)); });
    connect(list_, &CaptureTable::Changed, this, &FindingPanel::ShowState);
    connect(list_, &CaptureTable::Worked, this,
            [this](CTesselDoc& document) { filter_.Renew(document); });
    connect(list_, &CaptureTable::Gone, this, [this](CTesselDoc& document) {
        choices_.erase(&document);
        filter_.Forget(document);
    });
    ShowState();
}

std::unique_ptr<CaptureRows> FindingPanel::MakeRows(CTesselDoc& document,
                                                    const BoardTraits& board) {
    auto rows = std::make_unique<FindingModel>(document, board, parts_.analyzer.Tables());
    rows->SetListed(choices_[&document].listed);
    rows->SetOnlyShown(choices_[&document].onlyShown);
    return rows;
}

void FindingPanel::MakeLine() {
    ExpressionLine& line = list_->Line();
    line.lineEdit()->setPlaceholderText("such as: FRAME falls and COMMAND == \"Mem*\"");
    line.setToolTip("List the samples for which this holds");
    const auto check = [this](std::string_view text,
                              const KeptExpressions& kept) -> std::optional<ExpressionError> {
        if (list_->Document() == nullptr) {
            return std::nullopt;
        }
        const auto parsed = SampleCondition::Parse(
            text, parts_.analyzer.Tables(),
            {&list_->Document()->stateList, &list_->Document()->waveformList}, &kept);
        const auto* const mistake = std::get_if<ExpressionError>(&parsed);
        return mistake == nullptr ? std::nullopt : std::optional(*mistake);
    };
    const auto complete = [this](std::string_view text, std::size_t cursor,
                                 const KeptExpressions& kept) {
        return list_->Document() == nullptr
                   ? ExpressionCompletion()
                   : SampleCondition::Complete(
                         text, cursor, parts_.analyzer.Tables(),
                         {&list_->Document()->stateList, &list_->Document()->waveformList}, &kept);
    };
    line.SetLanguage({check, complete});
    connect(list_, &CaptureTable::Given, this, &FindingPanel::ApplyExpression);
}

/// A table forgets the widths of its columns with its model.
void FindingPanel::MakeColumns() {
    constexpr int margin = 16;
    PanelTable& table = list_->Table();
    for (const char* longest : {"-00000000", "-000.000us", "Rule, anomaly"}) {
        widths_.push_back(table.fontMetrics().horizontalAdvance(longest) + margin);
    }
    connect(list_, &CaptureTable::Leaving, this, [this, &table] {
        for (int column = 0; column < widths_.size(); ++column) {
            widths_[column] = table.columnWidth(column);
        }
    });
    connect(list_, &CaptureTable::Shown, this, [this, &table] {
        for (int column = 0; column < widths_.size(); ++column) {
            table.setColumnWidth(column, widths_[column]);
        }
    });
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
            choices_[list_->Document()].listed = static_cast<FindingModel::Listed>(index);
            model->SetListed(static_cast<FindingModel::Listed>(index));
            ShowState();
        }
    });
    connect(onlyShown_, &QCheckBox::clicked, this, [this](bool isOn) {
        if (FindingModel* model = Model()) {
            choices_[list_->Document()].onlyShown = isOn;
            model->SetOnlyShown(isOn);
            ShowState();
        }
    });
    connect(onlyHits_, &QToolButton::clicked, this, &FindingPanel::FilterByHits);
}

void FindingPanel::MakeCommands() {
    const auto hasRows = [this] { return list_->HasRows(); };
    commands.On(
        CommandId::Copy, [this] { list_->CopyRows(); }, [this] { return list_->HasSelection(); });
    commands.On(
        CommandId::SignalMenu, [this] { OpenMenu(list_->Table().mapToGlobal(QPoint(20, 20))); },
        [this] { return Model() != nullptr; });
    commands.On(
        CommandId::FindNext, [this] { Step(true); }, hasRows);
    commands.On(
        CommandId::FindPrevious, [this] { Step(false); }, hasRows);
}

FindingModel* FindingPanel::Model() const {
    return static_cast<FindingModel*>(list_->Rows());
}

void FindingPanel::Follow(CMDIChildWnd* active) {
    list_->Follow(active);
    ShowChoices();
}

void FindingPanel::TakeKeyboard() {
    if (list_->HasRows()) {
        list_->Table().setFocus();
    } else {
        list_->Line().setFocus();
    }
}

// The expression.

void FindingPanel::ApplyExpression(const QString& expression) {
    Model()->SetExpression(expression.toStdString(), Condition(expression));
    ShowState();
}

std::optional<SampleCondition> FindingPanel::Condition(const QString& expression) const {
    if (expression.isEmpty()) {
        return std::nullopt;
    }
    const KeptExpressions kept = UserExpressions();
    auto parsed = SampleCondition::Parse(
        expression.toStdString(), parts_.analyzer.Tables(),
        {&list_->Document()->stateList, &list_->Document()->waveformList}, &kept);
    auto* const condition = std::get_if<SampleCondition>(&parsed);
    return condition == nullptr ? std::nullopt : std::optional(std::move(*condition));
}

void FindingPanel::FilterByHits() {
    filter_.Switch();
    ShowChoices();
}

// What is shown.

QString FindingPanel::WhyEmpty() const {
    const FindingModel* const model = Model();
    if (QString why = list_->WhyNoSamples(); model == nullptr || !why.isEmpty()) {
        return why;
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
    if (model == nullptr || list_->Document()->SampleCount(false) == 0) {
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
    if (!list_->Document()->FilterExpression().empty()) {
        parts << "the windows show only hits";
    }
    if (model->IsWorking()) {
        parts << QString("searching, %1 %").arg(model->Progress());
    }
    return parts.join("; ");
}

void FindingPanel::ShowState() {
    const FindingModel* const model = Model();
    list_->ShowEither(list_->HasRows() ? QString() : WhyEmpty());
    summary_->setText(Summary());
    summary_->setToolTip(summary_->text()); // for a window too narrow for the text
    list_->Line().setEnabled(model != nullptr);
    listed_->setEnabled(model != nullptr);
    onlyShown_->setEnabled(model != nullptr);
    if (model != nullptr) {
        listed_->setCurrentIndex(static_cast<int>(model->WhatIsListed()));
        onlyShown_->setChecked(model->OnlyShown());
    }
    ShowChoices();
}

void FindingPanel::ShowChoices() {
    onlyHits_->setEnabled(filter_.CanSwitch());
    onlyHits_->setChecked(filter_.IsOn());
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
    const bool hasRows = list_->HasRows();
    add("&Copy", list_->HasSelection(), [this] { list_->CopyRows(); });
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

void FindingPanel::Step(bool forward) {
    const QModelIndex current = list_->Table().currentIndex();
    const std::int64_t top = TopSampleOf(*list_->Document(), parts_.area);
    const int before =
        current.isValid() ? current.row() - (forward ? 0 : 1) : Model()->RowFrom(top) - 1;
    const int row = forward ? before + 1 : before;
    if (row >= 0 && row < Model()->rowCount()) {
        list_->Table().setCurrentIndex(Model()->index(row, 0));
    }
}

} // namespace busquill
