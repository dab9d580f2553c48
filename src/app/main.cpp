#include "platform/clock.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"
#include "ui/framework/message_boxes.h"
#include "ui/framework/qt_settings.h"
#include "ui/shell/command_line.h"
#include "ui/shell/desktop_start.h"
#include "ui/shell/open_requests.h"
#include "ui/shell/program.h"

#include <QApplication>

using namespace busquill;

int main(int argc, char** argv) {
    QApplication application(argc, argv); // removes Qt's own switches, such as -platform
    const std::string name = ApplicationName(CommandLineSwitch({argv + 1, argv + argc}));
    NameApplication(name);
    // With a switch, the program has the settings of one bench, so it takes no files from
    // the desktop.
    const bool hasUsualSettings = name == stockName;
    const auto files = TakeDesktopStart();
    if (files && hasUsualSettings && HandOver(*files)) {
        return 0;
    }

    MainThread mainThread;
    ShowBoxesAsWindows(mainThread);
    if (files) {
        EnterUserFolder(mainThread);
    }
    const WorkingDirectory directory = WorkingDirectory::AtStart();
    QtSettings settings(name);
    SystemClock clock;
    const auto usb = OpenUsbBus();
    Program program({mainThread, mainThread, settings, clock, *usb, OpenSerialPort, directory});
    OpenRequests requests(mainThread, [&](const std::string& file) { program.OpenFile(file); });
    if (hasUsualSettings) {
        requests.Listen();
    }
    program.InitInstance();
    requests.Serve(files.value_or(std::vector<std::string>()));
    return QApplication::exec();
}
