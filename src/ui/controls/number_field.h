#pragma once

#include <QSpinBox>

namespace busquill {

/// A signed number with arrows. Anything can be typed; an empty field counts as 0, not as the
/// number that was in it before.
class NumberField : public QSpinBox {
    Q_OBJECT
public:
    explicit NumberField(QWidget* parent = nullptr);

protected:
    [[nodiscard]] QValidator::State validate(QString& text, int& position) const override;
    [[nodiscard]] int valueFromText(const QString& text) const override;
};

} // namespace busquill
