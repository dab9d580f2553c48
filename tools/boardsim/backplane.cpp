#include "backplane.h"

#include <sstream>
#include <string>

namespace boardsim {

namespace {

constexpr std::uint8_t statusRunning = 0x80;

/// The lines "5+6+7", or "9"; none when they are not understood.
std::bitset<backplaneLines> ParseLines(const std::string& text) {
    std::bitset<backplaneLines> lines;
    std::istringstream words(text);
    char plus = '+';
    for (int line = 0; plus == '+' && words >> line && line >= 0 && line < backplaneLines;) {
        lines.set(static_cast<std::size_t>(line));
        if (!(words >> plus)) {
            return lines;
        }
    }
    return {};
}

} // namespace

bool Backplane::TakeFaults(std::string_view faults) {
    shorts_.clear();
    broken_.reset();
    std::istringstream entries{std::string(faults)};
    for (std::string entry; std::getline(entries, entry, ',');) {
        const auto word = entry.find("broken");
        const bool broken = word != std::string::npos;
        const Lines lines = ParseLines(broken ? entry.substr(word + 6) : entry);
        if (lines.none() || (!broken && lines.count() < 2)) {
            return false;
        }
        if (broken) {
            broken_ |= lines;
        } else {
            shorts_.push_back(lines);
        }
    }
    return true;
}

void Backplane::Start(std::span<std::uint8_t, backplaneBytes> bytes, int busy) {
    Lines driven;
    for (std::size_t line = 0; line < backplaneLines; ++line) {
        driven[line] = (bytes[2 * (line / 8) + 1] >> (line % 8) & 1) != 0;
    }
    const Lines seen = Seen(driven);
    for (std::size_t group = 0; group < backplaneLines / 8; ++group) {
        std::uint8_t byte = 0;
        for (std::size_t bit = 0; bit < 8; ++bit) {
            byte = static_cast<std::uint8_t>(byte | seen[8 * group + bit] << bit);
        }
        bytes[2 * group] = byte;
    }
    busy_ = busy;
}

/// A short spreads to whatever is shorted to its lines in turn.
Backplane::Lines Backplane::Seen(Lines driven) const {
    Lines seen = driven & ~broken_;
    for (bool spreads = true; spreads;) {
        const Lines before = seen;
        for (const Lines& lines : shorts_) {
            if ((seen & lines).any()) {
                seen |= lines & ~broken_;
            }
        }
        spreads = seen != before;
    }
    return seen;
}

std::uint8_t Backplane::TakeStatus() noexcept {
    if (busy_ <= 0) {
        return 0;
    }
    --busy_;
    return statusRunning;
}

} // namespace boardsim
