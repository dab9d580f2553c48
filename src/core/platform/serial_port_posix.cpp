#include "platform/serial_port.h"

#if !defined(_WIN32)

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

// The kernel's own terminal record takes any rate as a number; the C library's takes only some.
#include <asm/termbits.h>
#include <linux/serial.h>

namespace busquill {

namespace {

using Moment = std::chrono::steady_clock::time_point;

constexpr auto writeLimit = std::chrono::seconds(2);

int MillisecondsUntil(Moment end) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

class PosixSerialPort final : public SerialPort {
public:
    explicit PosixSerialPort(int handle) : handle_(handle) {}
    ~PosixSerialPort() override { ::close(handle_); }
    PosixSerialPort(const PosixSerialPort&) = delete;
    PosixSerialPort& operator=(const PosixSerialPort&) = delete;

    int ReadConfiguration() override { return ::ioctl(handle_, TCGETS2, &line_) == 0 ? 0 : errno; }

    int Configure(int baud) override {
        line_.c_iflag = IGNBRK;
        line_.c_oflag = 0;
        line_.c_lflag = 0;
        line_.c_cflag = CS8 | CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
        line_.c_ispeed = static_cast<speed_t>(baud);
        line_.c_ospeed = static_cast<speed_t>(baud);
        std::fill(std::begin(line_.c_cc), std::end(line_.c_cc), cc_t{0});
        return ::ioctl(handle_, TCSETS2, &line_) == 0 ? 0 : errno;
    }

    int SetReadTimeout(std::chrono::milliseconds total) override {
        timeout_ = total;
        return 0;
    }

    std::optional<std::size_t> Read(std::span<std::uint8_t> into) override {
        const Moment end = std::chrono::steady_clock::now() + timeout_;
        std::size_t count = 0;
        while (count < into.size()) {
            pollfd wanted{handle_, POLLIN, 0};
            const int ready = ::poll(&wanted, 1, MillisecondsUntil(end));
            if (ready == 0) {
                break;
            }
            if (ready < 0) {
                if (errno == EINTR) {
                    continue;
                }
                return std::nullopt;
            }
            const ssize_t got = ::read(handle_, into.data() + count, into.size() - count);
            if (got > 0) {
                count += static_cast<std::size_t>(got);
            } else if (got == 0 || (errno != EAGAIN && errno != EINTR)) {
                return std::nullopt; // hung up
            }
        }
        return count;
    }

    int Write(std::span<const std::uint8_t> bytes) override {
        const Moment end = std::chrono::steady_clock::now() + writeLimit;
        while (!bytes.empty()) {
            const ssize_t sent = ::write(handle_, bytes.data(), bytes.size());
            if (sent > 0) {
                bytes = bytes.subspan(static_cast<std::size_t>(sent));
                continue;
            }
            if (errno != EAGAIN && errno != EINTR) {
                return errno;
            }
            pollfd wanted{handle_, POLLOUT, 0};
            if (::poll(&wanted, 1, MillisecondsUntil(end)) == 0) {
                return ETIMEDOUT;
            }
        }
        return 0;
    }

    std::uint32_t ClearErrors() override {
        serial_icounter_struct now{};
        if (::ioctl(handle_, TIOCGICOUNT, &now) != 0) {
            return 0; // the device does not count errors
        }
        // Bits as the field's drivers give them: overrun of the buffer, of the line, parity,
        // framing, break.
        const std::array<bool, 5> seen = {
            now.buf_overrun != errors_.buf_overrun, now.overrun != errors_.overrun,
            now.parity != errors_.parity, now.frame != errors_.frame, now.brk != errors_.brk};
        errors_ = now;
        std::uint32_t word = 0;
        for (std::size_t bit = 0; bit < seen.size(); ++bit) {
            word |= static_cast<std::uint32_t>(seen[bit]) << bit;
        }
        return word;
    }

private:
    int handle_;
    termios2 line_{};
    serial_icounter_struct errors_{};
    std::chrono::milliseconds timeout_{100};
};

} // namespace

std::unique_ptr<SerialPort> OpenSerialPort(const std::string& device) {
    const int handle = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) {
        return nullptr;
    }
    // The lock keeps a second program away, a privileged one too.
    if (::isatty(handle) == 0 || ::flock(handle, LOCK_EX | LOCK_NB) != 0) {
        ::close(handle);
        return nullptr;
    }
    return std::make_unique<PosixSerialPort>(handle);
}

} // namespace busquill

#endif
