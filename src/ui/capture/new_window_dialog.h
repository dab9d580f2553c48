#pragma once

#include <QDialog>

class QRadioButton;

namespace busquill {

class Settings;

/// Asks whether the other display of a trace replaces the one in the window or opens in a new
/// window. The answer is saved for the next time.
class CNewWindowDialog final : public QDialog {
    Q_OBJECT
public:
    CNewWindowDialog(QWidget* parent, Settings& settings);

    [[nodiscard]] bool OpensNewWindow() const;
    void accept() override;

private:
    Settings& settings_;
    QRadioButton* newWindow_;
};

} // namespace busquill
