#include "tracesetup/expression_editor.h"

namespace busquill {

namespace {

constexpr int firstPlace = expressionTokens - 1;
constexpr int noRoom = -1;

int HighestFreePlace(const Expression& bytes) noexcept {
    int place = firstPlace;
    while (place != noRoom && TokenAt(bytes, place) != TokenEmpty) {
        --place;
    }
    return place;
}

} // namespace

ExpressionEditor::ExpressionEditor(const Expression& bytes) noexcept
    : bytes_(bytes), position_(HighestFreePlace(bytes)) {}

std::uint8_t ExpressionEditor::LastToken() const noexcept {
    return position_ == firstPlace ? std::uint8_t{TokenEmpty} : TokenAt(bytes_, position_ + 1);
}

bool ExpressionEditor::TakesOperand() const noexcept {
    const std::uint8_t last = LastToken();
    return IsAll() || last == TokenEmpty || (last >= TokenAnd && last <= TokenOpen);
}

bool ExpressionEditor::TakesOperator() const noexcept {
    const std::uint8_t last = LastToken();
    return !IsAll() && ((last >= TokenFirstEvent && last <= TokenLastEvent) || last == TokenClose);
}

bool ExpressionEditor::CanErase() const noexcept {
    return position_ < firstPlace;
}

void ExpressionEditor::Add(std::uint8_t token) noexcept {
    if (IsAll()) {
        Clear();
    }
    if (position_ != noRoom) {
        SetTokenAt(bytes_, position_--, token);
    }
}

void ExpressionEditor::Clear() noexcept {
    bytes_ = expressionNone;
    position_ = firstPlace;
}

void ExpressionEditor::SetAll() noexcept {
    bytes_ = expressionAll;
    position_ = noRoom;
}

void ExpressionEditor::Backspace() noexcept {
    if (IsAll()) {
        Clear();
    } else if (CanErase()) {
        SetTokenAt(bytes_, ++position_, TokenEmpty);
    }
}

} // namespace busquill
