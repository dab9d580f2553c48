#include "platform/folder_lock.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace busquill {

FolderLock::FolderLock(const std::string& file) {
    if (file.empty()) {
        return;
    }
    const std::string folder = std::filesystem::path(file).parent_path().string();
    folder_ = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (folder_ != -1 && ::flock(folder_, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FolderLock::~FolderLock() {
    if (folder_ != -1) {
        ::close(folder_);
    }
}

} // namespace busquill
