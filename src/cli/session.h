#pragma once

#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "cli/interrupt.h"
#include "cli/line_prompts.h"
#include "platform/clock.h"
#include "platform/main_thread.h"
#include "platform/memory_settings.h"
#include "platform/serial_port.h"
#include "platform/usb_device.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace busquill::cli {

/// A silent board is given up after this time, which is longer than all tries of a command.
constexpr std::chrono::seconds patience(30);

/// The options that say which board.
struct PortOptions {
    std::string port; // "COM1" to "COM8", "USB", or the path of a terminal device
    std::int64_t baud = 0;
};

/// The port of the options, given by name or by the path of its device; throws ExitRequest when
/// there is no such port.
[[nodiscard]] PortSetting PortOf(const PortOptions& options, const Settings& settings);

/// A connected board with the objects that exist for the connection.
class Session {
public:
    /// Connects to the board on the port of the options; throws ExitRequest when no board answers.
    explicit Session(const PortOptions& options);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] CAnalyzerLink& Link() noexcept { return analyzer_.Link(); }
    [[nodiscard]] BoardCapture& Capture() noexcept { return analyzer_.Capture(); }
    [[nodiscard]] SignalTables& Tables() noexcept { return analyzer_.Tables(); }
    [[nodiscard]] MainThread& Prompts() noexcept { return mainThread_; }
    /// The live document of the board's capture, made when it is first asked for.
    [[nodiscard]] CTesselDoc& Document();
    /// From now on questions are answered by this function, not with no.
    void SetQuestions(std::function<Answer(const Box&)> answer) {
        prompts_.SetQuestions(std::move(answer));
    }
    /// Prints the messages since the last call; returns whether there were any.
    bool PrintMessages();
    /// Waits, while other threads may show messages.
    void Wait(std::chrono::milliseconds time);

private:
    void WaitForBoard(const std::string& port);

    std::optional<NoInterruptsForThreads> quiet_{
        std::in_place}; // until the link has started its thread
    LinePrompts prompts_;
    MainThread mainThread_;
    MemorySettings settings_;
    SystemClock clock_;
    int openError_ = 0; // errno of a failed open of the serial port
    std::unique_ptr<UsbBus> usb_;
    Analyzer analyzer_;
    std::unique_ptr<CTesselDoc> document_;
};

} // namespace busquill::cli
