#pragma once

#include "platform/clock.h"
#include "platform/serial_port.h"
#include "support/program_fixture_qt.h"

namespace busquill::test {

/// The whole program against the simulated board, over a real pseudo terminal.
class BoardProgramFixture : public ProgramFixture {
protected:
    ~BoardProgramFixture() override { program.reset(); } // it uses the clock
    void Connect(std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--baud", "9600"});
        board = std::make_unique<BoardProcess>(options);
        settings.WriteProfileString("Setup", "ComDevice1", board->Terminal());
        settings.WriteProfileInt("Setup", "BaudRate", 9600);
        program.reset();
        Start(systemClock, OpenSerialPort);
    }

    SystemClock systemClock;
    std::unique_ptr<BoardProcess> board;
};

} // namespace busquill::test
