#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace busquill {

/// Edits a wide value digit by digit; digits may be "any" (X). Independent of windows.
class ValueEditor {
public:
    /// Value and mask are little-endian, bit 0 first, of BytesFor(width) bytes. Without a mask
    /// all bits are known, and Clear leaves them so.
    ValueEditor(std::vector<std::uint8_t> value, std::vector<std::uint8_t> mask, unsigned width,
                std::int32_t radix);

    /// The digits, in groups separated by blanks.
    [[nodiscard]] const std::string& Text() const noexcept { return text_; }
    /// The index of the character that the next digit replaces.
    [[nodiscard]] std::size_t Caret() const noexcept { return caret_; }
    [[nodiscard]] std::int32_t Radix() const noexcept { return radix_; }
    [[nodiscard]] const std::vector<std::uint8_t>& Value() const noexcept { return value_; }
    [[nodiscard]] const std::vector<std::uint8_t>& Mask() const noexcept { return mask_; }

    void SetRadix(std::int32_t radix);
    /// The value becomes 0, and all its digits "any".
    void Clear();
    void Left();
    void Right();
    void Home() { caret_ = 0; }
    void End() { caret_ = text_.size(); }
    void PlaceCaret(std::size_t at);
    /// Types a digit of the radix, or X for "any"; false for other characters.
    bool Type(char typed);

private:
    void Refresh();
    void SetBit(std::size_t bit, char typed);
    void SetNibble(std::size_t nibble, char typed);

    std::vector<std::uint8_t> value_;
    std::vector<std::uint8_t> mask_;
    const bool maskGiven_;
    const unsigned width_;
    std::int32_t radix_;
    std::string text_;
    std::size_t caret_ = 0;
};

} // namespace busquill
