#pragma once

#include <asm/termbits.h>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <span>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace busquill::test {

/// A pseudo terminal. The test is its far end: it holds the master side and plays the board, while
/// the code under test opens Path() as its serial port.
class PseudoTerminal {
public:
    PseudoTerminal() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        char name[64] = {};
        if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0 ||
            ::ptsname_r(master_, name, sizeof name) != 0) {
            Close();
            throw std::runtime_error("no pseudo terminal");
        }
        path_ = name;
    }
    ~PseudoTerminal() { Close(); }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// The device to open at the near end.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }
    [[nodiscard]] int Master() const noexcept { return master_; }

    /// The current settings of the line; all zero when the terminal is closed.
    [[nodiscard]] termios2 Settings() const {
        termios2 settings{};
        return ::ioctl(master_, TCGETS2, &settings) == 0 ? settings : termios2{};
    }
    /// The rate in bits per second at which the near end sends; 0 when the terminal is closed.
    [[nodiscard]] int Rate() const { return static_cast<int>(Settings().c_ospeed); }

    /// Sends bytes to the near end; false when not all could be sent.
    [[nodiscard]] bool Send(std::span<const std::uint8_t> bytes) const {
        return ::write(master_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }

    /// The bytes that the near end has sent: waits until there are `count` bytes or `limit` has
    /// passed.
    [[nodiscard]] std::vector<std::uint8_t>
    Receive(std::size_t count,
            std::chrono::milliseconds limit = std::chrono::milliseconds(2000)) const {
        const auto end = std::chrono::steady_clock::now() + limit;
        std::vector<std::uint8_t> received(count);
        std::size_t have = 0;
        while (have < count) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            pollfd waiting{master_, POLLIN, 0};
            if (left.count() < 0 || ::poll(&waiting, 1, static_cast<int>(left.count())) <= 0) {
                break;
            }
            const ssize_t got = ::read(master_, received.data() + have, count - have);
            if (got <= 0) {
                break; // the near end is closed
            }
            have += static_cast<std::size_t>(got);
        }
        received.resize(have);
        return received;
    }

    /// Hangs up: the near end's port fails from now on.
    void Close() noexcept {
        if (master_ >= 0) {
            ::close(master_);
            master_ = -1;
        }
    }

private:
    int master_;
    std::string path_;
};

} // namespace busquill::test
