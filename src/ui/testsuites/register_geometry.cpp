#include "ui/testsuites/register_geometry.h"

namespace busquill {

namespace {

constexpr int bits = 32;

/// From one x up to, not including, another.
QRect Between(int left, int right, int top, int height) {
    return {left, top, right - left, height};
}

} // namespace

QRect RegisterGeometry::Row(int word) const noexcept {
    return {0, bitNumbers + word * rowHeight, width, rowHeight};
}

/// The number stands over the half of the picture to which its bit belongs.
QRect RegisterGeometry::BitNumber(int bit) const noexcept {
    return bit >= bits / 2 ? Between(0, width / 2, 0, bitNumbers)
                           : Between(width / 2, width, 0, bitNumbers);
}

QRect RegisterGeometry::Name(const HeaderField& field) const noexcept {
    return Between((bits - 1 - field.lastBit) * width / bits,
                   (bits - field.firstBit) * width / bits, Row(field.word).top(), nameHeight);
}

QRect RegisterGeometry::Digit(int word, int digit) const noexcept {
    return Between(digit * width / digits, (digit + 1) * width / digits,
                   Row(word).top() + nameHeight, rowHeight - nameHeight);
}

QRect RegisterGeometry::Offset(int word) const noexcept {
    const QRect row = Row(word);
    return Between(width, width + offsetWidth, row.top() + nameHeight, rowHeight - nameHeight);
}

} // namespace busquill
