#include "pseudo_terminal.h"

#include <asm/termbits.h>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace boardsim {

void PseudoTerminal::Open() {
    board_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    char path[128];
    if (board_ < 0 || ::grantpt(board_) != 0 || ::unlockpt(board_) != 0 ||
        ::ptsname_r(board_, path, sizeof path) != 0) {
        Close();
        return;
    }
    path_ = path;
    keeper_ = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios2 line{};
    if (keeper_ < 0 || ::ioctl(keeper_, TCGETS2, &line) != 0) {
        Close();
        return;
    }
    line.c_iflag = 0;
    line.c_oflag = 0;
    line.c_lflag = 0;
    line.c_cflag = CS8 | CREAD | CLOCAL | B9600;
    ::ioctl(keeper_, TCSETS2, &line);
}

int PseudoTerminal::Rate() const {
    termios2 line{};
    return ::ioctl(board_, TCGETS2, &line) == 0 ? static_cast<int>(line.c_ospeed) : 0;
}

void PseudoTerminal::Write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty() && IsOpen()) {
        const ssize_t sent = ::write(board_, bytes.data(), bytes.size());
        if (sent > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN || errno == EINTR) {
            pollfd wanted{board_, POLLOUT, 0};
            if (::poll(&wanted, 1, 1000) == 0) {
                return; // nobody reads
            }
        } else {
            return;
        }
    }
}

void PseudoTerminal::Close() {
    for (int* handle : {&board_, &keeper_}) {
        if (*handle >= 0) {
            ::close(*handle);
            *handle = -1;
        }
    }
}

} // namespace boardsim
