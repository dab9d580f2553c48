#pragma once

#include "link/board_run.h"

#include <functional>

namespace busquill {

class StimulusProgram;

/// The run of a stimulus program: the board is given the program and started, and its status is
/// polled until the program has ended. Main thread.
class StimulusRun final : public BoardRun {
public:
    /// `onRunning` is called when a run has started and when it has ended.
    StimulusRun(Parts parts, std::function<void(bool running)> onRunning);

    /// Sends the program and starts it, also during a run. A failed command is reported. Without
    /// the last one, the start, nothing changes; after a failure of another, the board starts with
    /// what it has.
    void Go(const StimulusProgram& program);
    /// Ends the run when the program has ended. If the board cannot be read, it is stopped.
    void Poll() override;
    /// Stops the board, also when no run is on.
    void Stop() override;

private:
    const std::function<void(bool)> onRunning_;
};

} // namespace busquill
