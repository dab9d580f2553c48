// Opens the program's windows one by one and saves a picture of each.

#include "exerciser/master_document.h"
#include "platform/clock.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"
#include "stimulus/stimulus_document.h"
#include "tour.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_view.h"
#include "ui/display/wave_window.h"
#include "ui/framework/go_stop_child.h"
#include "ui/framework/message_boxes.h"
#include "ui/framework/qt_settings.h"
#include "ui/patterns/pattern_dialogs.h"
#include "ui/patterns/pattern_grid.h"
#include "ui/shell/command_line.h"
#include "ui/shell/program.h"
#include "ui/trace/child_frame.h"
#include "ui/trace/trace_bar.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QGroupBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace busquill;

namespace {

/// Writes a value of the decoded signal COMMAND into a pattern.
void SetCommand(CSignalList& list, std::uint32_t pattern, std::string_view label) {
    for (const auto& signal : list.All()) {
        if (signal->decoded == nullptr || signal->decoded->name != "COMMAND") {
            continue;
        }
        const auto& values = signal->decoded->values;
        const auto found = std::find_if(values.begin(), values.end(), [&](const auto& value) {
            return value.label != nullptr && value.label == label;
        });
        if (found != values.end()) {
            list.ApplyDecodedValue(signal.get(), pattern,
                                   static_cast<std::size_t>(found - values.begin()));
        }
        return;
    }
}

/// Closes the windows of a capture without asking whether to save it.
void CloseCapture(CMainFrame& frame, CTesselDoc& document) {
    document.SetModifiedFlag(false);
    for (QMdiSubWindow* window : frame.Area().subWindowList()) {
        window->close();
    }
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    frame.RefreshCommands();
}

/// The steps of the manual's tutorial.
void FollowTutorial(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Capture/State", "message");
    auto* window = dynamic_cast<CChildFrame*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for the tutorial's capture");
        return;
    }
    tour.Click(window->Bar().SetupButton(),
               {[](QWidget& setup) { Tour::PressLater(ButtonOf(setup, "Setup Wizard")); },
                [](QWidget& wizard) {
                    const auto* question = wizard.findChildren<QGroupBox*>().first();
                    ButtonOf(*question, "Memory").click();
                    ButtonOf(*question, "Write").click();
                    question->findChildren<QLineEdit*>().first()->setText("1F40000 to 1F40200");
                    Tour::PressLater(ButtonOf(wizard, "OK"));
                },
                [&tour](QWidget& setup) {
                    tour.Picture(setup, "tutorial-setup");
                    Tour::PressLater(ButtonOf(setup, "OK"));
                }});
    window->Bar().GoButton().click();
    CTesselDoc& document = window->Trace();
    WaitFor([] { return false; }, 2000);
    window->Bar().StopButton().click();
    if (!WaitFor([&] { return !document.CaptureActive() && !document.IsUploading(); }, 60000)) {
        tour.Fail("the upload has not ended");
    }
    WaitFor([] { return false; }, 400);
    window->showMaximized();
    tour.Choose(frame, "Search/Go to/Trigger", "message");
    tour.Picture(frame, "tutorial-capture");
    SetCommand(document.searchPattern, 0, "I/O Rd");
    tour.Choose(frame, "Search/Find Next", "message");
    window->showNormal();
    tour.Click(window->Bar().DisplayButton(), {[&tour](QWidget& question) {
                   ButtonOf(question, "Open new window").click();
                   tour.Picture(question, "new-trace-window");
                   Tour::PressLater(ButtonOf(question, "OK"));
               }});
    if (auto* waves = dynamic_cast<CChildFrame*>(frame.Area().activeSubWindow())) {
        document.SetMarker(2, document.Marker(1, false) - 20);
        waves->showMaximized();
        document.GoToSample(document.Marker(1, false) - 10, false);
        tour.Picture(frame, "tutorial-waveforms");
    }
    CloseCapture(frame, document);
}

/// A live capture, from the choice of a setup to the end of the upload.
void Capture(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Capture/State", "message");
    auto* window = dynamic_cast<CChildFrame*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for a capture");
        return;
    }
    QComboBox& box = window->Bar().SetupBox();
    box.setCurrentIndex(box.findText("Read after 100 writes"));
    emit box.activated(box.currentIndex());
    tour.Click(window->Bar().SetupButton(), "trace-setup",
               {{"Setup &Wizard", "setup-wizard"},
                {"If1", "trace-expression"},
                {"Occurs1", "occurrence-count"},
                {"Then1", "trace-condition"}});
    window->Bar().GoButton().click();
    CTesselDoc& document = window->Trace();
    WaitFor([&] { return false; }, 1200);
    tour.Picture(frame, "capture-running");
    for (QWidget* dialog : QApplication::topLevelWidgets()) {
        if (dialog->isVisible() && dialog->windowTitle() == "Trace Status") {
            tour.Picture(*dialog, "trace-status");
        }
    }
    if (!WaitFor([&] { return !document.CaptureActive(); }, 20000)) {
        window->Bar().StopButton().click();
    }
    WaitFor([&] { return false; }, 300);
    tour.Picture(frame, "capture-uploading");
    if (!WaitFor([&] { return !document.IsUploading(); }, 60000)) {
        tour.Fail("the upload has not ended");
    }
    WaitFor([&] { return false; }, 400);
    tour.Picture(frame, "capture");
    document.SetPathName(WorkingDirectory::AtStart().FilePath("capture.tra"));
    tour.Choose(frame, "File/Save", "save-trace");
}

/// A measurement of some seconds.
void Measure(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Performance/Utilization", "message");
    auto* window = dynamic_cast<CGoStopChild*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for a measurement");
        return;
    }
    tour.Click(*window->findChild<QToolButton*>("Setup"), "performance-setup");
    window->findChild<QToolButton*>("Go")->click();
    WaitFor([&] { return false; }, 5000);
    tour.Picture(*window, "performance");
    window->findChild<QToolButton*>("Stop")->click();
    window->close();
}

/// A read of some memory by the master, and the target.
void Exercise(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Exerciser/Master", "message");
    auto* window = dynamic_cast<CGoStopChild*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for a master");
        return;
    }
    auto& form = static_cast<CMasterDoc&>(window->GetDocument()).Form();
    form.addressEnd = {0xFF, 0x01};
    form.command = MasterWrite;
    form.dataValue = {0x42, 0x75, 0x73, 0x71, 0x75, 0x69, 0x6C, 0x6C};
    const auto go = [&] {
        window->GetDocument().UpdateAllViews(nullptr, CDocument::hintLoaded);
        window->findChild<QToolButton*>("Go")->click();
        WaitFor([&] { return window->RunState() == RunPicture::Stopped; }, 10000);
    };
    go();
    form.command = MasterRead;
    go();
    tour.Picture(*window, "master");
    tour.Click(ButtonOf(*window, "Options"), "master-options");
    window->close();
    tour.Choose(frame, "File/New/Target", "message");
    if (QMdiSubWindow* target = frame.Area().activeSubWindow()) {
        tour.Picture(*target, "target");
        target->close();
    }
}

/// A stimulus program that drives one pattern after each of two events.
void Stimulate(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Exerciser/Stimulus", "message");
    auto* window = dynamic_cast<CGoStopChild*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for a stimulus");
        return;
    }
    auto& document = static_cast<CStimulusDoc&>(window->GetDocument());
    TraceSetup& control = document.Program().control;
    control.levels[0] = {.ifExpr = ParseExpression("E1"), .thenGoto = 1, .stimulus = 1};
    control.levels[1] = {.ifExpr = ParseExpression("E2"),
                         .occurs = 16,
                         .thenGoto = stimulusStop,
                         .thenDuration = 20,
                         .elseGoto = 1,
                         .stimulus = 2};
    SetCommand(document.Program().patterns, 0, "Mem Wr");
    SetCommand(document.Program().patterns, 1, "Mem Rd");
    SetCommand(control.events, 0, "I/O Wr");
    SetCommand(control.events, 1, "Cfg Rd");
    document.UpdateAllViews(nullptr, CDocument::hintLoaded);
    tour.Click(*window->findChild<QAbstractButton*>("Then2"), "stimulus-condition");
    window->findChild<QToolButton*>("Go")->click();
    tour.Picture(*window, "stimulus");
    window->findChild<QToolButton*>("Stop")->click();
    window->close();
}

/// A device of the bus and its header.
void ShowConfiguration(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Exerciser/Configuration", "message");
    QMdiSubWindow* window = frame.Area().activeSubWindow();
    if (window == nullptr) {
        tour.Fail("no window for the configuration");
        return;
    }
    for (int device = 0; device < 6; ++device) {
        ButtonOf(*window, device == 0 ? "Find" : "Next >").click();
    }
    tour.Picture(*window, "configuration");
    window->close();
}

/// Some tests of a device, up to the first one with instructions.
void TestDevice(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, "File/New/Compliance Tests", "message");
    auto* window = dynamic_cast<CGoStopChild*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for compliance tests");
        return;
    }
    ButtonOf(*window, "Find").click();
    ButtonOf(*window, "Next >").click();
    tour.Click(ButtonOf(*window, "Options"), "compliance-options");
    tour.Click(*window->findChild<QToolButton*>("Go"), "compliance-instructions");
    if (!WaitFor([&] { return window->RunState() != RunPicture::Running; }, 60000)) {
        tour.Fail("no test has instructions");
    }
    tour.Picture(*window, "compliance");
    tour.Choose(frame, "File/Print Preview", "compliance-report");
    window->close();
}

/// A run of one of the two windows with a fixed check list, until there are some results.
void RunChecks(Tour& tour, Program& program, const char* entry, const char* picture, int results) {
    CMainFrame& frame = program.Frame();
    tour.Choose(frame, QString("File/New/%1").arg(entry), "message");
    auto* window = dynamic_cast<CGoStopChild*>(frame.Area().activeSubWindow());
    if (window == nullptr) {
        tour.Fail("no window for the checks");
        return;
    }
    tour.Click(ButtonOf(*window, "Options"), QString("%1-options").arg(picture));
    WaitFor([] { return false; }, 300); // until the board has the check list
    window->findChild<QToolButton*>("Go")->click();
    auto* list = window->findChild<QListWidget*>();
    if (!WaitFor([&] { return list->count() >= results; }, 60000)) {
        tour.Fail("the board finds nothing");
    }
    tour.Picture(*window, picture);
    window->resize(1100, 700);
    tour.Picture(*window, QString("%1-large").arg(picture));
    window->findChild<QToolButton*>("Stop")->click();
    window->close();
}

/// The windows in each set of colours, and again in the standard ones.
void ShowSets(Tour& tour, CMainFrame& frame) {
    for (const char* set : {"Legible", "Dark", "Standard"}) {
        QTimer::singleShot(0, &frame, [set] {
            const QWidget* sheet = QApplication::activeModalWidget();
            for (const QMenu* menu : sheet->findChildren<QMenu*>()) {
                if (QAction* action = Tour::Find(*menu, set)) {
                    action->trigger();
                }
            }
            sheet->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        });
        tour.Choose(frame, "Edit/Display/Colors", "message");
        tour.Picture(frame, QString("windows-") + QString(set).toLower());
    }
}

/// The dialogs that the menu on a signal's name opens.
void ChangeSignals(Tour& tour, const QMdiSubWindow& window) {
    auto* listing = window.findChild<CStateWnd*>();
    const QPoint name(listing->width() / 3, listing->fontMetrics().height() / 2);
    tour.ChooseOn(*listing, name, "signal-menu", "Change Signal...", "change-signal");
    tour.ChooseOn(*listing, name, "signal-menu", "Change Color...", "change-color");
}

/// The pattern of a search, with the dialogs of its cells.
void SearchPattern(Tour& tour, CMainFrame& frame) {
    const auto cell = [](const CPatternGrid& grid, const CSignalList& list, const char* title) {
        for (std::size_t column = 0; column < list.Size(); ++column) {
            if (list[column].VisibleWidth() > 0 && list[column].RowName().starts_with(title)) {
                return grid.Geometry().CellRect({0, column}).center();
            }
        }
        return QPoint();
    };
    const auto click = [cell](QWidget& question, const char* title) {
        auto& dialog = dynamic_cast<CSearchPatternDlg&>(question);
        Tour::ClickLater(dialog.Grid(), cell(dialog.Grid(), dialog.Edited(), title),
                         Qt::LeftButton);
    };
    const auto close = [](QWidget& dialog) { Tour::PressLater(ButtonOf(dialog, "Cancel")); };
    tour.Choose(frame, "Search/Find Pattern",
                {[&](QWidget& pattern) {
                     tour.Picture(pattern, "search-pattern");
                     click(pattern, "COMMAND");
                 },
                 [&](QWidget& command) {
                     tour.Picture(command, "command");
                     close(command);
                 },
                 [&](QWidget& pattern) { click(pattern, "AD["); },
                 [&](QWidget& value) {
                     tour.Picture(value, "value");
                     close(value);
                 },
                 close});
}

/// The tool tip at a place of a display.
void ShowTip(Tour& tour, QWidget& display, const QPoint& place) {
    QHelpEvent ask(QEvent::ToolTip, place, display.mapToGlobal(place));
    QApplication::sendEvent(&display, &ask);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->objectName() == "qtooltip_label") {
            tour.Picture(*window, "tool-tip");
        }
    }
    QToolTip::hideText();
}

/// The table of a capture's transactions below its listing.
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

/// What the board has found in a capture, and the samples that fulfil an expression.
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

/// The row of a single line in the waveforms.
CSignal& LineOf(CTesselDoc& capture, const char* name) {
    const auto& rows = capture.waveformList.All();
    return **std::ranges::find_if(
        rows, [&](const auto& row) { return !row->grouped && row->name == name; });
}

/// What lies between the markers: here a transaction, from its address to the next one, and the
/// edges of a line.
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

/// Bookmarks in the waveforms, in the gauge and in the panel.
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

/// The list of all keys.
void ShowKeys(Tour& tour, CMainFrame& frame) {
    for (QAction* action : frame.actions()) {
        if (action->text() == "Keys") {
            action->trigger();
        }
    }
    for (auto* dialog : frame.findChildren<QDialog*>()) {
        if (dialog->isVisible() && dialog->windowTitle() == "Keys") {
            tour.Picture(*dialog, "keys");
            dialog->close();
        }
    }
}

void Walk(Tour& tour, Program& program) {
    CMainFrame& frame = program.Frame();
    tour.Picture(frame, "main-window");
    tour.Choose(frame, "Utilities/Board Info", "board-info");
    tour.Choose(frame, "Utilities/Bus Configuration", "bus-configuration");
    tour.Choose(frame, "Utilities/Board Setup", "board-setup");
    tour.Choose(frame, "Utilities/Download Firmware", "download-firmware");
    tour.Choose(frame, "Utilities/Serial Test", "serial-test");
    Measure(tour, program);
    Exercise(tour, program);
    Stimulate(tour, program);
    ShowConfiguration(tour, program);
    TestDevice(tour, program);
    RunChecks(tour, program, "Anomaly Detection", "anomaly-detection", 8);
    RunChecks(tour, program, "Backplane Test", "backplane", 24);
    if (!program.Link().IsDemoMode()) {
        FollowTutorial(tour, program);
        Capture(tour, program);
        program.App().OpenDocumentFile(WorkingDirectory::AtStart().FilePath("Trigger2.tra"));
    } else {
        tour.Choose(frame, "File/New/Capture/State", "message");
    }
    if (QMdiSubWindow* window = frame.Area().activeSubWindow()) {
        tour.Picture(frame, "main-window-with-capture");
        window->showMaximized();
        tour.Picture(frame, "listing");
        frame.resize(1600, 1000);
        tour.Picture(frame, "listing-large");
        frame.resize(900, 600);
        ChangeSignals(tour, *window);
        ShowTransactions(tour, frame);
        ShowFindings(tour, frame);
    }
    tour.Choose(frame, "File/New/Capture/Waveform", "message");
    if (auto* window = dynamic_cast<CChildFrame*>(frame.Area().activeSubWindow())) {
        window->TraceView().GoTo(GoToTarget::Trigger);
        CTesselDoc& document = window->Trace();
        const std::int64_t trigger = document.Marker(0, false);
        document.SetMarker(1, trigger + 2);
        document.SetMarker(2, trigger + 12);
        QApplication::processEvents();
        tour.Picture(frame, "waveforms");
        ShowInterval(tour, frame, document);
        ShowBookmarks(tour, frame, document);
        auto* waves = window->findChild<CWaveformWnd*>();
        ShowTip(tour, *waves, {waves->width() / 2, waves->height() / 2});
        const std::int64_t zoomTrigger = document.Marker(0, true);
        document.SetZoomMarker(1, zoomTrigger + 2);
        document.SetZoomMarker(2, zoomTrigger + 12);
        window->Bar().ZoomButton().click();
        QApplication::processEvents();
        tour.Picture(frame, "power-zoom");
    }
    SearchPattern(tour, frame);
    tour.Choose(frame, "Search/Go to/Sample #", "go-to-sample");
    tour.Choose(frame, "Edit/Display/Name", "display-name");
    tour.Choose(frame, "Edit/Display/Markers", "display-markers");
    tour.Choose(frame, "Edit/Display/Colors", "display-colors");
    tour.Choose(frame, "Edit/Display/Grid", "display-grid");
    tour.Choose(frame, "Edit/Display/Scale", "display-scale");
    tour.Choose(frame, "Utilities/Define Signals", "define-signal");
    tour.Choose(frame, "Help/About Busquill!", "about");
    tour.Choose(frame, "File/Print Preview",
                {[&tour](QWidget& ask) {
                     tour.Picture(ask, "print-trace");
                     ask.findChild<QLineEdit*>("Start")->setText("0"); // few enough pages to
                     ask.findChild<QLineEdit*>("End")->setText("50");  // need no progress box
                     Tour::PressLater(ButtonOf(ask, "OK"));
                 },
                 [&tour](QWidget& preview) {
                     tour.Picture(preview, "print-preview");
                     QTimer::singleShot(0, &preview, &QWidget::close);
                 }});
    tour.Choose(frame, "Window/Cascade", "message");
    tour.Picture(frame, "windows");
    ShowSets(tour, frame);
    ShowKeys(tour, frame);
    tour.Choose(frame, "Help/Contents", "message");
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowTitle() == "Busquill! Help") {
            tour.Picture(*window, "help");
            auto* panes = window->findChild<QTabWidget*>();
            panes->setCurrentIndex(1);
            tour.Picture(*window, "help-index");
            panes->setCurrentIndex(2);
            QLineEdit* question = panes->currentWidget()->findChild<QLineEdit*>();
            question->setText("trigger position");
            emit question->returnPressed();
            tour.Picture(*window, "help-search");
        }
    }
}

/// The colours of a desktop with a dark theme.
QPalette DarkPalette() {
    const QColor window(45, 45, 45);
    const QColor text(230, 230, 230);
    const QColor disabled(130, 130, 130);
    QPalette palette(window);
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::Highlight, QColor(42, 110, 190));
    palette.setColor(QPalette::Link, QColor(110, 170, 240));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::ToolTipText, QPalette::HighlightedText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    palette.setColor(QPalette::PlaceholderText, disabled);
    return palette;
}

} // namespace

int main(int argc, char** argv) {
    const bool isDark = argc == 5 && QString(argv[4]) == "dark";
    if (argc != 4 && !isDark) {
        std::fprintf(stderr, "usage: busquill-tour board|demo FOLDER -SWITCH [dark]\n");
        return 2;
    }
    const WorkingDirectory directory = WorkingDirectory::AtStart();
    const std::string name = ApplicationName(CommandLineSwitch({argv[3]}));
    QApplication application(argc, argv);
    QApplication::setApplicationName(stockName); // it is shown in the titles of boxes
    if (isDark) {
        QApplication::setPalette(DarkPalette());
    }
    Tour tour(QString("%1/%2").arg(argv[2], argv[1]));

    MainThread mainThread;
    ShowBoxesAsWindows(mainThread);
    QtSettings settings(name);
    SystemClock clock;
    const auto usb = OpenUsbBus();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&tour] { tour.WatchModal(); });
    watch.start(100);

    Program program({mainThread, mainThread, settings, clock, *usb, OpenSerialPort, directory});
    program.InitInstance();
    Walk(tour, program);
    return tour.Failed() ? 1 : 0;
}
