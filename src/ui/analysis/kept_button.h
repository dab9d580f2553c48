#pragma once

#include "capture/kept_expressions.h"

#include <QToolButton>

class QMenu;

namespace busquill {

class ExpressionLine;
class Prompts;

/// The user's kept expressions, as they are in the file now.
[[nodiscard]] KeptExpressions UserExpressions();

/// A button beside a line with an expression. Its menu keeps the expression by a name, and puts a
/// kept one into the line.
class KeptButton final : public QToolButton {
    Q_OBJECT
public:
    /// The line and the prompts outlive it.
    KeptButton(ExpressionLine& line, Prompts& prompts);

private:
    void Fill();
    void AskForName();
    void Keep(const std::string& name);
    void Remove(const std::string& name);
    /// Writes the changed expressions.
    void Write(const KeptExpressions& kept);

    ExpressionLine& line_;
    Prompts& prompts_;
    QMenu* menu_;
};

} // namespace busquill
