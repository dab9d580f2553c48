#pragma once

#include "platform/repeating_timer.h"

#include <chrono>
#include <memory>

namespace busquill {

class CAnalyzerLink;
class Prompts;

/// Something that runs on the board: its steps are sent (SendSteps), it is looked at every so often
/// (ReadStatus), and it ends by itself or by Stop. A derived class is given values, these parts and
/// whom to tell, and so runs in a window, on the command line and in a test alike. Everything
/// happens on the main thread, which waits for each exchange.
class BoardRun {
public:
    struct Parts {
        CAnalyzerLink& link;
        Prompts& prompts;
        /// Null where whoever owns the run calls Look.
        std::unique_ptr<RepeatingTimer> timer = nullptr;
    };

    explicit BoardRun(Parts parts);
    /// Nobody looks any more; nothing goes to the board.
    virtual ~BoardRun();
    BoardRun(const BoardRun&) = delete;
    BoardRun& operator=(const BoardRun&) = delete;

    /// One look at what runs, and all that follows from it.
    virtual void Poll() = 0;
    virtual void Stop() = 0;

protected:
    /// From one period on.
    void PollEvery(std::chrono::milliseconds period);
    void StopPolling();

    [[nodiscard]] CAnalyzerLink& Link() const noexcept { return parts_.link; }
    [[nodiscard]] Prompts& Boxes() const noexcept { return parts_.prompts; }

private:
    const Parts parts_;
};

} // namespace busquill
