#pragma once

#include "capture/analyzer.h"
#include "platform/clock.h"
#include "platform/main_thread.h"
#include "platform/memory_settings.h"
#include "platform/serial_port.h"
#include "support/board_process.h"
#include "support/recording_prompts.h"
#include "support/scripted_usb.h"

#include <gtest/gtest.h>

#include <thread>

namespace busquill::test {

/// Real time, but without the pauses that let a board settle.
class ImpatientClock final : public Clock {
public:
    [[nodiscard]] std::time_t Time() const override { return std::time(nullptr); }
    void Sleep(std::chrono::milliseconds pause) override {
        if (patient || pause < std::chrono::seconds(1)) {
            std::this_thread::sleep_for(pause);
        }
    }
    bool patient = false;
};

class LinkOverWire : public testing::Test {
protected:
    void StartBoard(std::vector<std::string> options = {}) {
        // The first rate that is probed, unless a test sets another.
        options.insert(options.begin(), {"--baud", "9600"});
        board = std::make_unique<BoardProcess>(std::move(options));
        ASSERT_FALSE(board->Terminal().empty());
        settings.WriteProfileString("Setup", "ComPort", "COM3");
        settings.WriteProfileInt("Setup", "BaudRate", 9600);
        settings.WriteProfileString("Setup", "ComDevice3", board->Terminal());
    }

    /// The port that the settings select.
    [[nodiscard]] PortSetting Port() const { return ReadPortSetting(settings); }

    MemorySettings settings;
    RecordingPrompts prompts;
    ImpatientClock clock;
    MainThread mainThread;
    ScriptedUsb usb;
    std::unique_ptr<BoardProcess> board;
    Analyzer analyzer{{mainThread, prompts, settings, clock, usb, OpenSerialPort,
                       WorkingDirectory("/nonexistent")}};
    CAnalyzerLink& link = analyzer.Link();
};

} // namespace busquill::test
