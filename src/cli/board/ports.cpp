// The ports of this machine, and behind which a board answers.

#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/options.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/serial_devices.h"
#include "platform/text.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

constexpr int comPorts = 8;
/// For the identity; all tries of a read take fifteen seconds.
constexpr std::chrono::seconds longestProbe(20);

struct PortsOptions {
    BoardOptions board; // without a port: those of this machine
    bool list = false;
};

struct ListedPort {
    PortSetting setting;
    std::string description; // of the adapter; may be empty
};

/// What answers on a port.
struct Answering {
    bool isBoard = false;
    BoardIdentity identity;
    std::string problem; // why there is no board
};

/// The COM ports that the environment ties to a device, the serial devices of the machine, and USB
/// if something there looks like a board.
std::vector<ListedPort> PortsOfTheMachine(const Settings& settings) {
    std::vector<ListedPort> ports;
    for (int number = 1; number <= comPorts; ++number) {
        const std::string name = Printf("COM%d", number);
        if (std::getenv(DeviceVariable(name).c_str()) != nullptr) {
            ports.push_back({PortNamed(name, settings), ""});
        }
    }
    for (const SerialDevice& device : SerialDevices()) {
        ports.push_back(
            {{PortSetting::Kind::Serial, device.path, device.path}, device.description});
    }
    if (OpenUsbBus()->Find("").outcome != UsbSearch::Outcome::NotFound) {
        ports.push_back({PortNamed("USB", settings), ""});
    }
    return ports;
}

/// Reads the identity of a board at whichever rate it answers; the rate stays as it is.
Answering LookBehind(const PortSetting& port) {
    LinePrompts prompts;
    MainThread mainThread;
    mainThread.SetPresenter([&prompts](const Box& box) { return prompts.Show(box); }, [] {});
    MemorySettings settings;
    SystemClock clock;
    const auto usb = OpenUsbBus();
    int openError = 0;
    CAnalyzerLink link({settings, prompts, clock, mainThread,
                        [&openError](const std::string& device) {
                            auto opened = OpenSerialPort(device);
                            openError = opened ? 0 : errno;
                            return opened;
                        },
                        *usb});
    {
        const NoInterruptsForThreads quiet; // the link starts a thread
        link.Open(port);
    }
    if (openError != 0) {
        return {false, {}, OpenFailure(port, openError).substr(port.Label().size() + 1)};
    }
    link.ReadIdentity();
    const auto end = std::chrono::steady_clock::now() + longestProbe;
    while (!link.IsIdle() && std::chrono::steady_clock::now() < end) {
        if (Interrupted()) {
            Fail("interrupted");
        }
        mainThread.WaitUntil(Milliseconds(50), [&link] { return link.IsIdle(); });
    }
    const bool isBoard = link.IsIdentified() && !link.IsDemoMode();
    return {isBoard, link.Identity(), isBoard ? "" : "no board answers"};
}

std::string AsText(const ListedPort& port, const Answering& answering) {
    const std::string adapter = port.description.empty() ? "" : ", " + port.description;
    const std::string board =
        answering.isBoard ? Printf("%s, serial number %d", answering.identity.modelString.c_str(),
                                   answering.identity.serialNumber)
                          : answering.problem;
    return port.setting.Label() + adapter + (board.empty() ? "" : ": " + board);
}

std::string AsJson(const ListedPort& port, const Answering& answering) {
    nlohmann::ordered_json object = {{"port", JsonString(port.setting.name)},
                                     {"device", JsonString(port.setting.device)},
                                     {"description", JsonString(port.description)}};
    if (answering.isBoard) {
        object["model"] = JsonString(answering.identity.modelString);
        object["serial"] = answering.identity.serialNumber;
    } else if (!answering.problem.empty()) {
        object["problem"] = answering.problem;
    }
    return JsonLine(object);
}

int RunPorts(const PortsOptions& options) {
    const MemorySettings settings;
    const std::vector<ListedPort> ports =
        options.board.port.port.empty()
            ? PortsOfTheMachine(settings)
            : std::vector<ListedPort>{{PortOf(options.board.port, settings), ""}};
    LineOutput output;
    int boards = 0;
    for (const ListedPort& port : ports) {
        const Answering answering = options.list ? Answering() : LookBehind(port.setting);
        if (Interrupted()) {
            Fail("interrupted");
        }
        output.Print(options.board.json ? AsJson(port, answering) : AsText(port, answering));
        boards += answering.isBoard ? 1 : 0;
    }
    output.Close();
    if (ports.empty() && !options.board.quiet) {
        Say("this machine has no serial port, and no board on USB");
    }
    return boards > 0 || options.list ? ExitStatus::Done : ExitStatus::NothingFound;
}

} // namespace

void AddPorts(CLI::App& program) {
    const auto options = std::make_shared<PortsOptions>();
    CLI::App& command = AddCommand(program, "ports", "the ports, and behind which a board answers",
                                   [options] { return RunPorts(*options); });
    AddBoardOptions(command, options->board);
    Described(Optional(OptionOf(command, "--port")), "look for a board on this port only");
    AddFlag(command, "--list", options->list, "list the ports without opening them");
}

} // namespace busquill::cli::board
