#include "cli/board/board_session.h"

#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace busquill::cli::board {

namespace {

/// After an interrupt; an answer that comes takes no longer.
constexpr Milliseconds patienceOnceInterrupted = std::chrono::seconds(5);

/// The line that the user types; nothing at the end of the input and on an interrupt.
std::optional<std::string> ReadLine() {
    std::string line;
    for (char c = 0; ::read(STDIN_FILENO, &c, 1) == 1; line += c) {
        if (c == '\n') {
            return line;
        }
    }
    return std::nullopt;
}

} // namespace

BoardSession::BoardSession(const BoardOptions& options)
    : answers_(options.answers), quiet_(options.quiet), session_(options.port) {
    session_.SetQuestions([this](const Box& question) { return Ask(question); });
    Link().SetGiveUp([this](Milliseconds waited) { return GivesUp(waited); });
    if (WasInterrupted()) {
        Fail("interrupted");
    }
}

void BoardSession::SetLimit(std::optional<Milliseconds> limit) {
    limit_ = limit ? std::optional(Time::now() + *limit) : std::nullopt;
}

bool BoardSession::WasInterrupted() {
    interrupts_ += Interrupted() ? 1 : 0;
    return interrupts_ > 0;
}

bool BoardSession::TimeIsOver() const {
    return limit_ && Time::now() >= *limit_;
}

WaitEnd BoardSession::WaitUntil(const std::function<bool()>& done, Milliseconds period) {
    while (true) {
        Milliseconds wait = period;
        if (limit_) {
            const auto left = std::chrono::ceil<Milliseconds>(*limit_ - Time::now());
            wait = std::clamp(left, Milliseconds(0), period);
        }
        const bool isDone = Boxes().WaitUntil(wait, done);
        PrintMessages();
        if (isDone) {
            return WaitEnd::Done;
        }
        if (const WaitEnd end = EndAsked(); end != WaitEnd::Done) {
            return end;
        }
    }
}

WaitEnd BoardSession::Pause(Milliseconds time) {
    const auto until = Time::now() + time;
    const WaitEnd end = WaitUntil([&] { return Time::now() >= until; }, time);
    return end == WaitEnd::Done ? EndAsked() : end;
}

WaitEnd BoardSession::EndAsked() {
    return WasInterrupted() ? WaitEnd::Interrupted
           : TimeIsOver()   ? WaitEnd::TimeOver
                            : WaitEnd::Done;
}

bool BoardSession::PrintMessages() {
    const bool any = session_.PrintMessages();
    hadMessages_ = hadMessages_ || any;
    return any;
}

void BoardSession::Status(const std::string& text) const {
    if (!quiet_) {
        Say(text);
    }
}

bool BoardSession::HasTerminal() {
    return ::isatty(STDIN_FILENO) != 0;
}

std::optional<std::string> BoardSession::AskOnTerminal(const std::string& question) {
    std::fputs(question.c_str(), stderr);
    return ReadLine();
}

Answer BoardSession::Ask(const Box& question) {
    PrintMessages(); // of what the question is about
    const std::string text = AsLine(question.text);
    bool yes = answers_ == Answers::Yes;
    if (answers_ == Answers::Ask && HasTerminal()) {
        const std::string answer = ToLower(Trim(AskOnTerminal(text + " [y/N] ").value_or("")));
        yes = answer == "y" || answer == "yes";
    } else if (!yes || !quiet_) {
        Say(text + (yes ? " yes" : " no"));
    }
    if (question.buttons == BoxButtons::OkCancel) {
        return yes ? Answer::Ok : Answer::Cancel;
    }
    return yes ? Answer::Yes : Answer::No;
}

bool BoardSession::GivesUp(Milliseconds waited) {
    const bool wasInterrupted = WasInterrupted();
    return waited >= patience || (wasInterrupted && waited >= patienceOnceInterrupted) ||
           interrupts_ > 1;
}

} // namespace busquill::cli::board
