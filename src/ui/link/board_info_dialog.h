#pragma once

#include <QDialog>

namespace busquill {

class CAnalyzerLink;

/// Shows the connected board's identity. Read-only.
class CBoardInfoDialog final : public QDialog {
    Q_OBJECT
public:
    CBoardInfoDialog(QWidget* parent, const CAnalyzerLink& link);
};

} // namespace busquill
