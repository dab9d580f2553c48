#pragma once

#include "capture/board_capture.h"
#include "link/analyzer_link.h"
#include "platform/working_directory.h"
#include "signals/signal_tables.h"

#include <functional>
#include <memory>
#include <string>

namespace busquill {

/// A board: its capture, the link to it and the tables of its signals. Only this class puts them
/// together. Main thread.
///
/// Documents and windows of the board are destroyed before it.
class Analyzer {
public:
    /// Services that they use. All outlive the analyzer, except the directory, which is copied.
    struct Machine {
        MainThread& mainThread;
        Prompts& prompts;
        Settings& settings;
        Clock& clock;
        UsbBus& usb;
        /// Opens a device path; null when it cannot be opened.
        std::function<std::unique_ptr<SerialPort>(const std::string& device)> openSerial;
        WorkingDirectory directory; // holds the colour files
    };

    /// Nothing is connected yet, and the tables are empty.
    explicit Analyzer(const Machine& machine);
    ~Analyzer();
    Analyzer(const Analyzer&) = delete;
    Analyzer& operator=(const Analyzer&) = delete;

    [[nodiscard]] BoardCapture& Capture() noexcept { return capture_; }
    [[nodiscard]] CAnalyzerLink& Link() noexcept { return link_; }
    [[nodiscard]] SignalTables& Tables() noexcept { return tables_; }

private:
    // In the order of construction; destruction is in reverse.
    BoardCapture capture_; // outlives the link, whose thread may be completing a block for it
    CAnalyzerLink link_;
    SignalTables tables_; // asks the link for the board
};

} // namespace busquill
