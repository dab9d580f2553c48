#include "capture/expression_reader.h"

#include "platform/text.h"

#include <array>
#include <bit>
#include <utility>

namespace busquill {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr std::array<std::string_view, 7> keywords = {"and",   "or",    "not",    "in",
                                                      "rises", "falls", "changes"};

} // namespace

bool IsInName(char c) noexcept {
    return IsLetter(c) || IsDigit(c) || c == '/' || c == '#';
}

std::size_t NameLength(std::string_view text) noexcept {
    if (text.empty() || !IsLetter(text.front())) {
        return 0;
    }
    return static_cast<std::size_t>(std::ranges::find_if_not(text, IsInName) - text.begin());
}

std::size_t SliceLength(std::string_view text) noexcept {
    std::size_t at = 0;
    const auto take = [&](std::string_view sign) {
        const bool isThere = text.substr(at).starts_with(sign);
        at += isThere ? sign.size() : 0;
        return isThere;
    };
    const auto takeDigits = [&] {
        const std::size_t first = at;
        while (at < text.size() && IsDigit(text[at])) {
            ++at;
        }
        return at > first;
    };
    if (!take("[") || !takeDigits()) {
        return 0;
    }
    if ((take("..") || take(":")) && !takeDigits()) {
        return 0;
    }
    return take("]") ? at : 0;
}

bool IsKeyword(std::string_view word) noexcept {
    return std::ranges::any_of(keywords,
                               [&](auto keyword) { return EqualIgnoringCase(keyword, word); });
}

std::string Quoted(std::string_view text, char quote) {
    return quote + std::string(text) + quote;
}

std::string QuotedName(std::string_view name) {
    const std::size_t bracket = std::min(name.find_last_of('['), name.size());
    const bool hasSlice = SliceLength(name.substr(bracket)) == name.size() - bracket;
    const std::string_view base = hasSlice ? name.substr(0, bracket) : name;
    const bool isPlain = !base.empty() && NameLength(base) == base.size() && !IsKeyword(base);
    return (isPlain ? std::string(base) : Quoted(base, '`')) +
           std::string(name.substr(base.size()));
}

void ExpressionReader::Fail(std::string message, std::size_t place) {
    if (!error_) {
        error_ = ExpressionError{place, std::move(message)};
    }
}

void ExpressionReader::SkipBlanks() {
    at_ = std::min(text_.find_first_not_of(" \t\r\n\f\v", at_), text_.size());
}

bool ExpressionReader::AtEnd() {
    return Place() == text_.size();
}

std::size_t ExpressionReader::Place() {
    SkipBlanks();
    return at_;
}

bool ExpressionReader::Sees(std::string_view sign) {
    return text_.substr(Place()).starts_with(sign);
}

bool ExpressionReader::TakeSign(std::string_view sign) {
    if (!Sees(sign)) {
        return false;
    }
    at_ += sign.size();
    return true;
}

bool ExpressionReader::TakeWord(std::string_view word) {
    const std::string_view rest = text_.substr(Place());
    if (!EqualIgnoringCase(rest.substr(0, NameLength(rest)), word)) {
        return false;
    }
    at_ += word.size();
    return true;
}

std::string_view ExpressionReader::PeekLabel() {
    return LabelAt(Place());
}

ExpressionReader ExpressionReader::From(std::size_t place) const {
    ExpressionReader reader(text_);
    reader.at_ = place;
    return reader;
}

std::string_view ExpressionReader::LabelAt(std::size_t place) const {
    const std::string_view rest = text_.substr(place);
    if (rest.empty() || !IsLetter(rest.front())) {
        return {};
    }
    const auto end = std::ranges::find_if_not(
        rest, [](char c) { return IsLetter(c) || IsDigit(c) || c == '-'; });
    return rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
}

std::string ExpressionReader::TakeName() {
    SkipBlanks();
    std::string name;
    if (text_.substr(at_).starts_with('`')) {
        const std::size_t end = text_.find('`', at_ + 1);
        if (end == std::string_view::npos) {
            Fail("expected ` at the end of the name", text_.size());
            return {};
        }
        name = Trim(text_.substr(at_ + 1, end - at_ - 1));
        at_ = end + 1;
    } else {
        const std::string_view rest = text_.substr(at_);
        name = rest.substr(0, NameLength(rest));
        if (IsKeyword(name)) {
            return {};
        }
        at_ += name.size();
    }
    if (const std::size_t slice = SliceLength(text_.substr(at_)); slice != 0 && !name.empty()) {
        std::string range(text_.substr(at_, slice));
        if (const std::size_t dots = range.find(".."); dots != std::string::npos) {
            range.replace(dots, 2, ":");
        }
        name += range;
        at_ += slice;
    }
    return name;
}

std::string ExpressionReader::TakeQuoted(const std::string& what) {
    if (!TakeSign("\"")) {
        Fail("expected a " + what + " in double quotes");
        return {};
    }
    const std::size_t end = text_.find('"', at_);
    if (end == std::string_view::npos) {
        Fail("expected \" at the end of the label", text_.size());
        return {};
    }
    const std::string_view text = text_.substr(at_, end - at_);
    if (text.empty()) {
        Fail("the label is empty");
    }
    at_ = end + 1;
    return std::string(text);
}

std::uint64_t ExpressionReader::TakeBase(bool isHex) {
    if (TakeSign("0x") || TakeSign("0X")) {
        return 16;
    }
    if (TakeSign("0b") || (!isHex && TakeSign("0B"))) {
        return 2;
    }
    return isHex ? 16 : 10;
}

std::size_t ExpressionReader::TakeDigits(ExpressionNumber& number, std::size_t place) {
    const std::size_t digitBits = number.base == 16 ? 4 : 1;
    std::size_t count = 0;
    for (; at_ < text_.size(); ++at_) {
        const char c = ToLower(text_[at_]);
        if (c == '_' && count != 0) {
            continue;
        }
        const bool isX = number.base != 10 && c == 'x';
        const bool isHexDigit = number.base == 16 && c >= 'a' && c <= 'f';
        const bool isDecimal = IsDigit(c) && (number.base != 2 || c <= '1');
        if (!isX && !isHexDigit && !isDecimal) {
            break;
        }
        const int worth = isX ? 0 : isHexDigit ? c - 'a' + 10 : c - '0';
        const auto digit = static_cast<std::uint64_t>(worth);
        if (number.value > (~std::uint64_t{0} - digit) / number.base) {
            Fail("the number is too large", place);
            break;
        }
        number.value = number.value * number.base + digit;
        if (number.base != 10) {
            // Bits shifted out above stand for digits that are not written.
            number.known = number.known << digitBits | (isX ? 0 : number.base - 1);
            number.writtenBits += digitBits;
        }
        ++count;
    }
    return count;
}

namespace {

constexpr const char* numberWithX = "a number with X begins with 0x or 0b";

const char* ExpectedNumber(std::uint64_t base) {
    switch (base) {
    case 2:
        return "expected a binary number";
    case 16:
        return "expected a hexadecimal number";
    default:
        return "expected a number";
    }
}

} // namespace

ExpressionNumber ExpressionReader::TakeNumber(bool isHex) {
    const std::size_t place = Place();
    ExpressionNumber number;
    number.isNegative = TakeSign("-");
    number.base = TakeBase(isHex);
    if (TakeDigits(number, place) == 0) {
        const bool isX = number.base == 10 && ToLower(Ahead(0)) == 'x';
        Fail(isX ? numberWithX : ExpectedNumber(number.base), place);
    }
    if (number.base == 10) {
        if (Ahead(0) == '.' && IsDigit(Ahead(1))) { // two points belong to a range
            ++at_;
            number.decimals = TakeDigits(number, place);
        }
        number.writtenBits = std::max(1, static_cast<int>(std::bit_width(number.value)));
    }
    return number;
}

void ExpressionReader::EndNumber(const ExpressionNumber& number, std::size_t place) {
    const bool isAfterBlank = at_ != 0 && !IsInName(text_[at_ - 1]);
    const char next = isAfterBlank ? ' ' : ToLower(Ahead(0));
    if (number.base != 10 && next == '.' && IsDigit(Ahead(1))) {
        Fail(number.base == 2 ? "a binary number has no decimals"
                              : "a hexadecimal number has no decimals",
             place);
    }
    if (number.base == 10 && next == ',' && IsDigit(Ahead(1))) {
        Fail("decimals follow a point, as in 1.5us", place);
    }
    if (number.base == 10 && next == 'x') {
        Fail(numberWithX, place);
    }
    if (number.base == 10 && next >= 'a' && next <= 'f') {
        Fail("a hexadecimal number begins with 0x", place);
    }
    if (IsInName(next)) {
        Fail(ExpectedNumber(number.base), place);
    }
}

} // namespace busquill
