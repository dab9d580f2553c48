#include "capture/expression_parser.h"

#include "capture/expression_reader.h"
#include "capture/kept_expressions.h"
#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>
#include <optional>
#include <utility>

namespace busquill {

namespace {

constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

using Values = ExpressionName::Values;
using Edges = ExpressionName::Edges;
using Test = ExpressionTest;
using Number = ExpressionNumber;

/// Reads an expression from left to right and stops at the first mistake.
///
///     either = both { ( "or" | "||" ) both }
///     both   = one { ( "and" | "&&" ) one }
///     one    = { "not" | "!" } ( "(" either ")" | "@" kept | name [ test ] )
///     test   = sign value | "in" number ".." number | "rises" | "falls" | "changes"
class ExpressionParser {
public:
    /// With `offers`, texts that could stand at the end of the text are added there.
    ExpressionParser(std::string_view text, ExpressionNames& names, const KeptExpressions* kept,
                     std::vector<std::string>* offers = nullptr)
        : reader_(text), names_(names), kept_(kept), offers_(offers) {}

    [[nodiscard]] std::variant<ParsedExpression, ExpressionError> Parse() {
        Whole();
        if (HasFailed()) {
            return *reader_.Error();
        }
        return std::move(expression_);
    }

private:
    static constexpr int deepest = 29;
    static constexpr std::size_t mostOperations = 10000; // kept ones can double each other
    static constexpr std::size_t shortList = 140;        // characters of names in a message
    // Two results wait in each depth and outside, for "or" and for "and".
    static_assert(ParsedExpression::mostResults >= 2 * (deepest + 1) + 1);

    [[nodiscard]] bool HasFailed() const noexcept { return reader_.Error().has_value(); }

    template <typename Texts>
    void Offer(const Texts& texts) {
        if (offers_ != nullptr && !HasFailed() && reader_.AtEnd()) {
            offers_->insert(offers_->end(), texts.begin(), texts.end());
        }
    }
    void Offer(std::initializer_list<std::string_view> texts) {
        Offer(std::vector<std::string_view>(texts));
    }

    void Add(ParsedExpression::Step step) { expression_.operations.push_back({step, {}}); }
    void Add(Test test) {
        expression_.operations.push_back({ParsedExpression::Step::Test, std::move(test)});
    }

    void Whole() {
        Either();
        if (!HasFailed() && !reader_.AtEnd()) {
            reader_.Fail("expected \"and\" or \"or\"");
        }
    }
    void Either() {
        Both();
        while (!HasFailed() && (reader_.TakeWord("or") || reader_.TakeSign("||"))) {
            Both();
            Add(ParsedExpression::Step::Or);
        }
    }
    void Both() {
        One();
        Offer({"and", "or"});
        while (!HasFailed() && (reader_.TakeWord("and") || reader_.TakeSign("&&"))) {
            One();
            Offer({"and", "or"});
            Add(ParsedExpression::Step::And);
        }
    }
    void One() {
        OfferNames();
        bool isInverse = false;
        while (reader_.TakeWord("not") || (!reader_.Sees("!=") && reader_.TakeSign("!"))) {
            isInverse = !isInverse;
            OfferNames();
        }
        if (reader_.Sees("(")) {
            InParentheses();
        } else if (reader_.Sees("@")) {
            KeptOne();
        } else {
            NameAndTest();
        }
        if (isInverse) {
            Add(ParsedExpression::Step::Not);
        }
    }
    void InParentheses() {
        if (depth_ == deepest) {
            reader_.Fail("too many parentheses inside each other");
            return;
        }
        ++depth_;
        reader_.TakeSign("(");
        Either();
        Offer({")"});
        if (!HasFailed() && !reader_.TakeSign(")")) {
            reader_.Fail("expected \")\"");
        }
        --depth_;
    }

    /// A kept expression counts like one in parentheses.
    void KeptOne() {
        const std::size_t place = reader_.Place();
        reader_.TakeSign("@");
        const std::string name(reader_.PeekLabel());
        reader_.TakeSign(name);
        const auto* const kept = kept_ == nullptr ? nullptr : kept_->Find(name);
        if (kept == nullptr) {
            const auto names = kept_ == nullptr ? std::vector<std::string>() : kept_->Names();
            reader_.Fail("there is no kept expression \"@" + Shortened(name) + "\"" +
                             (names.empty() ? "" : ": " + Nearest("@" + name, names)),
                         place);
        } else if (const auto loop = std::ranges::find(within_, kept); loop != within_.end()) {
            std::string others;
            for (auto each = loop + 1; each != within_.end(); ++each) {
                others += (others.empty() ? " through @" : ", @") + (*each)->name;
            }
            reader_.Fail("@" + kept->name + " uses itself" + others, place);
        } else if (depth_ == deepest) {
            reader_.Fail(Printf("kept expressions and parentheses can be at most %d inside each "
                                "other",
                                deepest),
                         place);
        } else if (expression_.operations.size() > mostOperations) {
            reader_.Fail("the expression becomes too long with @" + kept->name, place);
        } else {
            Insert(*kept, place);
        }
    }
    void Insert(const KeptExpressions::Kept& kept, std::size_t place) {
        ++depth_;
        within_.push_back(&kept);
        ExpressionReader reader = std::exchange(reader_, ExpressionReader(kept.text));
        lastName_.reset();
        auto* const offers = std::exchange(offers_, nullptr);
        Whole();
        if (const auto& error = reader_.Error()) {
            // Of several inside each other, the one with the mistake is named.
            const std::string rest = kept.text.substr(error->place);
            reader.Fail((isToldWhere_
                             ? ""
                             : "@" + kept.name + " is wrong at " +
                                   (rest.empty() ? "its end" : Quoted(Shortened(rest), '"')) +
                                   ": ") +
                            error->message,
                        place);
            isToldWhere_ = true;
        }
        reader_ = std::move(reader);
        lastName_.reset();
        offers_ = offers;
        within_.pop_back();
        --depth_;
    }

    static std::string Nearest(std::string_view word, const std::vector<std::string>& names) {
        return ListNearest(word, names, shortList);
    }

    [[nodiscard]] std::vector<std::string> WrittenNames() const {
        std::vector<std::string> all;
        for (const std::string& name : names_.All()) {
            all.push_back(QuotedName(name));
        }
        return all;
    }
    void OfferNames() {
        if (offers_ != nullptr && reader_.AtEnd()) {
            Offer(WrittenNames());
            Offer({"not", "("});
            OfferKept();
        }
    }

    /// Those that can be used with these names.
    void OfferKept() {
        for (const std::string& name :
             kept_ == nullptr ? std::vector<std::string>() : kept_->Names()) {
            const auto parsed = ExpressionParser(name, names_, kept_).Parse();
            if (std::holds_alternative<ParsedExpression>(parsed)) {
                Offer({std::string_view(name)});
            }
        }
    }

    void NameAndTest() {
        const std::size_t place = reader_.Place();
        const std::string written = reader_.TakeName();
        if (HasFailed()) {
            return;
        }
        auto name = names_.Find(written);
        if (!name && !FailedForRepetition(written, place) && !FailedForBackquotes(place)) {
            reader_.Fail(WhyNoName(written, place), place);
        }
        if (!name) {
            return;
        }
        Test test;
        test.name = *name;
        if (name->values == Values::Flag) {
            if (reader_.Sees("=") || reader_.Sees("!=")) {
                reader_.Fail(Printf("%s is not compared; write \"%s\" or \"not %s\"",
                                    name->name.c_str(), name->name.c_str(), name->name.c_str()));
            }
            Add(std::move(test));
            return;
        }
        lastName_ = *name;
        lastSign_ = "==";
        namePlace_ = place;
        OfferOperators(*name);
        if (TakeEdge(test, place)) {
            return;
        }
        if (name->values == Values::Text || name->values == Values::Word) {
            TextComparison(std::move(test), written);
        } else if (reader_.TakeWord("in")) {
            CheckWidth(test, place);
            Range(std::move(test));
        } else {
            CheckWidth(test, place);
            NumberComparison(std::move(test));
        }
    }

    /// Fails if a name with other characters is there without its backquotes.
    bool FailedForBackquotes(std::size_t place) {
        for (const std::string& name : WrittenNames()) {
            const std::string_view bare = std::string_view(name).substr(1, name.find('`', 1) - 1);
            if (name.front() == '`' && !bare.empty() &&
                EqualIgnoringCase(reader_.TextAt(place, bare.size()), bare)) {
                reader_.Fail("a name with other characters than letters and digits is put into "
                             "backquotes: " +
                                 Quoted(bare, '`'),
                             place);
                return true;
            }
        }
        return false;
    }

    /// Why there is no such name; it may be empty.
    [[nodiscard]] std::string WhyNoName(const std::string& written, std::size_t place) {
        const std::string kind(names_.Kind());
        if (written.empty()) {
            return "expected " + kind + ": " + Nearest(written, WrittenNames());
        }
        // Titles of columns may have hyphens.
        const std::string title(reader_.LabelAt(place));
        if (title.size() > written.size() && names_.Find(title)) {
            return "a name with a hyphen is put into backquotes: " + QuotedName(title);
        }
        std::string elsewhere = names_.BelongsElsewhere(written);
        const std::size_t article = kind.find(' ') + 1;
        return !elsewhere.empty()
                   ? std::move(elsewhere)
                   : "there is no " + kind.substr(article) + " \"" + Shortened(written) +
                         "\": " + Nearest(written, WrittenNames());
    }

    /// Fails if a value follows "or", as in "end == retry or complete".
    bool FailedForRepetition(const std::string& written, std::size_t place) {
        if (!lastName_) {
            return false;
        }
        ExpressionReader value = reader_.From(place);
        std::string text;
        if (value.Sees("\"")) {
            if (lastName_->values != Values::Text && lastName_->labels.empty()) {
                return false;
            }
            text = Quoted(value.TakeQuoted(lastName_->name), '"');
        } else if (const std::string label(value.PeekLabel());
                   lastName_->values == Values::Word &&
                   std::ranges::any_of(lastName_->labels, [&](const std::string& each) {
                       return EqualIgnoringCase(each, label);
                   })) {
            text = label;
            value.TakeSign(label);
        } else if (written.empty() || lastName_->isHex) {
            static_cast<void>(value.TakeNumber(lastName_->isHex));
            value.EndNumber({}, place);
            text = value.Since(place);
        }
        // What is compared itself is a name with a mistake.
        const auto isCompared = [&] {
            constexpr std::array<std::string_view, 4> signs = {"=", "!=", "<", ">"};
            constexpr std::array<std::string_view, 4> words = {"in", "rises", "falls", "changes"};
            return std::ranges::any_of(signs, [&](auto each) { return value.Sees(each); }) ||
                   std::ranges::any_of(words, [&](auto each) { return value.TakeWord(each); });
        };
        if (value.Error() || text.empty() || isCompared()) {
            return false;
        }
        reader_.Fail("write the name again: " + QuotedName(lastName_->name) + " " + lastSign_ +
                         " " + Shortened(text),
                     place);
        return true;
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
        if (reader_.TakeWord("rises")) {
            test.kind = Test::Kind::Rises;
        } else if (reader_.TakeWord("falls")) {
            test.kind = Test::Kind::Falls;
        } else if (reader_.TakeWord("changes")) {
            test.kind = Test::Kind::Changes;
        } else {
            return false;
        }
        const std::string& name = test.name.name;
        if (test.name.edges == Edges::None) {
            reader_.Fail(name + " has no edges", place);
        } else if (test.name.edges == Edges::Changes && test.kind != Test::Kind::Changes) {
            reader_.Fail(Printf("%s has %zu lines; only a single line rises or falls, %s changes",
                                name.c_str(), test.name.width, name.c_str()),
                         place);
        }
        Add(std::move(test));
        return true;
    }

    void CheckWidth(const Test& test, std::size_t place) {
        constexpr std::size_t mostBits = 64;
        if (test.name.values == Values::Bits && test.name.width > mostBits) {
            reader_.Fail(Printf("%s has %zu lines; at most 64 can be compared, such as %s",
                                test.name.name.c_str(), test.name.width,
                                (QuotedName(test.name.name) + "[63..0]").c_str()),
                         place);
        }
    }

    void TextComparison(Test test, const std::string& name) {
        const bool isEqual = reader_.TakeSign("==");
        if (!isEqual && !reader_.TakeSign("!=")) {
            if (!FailedForBackquotes(namePlace_)) {
                reader_.Fail(reader_.Sees("=") ? "= is written =="
                                               : "expected == or != after " + name);
            }
            return;
        }
        lastSign_ = isEqual ? "==" : "!=";
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

    static std::vector<std::string> QuotedLabels(const ExpressionName& name) {
        std::vector<std::string> labels;
        labels.reserve(name.labels.size());
        for (const std::string& label : name.labels) {
            labels.push_back(Quoted(label, '"'));
        }
        return labels;
    }

    /// A text in quotes; where the labels are known, it must be like one of them.
    void QuotedText(Test& test) {
        OfferLabels(test.name);
        const std::size_t place = reader_.Place();
        test.kind = Test::Kind::IsLike;
        if (!reader_.Sees("\"") && !test.name.labels.empty()) {
            reader_.Fail("expected a " + test.name.name + " in double quotes: " +
                         Nearest(Quoted(reader_.PeekLabel(), '"'), QuotedLabels(test.name)));
            return;
        }
        test.text = reader_.TakeQuoted(test.name.name);
        const auto isLike = [&](const std::string& label) { return IsLike(label, test.text); };
        if (!HasFailed() && !test.name.labels.empty() &&
            std::ranges::none_of(test.name.labels, isLike)) {
            const std::string other = names_.InsteadOfLabel(test.text);
            reader_.Fail(test.name.name + " has no label \"" + Shortened(test.text) + "\"" +
                             (other.empty()
                                  ? ": " + Nearest(Quoted(test.text, '"'), QuotedLabels(test.name))
                                  : "; write " + other),
                         place);
        }
    }

    /// One of the labels, or those like a text in quotes.
    void LabelWord(Test& test) {
        const auto& labels = test.name.labels;
        const auto addWhere = [&](auto matches) {
            for (std::size_t i = 0; i < labels.size(); ++i) {
                test.low |= std::uint64_t{matches(labels[i]) ? 1U : 0U} << i;
            }
        };
        if (reader_.Sees("\"")) {
            QuotedText(test);
            addWhere([&](const std::string& label) { return IsLike(label, test.text); });
        } else {
            OfferLabels(test.name);
            const std::string word(reader_.PeekLabel());
            addWhere([&](const std::string& label) { return EqualIgnoringCase(label, word); });
            if (test.low == 0) {
                reader_.Fail("expected an " + test.name.name + ": " + Nearest(word, labels));
            }
            reader_.TakeSign(word);
        }
        test.kind = Test::Kind::IsOneOf;
    }

    void Range(Test test) {
        const std::size_t place = reader_.Place();
        const Number least = PlainNumber(test.name);
        Offer({".."});
        if (!HasFailed() && !reader_.TakeSign("..")) {
            reader_.Fail("expected \"..\" between two numbers");
        }
        const Number most = HasFailed() ? Number() : PlainNumber(test.name);
        if (HasFailed()) {
            return;
        }
        if (test.name.values == Values::Bits ? least.value > most.value
                                             : least.Signed() > most.Signed()) {
            reader_.Fail("the range ends before it begins", place);
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

    void FailWithoutSign(const ExpressionName& name) {
        if (FailedForBackquotes(namePlace_)) {
            return;
        }
        const std::size_t place = reader_.Place();
        if (reader_.TakeSign("=")) {
            reader_.Fail("= is written ==", place);
            return;
        }
        const char* const edges = name.edges == ExpressionName::Edges::All
                                      ? ", rises, falls, changes"
                                  : name.edges == ExpressionName::Edges::Changes ? ", changes"
                                                                                 : "";
        reader_.Fail(Printf("expected ==, !=, <, <=, >, >=%s or in", edges));
    }

    void NumberComparison(Test test) {
        constexpr std::array<std::string_view, 6> signs = {"==", "!=", "<=", ">=", "<", ">"};
        const auto sign =
            std::ranges::find_if(signs, [&](auto each) { return reader_.TakeSign(each); });
        if (sign == signs.end()) {
            FailWithoutSign(test.name);
            return;
        }
        lastSign_ = std::string(*sign);
        if (*sign == "==" || *sign == "!=") {
            Equality(std::move(test), *sign == "==");
            return;
        }
        const Number number = PlainNumber(test.name);
        if (HasFailed()) {
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
        if (reader_.Sees("\"")) {
            if (test.name.labels.empty()) {
                reader_.Fail(test.name.name + " has no labels; compare it with a number");
                return;
            }
            QuotedText(test);
            Add(std::move(test));
            return;
        }
        if (const std::string_view word = reader_.PeekLabel();
            !test.name.labels.empty() && !test.name.isHex && !word.empty() &&
            !EqualIgnoringCase(word.substr(0, 1), "x")) {
            reader_.Fail("expected a number, or a label in double quotes: " +
                         Nearest(Quoted(word, '"'), QuotedLabels(test.name)));
            return;
        }
        const Number number = AnyNumber(test.name);
        if (HasFailed()) {
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
            // Tables cut times off: one that begins with the same digits looks the same there.
            const auto more = static_cast<std::int64_t>(number.lastDigit - 1);
            test.least -= number.isNegative ? more : 0;
            test.most += number.isNegative ? 0 : more;
        }
        Add(std::move(test));
    }

    [[nodiscard]] Number PlainNumber(const ExpressionName& name) {
        const std::size_t place = reader_.Place();
        const Number number = AnyNumber(name);
        if (!HasFailed() && number.HasX()) {
            reader_.Fail("a number with X can only be compared with == and !=", place);
        }
        return number;
    }

    /// A number that fits the name, with its unit.
    [[nodiscard]] Number AnyNumber(const ExpressionName& name) {
        const std::size_t place = reader_.Place();
        Number number = reader_.TakeNumber(name.isHex);
        if (HasFailed()) {
            return number;
        }
        if (number.decimals != 0 && name.values != Values::Time) {
            reader_.Fail(name.name + " is a whole number", place);
        }
        if (number.isNegative && number.HasX()) {
            reader_.Fail("a number with X has no sign", place);
        }
        if (name.values == Values::Bits) {
            if (number.isNegative) {
                reader_.Fail(name.name + " has no sign", place);
            } else if (name.width < 64 && number.value >> name.width != 0) {
                const bool isBare = name.isHex && !reader_.Since(place).starts_with('0');
                const std::string written =
                    (isBare ? "0x" : "") + std::string(reader_.Since(place));
                const bool isBinary = number.base == 10 && written.size() <= name.width &&
                                      written.find_first_not_of("01") == std::string::npos;
                reader_.Fail(Printf("%s has %zu bit%s; %s does not fit", name.name.c_str(),
                                    name.width, name.width == 1 ? "" : "s",
                                    Shortened(written).c_str()) +
                                 (isBinary ? "; its bits are written 0b" + written : ""),
                             place);
            }
        }
        if (name.values == Values::Time && number.HasX()) {
            reader_.Fail("a time has no X", place);
        }
        TakeUnit(number, name, place);
        reader_.EndNumber(number, place);
        return number;
    }

    void TakeUnit(Number& number, const ExpressionName& name, std::size_t place) {
        constexpr std::array<std::pair<std::string_view, std::uint64_t>, 4> units = {
            {{"ns", 1}, {"us", 1000}, {"ms", 1000000}, {"s", 1000000000}}};
        const std::size_t unitPlace = reader_.Place();
        const auto unit = std::ranges::find_if(
            units, [&](const auto& each) { return reader_.TakeWord(each.first); });
        if (unit != units.end() && name.values != Values::Time) {
            reader_.Fail(name.name + " is not a time and takes no unit", unitPlace);
        } else if (number.decimals != 0 && unit == units.end()) {
            reader_.Fail("a time with decimals has a unit: ns, us, ms or s", place);
        }
        if (HasFailed() || unit == units.end()) {
            return;
        }
        std::uint64_t worth = unit->second; // of the last digit, in ns
        for (std::size_t i = 0; i < number.decimals; ++i) {
            if (worth == 1) {
                reader_.Fail("a time is a whole number of ns", place);
                return;
            }
            worth /= 10;
        }
        if (number.value > std::uint64_t{highest} / worth - 1) {
            reader_.Fail("the number is too large", place);
            return;
        }
        // Tables show no decimals of a time above 999 s.
        constexpr std::uint64_t second = 1000000000;
        constexpr std::uint64_t mostWithDecimals = 999;
        const bool isCutOff = worth == second && number.value > mostWithDecimals;
        number.value *= worth;
        number.lastDigit = number.decimals != 0 || isCutOff ? worth : 1;
    }

    ExpressionReader reader_;
    ExpressionNames& names_;
    const KeptExpressions* kept_;
    std::vector<std::string>* offers_;
    std::vector<const KeptExpressions::Kept*> within_; // the kept ones that are being read
    int depth_ = 0;
    bool isToldWhere_ = false;               // a mistake in a kept one
    std::optional<ExpressionName> lastName_; // the last that was compared
    std::size_t namePlace_ = 0;              // where it is
    std::string lastSign_ = "==";            // with which
    ParsedExpression expression_;
};

} // namespace

std::variant<ParsedExpression, ExpressionError>
ParseExpression(std::string_view text, ExpressionNames& names, const KeptExpressions* kept) {
    return ExpressionParser(text, names, kept).Parse();
}

std::vector<std::string> OffersAfter(std::string_view text, ExpressionNames& names,
                                     const KeptExpressions* kept) {
    std::vector<std::string> offers;
    static_cast<void>(ExpressionParser(text, names, kept, &offers).Parse());
    return offers;
}

} // namespace busquill
