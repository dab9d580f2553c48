#include "platform/mutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <vector>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;

struct Counter {
    Mutex mutex;
    int value BUSQUILL_GUARDED_BY(mutex) = 0;

    void Add(int times) {
        for (int i = 0; i < times; ++i) {
            const MutexLock lock(mutex);
            ++value;
        }
    }
    int Value() {
        const MutexLock lock(mutex);
        return value;
    }
};

TEST(Mutex, LetsOneThreadInAtATime) {
    const MainThread mainThread;
    Counter counter;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] { counter.Add(2000); });
    }
    counter.Add(2000);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter.Value(), 8000);
}

TEST(Mutex, WorksWithoutAMainThread) {
    Counter counter;
    std::thread other([&] { counter.Add(1000); });
    counter.Add(1000);
    other.join();
    EXPECT_EQ(counter.Value(), 2000);
}

TEST(Mutex, KeepsTheMainThreadWaitingUntilItIsFree) {
    const MainThread mainThread;
    Mutex mutex;
    std::latch held(1);
    std::atomic<bool> released = false;
    std::thread other([&] {
        const MutexLock lock(mutex);
        held.count_down();
        std::this_thread::sleep_for(30ms); // several rounds of the main thread's wait
        released = true;
    });
    held.wait();
    {
        const MutexLock lock(mutex);
        EXPECT_TRUE(released);
    }
    other.join();
}

TEST(MutexLock, CanBeReleasedAndLockedAgain) {
    Mutex mutex;
    MutexLock lock(mutex);
    lock.Release();
    std::thread other([&] { const MutexLock inner(mutex); });
    other.join();
    lock.Acquire();
    std::atomic<bool> entered = false;
    std::thread blocked([&] {
        const MutexLock inner(mutex);
        entered = true;
    });
    std::this_thread::sleep_for(20ms);
    EXPECT_FALSE(entered);
    lock.Release();
    blocked.join();
    EXPECT_TRUE(entered);
}

} // namespace
} // namespace busquill::test
