#include "support/trace_program.h"

#include "platform/text_file.h"
#include "support/paths.h"
#include "support/pseudo_terminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace busquill::test {

namespace {

using Time = std::chrono::steady_clock;

/// The two ends of a pipe; each is closed once.
struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            std::perror("pipe");
        }
    }
    ~Pipe() {
        Close(0);
        Close(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void Close(std::size_t end) {
        if (ends[end] >= 0) {
            ::close(ends[end]);
            ends[end] = -1;
        }
    }
    std::array<int, 2> ends{-1, -1};
};

[[noreturn]] void Become(std::string program, const std::vector<std::string>& arguments,
                         const ProgramInput& input, int in, const Pipe& out, const Pipe& err) {
    ::dup2(in, STDIN_FILENO);
    ::dup2(out.ends[1], STDOUT_FILENO);
    ::dup2(err.ends[1], STDERR_FILENO);
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGINT, SIG_DFL); // ignored where the tests run in the background
    if (input.diskBytes != 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{input.diskBytes, input.diskBytes};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (input.memoryBytes != 0) {
        const rlimit limit{input.memoryBytes, input.memoryBytes};
        ::setrlimit(RLIMIT_AS, &limit);
    }
    if (!input.folder.empty() && ::chdir(input.folder.c_str()) != 0) {
        std::_Exit(126);
    }
    if (!input.temporaryFolder.empty()) {
        ::setenv("TMPDIR", input.temporaryFolder.c_str(), 1);
    }
    for (const auto& [name, value] : input.environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> words = {program.data()};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    std::_Exit(127);
}

/// Reads the available bytes; false at the end of the file.
bool ReadInto(std::string& text, int from) {
    std::array<char, 65536> bytes;
    const ssize_t count = ::read(from, bytes.data(), bytes.size());
    if (count > 0) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return count > 0 || (count < 0 && errno == EINTR);
}

/// Runs a program as a separate process.
ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const ProgramInput& input) {
    std::signal(SIGPIPE, SIG_IGN); // the program may close its standard input early
    Pipe in;
    std::optional<PseudoTerminal> terminal;
    FileHandle terminalEnd;
    if (input.onTerminal) {
        terminal.emplace();
        terminalEnd.reset(std::fopen(terminal->Path().c_str(), "re"));
        static_cast<void>(
            terminal->Send({reinterpret_cast<const std::uint8_t*>(input.standardInput.data()),
                            input.standardInput.size()}));
    }
    Pipe out;
    Pipe err;
    const pid_t process = ::fork();
    if (process == 0) {
        Become(program, arguments, input, terminalEnd ? ::fileno(terminalEnd.get()) : in.ends[0],
               out, err);
    }
    in.Close(0);
    out.Close(1);
    err.Close(1);
    ProgramRun run;
    const auto end = Time::now() + input.limit;
    bool interrupted = false;
    std::size_t given = input.onTerminal ? input.standardInput.size() : 0;
    while (Time::now() < end && (out.ends[0] >= 0 || err.ends[0] >= 0)) {
        if (input.meanwhile) {
            input.meanwhile();
        }
        if (!interrupted && input.interruptWhen && input.interruptWhen()) {
            ::kill(process, SIGINT);
            interrupted = true;
        }
        std::array<pollfd, 3> ready{
            {{out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}, {in.ends[1], POLLOUT, 0}}};
        ::poll(ready.data(), ready.size(), 20);
        if (ready[2].revents != 0 && in.ends[1] >= 0) {
            const std::size_t piece =
                std::min<std::size_t>(4096, input.standardInput.size() - given);
            const ssize_t count =
                piece == 0 ? -1 : ::write(in.ends[1], input.standardInput.data() + given, piece);
            given += count > 0 ? static_cast<std::size_t>(count) : 0;
            if (count <= 0 || given == input.standardInput.size()) {
                in.Close(1);
            }
        }
        if (ready[0].revents != 0 && out.ends[0] >= 0 &&
            (!ReadInto(run.out, out.ends[0]) ||
             (input.readAtMost != 0 && run.out.size() >= input.readAtMost))) {
            out.Close(0);
        }
        if (ready[1].revents != 0 && err.ends[0] >= 0 && !ReadInto(run.err, err.ends[0])) {
            err.Close(0);
        }
    }
    if (Time::now() >= end) {
        ::kill(process, SIGKILL);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

} // namespace

ProgramRun RunTrace(const std::vector<std::string>& arguments, const ProgramInput& input) {
    return RunProgram(TraceProgramPath(), arguments, input);
}

ProgramRun RunBoard(const std::vector<std::string>& arguments, const ProgramInput& input) {
    return RunProgram(BoardProgramPath(), arguments, input);
}

ProgramRun RunSystemProgram(const std::string& program, const std::vector<std::string>& arguments,
                            const ProgramInput& input) {
    return RunProgram(program, arguments, input);
}

} // namespace busquill::test
