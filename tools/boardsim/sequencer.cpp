#include "sequencer.h"

#include "traffic.h"

#include <algorithm>
#include <optional>

namespace boardsim {

namespace {

constexpr std::size_t levelRow = 20;
constexpr int zoomTrigger = 255;
/// Samples of the bus on each side of the trigger that the finest zoom clock can span.
constexpr std::size_t zoomSpan = 2100;

enum Token : unsigned { And = 9, Or = 10, Not = 11, Xor = 12, Open = 13, Close = 14 };

/// Evaluates an expression's tokens for one set of matching events.
class Evaluator {
public:
    Evaluator(std::span<const unsigned> tokens, unsigned events)
        : tokens_(tokens), events_(events) {}

    /// Empty for tokens that are not an expression.
    std::optional<bool> Run() {
        const bool value = Binary(Or);
        return broken_ || at_ != tokens_.size() ? std::nullopt : std::optional(value);
    }

private:
    bool Binary(unsigned operation) {
        const auto operand = [&] {
            return operation == Or ? Binary(Xor) : operation == Xor ? Binary(And) : Unary();
        };
        bool value = operand();
        while (at_ < tokens_.size() && tokens_[at_] == operation) {
            ++at_;
            const bool right = operand();
            value = operation == Or    ? value || right
                    : operation == Xor ? value != right
                                       : value && right;
        }
        return value;
    }
    bool Unary() {
        if (at_ == tokens_.size()) {
            broken_ = true;
            return false;
        }
        const unsigned token = tokens_[at_++];
        if (token == Not) {
            return !Unary();
        }
        if (token == Open) {
            const bool value = Binary(Or);
            broken_ = broken_ || at_ == tokens_.size() || tokens_[at_] != Close;
            ++at_;
            return value;
        }
        broken_ = broken_ || token < 1 || token > 8;
        return (events_ >> (token - 1) & 1) != 0;
    }

    std::span<const unsigned> tokens_;
    unsigned events_;
    std::size_t at_ = 0;
    bool broken_ = false;
};

std::size_t BeforeLimit(std::size_t buffer, std::uint8_t positionCode) {
    switch (positionCode) {
    case 3: // 0%
        return 0;
    case 4: // 25%
        return buffer / 4;
    case 1: // 75%
        return buffer / 4 * 3;
    case 2: // 100%
        return buffer - 1;
    default: // 50%
        return buffer / 2;
    }
}

void PutCount(std::uint8_t* bytes, std::size_t count, int width) {
    for (int i = 0; i < width; ++i) {
        bytes[i] = static_cast<std::uint8_t>(count >> (8 * i));
    }
}

Record Held(const std::vector<Record>& records, std::int64_t index) {
    const bool held = index >= 0 && index < static_cast<std::int64_t>(records.size());
    return held ? records[static_cast<std::size_t>(index)] : Record{};
}

} // namespace

Sequencer::Sequencer(std::vector<Record> samples, std::size_t trigger, std::vector<Record> zoom,
                     Comparators comparators)
    : comparators_(std::move(comparators)), zoom_(std::move(zoom)) {
    const auto middle =
        samples.begin() + static_cast<std::ptrdiff_t>(std::min(trigger, samples.size()));
    before_.assign(samples.begin(), middle);
    after_.assign(middle, samples.end());
}

Sequencer::Truth Sequencer::Compile(std::span<const std::uint8_t, 8> expression) {
    std::vector<unsigned> tokens;
    for (int nibble = 15; nibble >= 0; --nibble) {
        const unsigned byte = expression[static_cast<std::size_t>(nibble) / 2];
        tokens.push_back(nibble % 2 == 0 ? byte & 0x0F : byte >> 4);
    }
    Truth truth;
    if (std::all_of(tokens.begin(), tokens.end(), [](unsigned token) { return token == 15; })) {
        return truth.set();
    }
    std::erase(tokens, 0U);
    for (unsigned events = 0; events < truth.size() && !tokens.empty(); ++events) {
        truth[events] = Evaluator(tokens, events).Run().value_or(false);
    }
    return truth;
}

void Sequencer::Start(std::span<const std::uint8_t> events, std::span<const std::uint8_t> control,
                      std::span<const std::uint8_t> parameters, std::size_t bufferSamples,
                      bool hasZoom) {
    comparators_.Load(events);
    levels_.clear();
    for (std::size_t row = 0; row + levelRow <= control.size(); row += levelRow) {
        const auto bytes = control.subspan(row, levelRow);
        const auto branch = [](std::uint8_t byte) { return Branch{byte & 7, (byte & 8) != 0}; };
        levels_.push_back({Compile(bytes.first<8>()), Compile(bytes.subspan<8, 8>()),
                           static_cast<unsigned>(bytes[16] | bytes[17] << 8), branch(bytes[18]),
                           branch(bytes[19])});
    }
    beforeLimit_ = BeforeLimit(bufferSamples, parameters[1]);
    afterLimit_ = bufferSamples - 1 - std::min(beforeLimit_, bufferSamples - 1);
    zoomPicoseconds_ = hasZoom ? 1875U << (parameters[2] & 7) : 0;
    before_.clear();
    after_.clear();
    recent_.clear();
    zoom_.clear();
    active_ = true;
    triggered_ = false;
    full_ = false;
    level_ = 0;
    occurrences_ = 0;
    unstoredTime_ = 0;
}

void Sequencer::Stop() {
    if (!active_) {
        return;
    }
    active_ = false;
    if (zoomPicoseconds_ != 0 && triggered_) {
        zoom_ = MakeZoom({recent_.begin(), recent_.end()}, recentTrigger_, zoomPicoseconds_);
    }
    recent_.clear();
}

void Sequencer::Feed(const Record& record) {
    if (!WantsSamples() || levels_.empty()) {
        return;
    }
    NoteForZoom(record);
    Record timed = record;
    unstoredTime_ += TimeOfField(GetField(record, bitTime, timeBits));
    SetField(timed, bitTime, timeBits, TimeField(unstoredTime_));

    const unsigned matches = comparators_.Matches(record);
    const Level& level = levels_[static_cast<std::size_t>(level_)];
    const bool stored = level.store[matches];
    const bool wasTriggered = triggered_;
    if (!level.condition[matches]) {
        Take(level.onFailure, timed);
    } else if (++occurrences_ >= level.occurs) {
        occurrences_ = 0;
        Take(level.onSuccess, timed);
    }
    const bool triggeredHere = triggered_ && !wasTriggered; // then the sample is already stored
    if (stored && !triggeredHere) {
        Store(timed);
    }
    if (stored || triggeredHere) {
        unstoredTime_ = 0;
    }
    full_ = triggered_ && after_.size() > afterLimit_;
}

void Sequencer::Take(const Branch& branch, Record record) {
    if (branch.trigger && !triggered_) {
        Trigger(record);
    }
    if (branch.level != level_) {
        level_ = branch.level;
        occurrences_ = 0;
    }
}

void Sequencer::Trigger(const Record& record) {
    triggered_ = true;
    after_.push_back(record);
    recentTrigger_ = recent_.empty() ? 0 : recent_.size() - 1;
}

void Sequencer::Store(const Record& record) {
    if (triggered_) {
        after_.push_back(record);
        return;
    }
    before_.push_back(record);
    if (before_.size() > beforeLimit_) {
        before_.pop_front();
    }
}

void Sequencer::NoteForZoom(const Record& record) {
    if (zoomPicoseconds_ == 0) {
        return;
    }
    if (!triggered_ && recent_.size() == zoomSpan) {
        recent_.pop_front();
    }
    if (!triggered_ || recent_.size() < recentTrigger_ + zoomSpan) {
        recent_.push_back(record);
    }
}

std::array<std::uint8_t, 9> Sequencer::LiveStatus() const {
    std::array<std::uint8_t, 9> status{};
    if (levels_.empty()) {
        return status; // the memory was given at construction
    }
    status[0] = static_cast<std::uint8_t>(level_ | (full_ ? 0x10 : 0) | (triggered_ ? 0x20 : 0) |
                                          (active_ ? 0x80 : 0));
    PutCount(&status[1], before_.size(), 3);
    PutCount(&status[4], after_.empty() ? 0 : after_.size() - 1, 3);
    PutCount(&status[7], occurrences_, 2);
    return status;
}

Record Sequencer::At(std::int64_t distance) const {
    const std::int64_t index = static_cast<std::int64_t>(before_.size()) + distance;
    if (distance >= 0) {
        return Held(after_, distance);
    }
    return index >= 0 ? before_[static_cast<std::size_t>(index)] : Record{};
}

std::pair<std::int64_t, std::int64_t> Sequencer::Range() const {
    return {-static_cast<std::int64_t>(before_.size()),
            static_cast<std::int64_t>(after_.size()) - 1};
}

Record Sequencer::ZoomAt(std::int64_t distance) const {
    return Held(zoom_, zoomTrigger + distance);
}

} // namespace boardsim
