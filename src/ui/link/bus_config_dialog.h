#pragma once

#include "link/board_identity.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace busquill {

class CAnalyzerLink;
class Settings;

/// Shows and changes the board's bus configuration, and saves it for the next start.
class CBusConfigDialog final : public QDialog {
    Q_OBJECT
public:
    CBusConfigDialog(QWidget* parent, CAnalyzerLink& link, Settings& settings);

    void accept() override;

private:
    [[nodiscard]] BusConfig InitialConfig();

    CAnalyzerLink& link_;
    Settings& settings_;
    BusConfig config_;
    QComboBox* mode_;
    QComboBox* width_;
    QComboBox* voltage_;
    QLineEdit* frequency_;
    QCheckBox* save_;
};

} // namespace busquill
