#include "signals/value_editor.h"

#include "signals/signal.h"
#include "signals/value_text.h"

#include <algorithm>

namespace busquill {

namespace {

bool IsX(char typed) {
    return typed == 'X' || typed == 'x';
}

int DigitOf(char typed) {
    if (typed >= '0' && typed <= '9') {
        return typed - '0';
    }
    if (typed >= 'a' && typed <= 'f') {
        return typed - 'a' + 10;
    }
    return typed >= 'A' && typed <= 'F' ? typed - 'A' + 10 : 16;
}

int DigitsOf(std::int32_t radix) {
    return radix == Radix::Binary ? 2 : radix == Radix::Octal ? 8 : 16;
}

} // namespace

ValueEditor::ValueEditor(std::vector<std::uint8_t> value, std::vector<std::uint8_t> mask,
                         unsigned width, std::int32_t radix)
    : value_(std::move(value)), mask_(std::move(mask)), maskGiven_(!mask_.empty()), width_(width),
      radix_(radix) {
    const std::size_t bytes = BytesFor(width);
    value_.resize(bytes);
    mask_.resize(bytes, 0xFF);
    Refresh();
}

void ValueEditor::Refresh() {
    text_ = value_.empty() ? "" : FormatValue(value_, width_, radix_, mask_, false);
    caret_ = std::min(caret_, text_.size());
}

void ValueEditor::SetRadix(std::int32_t radix) {
    radix_ = radix;
    caret_ = 0;
    Refresh();
}

void ValueEditor::Clear() {
    std::fill(value_.begin(), value_.end(), std::uint8_t{0});
    if (maskGiven_) {
        std::fill(mask_.begin(), mask_.end(), std::uint8_t{0});
    }
    Refresh();
}

void ValueEditor::Left() {
    if (caret_ > 0) {
        --caret_;
    }
    if (caret_ > 0 && text_[caret_] == ' ') {
        --caret_;
    }
}

void ValueEditor::Right() {
    if (caret_ < text_.size()) {
        ++caret_;
    }
    if (caret_ < text_.size() && text_[caret_] == ' ') {
        ++caret_;
    }
}

void ValueEditor::PlaceCaret(std::size_t at) {
    caret_ = std::min(at, text_.size());
}

bool ValueEditor::Type(char typed) {
    if (!IsX(typed) && DigitOf(typed) >= DigitsOf(radix_)) {
        return false;
    }
    if (caret_ >= text_.size()) {
        return true;
    }
    const auto place =
        static_cast<std::size_t>(std::count_if(text_.begin() + static_cast<std::ptrdiff_t>(caret_),
                                               text_.end(), [](char c) { return c != ' '; }));
    if (place > 0) {
        if (radix_ == Radix::Binary) {
            SetBit(place - 1, typed);
        } else if (radix_ == Radix::Hex) {
            SetNibble(place - 1, typed);
        } // octal digits cannot be edited; only the caret moves
    }
    Refresh();
    Right();
    return true;
}

void ValueEditor::SetBit(std::size_t bit, char typed) {
    AssignBit(value_, bit, typed == '1');
    AssignBit(mask_, bit, !IsX(typed));
}

// The highest digit may have fewer than four bits, but still sets four in its byte.
void ValueEditor::SetNibble(std::size_t nibble, char typed) {
    const unsigned shift = nibble % 2 == 0 ? 0 : 4;
    const unsigned keep = 0xF0U >> shift;
    std::uint8_t& value = value_[nibble / 2];
    std::uint8_t& mask = mask_[nibble / 2];
    const unsigned digit = IsX(typed) ? 0 : static_cast<unsigned>(DigitOf(typed));
    const unsigned known = IsX(typed) ? 0 : 0xF;
    value = static_cast<std::uint8_t>((value & keep) | digit << shift);
    mask = static_cast<std::uint8_t>((mask & keep) | known << shift);
}

} // namespace busquill
