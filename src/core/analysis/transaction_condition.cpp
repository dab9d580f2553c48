#include "analysis/transaction_condition.h"

#include "platform/near_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <utility>

namespace busquill {

namespace {

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

/// In the order of TransactionCondition::Field; as the columns of the command line are named.
constexpr std::array<std::string_view, 15> fieldNames = {
    "number",        "sample",  "time", "command", "address", "words",        "bytes",   "wait",
    "initiatorWait", "latency", "end",  "gap",     "tag",     "splitRequest", "findings"};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether the text is like the pattern, in which "*" stands for any characters. Case does not
/// count.
bool IsLike(std::string_view text, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::optional<std::pair<std::size_t, std::size_t>> star; // after it in the pattern, in the text
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = {++in, at};
        } else if (in < pattern.size() && Lower(pattern[in]) == Lower(text[at])) {
            ++in;
            ++at;
        } else if (star) {
            in = star->first;
            at = ++star->second;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

} // namespace

/// Reads an expression from left to right and stops at the first mistake.
///
///     either     = both { "or" both }
///     both       = one { "and" one }
///     one        = "not" one | "(" either ")" | field comparison
///     comparison = operator value | "in" value ".." value
class ConditionParser {
public:
    explicit ConditionParser(std::string_view text) : text_(text) {}

    [[nodiscard]] std::variant<TransactionCondition, ExpressionError> Parse() {
        Either();
        SkipBlanks();
        if (!error_ && at_ < text_.size()) {
            Fail("expected \"and\" or \"or\"");
        }
        if (error_) {
            return *std::move(error_);
        }
        return std::move(condition_);
    }

private:
    using Field = TransactionCondition::Field;
    using Step = TransactionCondition::Step;
    using Operation = TransactionCondition::Operation;

    /// A number, or one some of whose digits are "X".
    struct Number {
        std::uint64_t value = 0;
        std::uint64_t mask = ~std::uint64_t{0};
        bool isNegative = false;

        [[nodiscard]] bool IsMasked() const noexcept { return mask != ~std::uint64_t{0}; }
        [[nodiscard]] std::int64_t Signed() const noexcept {
            const auto limited =
                static_cast<std::int64_t>(std::min<std::uint64_t>(value, std::uint64_t{highest}));
            return isNegative ? -limited : limited;
        }
    };

    // Evaluation keeps its results in the bits of a word: two for each level.
    static constexpr int deepest = 30;

    void Fail(std::string message, std::optional<std::size_t> place = std::nullopt) {
        if (!error_) {
            error_ = ExpressionError{place.value_or(at_), std::move(message)};
        }
    }
    void SkipBlanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) {
            ++at_;
        }
    }
    /// The word here; empty if there is none. Ends have hyphens in them.
    [[nodiscard]] std::string_view Peek(bool hyphens = false) {
        SkipBlanks();
        std::size_t end = at_;
        while (end < text_.size() && (IsLetter(text_[end]) || (end > at_ && IsDigit(text_[end])) ||
                                      (hyphens && end > at_ && text_[end] == '-'))) {
            ++end;
        }
        return text_.substr(at_, end - at_);
    }
    bool TakeWord(std::string_view word) {
        if (Peek() != word) {
            return false;
        }
        at_ += word.size();
        return true;
    }
    bool TakeSign(std::string_view sign) {
        SkipBlanks();
        if (!text_.substr(at_).starts_with(sign)) {
            return false;
        }
        at_ += sign.size();
        return true;
    }
    void Add(Operation operation) { condition_.operations_.push_back(std::move(operation)); }
    void Add(Step step) { Add(Operation{.step = step, .text = {}}); }

    void Either() {
        Both();
        while (!error_ && TakeWord("or")) {
            Both();
            Add(Step::Or);
        }
    }
    void Both() {
        One();
        while (!error_ && TakeWord("and")) {
            One();
            Add(Step::And);
        }
    }
    void One() {
        if (depth_ == deepest) {
            Fail("too many parentheses inside each other");
            return;
        }
        ++depth_;
        if (TakeWord("not")) {
            One();
            Add(Step::Not);
        } else if (TakeSign("(")) {
            Either();
            if (!error_ && !TakeSign(")")) {
                Fail("expected \")\"");
            }
        } else {
            Comparison();
        }
        --depth_;
    }

    void Comparison() {
        const std::string word(Peek());
        const auto name = std::ranges::find(fieldNames, word);
        if (name == fieldNames.end()) {
            const std::string names = ListNearest(word, TransactionCondition::FieldNames());
            Fail((word.empty() ? "expected a field: " : "there is no field \"" + word + "\": ") +
                 names);
            return;
        }
        at_ += word.size();
        const auto field = static_cast<Field>(name - fieldNames.begin());
        if (field == Field::Command || field == Field::End) {
            TextComparison(field, word);
        } else if (TakeWord("in")) {
            Range(field);
        } else {
            NumberComparison(field);
        }
    }

    void TextComparison(Field field, const std::string& name) {
        const bool isEqual = TakeSign("==");
        if (!isEqual && !TakeSign("!=")) {
            Fail("expected == or != after " + name);
            return;
        }
        if (field == Field::Command) {
            Add({.step = Step::IsText, .field = field, .text = QuotedText()});
        } else {
            Add({.step = Step::IsEnd, .field = field, .value = EndName(), .text = {}});
        }
        if (!isEqual) {
            Add(Step::Not);
            OnlyIfPresent(field);
        }
    }
    /// "!=" does not hold where there is nothing to compare either.
    void OnlyIfPresent(Field field) {
        if (field == Field::Command) {
            Add({.step = Step::IsText, .field = field, .text = "?*"});
        } else if (field == Field::Address) {
            Add({.step = Step::IsMasked, .field = field, .text = {}});
        } else {
            Add({.step = Step::InRange,
                 .field = field,
                 .least = lowest,
                 .most = highest,
                 .text = {}});
        }
        Add(Step::And);
    }

    [[nodiscard]] std::string QuotedText() {
        if (!TakeSign("\"")) {
            Fail("expected a command in double quotes");
            return {};
        }
        const std::size_t end = text_.find('"', at_);
        if (end == std::string_view::npos) {
            Fail("expected \" at the end of the command", text_.size());
            return {};
        }
        std::string quoted(text_.substr(at_, end - at_));
        if (quoted.empty()) {
            Fail("the command is empty");
        }
        at_ = end + 1;
        return quoted;
    }

    [[nodiscard]] std::uint64_t EndName() {
        const std::string word(Peek(true));
        std::vector<std::string> names;
        for (std::size_t i = 0; i < transactionEndCount; ++i) {
            names.emplace_back(NameOf(static_cast<TransactionEnd>(i)));
        }
        const auto found = std::ranges::find(names, word);
        if (found == names.end()) {
            Fail("expected an end: " + ListNearest(word, names));
            return 0;
        }
        at_ += word.size();
        return static_cast<std::uint64_t>(found - names.begin());
    }

    void Range(Field field) {
        const std::size_t place = at_;
        const Number least = PlainNumber();
        if (!error_ && !TakeSign("..")) {
            Fail("expected \"..\" between two numbers");
        }
        const Number most = error_ ? Number() : PlainNumber();
        if (error_) {
            return;
        }
        if (field == Field::Address ? least.value > most.value : least.Signed() > most.Signed()) {
            Fail("the range ends before it begins", place + 1);
        }
        AddRange(field, least, most);
    }

    void AddRange(Field field, const Number& least, const Number& most) {
        CheckSign(field, least);
        CheckSign(field, most);
        Add({.step = Step::InRange,
             .field = field,
             .least = least.Signed(),
             .most = most.Signed(),
             .value = least.value,
             .mask = most.value,
             .text = {}});
    }

    void CheckSign(Field field, const Number& number) {
        if (field == Field::Address && number.isNegative) {
            Fail("an address has no sign");
        }
    }

    void NumberComparison(Field field) {
        constexpr std::array<std::string_view, 6> signs = {"==", "!=", "<=", ">=", "<", ">"};
        const auto sign = std::ranges::find_if(signs, [&](auto each) { return TakeSign(each); });
        if (sign == signs.end()) {
            Fail("expected ==, !=, <, <=, >, >= or in");
            return;
        }
        if (*sign == "==" || *sign == "!=") {
            Equality(field, *sign == "==");
            return;
        }
        const Number number = PlainNumber();
        if (error_) {
            return;
        }
        Number least{.value = 0};
        Number most{.value = ~std::uint64_t{0}};
        // Addresses are unsigned; everything else fits 63 bits and a sign.
        if (field != Field::Address) {
            least = {.value = std::uint64_t{highest}, .isNegative = true};
        }
        (sign->front() == '<' ? most : least) = number;
        AddRange(field, least, most);
        if (sign->size() == 1) { // without the number itself
            AddRange(field, number, number);
            Add(Step::Not);
            Add(Step::And);
        }
    }

    void Equality(Field field, bool isEqual) {
        const Number number = AnyNumber();
        if (error_) {
            return;
        }
        CheckSign(field, number);
        if (field == Field::Address || number.IsMasked()) {
            Add({.step = Step::IsMasked,
                 .field = field,
                 .value = number.value,
                 .mask = number.mask,
                 .text = {}});
        } else {
            AddRange(field, number, number);
        }
        if (!isEqual) {
            Add(Step::Not);
            OnlyIfPresent(field);
        }
    }

    [[nodiscard]] Number PlainNumber() {
        SkipBlanks();
        const std::size_t place = at_;
        Number number = AnyNumber();
        if (!error_ && number.IsMasked()) {
            Fail("a number with X can only be compared with == and !=", place);
        }
        return number;
    }

    /// Decimal, with a unit of time if the user likes, or hexadecimal with "0x". "_" may be between
    /// digits.
    [[nodiscard]] Number AnyNumber() {
        SkipBlanks();
        const std::size_t place = at_;
        Number number;
        number.isNegative = TakeSign("-");
        const bool isHex = TakeSign("0x") || TakeSign("0X");
        const std::uint64_t base = isHex ? 16 : 10;
        bool any = false;
        for (; at_ < text_.size(); ++at_) {
            const char c = Lower(text_[at_]);
            if (c == '_' && any) {
                continue;
            }
            const bool isFree = isHex && c == 'x';
            const bool isHexDigit = isHex && c >= 'a' && c <= 'f';
            if (!isFree && !isHexDigit && !IsDigit(c)) {
                break;
            }
            const auto digit = static_cast<std::uint64_t>(isFree       ? 0
                                                          : isHexDigit ? c - 'a' + 10
                                                                       : c - '0');
            if (number.value > (~std::uint64_t{0} - digit) / base) {
                Fail("the number is too large", place);
                return {};
            }
            number.value = number.value * base + digit;
            if (isHex) {
                number.mask = number.mask << 4 | (isFree ? 0 : 0xF);
            }
            any = true;
        }
        if (!any) {
            Fail("expected a number", place);
        } else if (number.isNegative && number.IsMasked()) {
            Fail("a number with X has no sign", place);
        } else if (!isHex) {
            TakeUnit(number, place);
        }
        return number;
    }

    void TakeUnit(Number& number, std::size_t place) {
        constexpr std::array<std::pair<std::string_view, std::uint64_t>, 4> units = {
            {{"ns", 1}, {"us", 1000}, {"ms", 1000000}, {"s", 1000000000}}};
        for (const auto& [unit, factor] : units) {
            if (!TakeWord(unit)) {
                continue;
            }
            if (number.value > std::uint64_t{highest} / factor) {
                Fail("the number is too large", place);
                return;
            }
            number.value *= factor;
            return;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int depth_ = 0;
    TransactionCondition condition_;
    std::optional<ExpressionError> error_;
};

std::variant<TransactionCondition, ExpressionError>
TransactionCondition::Parse(std::string_view text) {
    return ConditionParser(text).Parse();
}

std::vector<std::string> TransactionCondition::FieldNames() {
    return {fieldNames.begin(), fieldNames.end()};
}

bool TransactionCondition::Test(const Operation& operation, const Transaction& transaction,
                                std::string_view command) {
    if (operation.step == Step::IsText) {
        const bool isAny = operation.text == "?*";
        return !command.empty() && (isAny || IsLike(command, operation.text));
    }
    if (operation.field == Field::End) {
        return operation.step != Step::IsEnd ||
               static_cast<std::uint64_t>(transaction.end) == operation.value;
    }
    if (operation.field == Field::Address) {
        if (!transaction.address || transaction.isHeadless) {
            return false;
        }
        const std::uint64_t address = *transaction.address;
        return operation.step == Step::IsMasked
                   ? (address & operation.mask) == operation.value
                   : operation.value <= address && address <= operation.mask;
    }
    const auto number = [&]() -> std::optional<std::int64_t> {
        const auto positive = [](std::uint64_t value) { return static_cast<std::int64_t>(value); };
        switch (operation.field) {
        case Field::Number:
            return positive(transaction.number);
        case Field::Sample:
            return transaction.sample;
        case Field::Time:
            return transaction.time;
        case Field::Words:
            return positive(transaction.dataPhases);
        case Field::Bytes:
            return positive(transaction.bytes);
        case Field::Wait:
            return transaction.Wait();
        case Field::InitiatorWait:
            return positive(transaction.waitStates.initiator);
        case Field::Latency:
            return transaction.Latency();
        case Field::Gap:
            return transaction.gap;
        case Field::Tag:
            return transaction.sequence ? std::optional(positive(transaction.sequence->Tag()))
                                        : std::nullopt;
        case Field::SplitRequest:
            return transaction.splitRequest ? std::optional(positive(*transaction.splitRequest))
                                            : std::nullopt;
        case Field::Findings:
            return positive(transaction.findings);
        case Field::Command:
        case Field::Address:
        case Field::End:
            break;
        }
        return std::nullopt;
    }();
    if (!number) {
        return false;
    }
    return operation.step == Step::IsMasked
               ? (static_cast<std::uint64_t>(*number) & operation.mask) == operation.value
               : operation.least <= *number && *number <= operation.most;
}

bool TransactionCondition::Holds(const Transaction& transaction, std::string_view command) const {
    std::uint64_t results = 0; // the last in the lowest bit
    for (const Operation& operation : operations_) {
        const std::uint64_t last = results & 1;
        const std::uint64_t before = results >> 1;
        switch (operation.step) {
        case Step::Not:
            results ^= 1;
            break;
        case Step::And:
            results = (before & ~std::uint64_t{1}) | (before & last);
            break;
        case Step::Or:
            results = before | last;
            break;
        default:
            results = results << 1 | (Test(operation, transaction, command) ? 1U : 0U);
        }
    }
    return (results & 1) != 0;
}

} // namespace busquill
