#pragma once

#include <QDialog>

namespace busquill {

class CAnalyzerLink;

/// Shows what the connected board says of itself. Read-only.
class CBoardInfoDialog final : public QDialog {
    Q_OBJECT
public:
    CBoardInfoDialog(QWidget* parent, const CAnalyzerLink& link);
};

} // namespace busquill
