#include "ui/analysis/transaction_panel.h"

#include "analysis/bus_traffic.h"
#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "signals/value_text.h"
#include "ui/analysis/capture_table.h"
#include "ui/analysis/shown_capture.h"
#include "ui/analysis/transaction_columns.h"
#include "ui/framework/help_page.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <utility>
#include <variant>

namespace busquill {

namespace {

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
    : parts_(parts),
      list_(new CaptureTable(
          parts,
          {.section = transactionSettings,
           .label = "Filter:",
           .line = "TransactionFilter",
           .mistake = "FilterMistake",
           .table = "TransactionTable",
           .reason = "TransactionReason"},
          [&tables = parts.analyzer.Tables()](CTesselDoc& document, const BoardTraits& board) {
              return std::make_unique<TransactionModel>(document, board, tables);
          })),
      columns_(new TransactionColumns(list_->Table(), parts.settings)), summary_(new QLabel) {
    SetHelpPage(*this, "transactions.md#in-the-windows");
    summary_->setObjectName("TransactionSummary");
    summary_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    summary_->setContentsMargins(4, 0, 4, 2);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(list_, 1);
    layout->addWidget(summary_);
    MakeFilter();
    MakeCommands();
    connect(list_, &CaptureTable::Leaving, this, &TransactionPanel::Leave);
    connect(list_, &CaptureTable::Shown, columns_, &TransactionColumns::Show);
    connect(list_, &CaptureTable::Changed, this, &TransactionPanel::ShowState);
    connect(list_, &CaptureTable::CurrentChanged, this, &TransactionPanel::MarkRow);
    ShowState();
}

void TransactionPanel::MakeFilter() {
    ExpressionLine& line = list_->Line();
    line.lineEdit()->setPlaceholderText("such as: wait > 4 and end == retry");
    line.setToolTip("Show only transactions for which this holds");
    line.SetLanguage(
        {[this](std::string_view text,
                const KeptExpressions& kept) -> std::optional<ExpressionError> {
             const auto parsed = TransactionCondition::Parse(text, FilterBus(kept));
             const auto* const mistake = std::get_if<ExpressionError>(&parsed);
             return mistake == nullptr ? std::nullopt : std::optional(*mistake);
         },
         [this](std::string_view text, std::size_t cursor, const KeptExpressions& kept) {
             return TransactionCondition::Complete(text, cursor, FilterBus(kept));
         }});
    connect(list_, &CaptureTable::Given, this, &TransactionPanel::ApplyFilter);
}

void TransactionPanel::MakeCommands() {
    commands.On(
        CommandId::Copy, [this] { list_->CopyRows(); }, [this] { return list_->HasSelection(); });
    commands.On(
        CommandId::SignalMenu,
        [this] {
            const QHeaderView& header = *list_->Table().horizontalHeader();
            columns_->Choose(header.mapToGlobal(QPoint(0, header.height())));
        },
        [this] { return Model() != nullptr; });
}

TransactionModel* TransactionPanel::Model() const {
    return static_cast<TransactionModel*>(list_->Rows());
}

void TransactionPanel::Follow(CMDIChildWnd* active) {
    list_->Follow(active);
}

void TransactionPanel::TakeKeyboard() {
    list_->Table().setFocus();
}

void TransactionPanel::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    MarkRow(list_->Table().currentIndex());
}

void TransactionPanel::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    if (Model() != nullptr) {
        Leave();
    }
    busy_.reset();
}

void TransactionPanel::Leave() {
    columns_->Store();
    if (CTesselDoc* const document = list_->Document()) {
        document->MarkSamples(std::nullopt);
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

void TransactionPanel::ApplyFilter(const QString& filter) {
    TransactionQuery query = Model()->Query();
    query.where = Condition(filter);
    Model()->SetQuery(std::move(query));
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

QString TransactionPanel::WhyEmpty() const {
    const TransactionModel* const model = Model();
    if (model != nullptr && model->Traffic() == nullptr) {
        return "This bus is a connector: its pins are shown, but it has no transactions.";
    }
    if (QString why = list_->WhyNoSamples(); model == nullptr || !why.isEmpty()) {
        return why;
    }
    if (model->IsWorking()) {
        return "Looking for transactions ...";
    }
    return model->TransactionCount() == 0 ? "There are no transactions in the samples."
                                          : "The filter hides all transactions.";
}

void TransactionPanel::ShowState() {
    const TransactionModel* const model = Model();
    list_->ShowEither(list_->HasRows() ? QString() : WhyEmpty());
    const bool isWorking = model != nullptr && model->IsWorking();
    QString summary = model == nullptr ? QString() : Summary(*model);
    if (isWorking) {
        summary += QString(summary.isEmpty() ? "%1 %" : "; looking for transactions, %1 %")
                       .arg(model->Progress());
    }
    if (list_->HasRows() && !list_->Document()->sampling.storedAll) {
        summary += "; the setup did not store every sample";
    }
    summary_->setText(summary);
    summary_->setToolTip(summary); // for a window too narrow for the text
    list_->Line().setEnabled(model != nullptr && model->Traffic() != nullptr);
    if (!isWorking || list_->Document()->IsUploading()) {
        busy_.reset();
    } else if (!busy_) {
        busy_.emplace(Qt::BusyCursor);
    }
}

/// Its samples have another ground in the windows of the capture.
void TransactionPanel::MarkRow(const QModelIndex& index) {
    if (const TransactionModel* const model = Model()) {
        list_->Document()->MarkSamples(
            index.isValid() && isVisible()
                ? std::optional(
                      SampleSpan{model->SampleOf(index.row()), model->LastSample(index.row())})
                : std::nullopt);
    }
}

} // namespace busquill
