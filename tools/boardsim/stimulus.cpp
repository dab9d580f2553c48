#include "stimulus.h"

namespace boardsim {

namespace {

constexpr std::size_t slotSize = 5;
constexpr std::size_t rowSize = 30;
constexpr unsigned anySample = 15;

} // namespace

void Stimulus::Start(std::span<const std::uint8_t> events, std::span<const std::uint8_t> patterns,
                     std::span<const std::uint8_t> control) {
    comparators_.Load(events);
    for (std::size_t n = 1; n < patterns_.size(); ++n) {
        const auto row = patterns.subspan((n - 1) * rowSize, rowSize);
        for (std::size_t byte = 0; byte < patterns_[n].value.size(); ++byte) {
            patterns_[n].value[byte] = row[2 * byte];
            patterns_[n].driven[byte] = row[2 * byte + 1];
        }
    }
    for (std::size_t n = 0; n < levels_.size(); ++n) {
        const auto slot = control.subspan(n * slotSize, slotSize);
        levels_[n] = {.condition = slot[0] & 0x0FU,
                      .pattern = static_cast<unsigned>(slot[0] >> 4),
                      .onSuccess = slot[1] & 0x0FU,
                      .onFailure = static_cast<unsigned>(slot[1] >> 4),
                      .occurs = slot[2] == 0 ? 256U : slot[2],
                      .duration = slot[3],
                      .wait = slot[4]};
    }
    running_ = true;
    level_ = 0;
    occurrences_ = 0;
    acting_ = false;
}

Record Stimulus::Feed(const Record& record) {
    if (!running_) {
        return record;
    }
    const unsigned matches = comparators_.Matches(record); // follows the bus, so for each sample
    const Level& level = levels_[level_];
    if (!acting_) {
        if (!Holds(level.condition, matches)) {
            GoTo(level.onFailure);
        } else if (++occurrences_ >= level.occurs) {
            acting_ = true;
            spent_ = 0;
        }
        return record;
    }
    const Record driven = spent_ < level.duration ? Drive(level.pattern, record) : record;
    if (++spent_ >= level.duration + level.wait) {
        acting_ = false;
        occurrences_ = 0;
        GoTo(level.onSuccess);
    }
    return driven;
}

bool Stimulus::Holds(unsigned condition, unsigned matches) noexcept {
    const bool isEvent = condition >= 1 && condition <= 8;
    return condition == anySample || (isEvent && (matches >> (condition - 1) & 1) != 0);
}

Record Stimulus::Drive(unsigned pattern, const Record& record) const {
    const Pattern& lines = patterns_[pattern];
    Record driven = record;
    for (std::size_t i = 0; i < lines.value.size(); ++i) {
        driven[i] = static_cast<std::uint8_t>((record[i] & ~lines.driven[i]) |
                                              (lines.value[i] & lines.driven[i]));
    }
    return driven;
}

void Stimulus::GoTo(unsigned level) {
    if (level == stop) {
        running_ = false;
    } else if (level != level_) {
        level_ = level;
        occurrences_ = 0;
    }
}

} // namespace boardsim
