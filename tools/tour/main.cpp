// Opens the program's windows one by one and saves a picture of each.

#include "board_functions.h"
#include "menu_entry.h"
#include "panels.h"
#include "platform/clock.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"
#include "tour.h"
#include "ui/display/state_window.h"
#include "ui/display/trace_view.h"
#include "ui/display/wave_window.h"
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
#include <QGroupBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace busquill;

namespace {

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

/// The windows in each set of colours, and again in the standard ones.
void ShowSets(Tour& tour, CMainFrame& frame) {
    for (const char* set : {"Legible", "Dark", "Standard"}) {
        QTimer::singleShot(0, &frame, [set] {
            const QWidget* sheet = QApplication::activeModalWidget();
            for (const QMenu* menu : sheet->findChildren<QMenu*>()) {
                if (QAction* action = FindEntry(*menu, set)) {
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
