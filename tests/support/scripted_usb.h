#pragma once

#include "platform/usb_device.h"
#include "support/wire_board.h"

#include <mutex>

namespace busquill::test {

/// A machine with one USB board; each step can be made to fail. Outlives its devices. Any thread.
class ScriptedUsb final : public UsbBus {
public:
    struct Script {
        UsbSearch search{UsbSearch::Outcome::Found, 0, "usb-path"};
        bool opens = true;
        bool selects = true;
        bool resets = true;
        bool writes = true;
        bool present = true; // false: it has been unplugged since it was opened
        /// The result of a read instead of the board's data.
        std::optional<UsbDevice::Transfer> read = std::nullopt;
        std::size_t failingRead = 0; // reads of this many bytes fail
    };

    void Set(Script script) {
        const std::lock_guard lock(mutex_);
        script_ = std::move(script);
    }
    /// Access to the board between transfers.
    template <typename Use>
    auto WithBoard(Use use) {
        const std::lock_guard lock(mutex_);
        return use(board_);
    }
    /// Every call in order: "find ...", "open ...", "select", "reset 2", "write 2: 4 0", ...
    [[nodiscard]] std::vector<std::string> Calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }
    void ForgetCalls() {
        const std::lock_guard lock(mutex_);
        calls_.clear();
    }
    [[nodiscard]] int OpenDevices() const {
        const std::lock_guard lock(mutex_);
        return openDevices_;
    }

    UsbSearch Find(const std::string& wanted) override {
        const std::lock_guard lock(mutex_);
        calls_.push_back("find " + wanted);
        return script_.search;
    }
    std::unique_ptr<UsbDevice> Open(const std::string& path) override;

private:
    class Device;

    mutable std::mutex mutex_;
    Script script_;
    WireBoard board_;
    Bytes data_; // waiting on the input pipe
    std::vector<std::string> calls_;
    int openDevices_ = 0;
};

class ScriptedUsb::Device final : public UsbDevice {
public:
    explicit Device(ScriptedUsb& bus) : bus_(bus) { ++bus_.openDevices_; }
    ~Device() override {
        const std::lock_guard lock(bus_.mutex_);
        --bus_.openDevices_;
    }

    bool SelectInterface() override {
        const std::lock_guard lock(bus_.mutex_);
        bus_.calls_.emplace_back("select");
        return bus_.script_.selects;
    }
    bool ResetPipe(std::uint8_t endpoint) override {
        const std::lock_guard lock(bus_.mutex_);
        bus_.calls_.push_back("reset " + std::to_string(endpoint));
        return bus_.script_.resets;
    }
    Transfer Write(std::uint8_t endpoint, std::span<const std::uint8_t> bytes) override {
        const std::lock_guard lock(bus_.mutex_);
        std::string call = "write " + std::to_string(endpoint) + ":";
        for (const std::uint8_t byte : bytes) {
            call += " " + std::to_string(byte);
        }
        bus_.calls_.push_back(call);
        if (!bus_.script_.present) {
            return {.ok = false, .error = -4, .gone = true};
        }
        if (!bus_.script_.writes) {
            return {false, 31, 0};
        }
        // There are no acknowledgements on this wire: only the data between the two are returned.
        const Bytes answer = bus_.board_.Answer({bytes.begin(), bytes.end()}, 0);
        if (answer.size() > 2) {
            bus_.data_.assign(answer.begin() + 1, answer.end() - 1);
        }
        return {true, 0, bytes.size()};
    }
    Transfer Read(std::uint8_t endpoint, std::span<std::uint8_t> into) override {
        const std::lock_guard lock(bus_.mutex_);
        bus_.calls_.push_back("read " + std::to_string(endpoint) + ": " +
                              std::to_string(into.size()));
        if (!bus_.script_.present) {
            return {.ok = false, .error = -4, .gone = true};
        }
        if (bus_.script_.read) {
            return *bus_.script_.read;
        }
        if (into.size() == bus_.script_.failingRead) {
            return {false, 31, 0};
        }
        const std::size_t count = std::min(into.size(), bus_.data_.size());
        std::copy_n(bus_.data_.begin(), count, into.begin());
        bus_.data_.clear();
        return {true, 0, count};
    }

private:
    ScriptedUsb& bus_;
};

inline std::unique_ptr<UsbDevice> ScriptedUsb::Open(const std::string& path) {
    const std::lock_guard lock(mutex_);
    calls_.push_back("open " + path);
    return script_.opens ? std::make_unique<Device>(*this) : nullptr;
}

} // namespace busquill::test
