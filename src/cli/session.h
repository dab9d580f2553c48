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
#include <memory>
#include <optional>
#include <string>

namespace busquill::cli {

struct Arguments;

/// A connected board, and what lives as long as the connection.
class Session {
public:
    /// Connects to the board on the port that the options name; throws ExitRequest where none
    /// answers.
    explicit Session(const Arguments& arguments);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] CAnalyzerLink& Link() noexcept { return analyzer_.Link(); }
    [[nodiscard]] BoardCapture& Capture() noexcept { return analyzer_.Capture(); }
    [[nodiscard]] const SignalTables& Tables() noexcept { return analyzer_.Tables(); }
    [[nodiscard]] MainThread& Prompts() noexcept { return mainThread_; }
    [[nodiscard]] CTesselDoc& Document() noexcept { return *document_; }
    /// Tells what the program has to say since the last call; false when it was nothing.
    bool PrintMessages();
    /// Lets time pass, in which other threads may say something.
    void Wait(std::chrono::milliseconds time);

private:
    void WaitForBoard(const std::string& port);

    std::optional<NoInterruptsForThreads> quiet_{std::in_place}; // while the link starts its own
    LinePrompts prompts_;
    MainThread mainThread_;
    MemorySettings settings_;
    SystemClock clock_;
    int openError_ = 0; // why the serial port does not open
    std::unique_ptr<UsbBus> usb_;
    Analyzer analyzer_;
    std::unique_ptr<CTesselDoc> document_;
};

} // namespace busquill::cli
