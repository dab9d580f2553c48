#include "performance/performance_run.h"

#include "link/exchange.h"
#include "platform/mutex.h"
#include "platform/periodic_timer.h"
#include "platform/prompts.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <random>

namespace busquill {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr const char* setupFailed = "Error sending performance setup to analyzer.";
constexpr const char* startFailed = "Error sending start performance command to analyzer.";
constexpr const char* stopFailed = "Error sending stop performance command to analyzer.";
constexpr const char* readFailed = "Error reading performance data from analyzer.";
constexpr const char* resolutionFailed = "Error setting timer resolution, err %d";
constexpr const char* timerFailed = "Error starting timer, err %d";

std::vector<RunStep> StartSteps(const PerformanceSetup& setup) {
    std::vector<RunStep> steps;
    steps.push_back({WritePayload(CmdPerformanceSetup,
                                  [payload = BuildPerformanceSetup(setup)] { return payload; }),
                     setupFailed});
    steps.push_back({RunCommand(CmdStartPerformance), startFailed});
    return steps;
}

} // namespace

std::int32_t StepDemoValue(std::int32_t value, std::int32_t step) noexcept {
    const std::int64_t next = std::int64_t{value} + step;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(next, 0, std::numeric_limits<std::int32_t>::max()));
}

/// The readings of one run. It belongs to the run and to the timer's thread, which may still be
/// waiting for an answer to its box when the run is gone.
class PerformanceRun::Reader {
public:
    Reader(const Parts& parts, PerformanceObserver& observer)
        : link_(parts.link), prompts_(parts.prompts), results_(parts.results),
          pause_(parts.pauseAfterFailure), most_(parts.mostReadings), observer_(observer) {}

    /// Timer's thread.
    void Read() {
        if (Pauses()) {
            return;
        }
        if (!link_.Exchange(ReadRegisters(RegisterPerformanceCounters, bytes_))) {
            Report();
            return;
        }
        if (link_.IsDemoMode()) {
            for (std::int32_t& value : values_) {
                value = StepDemoValue(value, step_(random_));
            }
        } else {
            values_ = ParsePerformanceResults(bytes_);
        }
        const MutexLock lock(mutex_);
        if (!closed_ && (most_ == 0 || results_.Count() < most_)) {
            results_.Add(values_);
            observer_.OnReading(values_);
        }
    }

    /// Main thread. Nothing is stored or reported any more.
    void Close() {
        const MutexLock lock(mutex_);
        closed_ = true;
    }

private:
    bool Pauses() const {
        return SteadyClock::now() < resume_ || (goneReported_ && link_.IsBoardGone());
    }
    // The box is the last thing of a reading, since everything may be gone when it is answered.
    void Report() {
        if (Closed()) {
            return;
        }
        goneReported_ = link_.IsBoardGone();
        prompts_.TopmostMessage(readFailed);
        resume_ = SteadyClock::now() + pause_;
    }
    bool Closed() {
        const MutexLock lock(mutex_);
        return closed_;
    }

    CAnalyzerLink& link_;
    Prompts& prompts_;
    ResultStore& results_;
    const std::chrono::milliseconds pause_;
    const std::int64_t most_;
    PerformanceObserver& observer_;
    Mutex mutex_; // the observer may wait for the main thread
    bool closed_ BUSQUILL_GUARDED_BY(mutex_) = false;

    // Timer's thread.
    std::array<std::uint8_t, performanceResultBytes> bytes_{};
    PerformanceResults values_{};
    bool goneReported_ = false;
    SteadyClock::time_point resume_;
    std::minstd_rand random_{std::random_device{}()};
    std::uniform_int_distribution<std::int32_t> step_{-largestDemoStep, largestDemoStep};
};

PerformanceRun::PerformanceRun(Parts parts, PerformanceObserver& observer)
    : parts_(std::move(parts)), observer_(observer) {}

PerformanceRun::~PerformanceRun() {
    if (IsOn()) {
        EndReadings();
    }
}

void PerformanceRun::Go(const PerformanceSetup& setup) {
    Stop();
    parts_.results.Clear();
    observer_.OnResultsCleared();
    if (SendSteps(parts_.link, StartSteps(setup), parts_.prompts) == Sent::Ended) {
        return;
    }
    const std::chrono::milliseconds interval(std::max(setup.updateInterval, 1));
    const std::chrono::milliseconds resolution(setup.updateInterval < 10 ? 1 : 10);
    reader_ = std::make_shared<Reader>(parts_, observer_);
    const PeriodicTimer::Started timer =
        parts_.timer->Start(interval, resolution, [reader = reader_] { reader->Read(); });
    observer_.OnRunning(true);
    if (timer.resolutionError != 0) {
        parts_.prompts.Message(Printf(resolutionFailed, timer.resolutionError));
    }
    if (!timer.running) {
        parts_.prompts.Message(Printf(timerFailed, timer.resolutionError));
    }
}

void PerformanceRun::Stop() {
    if (!IsOn()) {
        return;
    }
    EndReadings();
    ExchangeOrReport(parts_.link, RunCommand(CmdStopPerformance), parts_.prompts, stopFailed);
    observer_.OnRunning(false);
}

void PerformanceRun::EndReadings() {
    const std::shared_ptr<Reader> reader = std::move(reader_);
    reader->Close();
    parts_.timer->Stop();
}

} // namespace busquill
