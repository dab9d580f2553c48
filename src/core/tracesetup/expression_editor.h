#pragma once

#include "tracesetup/trace_setup.h"

namespace busquill {

/// An expression that is built by buttons, token by token. Operands and operators alternate
/// correctly; brackets are not balanced.
class ExpressionEditor {
public:
    explicit ExpressionEditor(const Expression& bytes) noexcept;

    [[nodiscard]] const Expression& Bytes() const noexcept { return bytes_; }
    /// Whether an event, a NOT or an open bracket may come next.
    [[nodiscard]] bool TakesOperand() const noexcept;
    /// Whether AND, OR, XOR or a closing bracket may come next.
    [[nodiscard]] bool TakesOperator() const noexcept;
    [[nodiscard]] bool CanErase() const noexcept;

    /// Appends a token; does nothing when all 16 places are taken. Replaces "All".
    void Add(std::uint8_t token) noexcept;
    void Clear() noexcept;
    void SetAll() noexcept;
    void Backspace() noexcept;

private:
    [[nodiscard]] bool IsAll() const noexcept { return bytes_ == expressionAll; }
    [[nodiscard]] std::uint8_t LastToken() const noexcept;

    Expression bytes_;
    int position_; // the nibble of the next token; -1: full
};

} // namespace busquill
