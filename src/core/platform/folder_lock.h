#pragma once

#include <string>

namespace busquill {

/// Keeps other programs that lock a file's folder waiting, as long as it lives. For files that are
/// read, changed and replaced: the file itself cannot be locked, since it gives way to another one.
/// A folder that cannot be locked within a second is used without: some networks have no locks, and
/// a program that keeps one for long must not stop the windows.
class FolderLock {
public:
    /// An empty path locks nothing.
    explicit FolderLock(const std::string& file);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int folder_ = -1;
};

} // namespace busquill
