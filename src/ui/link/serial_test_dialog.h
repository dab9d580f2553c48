#pragma once

#include <QDialog>

class QLineEdit;
class QListWidget;

namespace busquill {

class CAnalyzerLink;
class MainThread;

/// A raw terminal on the port, for diagnosing a cable or a board: sends bytes past the request
/// queue and shows what arrives.
class CSerialTestDialog final : public QDialog {
    Q_OBJECT
public:
    CSerialTestDialog(QWidget* parent, CAnalyzerLink& link, const MainThread& mainThread);

private:
    void Send();
    void ShowArrived();

    CAnalyzerLink& link_;
    QLineEdit* bytes_;
    QListWidget* history_;
    QListWidget* read_;
};

} // namespace busquill
