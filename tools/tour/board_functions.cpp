#include "board_functions.h"

#include "exerciser/master_document.h"
#include "stimulus/stimulus_document.h"
#include "tour.h"
#include "ui/framework/go_stop_child.h"
#include "ui/shell/program.h"

#include <QAbstractButton>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QToolButton>

namespace busquill {

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

} // namespace busquill
