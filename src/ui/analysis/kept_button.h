#pragma once

#include <QToolButton>

#include <string>

class QMenu;

namespace busquill {

class ExpressionLine;
class KeptExpressions;
class Prompts;

/// A button beside a line with an expression. Its menu keeps the expression by a name, and puts a
/// kept one into the line.
class KeptButton final : public QToolButton {
    Q_OBJECT
public:
    /// The line and the prompts outlive it.
    KeptButton(ExpressionLine& line, Prompts& prompts);

protected:
    /// Without a capture there is nothing to apply an expression to.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Fill();
    void AskForName();
    void Keep(const std::string& name);
    void Remove(const std::string& name);
    /// False if the file cannot be read, which is told.
    [[nodiscard]] bool Read(KeptExpressions& kept);
    /// Writes the changed expressions.
    void Write(const KeptExpressions& kept);

    ExpressionLine& line_;
    Prompts& prompts_;
    QMenu* menu_;
};

} // namespace busquill
