// A measurement on the simulated board, over a real pseudo terminal.

#include "performance/performance_run.h"
#include "platform/periodic_timer.h"
#include "support/wire_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::Lt;

class Readings final : public PerformanceObserver {
public:
    void OnResultsCleared() override { count = 0; }
    void OnRunning(bool /*running*/) override {}
    void OnReading(const PerformanceResults& /*results*/) override { ++count; }

    std::atomic<int> count = 0;
};

class PerformanceOverWire : public LinkOverWire {
protected:
    /// Measures until some readings have come, and stops.
    void Measure(const PerformanceSetup& setup) {
        PerformanceRun run({link, prompts, results, std::make_unique<ThreadTimer>()}, readings);
        run.Go(setup);
        const auto limit = std::chrono::steady_clock::now() + 10s;
        while (readings.count < 5 && std::chrono::steady_clock::now() < limit) {
            std::this_thread::sleep_for(5ms);
        }
        run.Stop();
        EXPECT_GE(results.Count(), 5);
        EXPECT_THAT(prompts.Texts(), IsEmpty());
    }
    static PerformanceSetup SetupOf(std::int32_t type) {
        PerformanceSetup setup;
        setup.SetType(type);
        setup.updateInterval = 20;
        return setup;
    }

    ResultStore results;
    Readings readings;
};

TEST_F(PerformanceOverWire, TheBoardMeasuresItsTraffic) {
    StartBoard();
    link.Connect(Port());
    PerformanceSetup setup = SetupOf(PerformanceUtilization);
    setup.items[7] = setup.items[0];
    setup.items[7].cycle = 3;                                          // memory writes
    setup.items[7].highAddress = {0xFF, 0xFF, 0xFF, 0x00, 0, 0, 0, 0}; // one of three regions
    Measure(setup);
    for (std::int64_t i = 0; i < results.Count(); ++i) {
        const PerformanceResults reading = results.At(i);
        EXPECT_THAT(reading[0], AllOf(Gt(20), Lt(80))) << "busy";
        EXPECT_EQ(reading[1], 100 - reading[0]) << "idle";
        EXPECT_NEAR(reading[3] + reading[4], reading[0], 1) << "address and data phases";
        EXPECT_NEAR(reading[2] + reading[5], reading[4], 1) << "transfers and waits";
        EXPECT_THAT(reading[7], AllOf(Gt(0), Lt(reading[0])));
    }
    auto functions = board->Functions();
    functions.erase(functions.begin(), functions.begin() + 2); // the identity
    EXPECT_EQ(functions[0], "function 2 write memory, address 499 length 241");
    EXPECT_EQ(functions[1].substr(0, 29), "function 15 start performance");
    EXPECT_EQ(functions[2], "function 1 read memory, address 748 length 32");
    EXPECT_EQ(functions.back().substr(0, 28), "function 16 stop performance");
}

TEST_F(PerformanceOverWire, EveryTypeHasItsNumbersOnEveryBus) {
    for (const char* model : {"PCIKite", "VMEKite", "VSBKite"}) {
        StartBoard({"--model", model});
        link.Connect(Port());
        for (std::int32_t type = 0; type < PerformanceMaxTypes; ++type) {
            Measure(SetupOf(type));
            const PerformanceResults reading = results.At(0);
            EXPECT_THAT(reading[0], AllOf(Gt(0), Lt(1000))) << model << ", type " << type;
        }
    }
}

} // namespace
} // namespace busquill::test
