/// Reads the words, names, signs and numbers of an expression, from left to right.
#pragma once

#include "capture/expression.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace busquill {

/// A number, or one some of whose digits are "X".
struct ExpressionNumber {
    std::uint64_t value = 0;
    std::uint64_t known = ~std::uint64_t{0}; // bits that are not X
    std::size_t writtenBits = 0;
    std::size_t decimals = 0;    // the last digits of the value, after the point
    std::uint64_t lastDigit = 1; // what it is worth: of 1.50us, 10 ns
    std::uint64_t base = 10;
    bool isNegative = false;

    [[nodiscard]] bool HasX() const noexcept { return known != ~std::uint64_t{0}; }
    /// Limited to what fits.
    [[nodiscard]] std::int64_t Signed() const noexcept {
        constexpr std::uint64_t highest = std::numeric_limits<std::int64_t>::max();
        const auto limited = static_cast<std::int64_t>(std::min(value, highest));
        return isNegative ? -limited : limited;
    }
};

/// Takes one thing after the other off the text of an expression, without the blanks before it, and
/// keeps the first mistake.
class ExpressionReader {
public:
    explicit ExpressionReader(std::string_view text) : text_(text) {}

    void Fail(std::string message) { Fail(std::move(message), at_); }
    void Fail(std::string message, std::size_t place);
    [[nodiscard]] const std::optional<ExpressionError>& Error() const noexcept { return error_; }

    [[nodiscard]] bool AtEnd();
    /// Where the next thing begins.
    [[nodiscard]] std::size_t Place();
    /// Whether the text goes on with these characters.
    [[nodiscard]] bool Sees(std::string_view sign);
    /// What was read since a place.
    [[nodiscard]] std::string_view Since(std::size_t place) const {
        return text_.substr(place, at_ - place);
    }

    /// At most so many characters from a place on.
    [[nodiscard]] std::string_view TextAt(std::size_t place, std::size_t length) const {
        return text_.substr(place, length);
    }

    bool TakeSign(std::string_view sign);
    /// Takes this word, in upper or lower case, if it goes no further.
    bool TakeWord(std::string_view word);
    /// The label that is there without quotes, which may have hyphens in it; empty if there is
    /// none.
    [[nodiscard]] std::string_view PeekLabel();
    /// The same at a place that has been read.
    [[nodiscard]] std::string_view LabelAt(std::size_t place) const;
    /// A reader of the same text from a place on, without mistakes.
    [[nodiscard]] ExpressionReader From(std::size_t place) const;
    /// The name without its quotes, with its slice; empty if there is none.
    [[nodiscard]] std::string TakeName();
    /// The text in double quotes, which must not be empty. `what` it is, for the mistake.
    [[nodiscard]] std::string TakeQuoted(const std::string& what);
    /// Decimal, binary with "0b", or hexadecimal with "0x". "_" may be between digits. With
    /// `isHex`, digits without a prefix are hexadecimal, and so is "0B": listings write digits in
    /// upper case.
    [[nodiscard]] ExpressionNumber TakeNumber(bool isHex);
    /// Fails if letters or digits follow the number without a blank.
    void EndNumber(const ExpressionNumber& number, std::size_t place);

private:
    void SkipBlanks();
    [[nodiscard]] std::uint64_t TakeBase(bool isHex);
    /// Adds digits to a number; returns how many.
    std::size_t TakeDigits(ExpressionNumber& number, std::size_t place);
    /// The character so far ahead; 0 at the end.
    [[nodiscard]] char Ahead(std::size_t count) const noexcept {
        return at_ + count < text_.size() ? text_[at_ + count] : '\0';
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::optional<ExpressionError> error_;
};

/// Whether a character can stand in a name without quotes, after its first letter.
[[nodiscard]] bool IsInName(char c) noexcept;
/// The length of the name without quotes at the beginning of the text; 0 for none.
[[nodiscard]] std::size_t NameLength(std::string_view text) noexcept;
/// The length of a slice such as "[7..0]" or "[5]" at the beginning of the text; 0 for none.
[[nodiscard]] std::size_t SliceLength(std::string_view text) noexcept;
/// In upper or lower case.
[[nodiscard]] bool IsKeyword(std::string_view word) noexcept;
[[nodiscard]] std::string Quoted(std::string_view text, char quote);

} // namespace busquill
