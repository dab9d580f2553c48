#include "platform/clock.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"
#include "ui/framework/message_boxes.h"
#include "ui/framework/qt_settings.h"
#include "ui/shell/command_line.h"
#include "ui/shell/program.h"

#include <QApplication>

using namespace busquill;

int main(int argc, char** argv) {
    const WorkingDirectory directory = WorkingDirectory::AtStart();
    const std::string name = ApplicationName(CommandLineSwitch({argv + 1, argv + argc}));
    QApplication application(argc, argv);
    NameApplication(name);

    MainThread mainThread;
    ShowBoxesAsWindows(mainThread);
    QtSettings settings(name);
    SystemClock clock;
    const auto usb = OpenUsbBus();
    Program program({mainThread, mainThread, settings, clock, *usb, OpenSerialPort, directory});
    program.InitInstance();
    return QApplication::exec();
}
