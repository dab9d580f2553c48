#pragma once

#include "platform/annotations.h"
#include "platform/main_thread.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace busquill {

/// A mutex whose holder may be waiting for the user to answer a box. When the main thread has to
/// wait for it, it shows the boxes that are handed over meanwhile.
class BUSQUILL_CAPABILITY("mutex") Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void Lock() BUSQUILL_ACQUIRE() BUSQUILL_UNCHECKED {
        MainThread* main = MainThread::OnThisThread();
        const auto isFree = [this] { return !held_; };
        std::unique_lock lock(state_);
        if (main == nullptr) {
            freed_.wait(lock, isFree);
        } else {
            while (!freed_.wait_for(lock, std::chrono::milliseconds(5), isFree)) {
                lock.unlock();
                main->ServeBoxes();
                lock.lock();
            }
        }
        held_ = true;
    }
    void Unlock() BUSQUILL_RELEASE() BUSQUILL_UNCHECKED {
        // Notified under the lock: whoever takes the mutex next may be about to destroy it.
        const std::lock_guard lock(state_);
        held_ = false;
        freed_.notify_one();
    }

private:
    std::mutex state_; // of held_, for moments only
    std::condition_variable freed_;
    bool held_ = false;
};

/// Holds a Mutex for a scope; can be released and taken again within it.
class BUSQUILL_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) BUSQUILL_ACQUIRE(mutex) : mutex_(mutex) { mutex_.Lock(); }
    ~MutexLock() BUSQUILL_RELEASE() {
        if (held_) {
            mutex_.Unlock();
        }
    }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    void Release() BUSQUILL_RELEASE() {
        held_ = false;
        mutex_.Unlock();
    }
    void Acquire() BUSQUILL_ACQUIRE() {
        mutex_.Lock();
        held_ = true;
    }

private:
    Mutex& mutex_;
    bool held_ = true;
};

} // namespace busquill
