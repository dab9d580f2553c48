#include "ui/analysis/interval_panel.h"

#include "capture/analyzer.h"
#include "capture/missing_samples.h"
#include "capture/trace_document.h"
#include "signals/cell_text.h"
#include "signals/value_text.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace busquill {

namespace {

constexpr int copiedRole = Qt::UserRole; // the line for the clipboard

/// Four digits with the prefix of a thousand, such as "33.33 MHz".
QString WithPrefix(double value, const char* unit) {
    constexpr std::array prefixes{"", "k", "M", "G", "T"};
    std::size_t prefix = 0;
    while (value >= 999.95 && prefix + 1 < prefixes.size()) {
        value /= 1000;
        ++prefix;
    }
    return QString("%1 %2%3").arg(value, 0, 'g', 4).arg(prefixes[prefix]).arg(unit);
}

/// A line for the clipboard.
QString Line(const QString& name, const QString& value, const QString& unit = {}) {
    return name + '\t' + value + (unit.isEmpty() ? QString() : '\t' + unit) + '\n';
}

/// Whether changes of a row are counted: not of columns that the listing works out, or shows in
/// some phases only.
bool IsCounted(const CSignal& signal) {
    return signal.selected && !signal.IsBlank() && signal.decoded == nullptr &&
           (!signal.grouped || signal.IsGroupStart());
}

std::vector<std::string> SelectedRows(const CSignalList& list) {
    std::vector<std::string> names;
    for (const auto& signal : list.All()) {
        if (IsCounted(*signal)) {
            names.push_back(signal->RowName());
        }
    }
    return names;
}

} // namespace

IntervalPanel::IntervalPanel(const FeatureParts& parts)
    : parts_(parts), table_(new QTableWidget(0, 2)), note_(new QLabel), work_([this] { GoOn(); }) {
    SetHelpPage(*this, "interval.md");
    table_->setObjectName("IntervalTable");
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setTabKeyNavigation(false);
    table_->setShowGrid(false);
    table_->setAlternatingRowColors(true);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setMinimumSectionSize(1);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 4);
    table_->horizontalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    note_->setObjectName("IntervalNote");
    note_->setWordWrap(true);
    note_->setContentsMargins(4, 0, 4, 2);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(table_, 1);
    layout->addWidget(note_);
    commands.On(
        CommandId::Copy, [this] { Copy(); }, [this] { return table_->rowCount() > 0 && !count_; });
    commands.On(
        CommandId::SignalMenu,
        [this] { OpenMenu(table_->visualRect(table_->currentIndex()).bottomLeft()); },
        [this] { return table_->rowCount() > 0; });
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(table_, &QWidget::customContextMenuRequested, this, &IntervalPanel::OpenMenu);
}

void IntervalPanel::TakeKeyboard() {
    table_->setFocus();
}

void IntervalPanel::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    Follow(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
}

QString IntervalPanel::WhyEmpty(const CTraceView* view) const {
    if (view == nullptr) {
        return "The active window shows no capture.";
    }
    const CTesselDoc& document = view->Trace();
    if (document.Marker(1, view->IsZoom()) < 0 || document.Marker(2, view->IsZoom()) < 0) {
        return "Put marker 1 and marker 2 on two samples: F7 and F8, or a click with the left and "
               "the right button.";
    }
    return {};
}

/// Why the samples between the markers cannot be counted yet; empty if they can.
QString IntervalPanel::WhyNotYet(const CTraceView& view) {
    const CTesselDoc& document = view.Trace();
    if (document.CaptureActive()) {
        return "The capture has not ended yet.";
    }
    const auto [from, to] =
        std::minmax({document.Marker(1, view.IsZoom()), document.Marker(2, view.IsZoom())});
    // The sample before the first one tells whether an address begins there.
    const bool hasArrived =
        !document.IsUploading() ||
        (!view.IsZoom() && document.HasAllSamples(std::max<std::int64_t>(from - 1, 0), to, false));
    return hasArrived ? QString() : "The samples between the markers are still being fetched.";
}

void IntervalPanel::ShowOnly(const QString& reason) {
    source_.reset();
    count_.reset();
    work_.Stop();
    table_->setRowCount(0);
    note_->setText(reason);
}

/// What is hidden does not follow, so nothing of it is kept.
void IntervalPanel::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    ShowOnly({});
}

void IntervalPanel::Follow(CMDIChildWnd* active) {
    if (!isVisible()) {
        return;
    }
    const CTraceView* const view = ViewOf(active);
    if (const QString reason = WhyEmpty(view); !reason.isEmpty()) {
        ShowOnly(reason);
        return;
    }
    const CTesselDoc& document = view->Trace();
    if (const QString reason = WhyNotYet(*view); !reason.isEmpty()) {
        ShowOnly(reason);
        return;
    }
    const auto [from, to] =
        std::minmax({document.Marker(1, view->IsZoom()), document.Marker(2, view->IsZoom())});
    const Source source{
        &document, &view->List(), view->IsZoom(), from, to, SelectedRows(view->List())};
    const BoardTraits board = parts_.analyzer.Link().Traits();
    if (source != source_ || !IsSameBus(board, board_)) {
        board_ = board;
        Begin(source);
    }
}

void IntervalPanel::Begin(const Source& source) {
    // Figures that are replaced before all were counted have not had the current line yet.
    const bool isAgain = count_.has_value();
    const int current = isAgain ? count_->currentLine : table_->currentRow();
    const bool isSelected =
        isAgain ? count_->isSelected : current >= 0 && table_->item(current, 0)->isSelected();
    source_ = source;
    count_.emplace();
    count_->currentLine = current;
    count_->isSelected = isSelected;
    const auto from = static_cast<std::size_t>(source.from);
    count_->next = from;
    if (!source.isZoom) {
        count_->absent = AbsentSamples(*source.document);
        count_->walk.emplace(board_, parts_.analyzer.Tables(), from,
                             static_cast<std::size_t>(source.to),
                             source.document->sampling.atBusClock);
    }
    for (const auto& signal : source.list->All()) {
        if (IsCounted(*signal)) {
            count_->counted.push_back(signal.get());
        }
    }
    count_->edges.resize(count_->counted.size());
    ShowTimes();
    Continue();
}

/// The samples may have changed since the last piece.
void IntervalPanel::GoOn() {
    Follow(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()));
    if (count_) {
        Continue();
    }
}

void IntervalPanel::Continue() {
    constexpr std::size_t samplesAtOnce = 512;
    const CTesselDoc& document = *source_->document;
    const CapturedSamples samples = source_->isZoom
                                        ? CapturedSamples{document.GetStore().GetData(true), 0, {}}
                                        : SamplesOf(document, count_->absent);
    const auto from = static_cast<std::size_t>(source_->from);
    const auto to = static_cast<std::size_t>(source_->to);
    const bool isComplete = work_.Do([&] {
        if (count_->walk) {
            count_->walk->Advance(samples, samplesAtOnce);
        }
        const std::size_t next = std::min(count_->next + samplesAtOnce, to);
        for (std::size_t i = 0; i < count_->counted.size(); ++i) {
            count_->edges[i] += EdgesOf(*count_->counted[i], samples, count_->next, next);
        }
        count_->next = next;
        return next == to && (!count_->walk || count_->walk->IsDone());
    });
    if (!isComplete) {
        note_->setText(
            QString("Counting, %1 % ...").arg((count_->next - from) * 100 / (to - from)));
        return;
    }
    ShowCounts();
    count_.reset();
}

/// Below the times; the line that was current is so again.
void IntervalPanel::ShowCounts() {
    note_->clear();
    if (count_->walk) {
        ShowTransactions(count_->walk->Figures());
    }
    for (std::size_t i = 0; i < count_->counted.size(); ++i) {
        ShowEdges(*count_->counted[i], count_->edges[i]);
    }
    table_->resizeColumnToContents(0);
    if (count_->currentLine >= 0 && count_->currentLine < table_->rowCount()) {
        table_->setCurrentCell(count_->currentLine, 0,
                               count_->isSelected
                                   ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                                   : QItemSelectionModel::NoUpdate);
    }
}

void IntervalPanel::AddLine(const QString& name, const QString& value, const QString& copied) {
    const int row = table_->rowCount();
    table_->insertRow(row);
    table_->setItem(row, 0, new QTableWidgetItem(name));
    auto* const item = new QTableWidgetItem(value);
    item->setData(copiedRole, copied);
    table_->setItem(row, 1, item);
}

void IntervalPanel::AddCount(const QString& name, std::uint64_t count) {
    AddLine(name, Grouped(count), Line(name, QString::number(count)));
}

/// What the times of the samples tell without a walk through all samples.
void IntervalPanel::ShowTimes() {
    table_->setRowCount(0);
    note_->clear();
    AddCount("Samples", static_cast<std::uint64_t>(source_->to - source_->from));
    const auto time = source_->list->TimeFrom(source_->from, source_->to);
    if (!time) {
        return;
    }
    const char* const unit = source_->isZoom ? "ps" : "ns";
    // In full only where that says more.
    const QString rounded = QString::fromStdString(FormatTime(*time, source_->isZoom));
    AddLine("Time",
            *time < 1000 ? rounded
                         : rounded + " = " + Grouped(static_cast<std::uint64_t>(*time)) + unit,
            Line("Time", QString::number(*time), unit));
    if (*time == 0) {
        AddLine("1/t", "-", Line("1/t", "-"));
    } else {
        const double rate = (source_->isZoom ? 1e12 : 1e9) / static_cast<double>(*time);
        AddLine("1/t", WithPrefix(rate, "Hz"), Line("1/t", QString::number(rate), "Hz"));
    }
}

void IntervalPanel::ShowTransactions(const IntervalFigures& figures) {
    if (figures.clocks) {
        AddCount("Clocks", static_cast<std::uint64_t>(*figures.clocks));
    }
    if (figures.transactions) {
        AddCount("Transactions", *figures.transactions);
        AddCount("Bytes", figures.bytes);
        const auto throughput = figures.Throughput();
        AddLine("Throughput", throughput ? WithPrefix(*throughput, "B/s") : "-",
                throughput ? Line("Throughput", QString::number(*throughput), "B/s")
                           : Line("Throughput", "-"));
    }
    if (figures.hasGaps) {
        note_->setText(QString("Samples between the markers %1.").arg(areMissing));
    } else if (!source_->document->sampling.storedAll) {
        note_->setText("The setup did not store every sample, so counts may be too small.");
    }
}

void IntervalPanel::ShowEdges(const CSignal& signal, const EdgeCount& edges) {
    const QString name = QString::fromStdString(signal.RowName());
    if (signal.grouped) {
        AddCount("Changes of " + name, edges.changes);
        return;
    }
    AddLine("Edges of " + name,
            QString("%1: %2 rising, %3 falling")
                .arg(Grouped(edges.changes), Grouped(edges.rising), Grouped(edges.falling)),
            Line("Edges of " + name, QString::number(edges.changes)) +
                Line("Rising edges of " + name, QString::number(edges.rising)) +
                Line("Falling edges of " + name, QString::number(edges.falling)));
}

/// The selected lines, or all of them: name, plain number and unit, separated by tabs.
void IntervalPanel::Copy() const {
    const auto isSelected = [this](int row) { return table_->item(row, 0)->isSelected(); };
    bool any = false;
    for (int row = 0; row < table_->rowCount(); ++row) {
        any = any || isSelected(row);
    }
    QString text;
    for (int row = 0; row < table_->rowCount(); ++row) {
        if (!any || isSelected(row)) {
            text += table_->item(row, 1)->data(copiedRole).toString();
        }
    }
    QGuiApplication::clipboard()->setText(text);
}

void IntervalPanel::OpenMenu(const QPoint& place) {
    QMenu menu(this);
    menu.addAction("&Copy", this, &IntervalPanel::Copy)->setEnabled(!count_);
    menu.exec(table_->viewport()->mapToGlobal(place));
}

} // namespace busquill
