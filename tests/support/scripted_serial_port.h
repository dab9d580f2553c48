#pragma once

#include "manual_clock.h"
#include "platform/serial_port.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace busquill::test {

using Bytes = std::vector<std::uint8_t>;

/// What a scripted line does and has seen. Outlives the ports that are opened on it.
class SerialScript {
public:
    explicit SerialScript(ManualClock& clock) : clock_(clock) {}

    /// What comes back for what was written. The default acknowledges everything.
    std::function<Bytes(const Bytes& written)> respond = [](const Bytes&) { return Bytes{'*'}; };
    bool openFails = false;
    int readConfigurationError = 0;
    int configureError = 0;
    int timeoutError = 0;
    std::atomic<int> writeError = 0;
    std::atomic<bool> gone = false; // the line has failed for reading
    std::atomic<std::uint32_t> lineErrors = 0;

    /// Everything that was written while the link's thread ran, a write each.
    [[nodiscard]] std::vector<Bytes> Writes() const {
        const std::lock_guard lock(mutex_);
        return writes_;
    }
    [[nodiscard]] std::vector<int> Rates() const {
        const std::lock_guard lock(mutex_);
        return rates_;
    }
    void Forget() {
        const std::lock_guard lock(mutex_);
        writes_.clear();
        rates_.clear();
    }
    /// Bytes that come without having been asked for.
    void Inject(const Bytes& bytes) {
        const std::lock_guard lock(mutex_);
        incoming_.insert(incoming_.end(), bytes.begin(), bytes.end());
    }
    [[nodiscard]] int OpenPorts() const { return openPorts_; }

    [[nodiscard]] std::unique_ptr<SerialPort> Open();

private:
    friend class ScriptedSerialPort;

    ManualClock& clock_;
    mutable std::mutex mutex_;
    std::vector<Bytes> writes_;
    std::vector<int> rates_;
    std::deque<std::uint8_t> incoming_;
    std::atomic<int> openPorts_ = 0;
};

/// A port on a scripted line. A read that finds nothing moves the clock on by its time-out instead
/// of waiting.
class ScriptedSerialPort final : public SerialPort {
public:
    explicit ScriptedSerialPort(SerialScript& script) : script_(script) { ++script_.openPorts_; }
    ~ScriptedSerialPort() override { --script_.openPorts_; }
    ScriptedSerialPort(const ScriptedSerialPort&) = delete;
    ScriptedSerialPort& operator=(const ScriptedSerialPort&) = delete;

    int ReadConfiguration() override { return script_.readConfigurationError; }
    int Configure(int baud) override {
        const std::lock_guard lock(script_.mutex_);
        script_.rates_.push_back(baud);
        return script_.configureError;
    }
    int SetReadTimeout(std::chrono::milliseconds total) override {
        timeout_ = total;
        return script_.timeoutError;
    }
    std::optional<std::size_t> Read(std::span<std::uint8_t> into) override {
        if (script_.gone) {
            return std::nullopt;
        }
        {
            const std::lock_guard lock(script_.mutex_);
            const std::size_t count = std::min(into.size(), script_.incoming_.size());
            if (count != 0) {
                std::copy_n(script_.incoming_.begin(), count, into.begin());
                script_.incoming_.erase(script_.incoming_.begin(),
                                        script_.incoming_.begin() +
                                            static_cast<std::ptrdiff_t>(count));
                return count;
            }
        }
        script_.clock_.Advance(timeout_);
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        return 0;
    }
    int Write(std::span<const std::uint8_t> bytes) override {
        if (script_.writeError != 0) {
            return script_.writeError;
        }
        const Bytes written(bytes.begin(), bytes.end());
        const Bytes reply = script_.respond(written);
        const std::lock_guard lock(script_.mutex_);
        script_.writes_.push_back(written);
        script_.incoming_.insert(script_.incoming_.end(), reply.begin(), reply.end());
        return 0;
    }
    std::uint32_t ClearErrors() override { return script_.lineErrors.exchange(0); }

private:
    SerialScript& script_;
    std::chrono::milliseconds timeout_{100};
};

inline std::unique_ptr<SerialPort> SerialScript::Open() {
    return openFails ? nullptr : std::make_unique<ScriptedSerialPort>(*this);
}

} // namespace busquill::test
