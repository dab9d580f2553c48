#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace busquill {

/// An open USB board. The destructor closes it. One thread at a time.
class UsbDevice {
public:
    virtual ~UsbDevice() = default;

    struct Transfer {
        bool ok = false;       // false: the transfer was rejected
        int error = 0;         // the platform's error number when the transfer failed
        std::size_t count = 0; // bytes moved
        bool gone = false;     // failed because the device was unplugged
    };

    /// Claims the interface with the bulk endpoints; false when that fails.
    virtual bool SelectInterface() = 0;
    virtual bool ResetPipe(std::uint8_t endpoint) = 0;
    /// One bulk transfer to an endpoint; blocks until it is done.
    virtual Transfer Write(std::uint8_t endpoint, std::span<const std::uint8_t> bytes) = 0;
    virtual Transfer Read(std::uint8_t endpoint, std::span<std::uint8_t> into) = 0;
};

/// Result of a search for a board on USB.
struct UsbSearch {
    enum class Outcome { NotFound, DetailFailed, Found };
    Outcome outcome = Outcome::NotFound;
    int error = 0;    // with DetailFailed
    std::string path; // with Found
};

/// The machine's USB.
class UsbBus {
public:
    virtual ~UsbBus() = default;
    /// `wanted` is "vvvv:pppp" in hexadecimal, or empty for the first vendor-specific interface
    /// that has the bulk endpoints 2 and 0x82.
    virtual UsbSearch Find(const std::string& wanted) = 0;
    /// Opens what Find found; null when it cannot be opened.
    virtual std::unique_ptr<UsbDevice> Open(const std::string& path) = 0;
};

[[nodiscard]] std::unique_ptr<UsbBus> OpenUsbBus();

} // namespace busquill
