/// Where the parts of the register picture are: a row for each word of a configuration header, with
/// the names of its fields above its digits, and the offsets beside it.
#pragma once

#include "testsuites/config_header.h"

#include <QRect>

namespace busquill {

struct RegisterGeometry {
    static constexpr int bitNumbers = 14; // the strip above the rows
    static constexpr int rowHeight = 24;
    static constexpr int nameHeight = 10; // of a row
    static constexpr int digits = 8;

    int width = 0;       // of the words
    int offsetWidth = 0; // of the column to their right

    [[nodiscard]] static constexpr int Height() noexcept {
        return bitNumbers + configWords * rowHeight + 1;
    }
    [[nodiscard]] QRect BitNumber(int bit) const noexcept;
    [[nodiscard]] QRect Row(int word) const noexcept;
    /// The name of a field; its left edge is the mark of its upper bit.
    [[nodiscard]] QRect Name(const HeaderField& field) const noexcept;
    /// A digit of a word, from the most significant one.
    [[nodiscard]] QRect Digit(int word, int digit) const noexcept;
    [[nodiscard]] QRect Offset(int word) const noexcept;
};

} // namespace busquill
