#pragma once

#include "platform/serial_port.h"
#include "support/manual_clock.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace busquill::test {

using Bytes = std::vector<std::uint8_t>;

/// A serial line with a scripted far end. Outlives the ports that are opened on it. A read that
/// finds nothing returns at once and advances the clock by the time that it should have waited. Any
/// thread.
class ScriptedLine {
public:
    struct Sent {
        Bytes bytes;
        int baud = 0;
        std::time_t time = 0;
    };
    /// What the far end answers to one write at a rate.
    using Answer = std::function<Bytes(const Bytes& sent, int baud)>;
    /// Error numbers that the port reports; 0 is success.
    struct Errors {
        int readConfiguration = 0;
        int configure = 0;
        int setTimeout = 0;
        int write = 0;
    };

    explicit ScriptedLine(ManualClock& clock) : clock_(clock) {}

    void SetAnswer(Answer answer) {
        const std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }
    void SetErrors(Errors errors) {
        const std::lock_guard lock(mutex_);
        errors_ = errors;
    }
    void SetLineErrors(std::uint32_t word) {
        const std::lock_guard lock(mutex_);
        lineErrors_ = word;
    }
    /// Called on the link's thread when a request has timed out, before the time-out is handled.
    void OnClearErrors(std::function<void()> called) {
        const std::lock_guard lock(mutex_);
        onClearErrors_ = std::move(called);
    }
    /// Whether reads that find nothing advance the clock.
    void SetClockRuns(bool runs) {
        const std::lock_guard lock(mutex_);
        clockRuns_ = runs;
    }
    /// From now on reads fail as if the port had been unplugged.
    void Unplug() {
        const std::lock_guard lock(mutex_);
        unplugged_ = true;
    }
    /// Runs `action` while nothing is written or read.
    template <typename Action>
    void Do(Action action) {
        const std::lock_guard lock(mutex_);
        action();
    }
    /// Unrequested bytes from the far end.
    void Arrive(const Bytes& bytes) {
        const std::lock_guard lock(mutex_);
        input_.insert(input_.end(), bytes.begin(), bytes.end());
        idleReads_ = 0;
    }

    [[nodiscard]] std::vector<Sent> Log() const {
        const std::lock_guard lock(mutex_);
        return log_;
    }
    /// What was written, one entry for each write.
    [[nodiscard]] std::vector<Bytes> Written() const {
        std::vector<Bytes> written;
        for (const Sent& sent : Log()) {
            written.push_back(sent.bytes);
        }
        return written;
    }
    [[nodiscard]] std::vector<int> Rates() const {
        const std::lock_guard lock(mutex_);
        return rates_;
    }
    void ForgetLog() {
        const std::lock_guard lock(mutex_);
        log_.clear();
        rates_.clear();
    }
    /// Whether the reader has taken all bytes and has tried to read more.
    [[nodiscard]] bool AllTaken() const {
        const std::lock_guard lock(mutex_);
        return input_.empty() && idleReads_ > 0;
    }
    [[nodiscard]] int OpenPorts() const {
        const std::lock_guard lock(mutex_);
        return openPorts_;
    }
    [[nodiscard]] int ReadsAfterUnplug() const {
        const std::lock_guard lock(mutex_);
        return readsAfterUnplug_;
    }

private:
    friend class ScriptedSerialPort;

    ManualClock& clock_;
    mutable std::mutex mutex_;
    Answer answer_;
    Errors errors_;
    std::uint32_t lineErrors_ = 0;
    std::function<void()> onClearErrors_;
    bool clockRuns_ = true;
    bool unplugged_ = false;
    std::deque<std::uint8_t> input_;
    std::vector<Sent> log_;
    std::vector<int> rates_;
    int baud_ = 0;
    std::chrono::milliseconds timeout_{0};
    int openPorts_ = 0;
    int readsAfterUnplug_ = 0;
    int idleReads_ = 0;
};

class ScriptedSerialPort final : public SerialPort {
public:
    explicit ScriptedSerialPort(std::shared_ptr<ScriptedLine> line) : line_(std::move(line)) {
        const std::lock_guard lock(line_->mutex_);
        ++line_->openPorts_;
    }
    ~ScriptedSerialPort() override {
        const std::lock_guard lock(line_->mutex_);
        --line_->openPorts_;
    }

    int ReadConfiguration() override {
        const std::lock_guard lock(line_->mutex_);
        return line_->errors_.readConfiguration;
    }
    int Configure(int baud) override {
        const std::lock_guard lock(line_->mutex_);
        line_->rates_.push_back(baud);
        if (line_->errors_.configure == 0) {
            line_->baud_ = baud;
        }
        return line_->errors_.configure;
    }
    int SetReadTimeout(std::chrono::milliseconds total) override {
        const std::lock_guard lock(line_->mutex_);
        line_->timeout_ = total;
        return line_->errors_.setTimeout;
    }
    std::optional<std::size_t> Read(std::span<std::uint8_t> into) override {
        {
            const std::lock_guard lock(line_->mutex_);
            if (line_->unplugged_) {
                ++line_->readsAfterUnplug_;
                return std::nullopt;
            }
            std::deque<std::uint8_t>& input = line_->input_;
            if (!input.empty()) {
                const std::size_t count = std::min(into.size(), input.size());
                const auto end = input.begin() + static_cast<std::ptrdiff_t>(count);
                std::copy(input.begin(), end, into.begin());
                input.erase(input.begin(), end);
                line_->idleReads_ = 0;
                return count;
            }
            ++line_->idleReads_;
            if (line_->clockRuns_) {
                line_->clock_.Advance(line_->timeout_);
            }
        }
        std::this_thread::yield();
        return 0;
    }
    std::optional<std::size_t> ReadSome(std::span<std::uint8_t> into) override {
        return Read(into);
    }
    int Write(std::span<const std::uint8_t> bytes) override {
        const std::lock_guard lock(line_->mutex_);
        const Bytes sent(bytes.begin(), bytes.end());
        line_->log_.push_back({sent, line_->baud_, line_->clock_.Time()});
        if (line_->errors_.write != 0) {
            return line_->errors_.write;
        }
        if (line_->answer_) {
            const Bytes answer = line_->answer_(sent, line_->baud_);
            line_->input_.insert(line_->input_.end(), answer.begin(), answer.end());
        }
        return 0;
    }
    std::uint32_t ClearErrors() override {
        const std::lock_guard lock(line_->mutex_);
        if (line_->onClearErrors_) {
            line_->onClearErrors_();
        }
        return line_->lineErrors_;
    }

private:
    std::shared_ptr<ScriptedLine> line_;
};

} // namespace busquill::test
