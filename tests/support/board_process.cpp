#include "support/board_process.h"

#include "support/paths.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace busquill::test {

BoardProcess::BoardProcess(std::vector<std::string> options) {
    static int number = 0;
    const std::string name =
        "/tmp/busquill-board-" + std::to_string(::getpid()) + "-" + std::to_string(number++);
    logPath_ = name + ".log";
    flashPath_ = name + ".hex";
    options.insert(options.begin(),
                   {BoardSimulator(), "--log", logPath_, "--flash", flashPath_, "--link", name});
    std::vector<char*> arguments;
    for (std::string& option : options) {
        arguments.push_back(option.data());
    }
    arguments.push_back(nullptr);

    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0) {
        return;
    }
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    if (::posix_spawn(&process_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
        process_ = -1;
    }
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    commands_ = in[1];
    char byte = 0;
    while (process_ > 0 && ::read(out[0], &byte, 1) == 1 && byte != '\n') {
    }
    // It prints a line once the terminal can be opened.
    terminal_ = byte == '\n' ? name : "";
    ::close(out[0]);
}

BoardProcess::~BoardProcess() {
    if (process_ > 0) {
        ::kill(process_, SIGTERM);
        ::waitpid(process_, nullptr, 0);
    }
    ::close(commands_);
    ::unlink(logPath_.c_str());
    ::unlink(flashPath_.c_str());
}

void BoardProcess::Fault(const std::string& words) {
    const auto taken = [&] {
        const auto log = Log();
        return std::count(log.begin(), log.end(), "fault " + words);
    };
    const auto before = taken();
    const std::string line = words + "\n";
    if (::write(commands_, line.data(), line.size()) < 0) {
        return;
    }
    for (int i = 0; i < 400 && taken() == before; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

std::vector<std::string> BoardProcess::Log() const {
    std::vector<std::string> lines;
    std::ifstream file(logPath_);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line.substr(line.find(' ') + 1));
    }
    return lines;
}

std::vector<std::string> BoardProcess::Functions() const {
    std::vector<std::string> functions;
    for (const std::string& line : Log()) {
        if (const auto at = line.find("function "); at != std::string::npos) {
            functions.push_back(line.substr(at));
        }
    }
    return functions;
}

std::string BoardProcess::Firmware() const {
    std::ifstream file(flashPath_);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace busquill::test
