#include "panels.h"

#include "capture/trace_document.h"
#include "tour.h"
#include "ui/shell/main_frame.h"

#include <QComboBox>
#include <QDockWidget>
#include <QTableView>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace busquill {

namespace {

/// The row of a single line in the waveforms.
CSignal& LineOf(CTesselDoc& capture, const char* name) {
    const auto& rows = capture.waveformList.All();
    return **std::ranges::find_if(
        rows, [&](const auto& row) { return !row->grouped && row->name == name; });
}

} // namespace

void ShowTransactions(Tour& tour, CMainFrame& frame) {
    frame.resize(1160, 800);
    tour.Choose(frame, "Analyze/Transactions", "message");
    auto* dock = frame.findChild<QDockWidget*>("Transactions");
    if (dock == nullptr) {
        tour.Fail("no table of transactions");
        return;
    }
    frame.resizeDocks({dock}, {400}, Qt::Vertical);
    auto* filter = dock->findChild<QComboBox*>("TransactionFilter");
    filter->setEditText("wait > 2 and end != retry");
    auto* table = dock->findChild<QTableView*>("TransactionTable");
    WaitFor([] { return false; }, 1000); // until the filter is applied
    table->setCurrentIndex(table->model()->index(table->model()->rowCount() / 2, 0));
    tour.Picture(frame, "transactions");
    tour.Picture(*dock, "transactions-table");
    filter->setEditText("wait > 2 and adress == 0xFEBF_XXXX");
    tour.Picture(*dock, "transactions-mistake");
    filter->setEditText("");
    tour.Choose(frame, "Analyze/Transactions", "message");
    frame.resize(900, 600);
}

void ShowFindings(Tour& tour, CMainFrame& frame) {
    frame.resize(1000, 720);
    tour.Choose(frame, "Analyze/Findings and Hits", "message");
    auto* dock = frame.findChild<QDockWidget*>("Findings and Hits");
    if (dock == nullptr) {
        tour.Fail("no list of findings");
        return;
    }
    frame.resizeDocks({dock}, {300}, Qt::Vertical);
    auto* line = dock->findChild<QComboBox*>("HitExpression");
    line->setEditText("FRAME falls and COMMAND == \"Mem Rd*\"");
    auto* table = dock->findChild<QTableView*>("FindingTable");
    WaitFor([] { return false; }, 1000); // until the expression is applied
    table->setCurrentIndex(table->model()->index(table->model()->rowCount() / 2, 0));
    tour.Picture(frame, "findings");
    tour.Picture(*dock, "findings-list");
    line->setEditText("FRAME falls and COMAND == \"Mem Rd*\"");
    tour.Picture(*dock, "findings-mistake");
    line->setEditText("");
    WaitFor([] { return false; }, 1000);
    dock->findChild<QComboBox*>("ListedFindings")->setCurrentIndex(2);
    emit dock->findChild<QComboBox*>("ListedFindings")->activated(2);
    tour.Picture(*dock, "findings-empty");
    tour.Choose(frame, "Analyze/Findings and Hits", "message");
    frame.resize(900, 600);
}

void ShowInterval(Tour& tour, CMainFrame& frame, CTesselDoc& capture) {
    tour.Choose(frame, "Analyze/Interval", "message");
    auto* dock = frame.findChild<QDockWidget*>("Interval");
    if (dock == nullptr) {
        tour.Fail("no panel for the interval");
        return;
    }
    frame.resize(900, 720);
    frame.resizeDocks({dock}, {220}, Qt::Vertical);
    CSignal& selected = LineOf(capture, "IRDY");
    selected.selected = true;
    const CSignal& active = LineOf(capture, "FRAME"); // low
    const auto trigger = static_cast<std::size_t>(capture.Marker(0, false));
    std::size_t next = trigger + 1;
    while (active.Bit(next) || !active.Bit(next - 1)) {
        ++next;
    }
    capture.SetMarker(1, static_cast<std::int64_t>(trigger));
    capture.SetMarker(2, static_cast<std::int64_t>(next));
    frame.RefreshCommands(); // as before each event
    tour.Picture(frame, "interval");
    selected.selected = false;
    tour.Choose(frame, "Analyze/Interval", "message");
    frame.resize(900, 600);
}

void ShowBookmarks(Tour& tour, CMainFrame& frame, CTesselDoc& capture) {
    constexpr std::pair<int, const char*> notes[] = {{-310, "Ring full: the card stops here"},
                                                     {0, "First write after the reset"},
                                                     {9, "Last data phase"},
                                                     {420, "Retries, see the log of the driver"}};
    for (const auto& [number, note] : notes) {
        capture.SetBookmark(number, note);
    }
    tour.Choose(frame, "Analyze/Bookmarks", "message");
    frame.resize(900, 620);
    frame.RefreshCommands(); // as before each event
    capture.GoToBookmark(0);
    frame.RefreshCommands();
    tour.Picture(frame, "bookmarks");
    for (const auto& each : notes) {
        capture.SetBookmark(each.first, std::nullopt);
    }
    tour.Choose(frame, "Analyze/Bookmarks", "message");
    frame.resize(900, 600);
}

} // namespace busquill
