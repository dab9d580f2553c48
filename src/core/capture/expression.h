/// The language of conditions, on samples and on transactions: one parser for both. What the names
/// in an expression mean is up to those who own them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace busquill {

class KeptExpressions;

/// What is wrong with an expression, and where.
struct ExpressionError {
    std::size_t place = 0; // of the first character in question; at most the length of the text
    std::string message;
};

/// Something that can be compared.
struct ExpressionName {
    enum class Values : std::uint8_t {
        Count, // whole numbers without a unit
        Time,  // nanoseconds, or a number with a unit
        Bits,  // a number of `width` bits without a sign, or a label in quotes
        Text,  // a text in quotes, like one of the labels if there are any
        Word,  // one of the labels, or like some of them in quotes; at most 64
        Flag,  // holds or not, without an operator
    };
    enum class Edges : std::uint8_t { None, Changes, All };

    std::string name;
    Values values = Values::Count;
    Edges edges = Edges::None;
    std::size_t width = 64;
    bool isHex = false; // digits without a prefix are hexadecimal, as the user sees the values
    std::vector<std::string> labels;
    std::size_t id = 0; // whatever the owner of the names wants
};

/// The names that an expression may use.
class ExpressionNames {
public:
    virtual ~ExpressionNames() = default;

    /// What the names are called in messages: "a field".
    [[nodiscard]] virtual std::string_view Kind() const = 0;
    /// `name` is without quotes; a slice is part of it, as "AD[7:0]".
    [[nodiscard]] virtual std::optional<ExpressionName> Find(std::string_view name) = 0;
    /// All that there are, without quotes.
    [[nodiscard]] virtual std::vector<std::string> All() const = 0;
    /// Why a name that Find does not know is of use elsewhere only; empty if it is of none.
    [[nodiscard]] virtual std::string BelongsElsewhere(std::string_view name) const = 0;
    /// What to write for a text that tables show in the place of a label; empty for others.
    [[nodiscard]] virtual std::string InsteadOfLabel(std::string_view /*text*/) const { return {}; }
};

/// One comparison of an expression.
struct ExpressionTest {
    enum class Kind : std::uint8_t {
        InRange,  // least to most; Bits: low to high; a Flag is in any range
        IsMasked, // the bits of `high` have the values in `low`
        IsLike,   // like `text`, in which "*" is any characters
        IsOneOf,  // the labels whose bits are set in `low`
        Rises,
        Falls,
        Changes,
    };
    Kind kind = Kind::InRange;
    /// "!=": the value is another one. Does not hold where there is no value.
    bool isOther = false;
    ExpressionName name;
    std::int64_t least = std::numeric_limits<std::int64_t>::min();
    std::int64_t most = std::numeric_limits<std::int64_t>::max();
    std::uint64_t low = 0;
    std::uint64_t high = ~std::uint64_t{0};
    std::size_t writtenBits = 0; // for which there were digits
    std::string text;
};

/// A parsed expression in postfix order, so that it needs no recursion.
struct ParsedExpression {
    enum class Step : std::uint8_t { Test, Not, And, Or };
    struct Operation {
        Step step = Step::Test;
        ExpressionTest test; // of a Test
    };
    std::vector<Operation> operations;

    /// The most results that are waiting for a later step at any time.
    static constexpr std::size_t mostResults = 62;
};

/// The expression, or the first mistake. It may use the kept ones.
[[nodiscard]] std::variant<ParsedExpression, ExpressionError>
ParseExpression(std::string_view text, ExpressionNames& names,
                const KeptExpressions* kept = nullptr);

/// What can stand at the cursor.
struct ExpressionCompletion {
    std::size_t place = 0; // the texts replace what is between here and the cursor
    std::vector<std::string> texts;
};
/// The names, operators, labels and words that can stand at the cursor and begin with what is
/// before it, in upper or lower case; none after a mistake.
[[nodiscard]] ExpressionCompletion CompleteExpression(std::string_view text, std::size_t cursor,
                                                      ExpressionNames& names,
                                                      const KeptExpressions* kept = nullptr);

/// A name as it has to be written: in backquotes, unless it is a plain word.
[[nodiscard]] std::string QuotedName(std::string_view name);

/// Whether the text is like the pattern, in which "*" stands for any characters. Case does not
/// count.
[[nodiscard]] bool IsLike(std::string_view text, std::string_view pattern);

/// The fields of transactions, which conditions on samples refuse.
constexpr std::array<std::string_view, 16> transactionFields = {
    "number", "sample",       "time",          "command", "address", "words",
    "bytes",  "wait",         "initiatorWait", "latency", "end",     "gap",
    "tag",    "splitRequest", "findings",      "headless"};

} // namespace busquill
