#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace busquill::test {

/// The simulated board as a separate process, on a pseudo terminal. The process ends with the
/// object.
class BoardProcess {
public:
    /// Options as on its command line; a log is always kept.
    explicit BoardProcess(std::vector<std::string> options = {});
    ~BoardProcess();
    BoardProcess(const BoardProcess&) = delete;
    BoardProcess& operator=(const BoardProcess&) = delete;

    /// The terminal that a host opens, under the same name for as long as the board runs; empty if
    /// the board did not start.
    [[nodiscard]] const std::string& Terminal() const noexcept { return terminal_; }
    /// Requests a fault, such as "drop-ack 3", and waits until the board has accepted it.
    void Fault(const std::string& words);
    /// Pulls the cable: the terminal hangs up and is gone. The board itself stays powered.
    void Unplug() { Fault("go-away"); }
    /// Plugs the cable in again.
    void PlugIn() { Fault("come-back"); }
    /// From now on the board refuses every change of its rate.
    void RefuseRate() { Fault("refuse-rate"); }
    /// The lines of its log, without their times.
    [[nodiscard]] std::vector<std::string> Log() const;
    /// The log lines about functions, such as "function 11 start trace, ...".
    [[nodiscard]] std::vector<std::string> Functions() const;
    /// The firmware that the board has acknowledged, as the text of an Intel hex file.
    [[nodiscard]] std::string Firmware() const;

private:
    pid_t process_ = -1;
    int commands_ = -1; // its standard input
    std::string terminal_;
    std::string logPath_;
    std::string flashPath_;
};

} // namespace busquill::test
