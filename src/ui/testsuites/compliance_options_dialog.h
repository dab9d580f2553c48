#pragma once

#include "exerciser/bus_address.h"

#include <QDialog>

namespace busquill {

class CPatternEdit;

/// Asks for the address at which the tests find the device.
class CComplianceOptionsDialog final : public QDialog {
    Q_OBJECT
public:
    CComplianceOptionsDialog(QWidget* parent, const BusAddress& address);

    [[nodiscard]] BusAddress Address() const;

private:
    CPatternEdit* address_;
};

} // namespace busquill
