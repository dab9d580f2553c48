#include "platform/main_thread.h"
#include "platform/periodic_timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <semaphore>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr auto longWait = 30s; // reached only by a test that fails

/// Ticks that come one after another until a test has had enough.
class Ticks {
public:
    void operator()() { came_.release(); }
    [[nodiscard]] bool Await(int count) {
        for (int i = 0; i < count; ++i) {
            if (!came_.try_acquire_for(longWait)) {
                return false;
            }
        }
        return true;
    }

private:
    std::counting_semaphore<> came_{0};
};

TEST(ThreadTimer, TicksOnAThreadOfItsOwnUntilItIsStopped) {
    ThreadTimer timer;
    Ticks ticks;
    std::atomic<int> count = 0;
    std::atomic<bool> onThisThread = false;
    const auto test = std::this_thread::get_id();
    const PeriodicTimer::Started started = timer.Start(1ms, 1ms, [&] {
        onThisThread = onThisThread || std::this_thread::get_id() == test;
        ++count;
        ticks();
    });
    EXPECT_TRUE(started.running);
    EXPECT_EQ(started.resolutionError, 0);
    EXPECT_TRUE(ticks.Await(5));
    timer.Stop();
    const int atStop = count;
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(count, atStop);
    EXPECT_FALSE(onThisThread);
}

TEST(ThreadTimer, TheFirstTickComesAfterOnePeriod) {
    ThreadTimer timer;
    std::promise<void> ticked;
    const auto begin = SteadyClock::now();
    static_cast<void>(timer.Start(30ms, 10ms, [&, once = true]() mutable {
        if (std::exchange(once, false)) {
            ticked.set_value();
        }
    }));
    ticked.get_future().wait();
    EXPECT_GE(SteadyClock::now() - begin, 30ms);
}

TEST(ThreadTimer, TicksFollowTheClockHoweverLongEachLasts) {
    auto shortest = SteadyClock::duration::max();
    for (int run = 0; run < 5 && shortest >= 590ms; ++run) { // a busy machine delays a tick
        ThreadTimer timer;
        Ticks ticks;
        const auto begin = SteadyClock::now();
        static_cast<void>(timer.Start(20ms, 1ms, [&] {
            std::this_thread::sleep_for(10ms);
            ticks();
        }));
        EXPECT_TRUE(ticks.Await(20));
        timer.Stop();
        EXPECT_GE(SteadyClock::now() - begin, 400ms);
        shortest = std::min(shortest, SteadyClock::now() - begin);
    }
    EXPECT_LT(shortest, 590ms) << "600 ms are 20 periods and the lengths of 20 ticks";
}

TEST(ThreadTimer, PeriodsThatEndDuringATickAreLeftOut) {
    ThreadTimer timer;
    std::atomic<int> count = 0;
    std::atomic<int> atOnce = 0;
    std::atomic<bool> overlap = false;
    std::promise<void> release;
    const auto released = release.get_future().share();
    std::promise<void> reached;
    const auto begin = SteadyClock::now();
    static_cast<void>(timer.Start(5ms, 1ms, [&] {
        overlap = overlap || ++atOnce > 1;
        if (++count == 1) {
            reached.set_value();
            released.wait();
        }
        --atOnce;
    }));
    reached.get_future().wait();
    std::this_thread::sleep_for(250ms); // 50 periods
    EXPECT_EQ(count, 1);
    const auto held = SteadyClock::now() - begin;
    release.set_value();
    std::this_thread::sleep_for(50ms);
    timer.Stop();
    const auto periodsAfter = (SteadyClock::now() - begin - held) / 5ms;
    EXPECT_LE(count, 2 + periodsAfter) << "the periods that were missed are not made up";
    EXPECT_FALSE(overlap);
}

TEST(ThreadTimer, StopWaitsForTheTickThatLasts) {
    ThreadTimer timer;
    std::promise<void> reached;
    std::atomic<bool> ended = false;
    static_cast<void>(timer.Start(1ms, 1ms, [&, once = true]() mutable {
        if (std::exchange(once, false)) {
            reached.set_value();
            std::this_thread::sleep_for(50ms);
            ended = true;
        }
    }));
    reached.get_future().wait();
    timer.Stop();
    EXPECT_TRUE(ended);
}

TEST(ThreadTimer, StopDoesNotWaitForTheEndOfAPeriod) {
    ThreadTimer timer;
    EXPECT_TRUE(timer.Start(1h, 10ms, [] {}).running);
    const auto begin = SteadyClock::now();
    timer.Stop();
    EXPECT_LT(SteadyClock::now() - begin, longWait);
    timer.Stop();
}

TEST(ThreadTimer, StartsAgainWithAnotherFunction) {
    ThreadTimer timer;
    Ticks first;
    Ticks second;
    std::atomic<int> firstCount = 0;
    static_cast<void>(timer.Start(1ms, 1ms, [&] {
        ++firstCount;
        first();
    }));
    EXPECT_TRUE(first.Await(2));
    static_cast<void>(timer.Start(1ms, 1ms, [&] { second(); }));
    const int atRestart = firstCount;
    EXPECT_TRUE(second.Await(2));
    EXPECT_EQ(firstCount, atRestart);
}

TEST(ThreadTimer, APeriodBelowAMillisecondIsOne) {
    ThreadTimer timer;
    Ticks ticks;
    static_cast<void>(timer.Start(-5ms, 1ms, [&] { ticks(); }));
    EXPECT_TRUE(ticks.Await(3));
}

/// The test's thread is the main thread, which answers boxes.
class ThreadTimerBoxesTest : public testing::Test {
protected:
    ThreadTimerBoxesTest() {
        mainThread.SetPresenter(
            [this](const Box&) {
                ++shown;
                if (whileShown) {
                    whileShown();
                }
                return Answer::Ok;
            },
            [this] { arrived.release(); });
    }
    MainThread mainThread;
    ThreadTimer timer;
    int shown = 0;
    std::function<void()> whileShown;
    std::counting_semaphore<> arrived{0};
    std::atomic<int> answered = 0;
};

TEST_F(ThreadTimerBoxesTest, StopShowsTheBoxThatATickWaitsFor) {
    static_cast<void>(timer.Start(1ms, 1ms, [this] {
        mainThread.Message("failed");
        ++answered;
    }));
    ASSERT_TRUE(arrived.try_acquire_for(longWait));
    timer.Stop();
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(answered, 1);
}

TEST_F(ThreadTimerBoxesTest, ItCanBeStoppedOutOfTheBoxOfItsTick) {
    const auto endings = std::make_shared<std::atomic<int>>(0);
    static_cast<void>(timer.Start(1ms, 1ms, [this, endings] {
        mainThread.Message("failed");
        ++*endings;
    }));
    whileShown = [this] { timer.Stop(); };
    ASSERT_TRUE(arrived.try_acquire_for(longWait));
    mainThread.ServeBoxes();
    EXPECT_EQ(shown, 1);
    // Its answer is on the way to the tick, after which nothing comes.
    EXPECT_TRUE(mainThread.WaitUntil(longWait, [&] { return *endings == 1; }));
    std::this_thread::sleep_for(20ms);
    EXPECT_FALSE(arrived.try_acquire());
    EXPECT_EQ(*endings, 1);
}

} // namespace
} // namespace busquill::test
