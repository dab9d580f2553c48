#pragma once

#include "link/board_run.h"
#include "platform/demo_random.h"

#include <functional>
#include <string_view>

namespace busquill {

class CAnomalyDetectionDoc;

/// Follows a run. Main thread.
class AnomalyObserver {
public:
    virtual ~AnomalyObserver() = default;

    virtual void OnRunning(bool running) = 0;
    /// A run begins; the old results are gone.
    virtual void OnResultsCleared() = 0;
    /// A check has found something. Its text in the table of the board's family.
    virtual void OnFound(std::string_view check) = 0;
};

/// Has the board watch the bus for what is on the check list, and asks it each second for one check
/// that has found something. Main thread.
class AnomalyRun final : public BoardRun {
public:
    /// Returns a number from 0 to largestDemoRandom, for Demo Mode.
    using Random = std::function<int()>;

    /// The document takes the results; it and the observer outlive the run.
    AnomalyRun(Parts parts, CAnomalyDetectionDoc& document, AnomalyObserver& observer,
               Random random = {});

    /// Tells the board which checks to leave out. A run that is on goes on with them.
    void SendChecklist();

    /// Starts a run, after stopping one that is on. A failed command is reported, and the run goes
    /// on.
    void Start();
    void Poll() override;
    /// Ends a run; does nothing when none is on.
    void Stop() override;
    [[nodiscard]] bool IsOn() const noexcept { return on_; }

private:
    CAnomalyDetectionDoc& document_;
    AnomalyObserver& observer_;
    const Random random_;
    bool on_ = false;
};

/// What the board would report, made of a random number: nothing about every other time, otherwise
/// a check from 1 to 25.
[[nodiscard]] constexpr int DemoAnomaly(int random) noexcept {
    const int n = random * 50 / largestDemoRandom;
    return n < 26 ? 0 : n - 25;
}

} // namespace busquill
