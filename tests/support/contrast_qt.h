#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace busquill::test {

/// How well a text of one colour can be read on the other, from 1 to 21. From 4.5 on it can be read
/// easily.
inline double Contrast(const QColor& a, const QColor& b) {
    const auto linear = [](int part) {
        const double value = part / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](const QColor& color) {
        return 0.2126 * linear(color.red()) + 0.7152 * linear(color.green()) +
               0.0722 * linear(color.blue());
    };
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

constexpr double readable = 4.5;

} // namespace busquill::test
