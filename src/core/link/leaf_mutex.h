#pragma once

#include "platform/annotations.h"

#include <mutex>

namespace busquill {

/// A lock for values that are only copied in and out. Nothing is called while it is held, so waits
/// are short and need not show message boxes.
class BUSQUILL_CAPABILITY("mutex") LeafMutex {
public:
    void Lock() BUSQUILL_ACQUIRE() BUSQUILL_UNCHECKED { mutex_.lock(); }
    void Unlock() BUSQUILL_RELEASE() BUSQUILL_UNCHECKED { mutex_.unlock(); }

private:
    std::mutex mutex_;
};

class BUSQUILL_SCOPED_CAPABILITY LeafLock {
public:
    explicit LeafLock(LeafMutex& mutex) BUSQUILL_ACQUIRE(mutex) : mutex_(mutex) { mutex_.Lock(); }
    ~LeafLock() BUSQUILL_RELEASE() { mutex_.Unlock(); }
    LeafLock(const LeafLock&) = delete;
    LeafLock& operator=(const LeafLock&) = delete;

private:
    LeafMutex& mutex_;
};

} // namespace busquill
