#pragma once

#include <functional>

namespace busquill::test {

/// Intercepts every fsync of a program that is linked with --wrap=fsync, as long as the object
/// lives.
class DiskSync {
public:
    /// `error`: the error of every synchronisation; 0 passes it on to the disk.
    explicit DiskSync(int error = 0);
    ~DiskSync();
    DiskSync(const DiskSync&) = delete;
    DiskSync& operator=(const DiskSync&) = delete;

    std::function<void(int descriptor)> before; // called before each one
    [[nodiscard]] int Count() const noexcept { return count_; }

    int Synchronise(int descriptor);

private:
    int error_;
    int count_ = 0;
};

} // namespace busquill::test
