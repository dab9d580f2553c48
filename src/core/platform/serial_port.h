#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace busquill {

/// An open serial port. Error results are the platform's error numbers; 0 is success. One thread
/// may read and ask for errors while another writes and configures. The destructor closes the port.
class SerialPort {
public:
    virtual ~SerialPort() = default;

    /// Whether the line's present settings, on which Configure builds, can be read.
    virtual int ReadConfiguration() = 0;
    /// Raw bytes, 8 data bits, no parity, 1 stop bit, no flow control, at `baud` bits per second;
    /// any whole rate that the device can make. Bytes written before go out at the old rate.
    virtual int Configure(int baud) = 0;
    /// How long a Read waits in all for its bytes; at first, not at all.
    virtual int SetReadTimeout(std::chrono::milliseconds total) = 0;
    /// Fills `into` until it is full or the time-out has passed; the count of bytes read, which
    /// may be 0. Nothing when the port has failed or the far end has hung up.
    virtual std::optional<std::size_t> Read(std::span<std::uint8_t> into) = 0;
    /// Waits as Read does, but for one byte only, and takes with it those that are there already.
    virtual std::optional<std::size_t> ReadSome(std::span<std::uint8_t> into) {
        return Read(into.first(1));
    }
    /// Writes all bytes. A line that takes none of them for 2 s is an error.
    virtual int Write(std::span<const std::uint8_t> bytes) = 0;
    /// The kinds of line errors since the last call (see LineErrorWord); 0 where the device does
    /// not count them.
    virtual std::uint32_t ClearErrors() = 0;
};

/// Opens a terminal device for reading and writing, exclusively: while it is open, a second open
/// fails, whoever asks. Null when it cannot be opened or is no terminal, with the reason in errno:
/// EBUSY where it is open elsewhere, ENOTTY where it is no terminal.
[[nodiscard]] std::unique_ptr<SerialPort> OpenSerialPort(const std::string& device);

} // namespace busquill
