#include "ui/link/board_feature.h"

#include "capture/analyzer.h"
#include "ui/framework/wait_cursor.h"
#include "ui/framework/win_app.h"
#include "ui/link/board_info_dialog.h"
#include "ui/link/bus_config_dialog.h"
#include "ui/link/firmware_dialog.h"
#include "ui/link/serial_test_dialog.h"
#include "ui/link/setup_dialog.h"

#include <QMdiArea>

namespace busquill {

namespace {

QWidget* MainWindow(const FeatureParts& parts) {
    return parts.area.window();
}

/// Connects again after OK, whatever was changed. A board that answers at another rate than the
/// stored one is moved to the usual rate, not to the stored one.
void SetUpPort(const FeatureParts& parts) {
    CAnalyzerLink& link = parts.analyzer.Link();
    CSetupDialog dialog(MainWindow(parts), {link, parts.settings, parts.prompts, parts.mainThread},
                        SerialDevices());
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const WaitCursor wait;
    link.Connect(ReadPortSetting(parts.settings), usualBaudRate);
    parts.app.boardChanged();
    parts.analyzer.Tables().Load();
}

void ConfigureBus(const FeatureParts& parts) {
    CBusConfigDialog dialog(MainWindow(parts), parts.analyzer.Link(), parts.settings);
    if (dialog.exec() == QDialog::Accepted) {
        parts.app.boardChanged();
    }
}

} // namespace

Feature BoardFeature(const FeatureParts& parts) {
    Feature feature;
    feature.commands.On(CommandId::BoardSetup, [parts] { SetUpPort(parts); });
    feature.commands.On(CommandId::BoardInfo, [parts] {
        CBoardInfoDialog(MainWindow(parts), parts.analyzer.Link()).exec();
    });
    feature.commands.On(CommandId::DownloadFirmware, [parts] {
        CFirmwareDialog(MainWindow(parts), parts.analyzer.Link(), parts.settings, parts.prompts,
                        parts.mainThread)
            .exec();
    });
    feature.commands.On(CommandId::SerialTest, [parts] {
        CSerialTestDialog(MainWindow(parts), parts.analyzer.Link(), parts.mainThread).exec();
    });
    feature.commands.On(CommandId::BusConfiguration, [parts] { ConfigureBus(parts); });
    return feature;
}

} // namespace busquill
