#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace busquill::test {

/// The simulated board as a process of its own, on a pseudo terminal. Ends with the object.
class BoardProcess {
public:
    /// Options as on its command line; a log is kept in any case.
    explicit BoardProcess(std::vector<std::string> options = {});
    ~BoardProcess();
    BoardProcess(const BoardProcess&) = delete;
    BoardProcess& operator=(const BoardProcess&) = delete;

    /// The terminal that a host opens; empty when the board did not start.
    [[nodiscard]] const std::string& Terminal() const noexcept { return terminal_; }
    /// Asks for a fault, such as "drop-ack 3", and waits until the board has taken it.
    void Fault(const std::string& words);
    /// The lines of its log, without their times.
    [[nodiscard]] std::vector<std::string> Log() const;
    /// The log's lines that tell of functions, such as "function 11 start trace, ...".
    [[nodiscard]] std::vector<std::string> Functions() const;

private:
    pid_t process_ = -1;
    int commands_ = -1; // its standard input
    std::string terminal_;
    std::string logPath_;
};

} // namespace busquill::test
