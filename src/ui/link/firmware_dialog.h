#pragma once

#include "link/firmware_download.h"

#include <QDialog>

class QLineEdit;
class QProgressBar;
class QPushButton;

namespace busquill {

class CAnalyzerLink;
class MainThread;
class Prompts;
class Settings;
class WindowTimer;

/// Replaces the board's firmware from an Intel hex file. Closes when that is complete.
class CFirmwareDialog final : public QDialog {
    Q_OBJECT
public:
    CFirmwareDialog(QWidget* parent, CAnalyzerLink& link, Settings& settings, Prompts& prompts,
                    const MainThread& mainThread);

    void reject() override;

private:
    void Browse();
    void Download();
    void ShowProgress();

    Settings& settings_;
    Prompts& prompts_;
    FirmwareDownload download_;
    QLineEdit* file_;
    QPushButton* browse_;
    QPushButton* start_;
    QProgressBar* progress_;
    WindowTimer* timer_;
};

} // namespace busquill
