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
/// may read while another writes. The destructor closes the port.
class SerialPort {
public:
    virtual ~SerialPort() = default;

    /// Reads the line's present settings, which Configure then changes.
    virtual int ReadConfiguration() = 0;
    /// Raw bytes, 8 data bits, no parity, 1 stop bit, no flow control, at `baud` bits per second.
    virtual int Configure(int baud) = 0;
    /// How long a Read waits in all for its bytes.
    virtual int SetReadTimeout(std::chrono::milliseconds total) = 0;
    /// Fills `into` until it is full or the time-out has passed; the count of bytes read, which
    /// may be 0. Nothing when the port has failed.
    virtual std::optional<std::size_t> Read(std::span<std::uint8_t> into) = 0;
    /// Writes all bytes.
    virtual int Write(std::span<const std::uint8_t> bytes) = 0;
    /// The line's error word (overrun, framing and so on), which it clears.
    virtual std::uint32_t ClearErrors() = 0;
};

/// Opens a terminal device for reading and writing, exclusively; null when it cannot be opened.
[[nodiscard]] std::unique_ptr<SerialPort> OpenSerialPort(const std::string& device);

} // namespace busquill
