#pragma once

#include "platform/repeating_timer.h"

#include <chrono>
#include <memory>

namespace busquill {

class CAnalyzerLink;
class Prompts;

/// A run of a function on the board: its steps are sent (SendSteps), its status is polled
/// (ReadStatus), and it ends when the board has finished or on Stop. A derived class takes its
/// values, these parts and an observer, so it works in a window, on the command line and in a test.
/// Main thread, which waits for each exchange.
class BoardRun {
public:
    struct Parts {
        CAnalyzerLink& link;
        Prompts& prompts;
        /// Null where the owner of the run calls Poll.
        std::unique_ptr<RepeatingTimer> timer = nullptr;
    };

    explicit BoardRun(Parts parts);
    /// Polling ends; nothing is sent to the board.
    virtual ~BoardRun();
    BoardRun(const BoardRun&) = delete;
    BoardRun& operator=(const BoardRun&) = delete;

    /// Reads the status of the run and acts on it.
    virtual void Poll() = 0;
    virtual void Stop() = 0;

protected:
    /// Starts polling; the first poll comes after one period.
    void PollEvery(std::chrono::milliseconds period);
    void StopPolling();
    /// For a run that goes on when a read has failed: a board that is gone is reported only once.
    void StopPollingIfGone();

    [[nodiscard]] CAnalyzerLink& Link() const noexcept { return parts_.link; }
    [[nodiscard]] Prompts& Boxes() const noexcept { return parts_.prompts; }

private:
    const Parts parts_;
};

} // namespace busquill
