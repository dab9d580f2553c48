#include "ui/controls/number_field.h"

#include <limits>

namespace busquill {

namespace {

bool HasNoDigits(const QString& text) {
    return text.isEmpty() || text == "-";
}

} // namespace

NumberField::NumberField(QWidget* parent) : QSpinBox(parent) {
    setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

QValidator::State NumberField::validate(QString& text, int& position) const {
    return HasNoDigits(text) ? QValidator::Acceptable : QSpinBox::validate(text, position);
}

int NumberField::valueFromText(const QString& text) const {
    return HasNoDigits(text) ? 0 : QSpinBox::valueFromText(text);
}

} // namespace busquill
