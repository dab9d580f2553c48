#pragma once

#include "platform/memory_settings.h"
#include "support/board_process.h"
#include "support/manual_clock.h"
#include "support/modal_qt.h"
#include "support/paths.h"
#include "support/recording_prompts.h"
#include "support/scripted_usb.h"
#include "support/temp_dir.h"
#include "tour/menu_entry.h"
#include "ui/shell/program.h"

#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <gtest/gtest.h>

#include <filesystem>

namespace busquill::test {

/// The whole program in its windows, with its own working directory that holds the stored captures.
/// In Demo Mode unless a test connects a board.
class ProgramFixture : public testing::Test {
protected:
    ProgramFixture() {
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString(dir.Path()));
        for (const char* name : {"Trigger1.tra", "Trigger2.tra"}) {
            std::filesystem::copy(SourceFile("data/" + std::string(name)), dir.File(name));
        }
        settings.WriteProfileString("Setup", "ComPort", "COM1");
    }

    void StartDemo() {
        Start(clock, [](const std::string&) { return nullptr; });
        ASSERT_TRUE(program->Link().IsDemoMode());
        prompts.Forget();
    }
    void Start(Clock& withClock,
               std::function<std::unique_ptr<SerialPort>(const std::string&)> openSerial) {
        program = std::make_unique<Program>(Program::Machine{mainThread, prompts, settings,
                                                             withClock, usb, std::move(openSerial),
                                                             WorkingDirectory(dir.Path())});
        program->InitInstance();
        QApplication::processEvents();
    }

    CMainFrame& Frame() { return program->Frame(); }
    QAction& Entry(const QString& path) {
        QAction* action = FindEntry(*Frame().menuBar(), path);
        if (action == nullptr) {
            throw std::runtime_error("no entry " + path.toStdString());
        }
        return *action;
    }
    void Choose(const QString& path) {
        QAction& action = Entry(path);
        ASSERT_TRUE(action.isEnabled()) << path.toStdString();
        action.trigger();
        QApplication::processEvents();
    }
    /// Chooses an entry that opens a dialog and calls `act` on the dialog.
    template <class Dialog>
    void ChooseDialog(const QString& path, std::function<void(Dialog&)> act) {
        AnswerDialog<Dialog>([&] { Choose(path); }, act);
    }
    QList<QMdiSubWindow*> Windows() { return Frame().Area().subWindowList(); }

    const TempDir dir;
    MainThread mainThread;
    RecordingPrompts prompts;
    MemorySettings settings;
    ManualClock clock;
    ScriptedUsb usb;
    std::unique_ptr<Program> program;
};

} // namespace busquill::test
