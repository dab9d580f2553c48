#include "capture/expression.h"

#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace busquill {

namespace {

constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

using Values = ExpressionName::Values;
using Edges = ExpressionName::Edges;
using Test = ExpressionTest;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
/// Whether a character can stand in a name without quotes, after its first letter.
bool IsInName(char c) {
    return IsLetter(c) || IsDigit(c) || c == '/' || c == '#';
}

std::size_t NameLength(std::string_view text) {
    if (text.empty() || !IsLetter(text.front())) {
        return 0;
    }
    return static_cast<std::size_t>(std::ranges::find_if_not(text, IsInName) - text.begin());
}

/// The length of a slice such as "[7..0]" or "[5]" at the beginning of the text; 0 for none.
std::size_t SliceLength(std::string_view text) {
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

constexpr std::array<std::string_view, 7> keywords = {"and",   "or",    "not",    "in",
                                                      "rises", "falls", "changes"};

bool IsKeyword(std::string_view word) {
    return std::ranges::find(keywords, word) != keywords.end();
}

std::string Quoted(std::string_view text, char quote) {
    return quote + std::string(text) + quote;
}

/// A number, or one some of whose digits are "X".
struct Number {
    std::uint64_t value = 0;
    std::uint64_t known = ~std::uint64_t{0}; // bits that are not X
    std::size_t writtenBits = 0;
    bool isNegative = false;

    [[nodiscard]] bool HasX() const noexcept { return known != ~std::uint64_t{0}; }
    [[nodiscard]] std::int64_t Signed() const noexcept {
        const auto limited =
            static_cast<std::int64_t>(std::min<std::uint64_t>(value, std::uint64_t{highest}));
        return isNegative ? -limited : limited;
    }
};

/// Reads an expression from left to right and stops at the first mistake.
///
///     either = both { "or" both }
///     both   = one { "and" one }
///     one    = "not" one | "(" either ")" | name [ test ]
///     test   = sign value | "in" number ".." number | "rises" | "falls" | "changes"
class ExpressionParser {
public:
    /// With `offers`, texts that could stand at the end of the text are added there.
    ExpressionParser(std::string_view text, ExpressionNames& names,
                     std::vector<std::string>* offers = nullptr)
        : text_(text), names_(names), offers_(offers) {}

    [[nodiscard]] std::variant<ParsedExpression, ExpressionError> Parse() {
        Either();
        if (!error_ && !AtEnd()) {
            Fail("expected \"and\" or \"or\"");
        }
        if (error_) {
            return *std::move(error_);
        }
        return std::move(expression_);
    }

private:
    static constexpr int deepest = 30;
    // Two results wait in each depth, for "or" and for "and".
    static_assert(ParsedExpression::mostResults >= 2 * deepest + 1);

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
    [[nodiscard]] bool AtEnd() {
        SkipBlanks();
        return at_ == text_.size();
    }
    template <typename Texts>
    void Offer(const Texts& texts) {
        if (offers_ != nullptr && !error_ && AtEnd()) {
            offers_->insert(offers_->end(), texts.begin(), texts.end());
        }
    }
    void Offer(std::initializer_list<std::string_view> texts) {
        Offer(std::vector<std::string_view>(texts));
    }

    /// The word here; empty if there is none. The labels of fields have hyphens in them.
    [[nodiscard]] std::string_view PeekWord() {
        SkipBlanks();
        const std::string_view rest = text_.substr(at_);
        if (rest.empty() || !IsLetter(rest.front())) {
            return {};
        }
        const auto end = std::ranges::find_if_not(
            rest, [](char c) { return IsLetter(c) || IsDigit(c) || c == '-'; });
        return rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    }
    bool TakeWord(std::string_view word) {
        SkipBlanks();
        const std::string_view rest = text_.substr(at_);
        if (rest.substr(0, NameLength(rest)) != word) {
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

    void Add(ParsedExpression::Step step) { expression_.operations.push_back({step, {}}); }
    void Add(Test test) {
        expression_.operations.push_back({ParsedExpression::Step::Test, std::move(test)});
    }

    void Either() {
        Both();
        while (!error_ && TakeWord("or")) {
            Both();
            Add(ParsedExpression::Step::Or);
        }
    }
    void Both() {
        One();
        Offer({"and", "or"});
        while (!error_ && TakeWord("and")) {
            One();
            Offer({"and", "or"});
            Add(ParsedExpression::Step::And);
        }
    }
    void One() {
        if (depth_ == deepest) {
            Fail("too many parentheses inside each other");
            return;
        }
        ++depth_;
        OfferNames();
        if (TakeWord("not")) {
            One();
            Add(ParsedExpression::Step::Not);
        } else if (TakeSign("(")) {
            Either();
            Offer({")"});
            if (!error_ && !TakeSign(")")) {
                Fail("expected \")\"");
            }
        } else {
            NameAndTest();
        }
        --depth_;
    }

    [[nodiscard]] std::vector<std::string> WrittenNames() const {
        std::vector<std::string> all;
        for (const std::string& name : names_.All()) {
            all.push_back(QuotedName(name));
        }
        return all;
    }
    void OfferNames() {
        if (offers_ != nullptr && AtEnd()) {
            Offer(WrittenNames());
            Offer({"not", "("});
        }
    }

    /// The name here without its quotes, with its slice; empty if there is none.
    [[nodiscard]] std::string TakeName() {
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

    void NameAndTest() {
        SkipBlanks();
        const std::size_t place = at_;
        const std::string written = TakeName();
        if (error_) {
            return;
        }
        const std::string kind(names_.Kind());
        if (written.empty()) {
            Fail("expected " + kind + ": " + ListNearest(written, WrittenNames()), place);
            return;
        }
        const auto name = names_.Find(written);
        if (!name) {
            std::string message = names_.BelongsElsewhere(written);
            if (message.empty()) {
                const std::size_t article = kind.find(' ') + 1;
                message = "there is no " + kind.substr(article) + " \"" + written +
                          "\": " + ListNearest(written, WrittenNames());
            }
            Fail(std::move(message), place);
            return;
        }
        Test test;
        test.name = *name;
        if (name->values == Values::Flag) {
            Add(std::move(test));
            return;
        }
        OfferOperators(*name);
        if (TakeEdge(test, place)) {
            return;
        }
        if (name->values == Values::Text || name->values == Values::Word) {
            TextComparison(std::move(test), written);
        } else if (TakeWord("in")) {
            CheckWidth(test, place);
            Range(std::move(test));
        } else {
            CheckWidth(test, place);
            NumberComparison(std::move(test));
        }
    }

    void OfferOperators(const ExpressionName& name) {
        Offer({"==", "!="});
        if (name.values != Values::Text && name.values != Values::Word) {
            Offer({"<", "<=", ">", ">=", "in"});
        }
        if (name.edges == Edges::All) {
            Offer({"rises", "falls"});
        }
        if (name.edges != Edges::None) {
            Offer({"changes"});
        }
    }

    bool TakeEdge(Test& test, std::size_t place) {
        SkipBlanks();
        if (TakeWord("rises")) {
            test.kind = Test::Kind::Rises;
        } else if (TakeWord("falls")) {
            test.kind = Test::Kind::Falls;
        } else if (TakeWord("changes")) {
            test.kind = Test::Kind::Changes;
        } else {
            return false;
        }
        const std::string& name = test.name.name;
        if (test.name.edges == Edges::None) {
            Fail(name + " has no edges", place);
        } else if (test.name.edges == Edges::Changes && test.kind != Test::Kind::Changes) {
            Fail(Printf("%s has %zu lines; only a single line rises or falls, %s changes",
                        name.c_str(), test.name.width, name.c_str()),
                 place);
        }
        Add(std::move(test));
        return true;
    }

    void CheckWidth(const Test& test, std::size_t place) {
        constexpr std::size_t mostBits = 64;
        if (test.name.values == Values::Bits && test.name.width > mostBits) {
            Fail(Printf("%s has %zu lines; at most 64 can be compared, such as %s",
                        test.name.name.c_str(), test.name.width,
                        (QuotedName(test.name.name) + "[63..0]").c_str()),
                 place);
        }
    }

    void TextComparison(Test test, const std::string& name) {
        const bool isEqual = TakeSign("==");
        if (!isEqual && !TakeSign("!=")) {
            Fail("expected == or != after " + name);
            return;
        }
        test.isOther = !isEqual;
        if (test.name.values == Values::Text) {
            QuotedText(test);
        } else {
            LabelWord(test);
        }
        Add(std::move(test));
    }

    void OfferLabels(const ExpressionName& name) {
        if (offers_ == nullptr) {
            return;
        }
        for (const std::string& label : name.labels) {
            Offer({name.values == Values::Word ? label : Quoted(label, '"')});
        }
    }

    /// A text in quotes; where the labels are known, it must be like one of them.
    void QuotedText(Test& test) {
        OfferLabels(test.name);
        SkipBlanks();
        const std::size_t place = at_;
        if (!TakeSign("\"")) {
            Fail("expected a " + test.name.name + " in double quotes");
            return;
        }
        const std::size_t end = text_.find('"', at_);
        if (end == std::string_view::npos) {
            Fail("expected \" at the end of the label", text_.size());
            return;
        }
        test.kind = Test::Kind::IsLike;
        test.text = text_.substr(at_, end - at_);
        if (test.text.empty()) {
            Fail("the label is empty");
        }
        at_ = end + 1;
        const auto isLike = [&](const std::string& label) { return IsLike(label, test.text); };
        if (!error_ && test.name.values == Values::Bits &&
            std::ranges::none_of(test.name.labels, isLike)) {
            std::vector<std::string> labels;
            for (const std::string& label : test.name.labels) {
                labels.push_back(Quoted(label, '"'));
            }
            // Compared with its quotes, as the labels are.
            Fail(test.name.name + " has no label \"" + test.text +
                     "\": " + ListNearest(Quoted(test.text, '"'), std::move(labels)),
                 place);
        }
    }

    void LabelWord(Test& test) {
        OfferLabels(test.name);
        const std::string word(PeekWord());
        const auto& labels = test.name.labels;
        const auto found = std::ranges::find(labels, word);
        if (found == labels.end()) {
            Fail("expected an " + test.name.name + ": " + ListNearest(word, labels));
            return;
        }
        test.kind = Test::Kind::IsWord;
        test.low = static_cast<std::uint64_t>(found - labels.begin());
        at_ += word.size();
    }

    void Range(Test test) {
        SkipBlanks();
        const std::size_t place = at_;
        const Number least = PlainNumber(test.name);
        Offer({".."});
        if (!error_ && !TakeSign("..")) {
            Fail("expected \"..\" between two numbers");
        }
        const Number most = error_ ? Number() : PlainNumber(test.name);
        if (error_) {
            return;
        }
        if (test.name.values == Values::Bits ? least.value > most.value
                                             : least.Signed() > most.Signed()) {
            Fail("the range ends before it begins", place);
        }
        SetLeast(test, least);
        SetMost(test, most);
        Add(std::move(test));
    }

    static void SetLeast(Test& test, const Number& number) {
        test.least = number.Signed();
        test.low = number.value;
        test.writtenBits = std::max(test.writtenBits, number.writtenBits);
    }
    static void SetMost(Test& test, const Number& number) {
        test.most = number.Signed();
        test.high = number.value;
        test.writtenBits = std::max(test.writtenBits, number.writtenBits);
    }
    /// Takes the last number of a range away, or the first; there may be none left.
    static void LeaveOut(Test& test, bool last) {
        const bool isBits = test.name.values == Values::Bits;
        if (last && (!isBits || test.high != 0)) {
            --test.most;
            --test.high;
        } else if (!last && (isBits ? test.low != ~std::uint64_t{0} : test.least != highest)) {
            test.least += isBits ? 0 : 1;
            ++test.low;
        } else {
            test.least = 1;
            test.most = 0;
            test.low = 1;
            test.high = 0;
        }
    }

    void NumberComparison(Test test) {
        constexpr std::array<std::string_view, 6> signs = {"==", "!=", "<=", ">=", "<", ">"};
        const auto sign = std::ranges::find_if(signs, [&](auto each) { return TakeSign(each); });
        if (sign == signs.end()) {
            Fail("expected ==, !=, <, <=, >, >= or in");
            return;
        }
        if (*sign == "==" || *sign == "!=") {
            Equality(std::move(test), *sign == "==");
            return;
        }
        const Number number = PlainNumber(test.name);
        if (error_) {
            return;
        }
        if (sign->front() == '<') {
            SetMost(test, number);
        } else {
            SetLeast(test, number);
        }
        if (sign->size() == 1) {
            LeaveOut(test, sign->front() == '<');
        }
        Add(std::move(test));
    }

    void Equality(Test test, bool isEqual) {
        test.isOther = !isEqual;
        OfferLabels(test.name);
        SkipBlanks();
        if (text_.substr(at_).starts_with('"')) {
            if (test.name.labels.empty()) {
                Fail(test.name.name + " has no labels; compare it with a number");
                return;
            }
            QuotedText(test);
            Add(std::move(test));
            return;
        }
        const Number number = AnyNumber(test.name);
        if (error_) {
            return;
        }
        if (test.name.values == Values::Bits || number.HasX()) {
            test.kind = Test::Kind::IsMasked;
            test.low = number.value;
            test.high = number.known;
            test.writtenBits = number.writtenBits;
        } else {
            SetLeast(test, number);
            SetMost(test, number);
        }
        Add(std::move(test));
    }

    [[nodiscard]] Number PlainNumber(const ExpressionName& name) {
        SkipBlanks();
        const std::size_t place = at_;
        const Number number = AnyNumber(name);
        if (!error_ && number.HasX()) {
            Fail("a number with X can only be compared with == and !=", place);
        }
        return number;
    }

    /// A number that fits the name, with its unit.
    [[nodiscard]] Number AnyNumber(const ExpressionName& name) {
        SkipBlanks();
        const std::size_t place = at_;
        Number number = Digits(place);
        if (error_) {
            return number;
        }
        if (number.isNegative && number.HasX()) {
            Fail("a number with X has no sign", place);
        }
        if (name.values == Values::Bits) {
            if (number.isNegative) {
                Fail(name.name + " has no sign", place);
            } else if (name.width < 64 && number.value >> name.width != 0) {
                const std::string written(text_.substr(place, at_ - place));
                Fail(Printf("%s has %zu bit%s; %s does not fit", name.name.c_str(), name.width,
                            name.width == 1 ? "" : "s", written.c_str()),
                     place);
            }
        }
        if (name.values == Values::Time && number.HasX()) {
            Fail("a time has no X", place);
        }
        TakeUnit(number, name, place);
        return number;
    }

    /// Decimal, binary with "0b", or hexadecimal with "0x". "_" may be between digits.
    [[nodiscard]] Number Digits(std::size_t place) {
        Number number;
        number.isNegative = TakeSign("-");
        const bool isHex = TakeSign("0x") || TakeSign("0X");
        const bool isBinary = !isHex && (TakeSign("0b") || TakeSign("0B"));
        const std::size_t digitBits = isHex ? 4 : 1;
        const std::uint64_t base = isHex ? 16 : isBinary ? 2 : 10;
        bool any = false;
        for (; at_ < text_.size(); ++at_) {
            const char c = Lower(text_[at_]);
            if (c == '_' && any) {
                continue;
            }
            const bool isX = base != 10 && c == 'x';
            const bool isHexDigit = isHex && c >= 'a' && c <= 'f';
            const bool isDecimal = IsDigit(c) && (!isBinary || c <= '1');
            if (!isX && !isHexDigit && !isDecimal) {
                break;
            }
            const int worth = isX ? 0 : isHexDigit ? c - 'a' + 10 : c - '0';
            const auto digit = static_cast<std::uint64_t>(worth);
            if (number.value > (~std::uint64_t{0} - digit) / base) {
                Fail("the number is too large", place);
                return number;
            }
            number.value = number.value * base + digit;
            if (base != 10) {
                // Bits shifted out above stand for digits that are not written.
                number.known = number.known << digitBits | (isX ? 0 : base - 1);
                number.writtenBits += digitBits;
            }
            any = true;
        }
        if (any && base == 10 && at_ < text_.size() && Lower(text_[at_]) == 'x') {
            Fail("a number with X begins with 0x or 0b", place);
        }
        if (!any || (at_ < text_.size() && base != 10 && IsInName(text_[at_]))) {
            Fail(isBinary ? "expected a binary number" : "expected a number", place);
        }
        if (base == 10) {
            number.writtenBits = std::max(1, static_cast<int>(std::bit_width(number.value)));
        }
        return number;
    }

    void TakeUnit(Number& number, const ExpressionName& name, std::size_t place) {
        constexpr std::array<std::pair<std::string_view, std::uint64_t>, 4> units = {
            {{"ns", 1}, {"us", 1000}, {"ms", 1000000}, {"s", 1000000000}}};
        SkipBlanks();
        const std::size_t unitPlace = at_;
        const auto unit =
            std::ranges::find_if(units, [&](const auto& each) { return TakeWord(each.first); });
        if (error_ || unit == units.end()) {
            return;
        }
        if (name.values != Values::Time) {
            Fail(name.name + " is not a time and takes no unit", unitPlace);
            return;
        }
        if (number.value > std::uint64_t{highest} / unit->second) {
            Fail("the number is too large", place);
            return;
        }
        number.value *= unit->second;
    }

    std::string_view text_;
    ExpressionNames& names_;
    std::vector<std::string>* offers_;
    std::size_t at_ = 0;
    int depth_ = 0;
    ParsedExpression expression_;
    std::optional<ExpressionError> error_;
};

/// Where the word begins that ends at the end of the text: with its quote if that is open.
std::size_t WordBegin(std::string_view text) {
    std::optional<std::size_t> quote;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (quote ? text[i] == text[*quote] : text[i] == '"' || text[i] == '`') {
            quote = quote ? std::nullopt : std::optional(i);
        }
    }
    if (quote) {
        return *quote;
    }
    const auto runBegin = [&](auto belongs) {
        std::size_t begin = text.size();
        while (begin > 0 && belongs(text[begin - 1])) {
            --begin;
        }
        return begin;
    };
    const std::size_t word = runBegin(
        [](char c) { return IsInName(c) || c == '[' || c == ']' || c == ':' || c == '-'; });
    return word < text.size()
               ? word
               : runBegin([](char c) { return c == '=' || c == '!' || c == '<' || c == '>'; });
}

bool BeginsWith(std::string_view text, std::string_view word) {
    const auto bare = [](std::string_view quoted) {
        const bool isQuoted = quoted.starts_with('"') || quoted.starts_with('`');
        return isQuoted ? quoted.substr(1) : quoted;
    };
    const bool isOfQuote = word.empty() || IsInName(word.front()) || word.front() == text.front();
    return isOfQuote && EqualIgnoringCase(bare(text).substr(0, bare(word).size()), bare(word));
}

} // namespace

std::variant<ParsedExpression, ExpressionError> ParseExpression(std::string_view text,
                                                                ExpressionNames& names) {
    return ExpressionParser(text, names).Parse();
}

ExpressionCompletion CompleteExpression(std::string_view text, std::size_t cursor,
                                        ExpressionNames& names) {
    text = text.substr(0, cursor);
    const auto complete = [&](std::size_t place) {
        ExpressionCompletion completion{place, {}};
        static_cast<void>(
            ExpressionParser(text.substr(0, place), names, &completion.texts).Parse());
        const std::string_view word = text.substr(place);
        std::erase_if(completion.texts, [&](const std::string& each) {
            return each == word || !BeginsWith(each, word);
        });
        return completion;
    };
    ExpressionCompletion completion = complete(WordBegin(text));
    // After a complete sign, or a complete text in quotes, comes what follows it.
    const bool isPlain = text.empty() || IsInName(text.back());
    return completion.texts.empty() && !isPlain ? complete(text.size()) : completion;
}

std::string QuotedName(std::string_view name) {
    const std::size_t bracket = std::min(name.find_last_of('['), name.size());
    const bool hasSlice = SliceLength(name.substr(bracket)) == name.size() - bracket;
    const std::string_view base = hasSlice ? name.substr(0, bracket) : name;
    const bool isPlain = !base.empty() && NameLength(base) == base.size() && !IsKeyword(base);
    return (isPlain ? std::string(base) : Quoted(base, '`')) +
           std::string(name.substr(base.size()));
}

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

} // namespace busquill
