#include "capture/sample_condition.h"

#include "capture/sample_names.h"
#include "platform/bits.h"
#include "signals/value_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace busquill {

namespace {

using Ways = std::vector<RecordBits>;

// More alternatives are not compared one by one.
constexpr std::size_t mostWays = 8;

/// The alternatives that match where both do; nothing if they become too many.
std::optional<Ways> Join(const Ways& a, const Ways& b) {
    Ways joined;
    for (const RecordBits& one : a) {
        for (const RecordBits& other : b) {
            if (RecordBits both = one; both.Join(other)) {
                joined.push_back(both);
            }
        }
    }
    return joined.size() <= mostWays ? std::optional(std::move(joined)) : std::nullopt;
}

/// The alternatives that match where these do not; nothing if they are too many.
std::optional<Ways> Inverse(const Ways& ways) {
    std::optional<Ways> inverse = Ways{RecordBits()};
    for (const RecordBits& way : ways) {
        Ways others;
        for (int p = 0; p < SampleRecord::bitCount && others.size() <= mostWays; ++p) {
            if (way.care.Bit(p)) {
                others.emplace_back().Set(p, !way.value.Bit(p));
            }
        }
        inverse = others.size() <= mostWays ? Join(*inverse, others) : std::nullopt;
        if (!inverse) {
            return inverse;
        }
    }
    return inverse;
}

/// The bits of a field as a number compared where `known` has a bit.
RecordBits BitsOf(const std::vector<int>& positions, std::uint64_t value, std::uint64_t known) {
    RecordBits bits;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if ((known >> i & 1) != 0) {
            bits.Set(positions[i], (value >> i & 1) != 0);
        }
    }
    return bits;
}

/// A range as some leading bits each: 0x1000 to 0x1FFF is all of 0x1XXX. Nothing if it takes many.
std::optional<Ways> RangeWays(const std::vector<int>& positions, std::uint64_t low,
                              std::uint64_t high) {
    constexpr std::size_t worthwhile = 4;
    Ways ways;
    high = std::min(high, LowBits<std::uint64_t>(positions.size()));
    while (low <= high) {
        // The most numbers from here on that differ in their last bits alone.
        std::uint64_t last = ~std::uint64_t{0};
        while ((low & last) != 0 || low + last > high) {
            last >>= 1;
        }
        if (ways.size() == worthwhile) {
            return std::nullopt;
        }
        ways.push_back(BitsOf(positions, low, ~last));
        if (low + last == high) {
            break;
        }
        low += last + 1;
    }
    return ways;
}

} // namespace

/// Makes a condition from an expression: parts that compare single samples with a few patterns
/// become those patterns, so that they are searched for together.
class SampleConditionCompiler {
public:
    explicit SampleConditionCompiler(const SampleNames& names) : names_(names) {}

    [[nodiscard]] SampleCondition Compile(const ParsedExpression& expression) {
        for (const ParsedExpression::Operation& operation : expression.operations) {
            switch (operation.step) {
            case ParsedExpression::Step::Test:
                parts_.push_back(Compile(operation.test));
                break;
            case ParsedExpression::Step::Not:
                parts_.push_back(Not(Take()));
                break;
            case ParsedExpression::Step::And: {
                Part last = Take();
                parts_.push_back(And(Take(), std::move(last)));
                break;
            }
            case ParsedExpression::Step::Or: {
                Part last = Take();
                parts_.push_back(Or(Take(), std::move(last)));
                break;
            }
            }
        }
        SampleCondition condition;
        condition.operations_ = Operations(Take());
        return condition;
    }

private:
    using Step = SampleCondition::Step;
    using Operation = SampleCondition::Operation;

    /// Either alternatives, or operations.
    struct Part {
        std::optional<Ways> ways;
        std::vector<Operation> operations;
    };

    [[nodiscard]] Part Take() {
        Part part = std::move(parts_.back());
        parts_.pop_back();
        return part;
    }

    static Part Of(Ways ways) { return {std::move(ways), {}}; }
    static Part Of(Operation operation) {
        Part part;
        part.operations.push_back(std::move(operation));
        return part;
    }
    static std::vector<Operation> Operations(Part part) {
        if (part.ways) {
            Operation operation;
            operation.patterns.reserve(part.ways->size());
            for (const RecordBits& way : *part.ways) {
                operation.patterns.emplace_back(way.value, way.care);
            }
            part.operations.push_back(std::move(operation));
        }
        return std::move(part.operations);
    }
    static Part Combined(Part a, Part b, Step step) {
        Part part;
        part.operations = Operations(std::move(a));
        std::vector<Operation> others = Operations(std::move(b));
        if (step == Step::And) {
            Operation skip;
            skip.step = Step::SkipIfNone;
            skip.count = others.size() + 1;
            part.operations.push_back(std::move(skip));
        }
        part.operations.insert(part.operations.end(), std::move_iterator(others.begin()),
                               std::move_iterator(others.end()));
        part.operations.emplace_back().step = step;
        return part;
    }

    static bool IsAlways(const Part& part) {
        return part.ways && part.ways->size() == 1 && part.ways->front().care == SampleRecord();
    }
    static Part And(Part a, Part b) {
        if (IsAlways(a)) {
            return b;
        }
        if (a.ways && b.ways) {
            if (auto joined = Join(*a.ways, *b.ways)) {
                return Of(*std::move(joined));
            }
        }
        // The patterns first: they are the fastest, and rule out most. But only once, since each
        // exchange needs one more result.
        const bool hasPatternsFirst =
            !a.operations.empty() && a.operations.front().step == Step::Patterns;
        return b.ways && !hasPatternsFirst ? Combined(std::move(b), std::move(a), Step::And)
                                           : Combined(std::move(a), std::move(b), Step::And);
    }
    static Part Or(Part a, Part b) {
        if (a.ways && b.ways && a.ways->size() + b.ways->size() <= mostWays) {
            a.ways->insert(a.ways->end(), b.ways->begin(), b.ways->end());
            return a;
        }
        return Combined(std::move(a), std::move(b), Step::Or);
    }
    static Part Not(Part part) {
        if (part.ways) {
            if (auto inverse = Inverse(*part.ways)) {
                return Of(*std::move(inverse));
            }
        }
        Part inverse;
        inverse.operations = Operations(std::move(part));
        inverse.operations.emplace_back().step = Step::Not;
        return inverse;
    }

    [[nodiscard]] Part Compile(const ExpressionTest& test) const {
        if (test.name.values == ExpressionName::Values::Bits) {
            const NamedSignal& signal = names_.Signal(test.name);
            return And(Of(InPhase({RecordBits()}, signal, names_.Board())),
                       CompileBits(test, signal));
        }
        Operation operation;
        operation.least = test.least;
        operation.most = test.most;
        operation.low = test.low;
        operation.high = test.high;
        if (test.name.values == ExpressionName::Values::Time &&
            test.name.id == SampleNames::noSignal) {
            operation.step = Step::SinceTriggerInRange;
        } else if (test.name.values == ExpressionName::Values::Time) {
            operation.step = Step::TimeInRange;
            operation.field = RecordField(names_.Signal(test.name).positions);
        } else {
            operation.step = test.kind == ExpressionTest::Kind::IsMasked ? Step::NumberIsMasked
                                                                         : Step::NumberInRange;
        }
        Part part = Of(std::move(operation));
        return test.isOther ? Not(std::move(part)) : part;
    }

    [[nodiscard]] Part CompileBits(const ExpressionTest& test, const NamedSignal& signal) const {
        switch (test.kind) {
        case ExpressionTest::Kind::Rises:
            return Edge(Step::Rises, signal);
        case ExpressionTest::Kind::Falls:
            return Edge(Step::Falls, signal);
        case ExpressionTest::Kind::Changes:
            return Edge(Step::Changes, signal);
        case ExpressionTest::Kind::IsLike:
            return Labels(test, signal);
        default:
            break;
        }
        const std::vector<int> positions = ComparedPositions(test, signal);
        if (test.kind == ExpressionTest::Kind::IsMasked) {
            Part part = Of(Ways{BitsOf(positions, test.low, test.high)});
            return test.isOther ? Not(std::move(part)) : part;
        }
        if (auto ways = RangeWays(positions, test.low, test.high)) {
            return Of(*std::move(ways));
        }
        Operation operation;
        operation.step = Step::InRange;
        operation.field = RecordField(positions);
        operation.low = test.low;
        operation.high = test.high;
        return Of(std::move(operation));
    }

    /// Without the lines that the bus does not have, unless they are named or digits are given for
    /// them.
    [[nodiscard]] std::vector<int> ComparedPositions(const ExpressionTest& test,
                                                     const NamedSignal& signal) const {
        const BoardTraits board = names_.Board();
        std::vector<int> positions = signal.positions;
        while (positions.size() > test.writtenBits && IsBeyondBus(positions.back(), board)) {
            positions.pop_back();
        }
        // A bus of which only absent lines are named.
        const auto isBeyond = [&](int position) { return IsBeyondBus(position, board); };
        return std::ranges::all_of(positions, isBeyond) ? signal.positions : positions;
    }

    static Part Edge(Step step, const NamedSignal& signal) {
        Operation operation;
        operation.step = step;
        for (const int position : signal.positions) {
            operation.care.SetBit(position);
        }
        if (signal.positions.size() == 1) {
            operation.patterns.emplace_back(operation.care, operation.care);
        }
        return Of(std::move(operation));
    }

    /// A label of a decoded signal, and the bits of the signal's value that make it.
    struct Label {
        std::uint64_t value = 0;
        std::uint64_t known = 0;
        bool isShown = false; // in a listing
        bool isWanted = false;

        [[nodiscard]] bool Matches(std::uint64_t of) const noexcept {
            return (of & known) == value;
        }
    };

    /// Whether the label that the listing shows for a value is wanted: the first that matches.
    static bool ShowsWanted(const std::vector<Label>& labels, std::uint64_t value) {
        const auto found = std::ranges::find_if(
            labels, [&](const Label& each) { return each.isShown && each.Matches(value); });
        return found != labels.end() && found->isWanted;
    }
    /// The same for a single bit: the last label for its state, in any mode.
    static bool BitShowsWanted(const std::vector<Label>& labels, std::uint64_t value) {
        const auto found = std::find_if(labels.rbegin(), labels.rend(), [&](const Label& each) {
            return each.known == 1 && each.value == value;
        });
        return found != labels.rend() && found->isWanted;
    }

    static Part Labels(const ExpressionTest& test, const NamedSignal& signal) {
        constexpr std::size_t mostBits = 12; // of values that are tried one by one
        const std::size_t width = signal.positions.size();
        std::vector<Label> labels;
        Ways ways;
        for (const CDecodedValue& each : signal.decoded->values) {
            const RecordBits bits = busquill::BitsOf(each);
            Label& label = labels.emplace_back();
            for (std::size_t i = 0; i < std::min(width, mostBits); ++i) {
                label.value |= std::uint64_t{bits.value.Bit(signal.positions[i])} << i;
                label.known |= std::uint64_t{bits.care.Bit(signal.positions[i])} << i;
            }
            label.isShown = (each.skipModes & ModeState) == 0;
            label.isWanted = each.label[0] != '\0' && IsLike(each.label, test.text) != test.isOther;
            if (label.isShown && label.isWanted) {
                ways.push_back(bits);
            }
        }
        // Labels of wide signals do not overlap.
        if (width > mostBits) {
            return Of(std::move(ways)); // as many as there are
        }
        Operation operation;
        operation.step = Step::InTable;
        operation.field = RecordField(signal.positions);
        operation.table.resize(WordsFor(std::size_t{1} << width));
        bool isSame = ways.size() <= mostWays;
        for (std::uint64_t value = 0; value < std::uint64_t{1} << width; ++value) {
            const bool wanted =
                width == 1 ? BitShowsWanted(labels, value) : ShowsWanted(labels, value);
            AssignBit(operation.table, value, wanted);
            const auto isAWay = [&](const Label& each) {
                return each.isShown && each.isWanted && each.Matches(value);
            };
            isSame = isSame && wanted == std::ranges::any_of(labels, isAWay);
        }
        return isSame ? Of(std::move(ways)) : Of(std::move(operation));
    }

    const SampleNames& names_;
    std::vector<Part> parts_;
};

std::variant<SampleCondition, ExpressionError>
SampleCondition::Parse(std::string_view text, const SignalTables& tables,
                       std::initializer_list<const CSignalList*> lists,
                       const KeptExpressions* kept) {
    SampleNames names(tables, lists);
    auto parsed = ParseExpression(text, names, kept);
    if (auto* const error = std::get_if<ExpressionError>(&parsed)) {
        return std::move(*error);
    }
    return SampleConditionCompiler(names).Compile(std::get<ParsedExpression>(parsed));
}

ExpressionCompletion SampleCondition::Complete(std::string_view text, std::size_t cursor,
                                               const SignalTables& tables,
                                               std::initializer_list<const CSignalList*> lists,
                                               const KeptExpressions* kept) {
    SampleNames names(tables, lists);
    return CompleteExpression(text, cursor, names, kept);
}

bool SampleCondition::IsMasked() const noexcept {
    return operations_.size() == 1 && operations_.front().step == Step::Patterns;
}

bool SampleCondition::NeedsTimes() const noexcept {
    return std::ranges::any_of(
        operations_, [](const Operation& each) { return each.step == Step::SinceTriggerInRange; });
}

bool SampleCondition::HasEdges() const noexcept {
    return std::ranges::any_of(operations_, [](const Operation& each) {
        return each.step == Step::Rises || each.step == Step::Falls || each.step == Step::Changes;
    });
}

const SampleRecord* RecordBefore(const SampleBlock& block, std::size_t i) noexcept {
    if (i == 0) {
        return block.before;
    }
    return block.numbers[i] == block.numbers[i - 1] + 1 ? &block.records[i - 1] : nullptr;
}

namespace {

template <typename Condition>
std::uint32_t EachWhere(std::size_t count, Condition condition) {
    std::uint32_t matches = 0;
    for (std::size_t i = 0; i < count; ++i) {
        matches |= static_cast<std::uint32_t>(condition(i)) << i;
    }
    return matches;
}

bool Differ(const SampleRecord& a, const SampleRecord& b, const SampleRecord& care) noexcept {
    unsigned different = 0;
    for (std::size_t i = 0; i < care.bytes.size(); ++i) {
        different |= (a.bytes[i] ^ b.bytes[i]) & unsigned{care.bytes[i]};
    }
    return different != 0;
}

} // namespace

std::uint32_t SampleCondition::Test(const Operation& operation, const SampleBlock& block) noexcept {
    const auto records = block.records;
    const std::size_t count = records.size();
    switch (operation.step) {
    case Step::Patterns: {
        std::uint32_t matches = 0;
        for (const RecordPattern& pattern : operation.patterns) {
            matches |= pattern.MatchesOf(records);
        }
        return matches;
    }
    case Step::InRange:
        return EachWhere(count, [&](std::size_t i) {
            return operation.field.Word(records[i]) - operation.low <=
                   operation.high - operation.low;
        });
    case Step::InTable:
        return EachWhere(count, [&](std::size_t i) {
            return TestBit(operation.table, operation.field.Word(records[i]));
        });
    case Step::TimeInRange:
        return EachWhere(count, [&](std::size_t i) {
            const auto bits = static_cast<std::uint32_t>(operation.field.Word(records[i]));
            const std::int64_t time = TimeOfBits(bits);
            return operation.least <= time && time <= operation.most;
        });
    case Step::SinceTriggerInRange:
        return EachWhere(count, [&](std::size_t i) {
            return operation.least <= block.times[i] && block.times[i] <= operation.most;
        });
    case Step::NumberInRange:
        return EachWhere(count, [&](std::size_t i) {
            return operation.least <= block.numbers[i] && block.numbers[i] <= operation.most;
        });
    case Step::NumberIsMasked:
        return EachWhere(count, [&](std::size_t i) {
            return (static_cast<std::uint64_t>(block.numbers[i]) & operation.high) == operation.low;
        });
    case Step::Rises:
    case Step::Falls:
    case Step::Changes:
        return EdgesOf(operation, block);
    default:
        return 0;
    }
}

std::uint32_t SampleCondition::EdgesOf(const Operation& operation,
                                       const SampleBlock& block) noexcept {
    const auto records = block.records;
    if (operation.patterns.empty()) {
        return EachWhere(records.size(), [&](std::size_t i) {
            const SampleRecord* const before = RecordBefore(block, i);
            return before != nullptr && Differ(records[i], *before, operation.care);
        });
    }
    const RecordPattern& one = operation.patterns.front();
    const std::uint32_t now = one.MatchesOf(records);
    const bool wasOne = block.before != nullptr && one.Matches(*block.before);
    const std::uint32_t before = now << 1 | (wasOne ? 1U : 0U);
    std::uint32_t edges = (now ^ before) & LowBits<std::uint32_t>(records.size());
    if (operation.step != Step::Changes) {
        edges &= operation.step == Step::Rises ? now : before;
    }
    for (const std::size_t edge : EachSetBit(edges)) {
        if (RecordBefore(block, edge) == nullptr) {
            edges &= ~(1U << edge);
        }
    }
    return edges;
}

std::uint32_t SampleCondition::MatchesOf(const SampleBlock& block) const noexcept {
    if (operations_.size() == 1) {
        return Test(operations_.front(), block);
    }
    // A pattern that goes before what was written before it takes one result more, at most one for
    // each that the text needs; and so does the phase of a signal.
    std::array<std::uint32_t, 2 * ParsedExpression::mostResults + 4> results{};
    const auto all = LowBits<std::uint32_t>(block.records.size());
    std::size_t last = 0; // index of the last result; the first is none
    for (std::size_t i = 0; i < operations_.size(); ++i) {
        const Operation& operation = operations_[i];
        switch (operation.step) {
        case Step::Not:
            results[last] = ~results[last];
            break;
        case Step::And:
            --last;
            results[last] &= results[last + 1];
            break;
        case Step::Or:
            --last;
            results[last] |= results[last + 1];
            break;
        case Step::SkipIfNone:
            i += (results[last] & all) == 0 ? operation.count : 0;
            break;
        default:
            results[++last] = Test(operation, block);
        }
    }
    return results[last] & all;
}

} // namespace busquill
