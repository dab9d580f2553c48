#include "support/disk_sync.h"

#include <cerrno>

int RealSync(int descriptor) __asm__("__real_fsync");
int WatchedSync(int descriptor) __asm__("__wrap_fsync");

namespace {

busquill::test::DiskSync* watcher = nullptr;

} // namespace

int WatchedSync(int descriptor) {
    return watcher == nullptr ? RealSync(descriptor) : watcher->Synchronise(descriptor);
}

namespace busquill::test {

// Out of line, so that a test that uses it links WatchedSync too.
DiskSync::DiskSync(int error) : error_(error) {
    watcher = this;
}

DiskSync::~DiskSync() {
    watcher = nullptr;
}

int DiskSync::Synchronise(int descriptor) {
    ++count_;
    if (before) {
        before(descriptor);
    }
    if (error_ != 0) {
        errno = error_;
        return -1;
    }
    return RealSync(descriptor);
}

} // namespace busquill::test
