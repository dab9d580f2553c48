#include "ui/shell/program.h"

#include "link/port_setting.h"
#include "ui/framework/qt_settings.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QWindow>

namespace busquill {

namespace {

constexpr int longestPaint = 1000; // milliseconds; a window that starts as an icon is not painted

/// Returns when a window that was shown has been painted on the screen. What the user does
/// meanwhile waits.
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
}

Program::Program(Machine machine)
    : machine_(std::move(machine)),
      realTimeStore_(CSampleStore::Board{link_, machine_.mainThread, machine_.prompts}),
      link_({machine_.settings, machine_.prompts, machine_.clock, machine_.mainThread,
             machine_.openSerial, machine_.usb}),
      tables_([this] { return link_.Traits(); }, machine_.directory) {
    // In Demo Mode the bus mode alone decides which signals there are.
    link_.SetFamilyListener([this] { tables_.Load(); });
}

// The monitor of a capture uses the link, and the link's thread may be completing a block.
Program::~Program() {
    if (frame_) {
        frame_->SetApplication(nullptr);
    }
    app_.reset();
    frame_.reset();
    realTimeStore_.ShutDown();
}

void Program::InitInstance() {
    frame_ = std::make_unique<CMainFrame>(link_, tables_, machine_.settings, machine_.mainThread);
    app_ = std::make_unique<CTesselApp>(
        CTesselApp::Parts{machine_.settings, machine_.prompts, link_, machine_.mainThread,
                          machine_.directory, realTimeStore_, tables_, frame_->Area()});
    frame_->SetApplication(app_.get());
    frame_->RefreshStatusPanes();
    frame_->show();
    UpdateWindow(*frame_);
    link_.Connect(ReadPortSetting(machine_.settings));
    frame_->RefreshStatusPanes();
    tables_.Load();
}

} // namespace busquill
