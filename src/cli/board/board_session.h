#pragma once

#include "cli/board/options.h"
#include "cli/session.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace busquill::cli::board {

/// Why a wait ended.
enum class WaitEnd { Done, TimeOver, Interrupted };

/// A connected board for one command: what its runs need, its messages and questions, and the end
/// that the user asks for. Main thread.
class BoardSession {
public:
    using Time = std::chrono::steady_clock;

    /// Connects; throws ExitRequest when no board answers.
    explicit BoardSession(const BoardOptions& options);

    [[nodiscard]] CAnalyzerLink& Link() noexcept { return session_.Link(); }
    [[nodiscard]] SignalTables& Tables() noexcept { return session_.Tables(); }
    /// Message boxes and questions of any thread. Messages go to standard error. Questions are
    /// answered by --yes or --no, else by the user on a terminal, else with no.
    [[nodiscard]] MainThread& Boxes() noexcept { return session_.Prompts(); }

    /// The time in which the function ends by itself; it begins now. Without one there is no end.
    void SetLimit(std::optional<Milliseconds> limit);
    /// Waits, while boxes of other threads are shown, until `done` returns true, the limit is over
    /// or the user interrupts. `done` is called at each wake of the main thread and at least every
    /// `period`.
    [[nodiscard]] WaitEnd WaitUntil(const std::function<bool()>& done,
                                    Milliseconds period = Milliseconds(50));
    /// Waits for a time, which may be 0; `Done` when it has passed and no end is asked for.
    [[nodiscard]] WaitEnd Pause(Milliseconds time);
    /// The end that the user asks for; `Done` when there is none.
    [[nodiscard]] WaitEnd EndAsked();
    /// Whether the user has interrupted. It stays so: the command is to stop its function, keep
    /// what came, and say so.
    [[nodiscard]] bool WasInterrupted();
    /// Whether the limit is over.
    [[nodiscard]] bool TimeIsOver() const;

    /// Prints the messages since the last call; returns whether there were any. Messages of runs
    /// tell of failures.
    bool PrintMessages();
    /// Whether there were any since the board was connected.
    [[nodiscard]] bool HadMessages() {
        PrintMessages();
        return hadMessages_;
    }
    /// Asks the user on the terminal; nothing at the end of the input and on an interrupt.
    [[nodiscard]] std::optional<std::string> AskOnTerminal(const std::string& question);
    /// Whether somebody may be there to answer.
    [[nodiscard]] static bool HasTerminal();
    /// Prints a line on standard error, unless --quiet leaves status lines out.
    void Status(const std::string& text) const;

private:
    [[nodiscard]] Answer Ask(const Box& question);
    /// Ends an exchange that the board does not: soon after an interrupt, at last after half a
    /// minute.
    [[nodiscard]] bool GivesUp(Milliseconds waited);

    const Answers answers_;
    const bool quiet_;
    int interrupts_ = 0;
    bool hadMessages_ = false;
    std::optional<Time::time_point> limit_;
    Session session_;
};

} // namespace busquill::cli::board
