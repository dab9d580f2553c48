#include "platform/line_errors.h"
#include "platform/serial_port.h"

#include <array>
#include <asm/termbits.h>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace busquill {

namespace {

using std::chrono::milliseconds;
using SteadyTime = std::chrono::steady_clock::time_point;

constexpr milliseconds stuckOutputLimit{2000};

/// The remaining whole milliseconds, rounded up so that a wait never ends early.
int MillisecondsUntil(SteadyTime end) {
    const auto left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

/// Waits for an event on the line. Returns the pending events, 0 after a time-out, and POLLERR when
/// the wait itself fails.
short AwaitEvent(int handle, short wanted, SteadyTime end) {
    while (true) {
        pollfd waiting{handle, wanted, 0};
        const int ready = ::poll(&waiting, 1, MillisecondsUntil(end));
        if (ready >= 0) {
            return ready == 0 ? short{0} : waiting.revents;
        }
        if (errno != EINTR) {
            return POLLERR;
        }
    }
}

/// Raw bytes, 8 data bits, no parity, 1 stop bit, no flow control. Modem lines are ignored, as the
/// cable need not carry them.
void MakeRaw(termios2& settings, int baud) {
    settings.c_iflag = 0;
    settings.c_oflag = 0;
    settings.c_lflag = 0;
    settings.c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT) | CSIZE | PARENB |
                                               PARODD | CMSPAR | CSTOPB | CRTSCTS);
    // With BOTHER the rate is the number itself, so rates without a termios code work too.
    settings.c_cflag |= CS8 | CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT);
    settings.c_ispeed = static_cast<speed_t>(baud);
    settings.c_ospeed = static_cast<speed_t>(baud);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
}

/// Whether lines at these two rates understand each other: a receiver samples a byte's last bit
/// correctly up to about 5 percent, shared by both ends.
bool RatesAgree(long asked, long given) {
    return std::labs(asked - given) * 40 <= asked;
}

class PosixSerialPort final : public SerialPort {
public:
    explicit PosixSerialPort(int handle) : handle_(handle) { ErrorCounts(errorsSeen_); }
    ~PosixSerialPort() override { ::close(handle_); }
    PosixSerialPort(const PosixSerialPort&) = delete;
    PosixSerialPort& operator=(const PosixSerialPort&) = delete;

    int ReadConfiguration() override {
        termios2 settings{};
        return ReadSettings(settings);
    }
    int Configure(int baud) override;
    int SetReadTimeout(milliseconds total) override;
    std::optional<std::size_t> Read(std::span<std::uint8_t> into) override {
        return ReadAtLeast(into.size(), into);
    }
    std::optional<std::size_t> ReadSome(std::span<std::uint8_t> into) override {
        return ReadAtLeast(1, into);
    }
    int Write(std::span<const std::uint8_t> bytes) override;
    std::uint32_t ClearErrors() override;

private:
    int ReadSettings(termios2& settings) const {
        return ::ioctl(handle_, TCGETS2, &settings) == 0 ? 0 : errno;
    }
    bool ErrorCounts(LineErrorCounts& counts) const;
    std::optional<std::size_t> ReadAtLeast(std::size_t wanted, std::span<std::uint8_t> into);

    const int handle_; // non-blocking: every wait is a bounded poll
    std::atomic<milliseconds> readTimeout_ = milliseconds{0};
    LineErrorCounts errorsSeen_; // reading thread only
};

int PosixSerialPort::Configure(int baud) {
    if (baud <= 0) {
        return EINVAL;
    }
    termios2 settings{};
    if (const int error = ReadSettings(settings); error != 0) {
        return error;
    }
    MakeRaw(settings, baud);
    // Pending output is sent at the old rate first.
    if (::ioctl(handle_, TCSETSW2, &settings) != 0) {
        return errno;
    }
    // RTS stays inactive without flow control. Not every device has it.
    const int requestToSend = TIOCM_RTS;
    static_cast<void>(::ioctl(handle_, TIOCMBIC, &requestToSend));

    // A driver accepts an unsupported rate without an error and stays at another one.
    if (const int error = ReadSettings(settings); error != 0) {
        return error;
    }
    return RatesAgree(baud, static_cast<long>(settings.c_ospeed)) ? 0 : EINVAL;
}

int PosixSerialPort::SetReadTimeout(milliseconds total) {
    if (total.count() < 0) {
        return EINVAL;
    }
    readTimeout_ = total;
    return 0;
}

std::optional<std::size_t> PosixSerialPort::ReadAtLeast(std::size_t wanted,
                                                        std::span<std::uint8_t> into) {
    const SteadyTime end = std::chrono::steady_clock::now() + readTimeout_.load();
    std::size_t count = 0;
    // Bytes received before a failure are still returned; the next call reports the failure.
    const auto failed = [&] { return count == 0 ? std::nullopt : std::optional(count); };
    while (count < wanted) {
        const short events = AwaitEvent(handle_, POLLIN, end);
        if (events == 0) {
            break;
        }
        if ((events & POLLIN) == 0) {
            return failed();
        }
        const ssize_t got = ::read(handle_, into.data() + count, into.size() - count);
        if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR)) {
            return failed();
        }
        count += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    return count;
}

int PosixSerialPort::Write(std::span<const std::uint8_t> bytes) {
    SteadyTime end = std::chrono::steady_clock::now() + stuckOutputLimit;
    while (!bytes.empty()) {
        const ssize_t put = ::write(handle_, bytes.data(), bytes.size());
        if (put > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(put));
            end = std::chrono::steady_clock::now() + stuckOutputLimit;
            continue;
        }
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put < 0 && errno != EAGAIN) {
            return errno;
        }
        const short events = AwaitEvent(handle_, POLLOUT, end);
        if (events == 0) {
            return ETIMEDOUT;
        }
        if ((events & POLLOUT) == 0) {
            return EIO;
        }
    }
    return 0;
}

bool PosixSerialPort::ErrorCounts(LineErrorCounts& counts) const {
    serial_icounter_struct device{};
    if (::ioctl(handle_, TIOCGICOUNT, &device) != 0) {
        return false;
    }
    counts.bufferOverrun = static_cast<std::uint32_t>(device.buf_overrun);
    counts.overrun = static_cast<std::uint32_t>(device.overrun);
    counts.parity = static_cast<std::uint32_t>(device.parity);
    counts.frame = static_cast<std::uint32_t>(device.frame);
    counts.breaks = static_cast<std::uint32_t>(device.brk);
    return true;
}

std::uint32_t PosixSerialPort::ClearErrors() {
    LineErrorCounts now;
    if (!ErrorCounts(now)) {
        return 0;
    }
    const std::uint32_t word = LineErrorWord(errorsSeen_, now);
    errorsSeen_ = now;
    return word;
}

} // namespace

std::unique_ptr<SerialPort> OpenSerialPort(const std::string& device) {
    // Without O_NONBLOCK, open waits for a modem's carrier.
    const int handle = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0) {
        return nullptr;
    }
    // A file lock keeps out any second opener and is released when the program crashes. The
    // terminal's exclusive mode lets the superuser in and outlives a crash on a pseudo terminal.
    const bool isTerminal = ::isatty(handle) != 0;
    if (!isTerminal || ::flock(handle, LOCK_EX | LOCK_NB) != 0) {
        const int reason = !isTerminal ? ENOTTY : errno == EWOULDBLOCK ? EBUSY : errno;
        ::close(handle);
        errno = reason;
        return nullptr;
    }
    return std::make_unique<PosixSerialPort>(handle);
}

std::string GroupOfDevice(const std::string& device) {
    struct stat facts {};
    if (::stat(device.c_str(), &facts) != 0) {
        return "?";
    }
    std::array<char, 4096> text{};
    group entry{};
    group* found = nullptr;
    ::getgrgid_r(facts.st_gid, &entry, text.data(), text.size(), &found);
    return found != nullptr ? found->gr_name : std::to_string(facts.st_gid);
}

} // namespace busquill
