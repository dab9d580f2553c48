// The devices of the bus.

#include "cli/board/board_session.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/memory_printer.h"
#include "cli/board/output_file.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "document/hex_fields.h"
#include "link/exchange.h"
#include "platform/text.h"
#include "platform/working_directory.h"
#include "testsuites/config_header.h"
#include "testsuites/config_scan.h"

#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

struct ConfigOptions {
    BoardOptions board;
    bool dump = false;
    std::string device; // its place; empty: all devices
    std::string output;
};

/// "00:0a.0", or with a domain before it; throws ExitRequest for another text.
DevicePlace PlaceNamed(const std::string& text) {
    const std::string place = text.starts_with("0000:") ? text.substr(5) : text;
    unsigned bus = 0;
    unsigned device = 0;
    unsigned function = 0;
    int end = 0;
    const int fields = std::sscanf(place.c_str(), "%2x:%2x.%1x%n", &bus, &device, &function, &end);
    if (fields != 3 || static_cast<std::size_t>(end) != place.size() || device > 31 ||
        function > 7) {
        WrongUse("--device is a place such as 00:0a.0; not \"" + text + "\"");
    }
    return {static_cast<int>(bus), static_cast<int>(device), static_cast<int>(function)};
}

std::string IdText(const CConfigSpaceData& device) {
    return Printf("%04x:%04x", device.Identity().vendorId, device.Identity().deviceId);
}

void PrintLine(LineOutput& output, const DevicePlace& place, const CConfigSpaceData& device) {
    const DeviceIdentity& identity = device.Identity();
    output.Print(Printf("%s %s: %s [%s] (rev %02x)", PlaceText(place).c_str(),
                        identity.className.c_str(), identity.vendorName.c_str(),
                        IdText(device).c_str(), device.RevisionId()));
}

void PrintDump(LineOutput& output, const DevicePlace& place, const CConfigSpaceData& device) {
    PrintLine(output, place, device);
    for (const std::string& line : HeaderDump(device.Header())) {
        output.Print(line);
    }
    output.Print("");
}

std::string BitsAsText(const char* title, const std::vector<AnalysisLine>& lines) {
    std::string text = std::string(title) + "\n";
    for (const AnalysisLine& line : lines) {
        text += Printf(" %-24s%s\n", std::string(line.text).c_str(), line.value.c_str());
    }
    return text;
}

void PrintAnalysis(LineOutput& output, const CConfigSpaceData& device) {
    const ConfigAnalysis analysis = AnalyzeHeader(device);
    std::string text;
    for (const std::string& line : analysis.head) {
        text += std::string(Trim(line)) + "\n";
    }
    output.Write(text + "\n" + BitsAsText("Command", analysis.command) + "\n" +
                 BitsAsText("Status", analysis.status));
}

nlohmann::ordered_json BitsAsJson(const std::vector<AnalysisLine>& lines) {
    nlohmann::ordered_json bits;
    for (const AnalysisLine& line : lines) {
        const std::string value(Trim(std::string_view(line.value).substr(1))); // without the colon
        auto& bit = bits[std::string(line.text)];
        if (value == "Yes" || value == "No") {
            bit = value == "Yes";
        } else {
            bit = value;
        }
    }
    return bits;
}

void PrintJson(LineOutput& output, const DevicePlace& place, const CConfigSpaceData& device) {
    const DeviceIdentity& identity = device.Identity();
    const ConfigAnalysis analysis = AnalyzeHeader(device);
    output.Print(JsonLine({{"place", PlaceText(place)},
                           {"address", HexAddressText(identity.address)},
                           {"vendorId", Printf("%04x", identity.vendorId)},
                           {"deviceId", Printf("%04x", identity.deviceId)},
                           {"revision", Printf("%02x", device.RevisionId())},
                           {"class", JsonString(identity.className)},
                           {"vendor", JsonString(identity.vendorName)},
                           {"header", HexText(device.Header())},
                           {"command", BitsAsJson(analysis.command)},
                           {"status", BitsAsJson(analysis.status)}}));
}

void PrintDevice(LineOutput& output, const ConfigOptions& options, const DevicePlace& place,
                 const CConfigSpaceData& device) {
    if (options.board.json) {
        PrintJson(output, place, device);
    } else if (options.dump) {
        PrintDump(output, place, device);
    } else if (!options.device.empty()) {
        PrintAnalysis(output, device);
    } else {
        PrintLine(output, place, device);
    }
}

/// The place of a device that was found. Where its address does not tell, the devices are numbered
/// in the order of the scan; functions other than 0 belong to the device before them.
DevicePlace PlaceOfFound(const CConfigSpaceData& device, int function, int& devices) {
    devices += function == 0 || devices == 0 ? 1 : 0;
    return PlaceOf(device.Identity().address)
        .value_or(DevicePlace{0, (devices - 1) & 31, function});
}

int RunConfig(const ConfigOptions& options) {
    const std::optional<DevicePlace> wanted =
        options.device.empty() ? std::nullopt : std::optional(PlaceNamed(options.device));
    CheckFolderOf(options.output);
    LinePrompts warnings; // files of names may be missing
    CConfigSpaceData device(WorkingDirectory::AtStart(), warnings);
    BoardSession session(options.board);
    for (const std::string& warning : warnings.Take()) {
        session.Status(warning);
    }
    LineOutput output(options.output);
    int found = 0;
    int devices = 0;
    Scan scan{ScanEnd::Found};
    for (auto direction = ScanDirection::First; output.IsOpen(); direction = ScanDirection::Next) {
        scan = FindDevice(session.Link(), direction, device, session.Boxes(),
                          [&session] { return session.WasInterrupted(); });
        if (scan.end != ScanEnd::Found || session.HadMessages()) {
            break;
        }
        const DevicePlace place = PlaceOfFound(device, scan.function, devices);
        if (!wanted || place == *wanted) {
            PrintDevice(output, options, place, device);
            ++found;
        }
        if ((wanted && found > 0) || session.WasInterrupted()) {
            break;
        }
    }
    if (scan.end == ScanEnd::GivenUp) {
        ExchangeOrReport(session.Link(), RunCommand(CmdStopConfigScan), session.Boxes(),
                         "Error sending stop configuration command to analyzer.");
    }
    output.Close();
    if (session.HadMessages()) {
        return ExitStatus::Failure;
    }
    if (session.WasInterrupted()) {
        Fail(Printf("interrupted after %d devices", devices));
    }
    if (found == 0) {
        throw ExitRequest{ExitStatus::NothingFound,
                          wanted ? "there is no device " + PlaceText(*wanted) : "no device found"};
    }
    return ExitStatus::Done;
}

} // namespace

void AddConfig(CLI::App& program) {
    const auto options = std::make_shared<ConfigOptions>();
    CLI::App& command = AddCommand(program, "config", "finds the devices of the bus",
                                   [options] { return RunConfig(*options); });
    AddBoardOptions(command, options->board);
    Excluding(AddFlag(command, "--dump", options->dump,
                      "the headers of the devices, in the form that lspci -F reads"),
              OptionOf(command, "--json"));
    AddText(command, "--device", options->device, "PLACE",
            "the device at a place such as 00:0a.0, and its header in words");
    CompletedWithFiles(AddText(command, "-o,--output", options->output, "FILE", "write to FILE"));
}

} // namespace busquill::cli::board
