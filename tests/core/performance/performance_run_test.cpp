#include "performance/performance_run.h"
#include "platform/periodic_timer.h"
#include "support/link_fixture.h"
#include "support/manual_periodic_timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::Not;
using testing::SizeIs;

const std::string readFailed = "Error reading performance data from analyzer.";
const std::string stopFailed = "Error sending stop performance command to analyzer.";

constexpr int startPerformance = 15;
constexpr int stopPerformance = 16;
constexpr int readMemory = 1;

/// Keeps what a run reports.
class Observer final : public PerformanceObserver {
public:
    explicit Observer(const ResultStore& results) : results_(results) {}

    void OnResultsCleared() override {
        events.push_back("cleared " + std::to_string(results_.Count()));
    }
    void OnRunning(bool running) override { events.push_back(running ? "on" : "off"); }
    void OnReading(const PerformanceResults& reading) override {
        last = reading; // the run has its lock
        ++readings;
    }

    std::vector<std::string> events;
    PerformanceResults last{};
    std::atomic<int> readings = 0;

private:
    const ResultStore& results_;
};

class PerformanceRunTest : public LinkFixture {
protected:
    PerformanceRunTest() { OpenBoard("PCIKite"); }
    ~PerformanceRunTest() override { run.reset(); }

    PerformanceRun& ManualRun(std::chrono::milliseconds pause = 0ms) {
        return NewRun(std::make_unique<ManualPeriodicTimer>(timer), prompts, pause);
    }
    PerformanceRun& NewRun(std::unique_ptr<PeriodicTimer> newTimer, Prompts& boxes,
                           std::chrono::milliseconds pause = 0ms) {
        run = std::make_unique<PerformanceRun>(
            PerformanceRun::Parts{*link, boxes, results, std::move(newTimer), pause}, observer);
        return *run;
    }
    void SetCounters(const PerformanceResults& values) {
        Bytes bytes;
        for (const std::int32_t value : values) {
            for (int shift = 0; shift < 32; shift += 8) {
                bytes.push_back(
                    static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> shift));
            }
        }
        line->Do([&] { board.contents[748] = bytes; });
    }
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = std::exchange(board.functions, {}); });
        return functions;
    }
    int CountOf(int function) {
        int count = 0;
        line->Do([&] { count = static_cast<int>(std::ranges::count(board.functions, function)); });
        return count;
    }
    /// The board does not answer this command, which fails when all its tries have failed.
    void IgnoreFunction(int function) {
        line->SetAnswer([this, function](const Bytes& sent, int baud) {
            const bool ignored = sent.size() == 2 && sent[0] == 2 && sent[1] == function;
            return ignored ? Bytes{} : board.Answer(sent, baud);
        });
    }
    /// The same for commands with an address: those that read and write.
    void IgnoreReadsAndWrites() {
        line->SetAnswer([this](const Bytes& sent, int baud) {
            return sent.size() == 2 && sent[0] == 4 ? Bytes{} : board.Answer(sent, baud);
        });
    }
    /// The port is gone. Time passes for the tries of the requests that fail.
    void Unplug() {
        line->Unplug();
        ASSERT_TRUE(Eventually([&] { return link->IsBoardGone(); }));
        line->SetErrors({.write = 5});
        timePasses = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(1ms);
                clock.Advance(100ms);
            }
        });
    }
    [[nodiscard]] int ShownTimes(const std::string& text) {
        const std::vector<std::string> texts = prompts.Texts();
        return static_cast<int>(std::ranges::count(texts, text));
    }

    std::shared_ptr<PeriodicTimerState> timer = std::make_shared<PeriodicTimerState>();
    ResultStore results;
    Observer observer{results};
    PerformanceSetup setup;
    std::unique_ptr<PerformanceRun> run;
    std::jthread timePasses;
};

TEST_F(PerformanceRunTest, KeepsNoMoreReadingsThanAreWanted) {
    run = std::make_unique<PerformanceRun>(
        PerformanceRun::Parts{.link = *link,
                              .prompts = prompts,
                              .results = results,
                              .timer = std::make_unique<ManualPeriodicTimer>(timer),
                              .mostReadings = 2},
        observer);
    for (int runs = 1; runs <= 2; ++runs) {
        run->Go(setup);
        for (int tick = 0; tick < 3; ++tick) {
            timer->tick();
        }
        EXPECT_EQ(results.Count(), 2);
        EXPECT_EQ(observer.readings, 2 * runs);
    }
}

TEST_F(PerformanceRunTest, GoSendsTheSetupAndStartsReading) {
    setup.SetType(PerformanceLatency);
    results.Add({1});
    ManualRun().Go(setup);
    line->Do([&] {
        ASSERT_THAT(board.writes, SizeIs(1));
        EXPECT_EQ(board.writes[0].address, 499U);
        EXPECT_EQ(board.writes[0].bytes, BuildPerformanceSetup(setup));
    });
    EXPECT_THAT(Functions(), ElementsAre(readMemory, 2, startPerformance))
        << "the identity, the setup, the start";
    EXPECT_THAT(observer.events, ElementsAre("cleared 0", "on"));
    EXPECT_TRUE(run->IsOn());
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 100ms);
    EXPECT_EQ(timer->resolution, 10ms);

    SetCounters({1, 2, 3, 4, 5, 6, -7, 0x12345678});
    timer->tick();
    EXPECT_EQ(results.At(0), (PerformanceResults{1, 2, 3, 4, 5, 6, -7, 0x12345678}));
    EXPECT_EQ(results.Count(), 1);
    EXPECT_EQ(observer.last, results.At(0));
    EXPECT_EQ(observer.readings, 1);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(PerformanceRunTest, TheTimerIsAsFineAsTheIntervalNeeds) {
    struct Row {
        std::int32_t interval;
        std::chrono::milliseconds period;
        std::chrono::milliseconds resolution;
    };
    for (const Row& row : {Row{1, 1ms, 1ms}, Row{9, 9ms, 1ms}, Row{10, 10ms, 10ms},
                           Row{600000, 600000ms, 10ms}, Row{0, 1ms, 1ms}, Row{-5, 1ms, 1ms}}) {
        setup.updateInterval = row.interval;
        ManualRun().Go(setup);
        EXPECT_EQ(timer->period, row.period) << row.interval;
        EXPECT_EQ(timer->resolution, row.resolution) << row.interval;
    }
}

TEST_F(PerformanceRunTest, StopSendsTheCommandAndEndsTheReadings) {
    ManualRun().Go(setup);
    static_cast<void>(Functions());
    run->Stop();
    EXPECT_THAT(Functions(), ElementsAre(stopPerformance));
    EXPECT_FALSE(timer->runs);
    EXPECT_FALSE(run->IsOn());
    timer->tick(); // one that was on its way
    EXPECT_EQ(results.Count(), 0);
    EXPECT_EQ(observer.readings, 0);
    EXPECT_THAT(observer.events, ElementsAre("cleared 0", "on", "off"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(PerformanceRunTest, StopWithoutARunDoesNothing) {
    static_cast<void>(Functions());
    ManualRun().Stop();
    EXPECT_THAT(Functions(), IsEmpty());
    run->Go(setup);
    run->Stop();
    static_cast<void>(Functions());
    run->Stop();
    EXPECT_THAT(Functions(), IsEmpty());
    EXPECT_THAT(observer.events, ElementsAre("cleared 0", "on", "off"));
}

TEST_F(PerformanceRunTest, GoStopsTheRunThatIsOn) {
    ManualRun().Go(setup);
    timer->tick();
    static_cast<void>(Functions());
    const auto before = timer->tick;
    run->Go(setup);
    EXPECT_THAT(Functions(), ElementsAre(stopPerformance, 2, startPerformance));
    EXPECT_THAT(observer.events, ElementsAre("cleared 0", "on", "off", "cleared 0", "on"));
    before();
    EXPECT_EQ(results.Count(), 0) << "a reading of the last run does not count";
    timer->tick();
    EXPECT_EQ(results.Count(), 1);
}

TEST_F(PerformanceRunTest, ItsEndEndsTheReadingsOnly) {
    ManualRun().Go(setup);
    static_cast<void>(Functions());
    run.reset();
    EXPECT_FALSE(timer->runs);
    timer->tick();
    EXPECT_EQ(observer.readings, 0);
    EXPECT_THAT(Functions(), Not(Contains(stopPerformance)));
    EXPECT_THAT(observer.events, ElementsAre("cleared 0", "on"));
}

TEST_F(PerformanceRunTest, ACommandThatFailsIsReportedAndTheRunGoesOn) {
    IgnoreFunction(startPerformance);
    ManualRun().Go(setup);
    EXPECT_THAT(prompts.Texts(),
                Contains("Error sending start performance command to analyzer.").Times(1));
    EXPECT_TRUE(timer->runs);
    timer->tick();
    EXPECT_EQ(results.Count(), 1);
    prompts.Forget();
    IgnoreFunction(stopPerformance);
    run->Stop();
    EXPECT_THAT(prompts.Texts(), Contains(stopFailed).Times(1));
    EXPECT_EQ(observer.events.back(), "off");
    prompts.Forget();
    IgnoreReadsAndWrites();
    run->Go(setup);
    EXPECT_THAT(prompts.Texts(), Contains("Error sending performance setup to analyzer.").Times(1));
    EXPECT_TRUE(timer->runs);
}

TEST_F(PerformanceRunTest, AReadingThatFailsIsReportedAndStoresNothing) {
    ManualRun().Go(setup);
    IgnoreReadsAndWrites();
    timer->tick();
    timer->tick();
    EXPECT_EQ(ShownTimes(readFailed), 2);
    for (const Box& box : prompts.Boxes()) {
        EXPECT_TRUE(box.topmost || box.text != readFailed);
    }
    EXPECT_EQ(results.Count(), 0);
    UseBoard();
    timer->tick();
    EXPECT_EQ(results.Count(), 1);
}

TEST_F(PerformanceRunTest, AfterAFailureThereIsTimeToStop) {
    ManualRun(1h).Go(setup);
    IgnoreReadsAndWrites();
    timer->tick();
    timer->tick();
    EXPECT_EQ(ShownTimes(readFailed), 1);
    run->Stop();
    UseBoard();
    run->Go(setup);
    timer->tick();
    EXPECT_EQ(results.Count(), 1) << "a new run does not wait";
}

TEST_F(PerformanceRunTest, ABoardThatIsGoneIsReportedOnce) {
    ManualRun().Go(setup);
    Unplug();
    for (int i = 0; i < 20; ++i) {
        timer->tick();
    }
    EXPECT_EQ(ShownTimes(readFailed), 1);
    EXPECT_TRUE(run->IsOn());
    run->Stop();
    EXPECT_EQ(ShownTimes(stopFailed), 1);
}

TEST_F(PerformanceRunTest, DoesNotStartOnABoardThatIsGone) {
    Unplug();
    ManualRun().Go(setup);
    EXPECT_EQ(ShownTimes("Error sending performance setup to analyzer."), 1);
    EXPECT_EQ(ShownTimes("Error sending start performance command to analyzer."), 0);
    EXPECT_FALSE(run->IsOn());
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(observer.events, ElementsAre("cleared 0"));
}

TEST_F(PerformanceRunTest, ATimerThatFailsIsReportedWithTheNumberOfItsResolution) {
    timer->answer = {true, 22};
    ManualRun().Go(setup);
    timer->answer = {false, 0};
    ManualRun().Go(setup);
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error setting timer resolution, err 22",
                                             "Error starting timer, err 0"));
    run->Stop();
    EXPECT_EQ(observer.events.back(), "off");
}

TEST(PerformanceDemoValues, DoNotFallBelowZero) {
    EXPECT_EQ(StepDemoValue(3, -10), 0);
    EXPECT_EQ(StepDemoValue(0, 10), 10);
    EXPECT_EQ(StepDemoValue(10, -10), 0);
    EXPECT_EQ(StepDemoValue(11, -10), 1);
    EXPECT_EQ(StepDemoValue(2147483647, 10), 2147483647);
}

// An hour at a reading each millisecond. The observer follows it as a graph does: what it was told
// is what the rings hold, as far back as they reach.
TEST_F(PerformanceRunTest, AnHourOfReadingsLosesNothingThatTheRingsKeep) {
    constexpr std::int64_t hour = 3600000;
    portOpens = false;
    static_cast<void>(link->Open(Port())); // Demo Mode: no board is that fast
    ManualRun().Go(PerformanceSetup());
    std::vector<PerformanceResults> told;
    for (std::int64_t i = 0; i < hour; ++i) {
        timer->tick();
        if (i >= hour - ResultStore::ringSize) {
            told.push_back(observer.last);
        }
    }
    run->Stop();
    EXPECT_EQ(observer.readings, hour);
    EXPECT_EQ(results.Count(), hour);
    EXPECT_EQ(results.OldestHeld(), hour - ResultStore::ringSize);
    EXPECT_EQ(results.At(results.OldestHeld() - 1), PerformanceResults{});
    std::int64_t wrong = 0;
    for (std::int64_t i = 0; i < ResultStore::ringSize; ++i) {
        wrong += results.At(results.OldestHeld() + i) != told[static_cast<std::size_t>(i)];
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(PerformanceRunTest, InDemoModeTheValuesMove) {
    portOpens = false;
    OpenLink();
    ASSERT_TRUE(link->IsDemoMode());
    ManualRun().Go(setup);
    constexpr int readings = 2000;
    for (int i = 0; i < readings; ++i) {
        timer->tick();
    }
    ASSERT_EQ(results.Count(), readings);
    std::int32_t up = 0;
    std::int32_t down = 0;
    PerformanceResults before{};
    for (int i = 0; i < readings; ++i) {
        const PerformanceResults values = results.At(i);
        EXPECT_THAT(values, Each(testing::Ge(0)));
        for (std::size_t item = 0; item < values.size(); ++item) {
            up = std::max(up, values[item] - before[item]);
            down = std::min(down, values[item] - before[item]);
        }
        before = values;
    }
    EXPECT_EQ(up, 10);
    EXPECT_EQ(down, -10);
    EXPECT_NE(before[0] == before[1] && before[1] == before[2], true);
}

/// The same with the timer's thread.
class ThreadedPerformanceRunTest : public PerformanceRunTest {
protected:
    PerformanceRun& ThreadedRun(std::chrono::milliseconds pause = 1ms) {
        setup.updateInterval = 1;
        return NewRun(std::make_unique<ThreadTimer>(), prompts, pause);
    }
    bool AwaitReadings(int count) {
        return Eventually([&] { return observer.readings >= count; });
    }
};

TEST_F(ThreadedPerformanceRunTest, AMillisecondAgainstASlowBoardPilesNothingUp) {
    std::atomic<int> reads = 0;
    line->Do([&] {
        board.onMemoryRead = [&](std::uint32_t address) {
            if (address == 748) {
                ++reads;
                std::this_thread::sleep_for(20ms);
            }
        };
    });
    ThreadedRun().Go(setup);
    ASSERT_TRUE(AwaitReadings(10));
    run->Stop();
    const int atStop = reads;
    EXPECT_THAT(atStop - observer.readings, Le(1)) << "one reading is on its way at most";
    EXPECT_EQ(Functions().back(), stopPerformance) << "nothing is asked after the stop";
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(reads, atStop);
    EXPECT_EQ(results.Count(), observer.readings);
}

TEST_F(ThreadedPerformanceRunTest, ManyRunsCanBeStoppedAtAnyMoment) {
    ThreadedRun();
    for (int i = 0; i < 40; ++i) {
        run->Go(setup);
        std::this_thread::sleep_for(std::chrono::microseconds(i * 100));
        if (i % 3 == 0) {
            run.reset();
        } else {
            run->Stop();
        }
        const int stored = observer.readings;
        std::this_thread::sleep_for(2ms);
        EXPECT_EQ(observer.readings, stored);
        EXPECT_LE(results.Count(), stored);
        if (run == nullptr) {
            ThreadedRun();
        }
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ThreadedPerformanceRunTest, ResultsAreReadWhileTheyAreStored) {
    ThreadedRun().Go(setup);
    SetCounters({7, 7, 7, 7, 7, 7, 7, 7});
    ASSERT_TRUE(AwaitReadings(20));
    const std::int64_t count = results.Count();
    EXPECT_EQ(results.At(count - 1), (PerformanceResults{7, 7, 7, 7, 7, 7, 7, 7}));
    run->Stop();
}

TEST_F(ThreadedPerformanceRunTest, CanBeStoppedWhenTheLinkIsClosed) {
    ThreadedRun().Go(setup);
    ASSERT_TRUE(AwaitReadings(3));
    link->Close(); // fails a reading that is on its way
    run->Stop();
    const int readings = observer.readings;
    std::this_thread::sleep_for(10ms);
    EXPECT_EQ(observer.readings, readings);
    EXPECT_LE(ShownTimes(readFailed), 1);
}

TEST_F(ThreadedPerformanceRunTest, CanBeDestroyedWithTheBoardGone) {
    ThreadedRun().Go(setup);
    ASSERT_TRUE(AwaitReadings(3));
    Unplug();
    ASSERT_TRUE(Eventually([&] { return ShownTimes(readFailed) > 0; }));
    run.reset();
    EXPECT_EQ(ShownTimes(readFailed), 1);
}

/// Boxes are shown by the main thread, which is the test's.
class PerformanceRunBoxesTest : public ThreadedPerformanceRunTest {
protected:
    PerformanceRunBoxesTest() {
        mainThread.SetPresenter(
            [this](const Box& box) {
                static_cast<void>(prompts.Show(box));
                if (whileShown) {
                    std::exchange(whileShown, nullptr)();
                }
                return Answer::Ok;
            },
            [this] { arrived = true; });
        setup.updateInterval = 1;
        NewRun(std::make_unique<ThreadTimer>(), mainThread, 1ms).Go(setup);
        EXPECT_TRUE(AwaitReadings(2));
        IgnoreReadsAndWrites();
        EXPECT_TRUE(Eventually([&] { return arrived.load(); }));
    }
    std::function<void()> whileShown;
    std::atomic<bool> arrived = false;
};

TEST_F(PerformanceRunBoxesTest, WhileABoxIsOpenNothingIsRead) {
    static_cast<void>(Functions());
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(CountOf(readMemory), 0);
    run->Stop();
    EXPECT_EQ(ShownTimes(readFailed), 1);
    EXPECT_THAT(Functions(), ElementsAre(stopPerformance));
}

TEST_F(PerformanceRunBoxesTest, StopIsPossibleOutOfTheBox) {
    whileShown = [this] { run->Stop(); };
    mainThread.ServeBoxes();
    EXPECT_FALSE(run->IsOn());
    EXPECT_EQ(observer.events.back(), "off");
    EXPECT_EQ(ShownTimes(readFailed), 1);
    const int readings = observer.readings;
    UseBoard();
    arrived = false;
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(observer.readings, readings);
    EXPECT_FALSE(arrived);
}

TEST_F(PerformanceRunBoxesTest, TheRunMayGoWhileItsBoxIsOpen) {
    whileShown = [this] { run.reset(); };
    mainThread.ServeBoxes();
    EXPECT_EQ(run, nullptr);
    arrived = false;
    std::this_thread::sleep_for(50ms);
    EXPECT_FALSE(arrived);
}

} // namespace
} // namespace busquill::test
