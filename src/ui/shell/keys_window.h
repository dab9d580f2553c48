#pragma once

#include <QDialog>

namespace busquill {

/// Lists all keys of the program. It stays open beside the other windows.
class KeysWindow final : public QDialog {
    Q_OBJECT
public:
    explicit KeysWindow(QWidget* parent);
};

} // namespace busquill
