#pragma once

#include "cli/board/board_session.h"
#include "link/board_run.h"

#include <memory>

namespace busquill::cli::board {

class LineOutput;

/// The polls of a run, at the run's own period, while a command waits for its end. Main thread.
class Polls {
public:
    explicit Polls(BoardSession& session);

    /// What the run is constructed with.
    [[nodiscard]] BoardRun::Parts Parts();

    /// Whether the run wants to be polled.
    [[nodiscard]] bool AreOn() const noexcept;
    /// Polls until the run does not want it any more, until the end that the user asks for, or
    /// until nobody reads the output any more. Also ends when the board does not answer any more.
    [[nodiscard]] WaitEnd Follow(const LineOutput& output);
    /// Polls until the run does not want it any more, whatever the user asks for: for what comes
    /// after the end of a function.
    void Finish();
    /// Whether polling ended because the board did not answer.
    [[nodiscard]] bool IsBoardLost() const noexcept { return isBoardLost_; }

private:
    class Timer;
    struct Schedule;

    void Poll();

    BoardSession& session_;
    const std::shared_ptr<Schedule> schedule_; // shared with the run's timer
    int failures_ = 0;                         // one after the other
    bool isBoardLost_ = false;
};

} // namespace busquill::cli::board
