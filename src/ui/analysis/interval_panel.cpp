#include "ui/analysis/interval_panel.h"

#include "analysis/interval.h"
#include "capture/analyzer.h"
#include "capture/missing_samples.h"
#include "capture/trace_document.h"
#include "platform/text.h"
#include "signals/cell_text.h"
#include "signals/value_text.h"
#include "ui/analysis/shown_capture.h"
#include "ui/display/trace_view.h"
#include "ui/framework/help_page.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/wait_cursor.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMdiArea>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace busquill {

namespace {

QString Count(std::int64_t number) {
    return QLocale(QLocale::English).toString(static_cast<qlonglong>(number));
}

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

std::string BusName(const BoardTraits& board) {
    return Printf("%s %d %d", board.modelString.c_str(), static_cast<int>(board.bus.busMode),
                  static_cast<int>(board.bus.busWidth));
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
    : parts_(parts), table_(new QTableWidget(0, 2)), note_(new QLabel) {
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
    table_->installEventFilter(this);
    note_->setObjectName("IntervalNote");
    note_->setWordWrap(true);
    note_->setContentsMargins(4, 0, 4, 2);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(table_, 1);
    layout->addWidget(note_);
    commands.On(
        CommandId::Copy, [this] { Copy(); }, [this] { return table_->rowCount() > 0; });
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
    shown_.reset();
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
    Source source{&document,
                  &view->List(),
                  view->IsZoom(),
                  from,
                  to,
                  SelectedRows(view->List()),
                  BusName(parts_.analyzer.Link().Traits())};
    if (source != shown_) {
        ShowFigures(*view, source);
        shown_ = std::move(source);
    }
}

void IntervalPanel::ShowFigures(const CTraceView& view, const Source& source) {
    const WaitCursor wait;
    const CTesselDoc& document = view.Trace();
    const int current = table_->currentRow();
    const bool isSelected = current >= 0 && table_->item(current, 0)->isSelected();
    table_->setRowCount(0);
    note_->clear();
    AddLine("Samples", Count(source.to - source.from));
    if (const auto time = source.list->TimeFrom(source.from, source.to)) {
        // In full only where that says more.
        const QString rounded = QString::fromStdString(FormatTime(*time, source.isZoom));
        const QString inFull = Count(*time) + (source.isZoom ? "ps" : "ns");
        AddLine("Time", *time < 1000 ? rounded : rounded + " = " + inFull);
        const double units = source.isZoom ? 1e12 : 1e9;
        AddLine("1/t", *time == 0 ? "-" : WithPrefix(units / static_cast<double>(*time), "Hz"));
    }
    if (!source.isZoom) {
        AddFigures(document, source);
    }
    for (const auto& signal : source.list->All()) {
        if (IsCounted(*signal)) {
            AddEdges(document, source, *signal);
        }
    }
    table_->resizeColumnToContents(0);
    if (current >= 0 && current < table_->rowCount()) {
        table_->setCurrentCell(current, 0,
                               isSelected
                                   ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                                   : QItemSelectionModel::NoUpdate);
    }
}

void IntervalPanel::AddLine(const QString& name, const QString& value) {
    const int row = table_->rowCount();
    table_->insertRow(row);
    table_->setItem(row, 0, new QTableWidgetItem(name));
    table_->setItem(row, 1, new QTableWidgetItem(value));
}

void IntervalPanel::AddFigures(const CTesselDoc& document, const Source& source) {
    const std::vector<std::uint32_t> absent = AbsentSamples(document);
    const bool isBusClock = document.setup.clock == clockOfBus || document.setup.clock == clockSync;
    const IntervalFigures figures = FiguresOf(
        parts_.analyzer.Link().Traits(), parts_.analyzer.Tables(), SamplesOf(document, absent),
        static_cast<std::size_t>(source.from), static_cast<std::size_t>(source.to), isBusClock);
    if (figures.clocks) {
        AddLine("Clocks", Count(*figures.clocks));
    }
    if (figures.transactions) {
        AddLine("Transactions", Count(static_cast<std::int64_t>(*figures.transactions)));
        AddLine("Bytes", Count(static_cast<std::int64_t>(figures.bytes)));
        const auto throughput = figures.Throughput();
        AddLine("Throughput", throughput ? WithPrefix(*throughput, "B/s") : "-");
    }
    if (figures.hasGaps) {
        note_->setText(QString("Samples between the markers %1.").arg(areMissing));
    }
}

void IntervalPanel::AddEdges(const CTesselDoc& document, const Source& source,
                             const CSignal& signal) {
    const std::vector<std::uint32_t> absent =
        source.isZoom ? std::vector<std::uint32_t>() : AbsentSamples(document);
    const CapturedSamples samples = source.isZoom
                                        ? CapturedSamples{document.GetStore().GetData(true), 0, {}}
                                        : SamplesOf(document, absent);
    const EdgeCount edges = EdgesOf(signal, samples, static_cast<std::size_t>(source.from),
                                    static_cast<std::size_t>(source.to));
    const QString name = QString::fromStdString(signal.RowName());
    const QString count = Count(static_cast<std::int64_t>(edges.changes));
    signal.grouped ? AddLine("Changes of " + name, count)
                   : AddLine("Edges of " + name,
                             QString("%1: %2 rising, %3 falling")
                                 .arg(count, Count(static_cast<std::int64_t>(edges.rising)),
                                      Count(static_cast<std::int64_t>(edges.falling))));
}

/// The selected lines, or all of them: name and value, separated by a tab.
void IntervalPanel::Copy() const {
    const auto isSelected = [this](int row) { return table_->item(row, 0)->isSelected(); };
    bool any = false;
    for (int row = 0; row < table_->rowCount(); ++row) {
        any = any || isSelected(row);
    }
    QString text;
    for (int row = 0; row < table_->rowCount(); ++row) {
        if (!any || isSelected(row)) {
            text += table_->item(row, 0)->text() + '\t' + table_->item(row, 1)->text() + '\n';
        }
    }
    QGuiApplication::clipboard()->setText(text);
}

/// Esc leads back to the capture.
bool IntervalPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        if (CTraceView* view = ViewOf(dynamic_cast<CMDIChildWnd*>(parts_.area.activeSubWindow()))) {
            view->window()->activateWindow(); // the dock may float
            view->setFocus();
        }
        return true;
    }
    return Panel::eventFilter(watched, event);
}

} // namespace busquill
