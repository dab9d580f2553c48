#pragma once

#include "support/program_fixture_qt.h"
#include "support/scripted_serial_port.h"
#include "support/wire_board.h"

#include <memory>
#include <string>
#include <vector>

namespace busquill::test {

/// The whole program on a scripted serial line, whose far end is a board unless a test says
/// otherwise.
class BoardLineFixture : public ProgramFixture {
protected:
    BoardLineFixture() {
        const std::string model = "PCIKite";
        board.contents[0] = Bytes(model.begin(), model.end());
        UseBoard();
    }
    ~BoardLineFixture() override { program.reset(); } // it uses the line

    void UseBoard() {
        line->SetAnswer([this](const Bytes& sent, int baud) { return board.Answer(sent, baud); });
    }
    /// Every write is answered by a wrong byte.
    void UseRefusal() {
        line->SetAnswer([](const Bytes&, int) { return Bytes{'?'}; });
    }
    void UseSilence() {
        line->SetAnswer([](const Bytes&, int) { return Bytes{}; });
    }
    /// What starting writes to the board is forgotten.
    void StartOnLine() {
        Start(clock, [this](const std::string& device) -> std::unique_ptr<SerialPort> {
            opened.push_back(device);
            errno = openError;
            return openError == 0 ? std::make_unique<ScriptedSerialPort>(line) : nullptr;
        });
        line->Do([this] { board.writes.clear(); });
    }
    /// Gives the program time until a condition holds.
    template <typename Condition>
    [[nodiscard]] static bool RunUntil(Condition condition) {
        return QTest::qWaitFor(condition, 10000);
    }
    std::vector<Bytes> Written() { return line->Written(); }

    const std::shared_ptr<ScriptedLine> line = std::make_shared<ScriptedLine>(clock);
    WireBoard board; // used by the line under its lock
    int openError = 0;
    std::vector<std::string> opened;
};

} // namespace busquill::test
