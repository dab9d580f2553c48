#pragma once

#include "platform/usb_device.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace busquill::test {

/// A USB with one board on it that does as it is told, and what was asked of it.
class ScriptedUsb final : public UsbBus {
public:
    using Bytes = std::vector<std::uint8_t>;

    UsbSearch search; // what Find answers
    bool openFails = false;
    bool selectFails = false;
    bool resetFails = false;
    bool writeFails = false;
    UsbDevice::Transfer readFailure; // used while readFails
    bool readFails = false;
    std::deque<Bytes> replies; // of the next reads

    void PlugIn() { search = {UsbSearch::Outcome::Found, 0, "1-2"}; }

    [[nodiscard]] std::vector<std::string> Calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }
    [[nodiscard]] std::vector<Bytes> Writes() const {
        const std::lock_guard lock(mutex_);
        return writes_;
    }

    UsbSearch Find(const std::string& wanted) override {
        Note("find " + wanted);
        return search;
    }
    std::unique_ptr<UsbDevice> Open(const std::string& path) override {
        Note("open " + path);
        return openFails ? nullptr : std::make_unique<Device>(*this);
    }

private:
    class Device final : public UsbDevice {
    public:
        explicit Device(ScriptedUsb& usb) : usb_(usb) {}
        ~Device() override { usb_.Note("close"); }
        Device(const Device&) = delete;
        Device& operator=(const Device&) = delete;

        bool SelectInterface() override {
            usb_.Note("select");
            return !usb_.selectFails;
        }
        bool ResetPipe(std::uint8_t endpoint) override {
            usb_.Note("reset " + std::to_string(endpoint));
            return !usb_.resetFails;
        }
        Transfer Write(std::uint8_t endpoint, std::span<const std::uint8_t> bytes) override {
            usb_.Note("write " + std::to_string(endpoint));
            const std::lock_guard lock(usb_.mutex_);
            usb_.writes_.emplace_back(bytes.begin(), bytes.end());
            return {!usb_.writeFails, 0, bytes.size()};
        }
        Transfer Read(std::uint8_t endpoint, std::span<std::uint8_t> into) override {
            usb_.Note("read " + std::to_string(endpoint));
            if (usb_.readFails) {
                return usb_.readFailure;
            }
            const std::lock_guard lock(usb_.mutex_);
            const Bytes reply = usb_.replies.empty() ? Bytes(into.size()) : usb_.replies.front();
            if (!usb_.replies.empty()) {
                usb_.replies.pop_front();
            }
            const std::size_t count = std::min(reply.size(), into.size());
            std::copy_n(reply.begin(), count, into.begin());
            return {true, 0, count};
        }

    private:
        ScriptedUsb& usb_;
    };

    void Note(const std::string& call) {
        const std::lock_guard lock(mutex_);
        calls_.push_back(call);
    }

    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
    std::vector<Bytes> writes_;
};

} // namespace busquill::test
