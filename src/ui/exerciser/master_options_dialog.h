#pragma once

#include <QDialog>

#include <cstdint>

class QComboBox;

namespace busquill {

/// Chooses the level on which a VME board requests the bus.
class CMasterOptionsDialog final : public QDialog {
    Q_OBJECT
public:
    /// `mask` has a bit for the level. OK changes it.
    CMasterOptionsDialog(QWidget* parent, std::uint8_t& mask);

    void accept() override;

private:
    std::uint8_t& mask_;
    QComboBox* level_;
};

} // namespace busquill
