#include "platform/clock.h"
#include "platform/main_thread.h"
#include "platform/mutex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <semaphore>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using SteadyClock = std::chrono::steady_clock;

constexpr auto longWait = 30s; // reached only by a test that fails
constexpr auto muchTime = 10s;

/// The test's thread is the main thread; it records what it shows and answers yes.
class MainThreadTest : public testing::Test {
protected:
    void SetUp() override {
        mainThread.SetPresenter([this](const Box& box) { return Present(box); },
                                [this] { arrived.release(); });
    }

    Answer Present(const Box& box) {
        EXPECT_EQ(std::this_thread::get_id(), testThread);
        shown.push_back(box.text);
        if (whileShown) {
            whileShown();
        }
        return Answer::Yes;
    }

    /// Raises a box on another thread.
    std::future<Answer> Raise(const std::string& text) {
        return std::async(std::launch::async, [this, text] {
            return mainThread.Show({text, false, BoxButtons::YesNo});
        });
    }

    const std::thread::id testThread = std::this_thread::get_id();
    MainThread mainThread;
    std::vector<std::string> shown;
    std::function<void()> whileShown;
    std::counting_semaphore<> arrived{
        0}; // released once for each box that another thread has raised
};

TEST_F(MainThreadTest, ShowsItsOwnBoxAtOnce) {
    EXPECT_TRUE(mainThread.AskYesNo("own"));
    EXPECT_THAT(shown, ElementsAre("own"));
}

TEST_F(MainThreadTest, ItsOwnBoxDoesNotCountAsHandedOver) {
    whileShown = [this] { EXPECT_FALSE(mainThread.BoxOpen()); };
    mainThread.Message("own");
    EXPECT_THAT(shown, ElementsAre("own"));
}

TEST_F(MainThreadTest, PassesOnAllFieldsOfABox) {
    Box seen;
    mainThread.SetPresenter(
        [&](const Box& box) {
            seen = box;
            return Answer::Cancel;
        },
        [this] { arrived.release(); });
    std::future<Answer> answer = std::async(std::launch::async, [this] {
        return mainThread.Show({"text", true, BoxButtons::YesNoCancel});
    });
    arrived.acquire();
    mainThread.ServeBoxes();
    EXPECT_EQ(answer.get(), Answer::Cancel);
    EXPECT_EQ(seen.text, "text");
    EXPECT_TRUE(seen.topmost);
    EXPECT_EQ(seen.buttons, BoxButtons::YesNoCancel);
}

TEST_F(MainThreadTest, ShowsABoxOfAnotherThreadWhileItWaitsForACondition) {
    std::atomic<bool> done = false;
    std::thread other([&] {
        EXPECT_TRUE(mainThread.AskYesNo("from the link"));
        done = true;
        mainThread.Wake();
    });
    EXPECT_TRUE(mainThread.WaitUntil(longWait, [&] { return done.load(); }));
    EXPECT_THAT(shown, ElementsAre("from the link"));
    other.join();
}

TEST_F(MainThreadTest, ShowsABoxOfAnotherThreadWhileItWaitsForALockThatOneHolds) {
    Mutex mutex;
    std::latch held(1);
    std::thread other([&] {
        const MutexLock lock(mutex);
        held.count_down();
        EXPECT_TRUE(mainThread.AskYesNo("with the lock held"));
    });
    held.wait();
    EXPECT_THAT(shown, IsEmpty());
    {
        const MutexLock lock(mutex);
        EXPECT_THAT(shown, ElementsAre("with the lock held"));
    }
    other.join();
}

TEST_F(MainThreadTest, ShowsABoxOfAnotherThreadWhenAskedToServe) {
    std::future<Answer> answer = Raise("idle");
    arrived.acquire();
    EXPECT_THAT(shown, IsEmpty());
    mainThread.ServeBoxes();
    EXPECT_THAT(shown, ElementsAre("idle"));
    EXPECT_EQ(answer.get(), Answer::Yes);
}

TEST_F(MainThreadTest, ShowsAWaitingBoxEvenIfTheConditionHoldsAlready) {
    std::future<Answer> answer = Raise("waiting");
    arrived.acquire();
    EXPECT_TRUE(mainThread.WaitUntil(0ms, [] { return true; }));
    EXPECT_THAT(shown, ElementsAre("waiting"));
    EXPECT_EQ(answer.get(), Answer::Yes);
}

TEST_F(MainThreadTest, HasNothingToServeWithoutABox) {
    mainThread.ServeBoxes();
    EXPECT_THAT(shown, IsEmpty());
}

TEST_F(MainThreadTest, ShowsBoxesOfTwoThreadsOneAfterTheOther) {
    int open = 0;
    int arrivals = 0;
    whileShown = [&] {
        EXPECT_EQ(++open, 1);
        while (arrivals < 2) { // the second box waits while the first is open
            arrived.acquire();
            ++arrivals;
        }
        // What an event loop under the open box does when the other box arrives.
        mainThread.ServeBoxes();
        EXPECT_FALSE(mainThread.WaitUntil(20ms, [] { return false; }));
        --open;
    };
    std::atomic<int> answered = 0;
    const auto raise = [&](const char* text) {
        EXPECT_TRUE(mainThread.AskYesNo(text));
        ++answered;
        mainThread.Wake();
    };
    std::thread first(raise, "first");
    std::thread second(raise, "second");
    EXPECT_TRUE(mainThread.WaitUntil(longWait, [&] { return answered == 2; }));
    EXPECT_THAT(shown, UnorderedElementsAre("first", "second"));
    first.join();
    second.join();
}

TEST_F(MainThreadTest, ShowsABoxOfAnotherThreadOverItsOwn) {
    std::future<Answer> answer;
    whileShown = [&] {
        if (shown.size() == 1) {
            answer = Raise("handed over");
            arrived.acquire();
            mainThread.ServeBoxes();
        } else {
            EXPECT_TRUE(mainThread.BoxOpen());
        }
    };
    mainThread.Message("own");
    EXPECT_THAT(shown, ElementsAre("own", "handed over"));
    EXPECT_EQ(answer.get(), Answer::Yes);
}

TEST_F(MainThreadTest, ABoxIsOpenOnlyWhileItIsShown) {
    EXPECT_FALSE(mainThread.BoxOpen());
    int checked = 0;
    whileShown = [&] {
        EXPECT_TRUE(mainThread.BoxOpen());
        ++checked;
    };
    std::future<Answer> answer = Raise("box");
    arrived.acquire();
    EXPECT_FALSE(mainThread.BoxOpen());
    mainThread.ServeBoxes();
    EXPECT_FALSE(mainThread.BoxOpen());
    EXPECT_EQ(checked, 1);
    EXPECT_EQ(answer.get(), Answer::Yes);
    EXPECT_FALSE(mainThread.BoxOpen());
}

TEST_F(MainThreadTest, AWakeEndsAWaitEarly) {
    std::atomic<bool> done = false;
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        done = true;
        mainThread.Wake();
    });
    const auto start = SteadyClock::now();
    EXPECT_TRUE(mainThread.WaitUntil(longWait, [&] { return done.load(); }));
    EXPECT_LT(SteadyClock::now() - start, muchTime);
    other.join();
}

TEST_F(MainThreadTest, AWakeForAnotherReasonDoesNotEndAWait) {
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) {
            mainThread.Wake();
            std::this_thread::sleep_for(1ms);
        }
    });
    const auto start = SteadyClock::now();
    EXPECT_FALSE(mainThread.WaitUntil(50ms, [] { return false; }));
    EXPECT_GE(SteadyClock::now() - start, 50ms);
    stop = true;
    other.join();
}

TEST_F(MainThreadTest, AWaitForAConditionThatNeverHoldsEndsAtItsLimit) {
    const auto start = SteadyClock::now();
    EXPECT_FALSE(mainThread.WaitUntil(50ms, [] { return false; }));
    EXPECT_GE(SteadyClock::now() - start, 50ms);
    EXPECT_LT(SteadyClock::now() - start, muchTime);
}

TEST_F(MainThreadTest, AWaitForAConditionThatHoldsReturnsAtOnce) {
    const auto start = SteadyClock::now();
    EXPECT_TRUE(mainThread.WaitUntil(longWait, [] { return true; }));
    EXPECT_LT(SteadyClock::now() - start, muchTime);
}

TEST_F(MainThreadTest, AWaitChecksOnceMoreAtItsLimit) {
    int asked = 0;
    EXPECT_TRUE(mainThread.WaitUntil(20ms, [&] { return ++asked == 2; }));
}

TEST_F(MainThreadTest, AWaitMayHaveNoLimit) {
    std::atomic<bool> done = false;
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        done = true;
        mainThread.Wake();
    });
    EXPECT_TRUE(
        mainThread.WaitUntil(std::chrono::milliseconds::max(), [&] { return done.load(); }));
    other.join();
}

TEST_F(MainThreadTest, TheTimeOfAnOpenBoxCountsInAWait) {
    whileShown = [] { std::this_thread::sleep_for(60ms); };
    std::future<Answer> answer = Raise("slow");
    arrived.acquire();
    int asked = 0;
    const auto start = SteadyClock::now();
    EXPECT_FALSE(mainThread.WaitUntil(50ms, [&] {
        ++asked;
        return false;
    }));
    EXPECT_GE(SteadyClock::now() - start, 60ms);
    EXPECT_GE(asked, 1);
    EXPECT_EQ(answer.get(), Answer::Yes);
}

TEST_F(MainThreadTest, AnotherThreadsWaitShowsNoBox) {
    std::future<Answer> answer = Raise("box");
    arrived.acquire();
    std::thread other([this] { EXPECT_FALSE(mainThread.WaitUntil(20ms, [] { return false; })); });
    other.join();
    EXPECT_THAT(shown, IsEmpty());
    mainThread.ServeBoxes();
    EXPECT_EQ(answer.get(), Answer::Yes);
}

TEST_F(MainThreadTest, AnotherThreadsWaitIsWokenToo) {
    std::atomic<bool> done = false;
    std::thread other(
        [&] { EXPECT_TRUE(mainThread.WaitUntil(longWait, [&] { return done.load(); })); });
    done = true;
    mainThread.Wake();
    const auto start = SteadyClock::now();
    other.join();
    EXPECT_LT(SteadyClock::now() - start, muchTime);
}

TEST_F(MainThreadTest, IsRecognizedOnItsOwnThreadOnly) {
    EXPECT_EQ(MainThread::OnThisThread(), &mainThread);
    std::thread other([] { EXPECT_EQ(MainThread::OnThisThread(), nullptr); });
    other.join();
}

TEST(MainThread, IsUnknownBeforeAndAfterItsLifetime) {
    EXPECT_EQ(MainThread::OnThisThread(), nullptr);
    { const MainThread mainThread; }
    EXPECT_EQ(MainThread::OnThisThread(), nullptr);
}

TEST(MainThread, WithoutAPresenterEveryBoxIsAnsweredOk) {
    MainThread mainThread;
    EXPECT_EQ(mainThread.Show({"box"}), Answer::Ok);
}

TEST_F(MainThreadTest, APauseShowsTheBoxesOfOtherThreadsAndKeepsItsLength) {
    std::future<Answer> answer = Raise("in the pause");
    arrived.acquire();
    mainThread.Wake();
    SystemClock clock;
    const auto start = SteadyClock::now();
    clock.Sleep(50ms);
    EXPECT_GE(SteadyClock::now() - start, 50ms);
    EXPECT_THAT(shown, ElementsAre("in the pause"));
    EXPECT_EQ(answer.get(), Answer::Yes);
}

} // namespace
} // namespace busquill::test
