#pragma once

#include "tracesetup/trace_setup.h"

namespace busquill {

/// An expression as buttons build it, one token after the other, so that only well-formed
/// sequences come out; brackets are not counted.
class ExpressionEditor {
public:
    explicit ExpressionEditor(const Expression& bytes) noexcept;

    [[nodiscard]] const Expression& Bytes() const noexcept { return bytes_; }
    /// Whether an event, a NOT or an open bracket may come next.
    [[nodiscard]] bool TakesOperand() const noexcept;
    /// Whether AND, OR, XOR or a closing bracket may come next.
    [[nodiscard]] bool TakesOperator() const noexcept;
    [[nodiscard]] bool CanErase() const noexcept;

    /// Nothing happens when all 16 places are taken. Over "All" it begins anew.
    void Add(std::uint8_t token) noexcept;
    void Clear() noexcept;
    void SetAll() noexcept;
    void Backspace() noexcept;

private:
    [[nodiscard]] bool IsAll() const noexcept { return bytes_ == expressionAll; }
    [[nodiscard]] std::uint8_t LastToken() const noexcept;

    Expression bytes_;
    int position_; // the nibble that the next token takes; -1: there is no room
};

} // namespace busquill
