#pragma once

#include "capture/analyzer.h"
#include "platform/main_thread.h"
#include "platform/memory_settings.h"
#include "support/recording_prompts.h"
#include "support/scripted_serial_port.h"
#include "support/scripted_usb.h"
#include "support/wire_board.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <future>

namespace busquill::test {

inline const std::string demoModeMessage =
    "Unable to establish communications with the analyzer.\n"
    "Go to the Utilities/Setup menu to select the proper interface and\n"
    "restart the program. Program will run in DEMO mode.";
inline const std::string communicationsError =
    "Communications error with analyzer. Check serial port connections.";

/// Waits up to ten seconds of real time.
template <typename Condition>
[[nodiscard]] bool Eventually(Condition condition) {
    using namespace std::chrono_literals;
    for (int i = 0; i < 10000; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(1ms);
    }
    return condition();
}

/// The shortest time of up to three runs of an action that should take `expected`: a busy machine
/// delays it now and then.
template <typename Action>
[[nodiscard]] std::chrono::nanoseconds ShortestTimeOf(Action action,
                                                      std::chrono::milliseconds expected) {
    auto shortest = std::chrono::nanoseconds::max();
    for (int i = 0; i < 3 && shortest > expected + std::chrono::milliseconds(100); ++i) {
        const auto begin = std::chrono::steady_clock::now();
        action();
        shortest =
            std::min<std::chrono::nanoseconds>(shortest, std::chrono::steady_clock::now() - begin);
    }
    return shortest;
}

/// A request whose completion blocks until it is released. Must outlive the request.
class HeldCompletion {
public:
    [[nodiscard]] LinkRequestPtr Request(std::int32_t command) {
        return NewRequest(command, [this](const LinkRequestPtr&) {
            started_.set_value();
            mayEnd_.get_future().wait();
            ended_.set_value();
        });
    }
    ~HeldCompletion() {
        if (begun_) {
            Release();
            ended_.get_future().wait();
        }
    }
    void AwaitStart() {
        started_.get_future().wait();
        begun_ = true;
    }
    void Release() {
        if (!released_.exchange(true)) {
            mayEnd_.set_value();
        }
    }
    [[nodiscard]] bool Released() const { return released_; }

private:
    std::promise<void> started_;
    std::promise<void> mayEnd_;
    std::promise<void> ended_;
    bool begun_ = false;
    std::atomic<bool> released_ = false;
};

/// A link on a scripted serial line or USB board. The test's thread is the main thread.
class LinkFixture : public testing::Test {
protected:
    static constexpr const char* setup = "Setup";

    LinkFixture() : LinkFixture(nullptr) {}
    /// With the test's own prompts instead of the recorder.
    explicit LinkFixture(Prompts* boxes)
        : line(std::make_shared<ScriptedLine>(clock)),
          analyzer(std::make_unique<Analyzer>(Analyzer::Machine{
              mainThread, boxes == nullptr ? prompts : *boxes, settings, clock, usb,
              [this](const std::string& device) { return OpenScripted(device); },
              WorkingDirectory("/nonexistent")})),
          link(&analyzer->Link()) {
        settings.WriteProfileString(setup, "ComPort", "COM1");
        UseBoard();
    }
    ~LinkFixture() override { analyzer.reset(); }

    /// The far end of the line is the board again, without faults.
    void UseBoard() {
        line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
    }
    void UseSilence() {
        line->SetAnswer([](const Bytes&, int) { return Bytes{}; });
    }
    /// The port that the settings select.
    [[nodiscard]] PortSetting Port() const { return ReadPortSetting(settings); }
    /// Opens the link at 9600 baud and clears the log.
    void OpenLink() {
        settings.WriteProfileInt(setup, "BaudRate", 9600);
        static_cast<void>(link->Open(Port()));
        line->ForgetLog();
    }
    /// Opens the link to a board of a model and reads its identity.
    void OpenBoard(const std::string& model) {
        Bytes block(model.begin(), model.end());
        block.resize(18);
        board.contents[0] = block;
        OpenLink();
        link->ReadIdentity();
        link->WaitIdle();
        EXPECT_TRUE(Eventually([&] { return !link->Identity().modelString.empty(); }));
        line->ForgetLog();
    }
    void OpenUsbLink() {
        settings.WriteProfileString(setup, "ComPort", "USB");
        EXPECT_FALSE(link->Open(Port()));
        usb.ForgetCalls();
    }

    /// Runs one request and returns it as it was in its completion.
    LinkRequest Run(LinkRequestPtr request) { return Start(std::move(request)).get(); }
    std::future<LinkRequest> Start(LinkRequestPtr request) {
        auto promise = std::make_shared<std::promise<LinkRequest>>();
        std::future<LinkRequest> future = promise->get_future();
        request->completion = [promise](const LinkRequestPtr& done) { promise->set_value(*done); };
        link->Submit(std::move(request));
        return future;
    }

    std::unique_ptr<SerialPort> OpenScripted(const std::string& device) {
        openedDevices.push_back(device);
        if (whenPortOpens) {
            whenPortOpens();
        }
        if (!portOpens) {
            errno = openError;
            return nullptr;
        }
        return std::make_unique<ScriptedSerialPort>(line);
    }

    ManualClock clock;
    MemorySettings settings;
    RecordingPrompts prompts;
    MainThread mainThread;
    std::shared_ptr<ScriptedLine> line;
    WireBoard board; // used by the line under its lock
    ScriptedUsb usb;
    bool portOpens = true;
    int openError = ENOENT; // when it does not open
    std::function<void()> whenPortOpens;
    std::vector<std::string> openedDevices;
    std::unique_ptr<Analyzer> analyzer; // destroyed first: its threads use the others
    CAnalyzerLink* link;
};

} // namespace busquill::test
