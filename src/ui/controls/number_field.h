#pragma once

#include <QSpinBox>

namespace busquill {

/// A signed number with arrows, which takes whatever is typed. An empty field is 0, not the number
/// that stood in it before.
class NumberField : public QSpinBox {
    Q_OBJECT
public:
    explicit NumberField(QWidget* parent = nullptr);

protected:
    [[nodiscard]] QValidator::State validate(QString& text, int& position) const override;
    [[nodiscard]] int valueFromText(const QString& text) const override;
};

} // namespace busquill
