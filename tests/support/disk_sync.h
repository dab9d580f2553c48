#pragma once

#include <functional>

namespace busquill::test {

/// Stands between a program that is linked with --wrap=fsync and the disk, from where it is made to
/// its end.
class DiskSync {
public:
    /// `error`: what every synchronisation fails with; 0 when it goes to the disk.
    explicit DiskSync(int error = 0);
    ~DiskSync();
    DiskSync(const DiskSync&) = delete;
    DiskSync& operator=(const DiskSync&) = delete;

    std::function<void(int descriptor)> before; // each one
    [[nodiscard]] int Count() const noexcept { return count_; }

    int Synchronise(int descriptor);

private:
    int error_;
    int count_ = 0;
};

} // namespace busquill::test
