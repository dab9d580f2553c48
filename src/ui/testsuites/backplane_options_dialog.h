#pragma once

#include "testsuites/backplane_run.h"

#include <QDialog>

class QButtonGroup;

namespace busquill {

/// Asks how sensitive the board is to a short.
class CBackplaneOptionsDlg final : public QDialog {
    Q_OBJECT
public:
    CBackplaneOptionsDlg(QWidget* parent, BackplaneSensitivity sensitivity);

    [[nodiscard]] BackplaneSensitivity Sensitivity() const;

private:
    QButtonGroup* choices_;
};

} // namespace busquill
