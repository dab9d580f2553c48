#include "ui/shell/program.h"

#include "link/port_setting.h"
#include "ui/framework/qt_settings.h"
#include "ui/framework/wait_cursor.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QWindow>

namespace busquill {

namespace {

constexpr int longestPaint = 1000; // milliseconds; a window that starts minimised is never painted

/// Returns when a shown window has been painted. User input in the meantime waits.
void UpdateWindow(const QWidget& window) {
    QElapsedTimer waited;
    waited.start();
    while (!window.windowHandle()->isExposed() && waited.elapsed() < longestPaint) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 10);
        QThread::msleep(1);
    }
}

} // namespace

void NameApplication(const std::string& name) {
    QCoreApplication::setOrganizationName(organisation);
    QCoreApplication::setApplicationName(QString::fromStdString(name));
    QGuiApplication::setDesktopFileName(BUSQUILL_ID); // by which a desktop finds the icon
}

Program::Program(Machine machine) : machine_(std::move(machine)), analyzer_(machine_) {}

// Documents and windows use the analyzer, so they are destroyed first.
Program::~Program() {
    if (frame_) {
        frame_->SetApplication(nullptr);
    }
    app_.reset();
    frame_.reset();
}

void Program::InitInstance() {
    frame_ = std::make_unique<CMainFrame>(Link(), Tables(), machine_.mainThread, machine_.settings);
    app_ = std::make_unique<CTesselApp>(CTesselApp::Parts{machine_.settings, machine_.prompts,
                                                          machine_.mainThread, machine_.directory,
                                                          analyzer_, frame_->Area()});
    frame_->SetApplication(app_.get());
    frame_->RefreshStatusPanes();
    frame_->show();
    UpdateWindow(*frame_);
    const WaitCursor wait;
    Link().Connect(ReadPortSetting(machine_.settings));
    frame_->RefreshStatusPanes();
    Tables().Load();
}

void Program::OpenFile(const std::string& path) {
    app_->OpenDocumentFile(path);
    frame_->RefreshCommands();
    frame_->raise();
    frame_->activateWindow();
    QApplication::alert(frame_.get()); // where a program may not come to the front by itself
}

} // namespace busquill
