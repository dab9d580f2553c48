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

    /// Reads the line's present settings, which Configure modifies.
    virtual int ReadConfiguration() = 0;
    /// Raw bytes, 8 data bits, no parity, 1 stop bit, no flow control, at `baud` bits per second;
    /// any whole rate that the device can make. Bytes written before go out at the old rate.
    virtual int Configure(int baud) = 0;
    /// Limits the total wait of a Read for its bytes; initially 0.
    virtual int SetReadTimeout(std::chrono::milliseconds total) = 0;
    /// Fills `into` until it is full or the time-out has passed. Returns the number of bytes read,
    /// which may be 0, or nothing when the port has failed or the far end has hung up.
    virtual std::optional<std::size_t> Read(std::span<std::uint8_t> into) = 0;
    /// Waits like Read, but for one byte only, and also reads the bytes that are already there.
    virtual std::optional<std::size_t> ReadSome(std::span<std::uint8_t> into) {
        return Read(into.first(1));
    }
    /// Writes all bytes. A line that accepts none for 2 s is an error.
    virtual int Write(std::span<const std::uint8_t> bytes) = 0;
    /// The kinds of line errors since the last call (see LineErrorWord); 0 where the device does
    /// not count them.
    virtual std::uint32_t ClearErrors() = 0;
};

/// Opens a terminal device for reading and writing, exclusively: while it is open, any second open
/// fails, also from other programs. Null when it cannot be opened or is not a terminal, with the
/// reason in errno: EBUSY when it is open elsewhere, ENOTTY when it is not a terminal.
[[nodiscard]] std::unique_ptr<SerialPort> OpenSerialPort(const std::string& device);

/// The group whose members may open a device: its name, or its number when it has none.
[[nodiscard]] std::string GroupOfDevice(const std::string& device);

} // namespace busquill
