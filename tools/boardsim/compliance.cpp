#include "compliance.h"

#include <sstream>

namespace boardsim {

namespace {

constexpr std::uint8_t controlInstructions = 1;
constexpr std::uint8_t controlContinue = 3;

constexpr std::uint8_t statusRunning = 0x80;
constexpr std::uint8_t statusPassed = 0x01;
constexpr std::uint8_t statusFailed = 0x02;
constexpr unsigned codeBit = 3;
constexpr unsigned largestCode = 15;

constexpr const char* allOthers = "*";

/// "PCI12"
std::string NameOf(std::span<const std::uint8_t, 4> id) {
    std::string name;
    for (const std::uint8_t letter : id.first(3)) {
        if (letter != ' ') {
            name += static_cast<char>(letter);
        }
    }
    return name + std::to_string(id[3]);
}

/// The words that follow a test's name.
std::optional<Verdict> ParseVerdict(std::istream& words) {
    Verdict verdict;
    for (std::string word; words >> word;) {
        if (word == "pass") {
            verdict.kind = Verdict::Kind::Pass;
        } else if (word == "unknown") {
            verdict.kind = Verdict::Kind::Unknown;
        } else if (word == "fail" && words >> verdict.code && verdict.code <= largestCode) {
            verdict.kind = Verdict::Kind::Fail;
        } else if (word != "slow" || !(words >> verdict.slow)) {
            return std::nullopt;
        }
    }
    return verdict;
}

std::uint8_t StatusOf(const Verdict& verdict) {
    switch (verdict.kind) {
    case Verdict::Kind::Pass:
        return statusPassed;
    case Verdict::Kind::Fail:
        return static_cast<std::uint8_t>(statusFailed | verdict.code << codeBit);
    case Verdict::Kind::Unknown:
        break;
    }
    return 0;
}

} // namespace

bool Compliance::TakeScript(std::string_view script) {
    std::istringstream entries{std::string(script)};
    for (std::string entry; std::getline(entries, entry, ',');) {
        std::istringstream words(entry);
        std::string name;
        words >> name;
        const auto verdict = ParseVerdict(words);
        if (name.empty() || !verdict) {
            return false;
        }
        verdicts_[name] = *verdict;
    }
    return true;
}

void Compliance::Start(std::span<const std::uint8_t, 4> id, std::uint8_t control) {
    auto found = verdicts_.find(NameOf(id));
    if (found == verdicts_.end()) {
        found = verdicts_.find(allOthers);
    }
    running_ = {found == verdicts_.end() ? Verdict() : found->second,
                control == controlInstructions};
}

std::uint8_t Compliance::TakeStatus(std::uint8_t control) {
    if (!running_) {
        return 0;
    }
    running_->waits = running_->waits && control != controlContinue;
    if (running_->waits || running_->verdict.slow > 0) {
        running_->verdict.slow -= running_->waits ? 0 : 1;
        return statusRunning;
    }
    return StatusOf(running_->verdict);
}

} // namespace boardsim
