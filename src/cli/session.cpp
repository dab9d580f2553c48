#include "cli/session.h"

#include "cli/arguments.h"
#include "cli/exit_request.h"
#include "cli/output.h"
#include "platform/text.h"

#include <cerrno>
#include <filesystem>

namespace busquill::cli {

namespace {

bool IsNamedPort(const std::string& port) {
    return port == "USB" || port == "USB2" ||
           (port.size() == 4 && port.starts_with("COM") && port[3] >= '1' && port[3] <= '8');
}

} // namespace

PortSetting PortOf(const PortOptions& options, const Settings& settings) {
    const std::string& name = options.port;
    PortSetting port{PortSetting::Kind::Serial, name, name};
    std::error_code unknown;
    if (IsNamedPort(name)) {
        port = PortNamed(name, settings);
    } else if (!std::filesystem::exists(name, unknown)) {
        const bool isPath = name.find('/') != std::string::npos;
        throw ExitRequest{isPath ? ExitStatus::Failure : ExitStatus::WrongUse,
                          "there is no port " + name +
                              "; ports are COM1 to COM8, USB and paths of terminal devices"};
    }
    const std::int64_t baud = options.baud;
    if (baud != 9600 && baud != 19200 && baud != 38400 && baud != 57600) {
        WrongUse(Printf("--baud is 9600, 19200, 38400 or 57600; not %lld",
                        static_cast<long long>(baud)));
    }
    port.baud = static_cast<int>(baud);
    return port;
}

PortOptions PortOptionsOf(const Arguments& arguments) {
    return {arguments.Value("port"), arguments.Number("baud").value_or(usualBaudRate)};
}

Session::Session(const PortOptions& options)
    : usb_(OpenUsbBus()), analyzer_({mainThread_, mainThread_, settings_, clock_, *usb_,
                                     [this](const std::string& device) {
                                         auto port = OpenSerialPort(device);
                                         openError_ = port ? 0 : errno;
                                         return port;
                                     },
                                     WorkingDirectory::AtStart()}) {
    mainThread_.SetPresenter([this](const Box& box) { return prompts_.Show(box); }, [] {});
    const PortSetting port = PortOf(options, settings_);
    Link().Connect(port);
    quiet_.reset();
    if (Link().IsDemoMode()) {
        // The link's own messages about it are meant for windows.
        Fail(openError_ == 0 ? "no board answers on " + port.name
                             : "the port " + OpenFailure(port, openError_));
    }
    WaitForBoard(port.name);
    analyzer_.Tables().Load();
}

CTesselDoc& Session::Document() {
    if (!document_) {
        NewTraceContext live{analyzer_.Tables()};
        live.analyzer = &analyzer_;
        live.newDocRealTime = true;
        document_ = std::make_unique<CTesselDoc>(live, mainThread_);
        document_->OnNewDocument();
    }
    return *document_;
}

/// Connect goes on without identity and bus configuration if they do not arrive soon, but an
/// unidentified board is useless here.
void Session::WaitForBoard(const std::string& port) {
    constexpr std::chrono::seconds longest(20); // all tries of a read take fifteen
    const auto end = std::chrono::steady_clock::now() + longest;
    while (!Link().IsIdle() && std::chrono::steady_clock::now() < end) {
        if (Interrupted()) {
            Fail("interrupted");
        }
        Wait(std::chrono::milliseconds(50));
    }
    if (!Link().IsIdle()) {
        Fail("the board on " + port + " does not answer any more");
    }
    Link().WaitIdle(); // until the last reply is processed
    const bool hasName = !Link().Identity().modelString.starts_with('-');
    if (!Link().IsIdentified() || !hasName) {
        Fail("the board on " + port + " has not told what it is");
    }
    if (!prompts_.Take().empty()) {
        Fail("the board on " + port + " does not answer any more");
    }
}

bool Session::PrintMessages() {
    const auto said = prompts_.Take();
    std::string last;
    for (const std::string& line : said) {
        if (line != last) {
            Say(line);
        }
        last = line;
    }
    return !said.empty();
}

void Session::Wait(std::chrono::milliseconds time) {
    mainThread_.WaitUntil(time, [] { return false; });
}

} // namespace busquill::cli
