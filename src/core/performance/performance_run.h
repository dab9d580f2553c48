#pragma once

#include "performance/performance_setup.h"
#include "performance/result_store.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace busquill {

class CAnalyzerLink;
class PeriodicTimer;
class Prompts;

/// Follows a run. Readings come on the timer's thread, everything else on the main thread.
class PerformanceObserver {
public:
    virtual ~PerformanceObserver() = default;

    /// A run is about to start and the old results are gone. No reading comes meanwhile.
    virtual void OnResultsCleared() = 0;
    virtual void OnRunning(bool running) = 0;
    /// A reading has been stored. Timer's thread, for a moment: no box, and no call of the run.
    virtual void OnReading(const PerformanceResults& results) = 0;
};

/// The run of a performance measurement: while it is on, the board is read at the setup's interval.
/// Main thread; a reading waits for the board on the timer's thread.
///
///   main thread              timer's thread          observer
///   Go: setup, start
///     timer starts ------->  read, wait
///                            store, then --------->  OnReading
///                            read, wait ...
///   Stop: no more readings,
///     waits for the last one
///     stop to the board
///
/// A reading that fails is reported on the timer's thread, and no other is made meanwhile, nor for
/// a while after: the user must get at Stop between two boxes. A board that is gone is reported
/// once.
class PerformanceRun {
public:
    struct Parts {
        CAnalyzerLink& link;
        Prompts& prompts;
        ResultStore& results;
        std::unique_ptr<PeriodicTimer> timer;
        /// How long no reading is made after one has failed.
        std::chrono::milliseconds pauseAfterFailure = std::chrono::seconds(1);
        /// How many readings are stored and reported until Stop; 0 for any number.
        std::int64_t mostReadings = 0;
    };

    /// The parts and the observer outlive the run.
    PerformanceRun(Parts parts, PerformanceObserver& observer);
    /// Ends the readings. Nothing is sent to the board, and the observer is not called.
    ~PerformanceRun();
    PerformanceRun(const PerformanceRun&) = delete;
    PerformanceRun& operator=(const PerformanceRun&) = delete;

    /// Stops a run that is on, clears the results and starts a new run. A command that fails is
    /// reported and the run goes on, unless the board proves to be gone.
    void Go(const PerformanceSetup& setup);
    /// Ends the run; does nothing when none is on. After it no reading is stored or reported.
    void Stop();
    [[nodiscard]] bool IsOn() const noexcept { return reader_ != nullptr; }

private:
    class Reader;

    void EndReadings();

    const Parts parts_;
    PerformanceObserver& observer_;
    std::shared_ptr<Reader> reader_; // while the run is on; shared with the timer's thread
};

/// The next value in Demo Mode, where the board is not read: at least 0.
[[nodiscard]] std::int32_t StepDemoValue(std::int32_t value, std::int32_t step) noexcept;
/// The steps are from -this to +this.
inline constexpr std::int32_t largestDemoStep = 10;

} // namespace busquill
