#include "platform/folder_lock.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace busquill {

namespace {

constexpr std::chrono::seconds longestWait(1);

} // namespace

FolderLock::FolderLock(const std::string& file) {
    if (file.empty()) {
        return;
    }
    const std::string folder = std::filesystem::path(file).parent_path().string();
    folder_ = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (folder_ != -1 && ::flock(folder_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK &&
           std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

FolderLock::~FolderLock() {
    if (folder_ != -1) {
        ::close(folder_);
    }
}

} // namespace busquill
