#include "cli/board/master_runner.h"

#include "cli/exit_request.h"
#include "platform/near_names.h"
#include "platform/text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace busquill::cli::board {

namespace {

/// Between two looks at a step that takes long.
constexpr Milliseconds period(200);
/// A test that goes on all night may fail at every step.
constexpr std::size_t mostFailed = 10'000;

std::optional<std::uint64_t> ParseHex(std::string_view text) {
    text.remove_prefix(text.starts_with("0x") || text.starts_with("0X") ? 2 : 0);
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

MasterRunner::MasterRunner(BoardSession& session, const MasterForm& form, LineOutput& output,
                           MemoryForm memory, StepLines lines)
    : session_(session), output_(output), printer_(output, memory), lines_(lines),
      run_({session.Link(), session.Boxes()}, form, *this) {}

WaitEnd MasterRunner::Run() {
    hasRead_ = false;
    run_.Go();
    const WaitEnd end = Follow();
    if (run_.IsStepping()) {
        run_.Stop();
    }
    if (hasRead_) {
        printer_.End(Memory());
    }
    session_.PrintMessages();
    return end;
}

/// The first poll of a step comes at once, since most take less time than a period.
WaitEnd MasterRunner::Follow() {
    while (run_.IsStepping() && output_.IsOpen()) {
        isNewStep_ = false;
        run_.Poll();
        session_.PrintMessages();
        const bool isQuick = isNewStep_ || !run_.IsStepping();
        const WaitEnd end = session_.Pause(isQuick ? Milliseconds(0) : period);
        if (end != WaitEnd::Done && run_.IsStepping()) {
            return end;
        }
    }
    return WaitEnd::Done;
}

std::span<const std::uint8_t> MasterRunner::Memory() const {
    return run_.Memory() != nullptr ? run_.Memory()->Bytes() : std::span<const std::uint8_t>();
}

void MasterRunner::OnMemoryChanged() {
    if (!hasRead_) {
        hasRead_ = true;
        printer_.Begin(run_.Memory()->BaseAddress());
    }
    printer_.Follow(Memory());
}

void MasterRunner::OnStatus(std::span<const std::string_view> lines) {
    const std::uint64_t address = NumberOf(run_.CurrentAddress());
    const bool isGood = std::ranges::all_of(lines, [](auto line) { return line == masterPass; });
    if (lines_ == StepLines::All || !isGood) {
        for (const std::string_view line : lines) {
            session_.Status(Printf("%08llx: %s", static_cast<unsigned long long>(address),
                                   std::string(line).c_str()));
        }
    }
    if (isGood) {
        return;
    }
    ++failedCount_;
    if (failed_.size() < mostFailed) {
        failed_.push_back({address, {lines.begin(), lines.end()}});
    }
}

void MasterRunner::OnStepStarted() {
    isNewStep_ = true;
    ++steps_;
}

int MasterStatus(BoardSession& session, const MasterRunner& runner, WaitEnd end) {
    if (end != WaitEnd::Done) {
        session.Status(Printf("%s after %lld steps",
                              end == WaitEnd::Interrupted ? "interrupted" : "the time is over",
                              static_cast<long long>(runner.Steps())));
    }
    if (session.HadMessages() || runner.Steps() == 0) {
        return ExitStatus::Failure;
    }
    if (runner.FailedCount() > 0) {
        return ExitStatus::NothingFound;
    }
    return end == WaitEnd::Interrupted ? ExitStatus::Failure : ExitStatus::Done;
}

void SetSpace(MasterForm& form, const MasterFamily& family, const std::string& text) {
    if (family.addressModifier) {
        const auto modifier = ParseHex(text);
        if (!modifier || *modifier >= 1U << addressModifierBits) {
            WrongUse("on this board the space is an address modifier, 00 to 3F in hexadecimal; not "
                     "\"" +
                     text + "\"");
        }
        form.addressModifier = static_cast<std::uint8_t>(*modifier);
        return;
    }
    const auto found = std::ranges::find_if(
        family.spaces, [&](std::string_view each) { return EqualIgnoringCase(each, text); });
    if (found == family.spaces.end()) {
        const std::vector<std::string> names(family.spaces.begin(), family.spaces.end());
        WrongUse("no space \"" + text + "\" on this board; there are " + ListNearest(text, names));
    }
    form.addressSpace = static_cast<std::int32_t>(found - family.spaces.begin());
}

std::uint64_t HexOperand(const char* name, const std::string& text) {
    const auto number = ParseHex(text);
    if (!number) {
        WrongUse(std::string(name) + " is a hexadecimal number of at most 16 digits; not \"" +
                 text + "\"");
    }
    return *number;
}

} // namespace busquill::cli::board
