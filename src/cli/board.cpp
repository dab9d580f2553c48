#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/facts.h"
#include "cli/json.h"
#include "cli/output.h"
#include "cli/session.h"
#include "platform/text.h"

#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

struct Options {
    PortOptions port;
    OutputOptions output;
    bool json = false;
};

int Run(const Options& options) {
    Session session(options.port);
    const BoardIdentity identity = session.Link().Identity();
    const BusConfig bus = session.Link().Traits().bus;
    const std::vector<Fact> facts = {
        TextFact("Model", "model", identity.modelString),
        TextFact("Buffer Size", "bufferSize", Printf("%dK", identity.bufferSizeK)),
        TextFact("Firmware Version", "firmware", identity.firmwareRevision),
        TextFact("Hardware Version", "hardware", identity.hardwareRevision),
        NumberFact("Serial Number", "serial", identity.serialNumber),
        TextFact("Bus Mode", "busMode", std::string(BusModeName(bus.busMode))),
        NumberFact("Bus Width", "busWidth", bus.busWidth == 1 ? 64 : 32),
        TextFact("Bus Voltage", "busVoltage", bus.busVoltage == 1 ? "3.3V" : "5.0V"),
        TextFact("Bus Frequency", "busFrequency", Printf("%d MHz", bus.busFrequency)),
    };
    Output output(options.output.path);
    output.Write(options.json ? JsonLine(FactsAsJson(facts)) + "\n" : FactsAsText(facts));
    output.Close();
    return ExitStatus::Done;
}

} // namespace

void AddBoard(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(program, "board", "the connected board and its bus",
                                   [options] { return Run(*options); });
    AddPortOptions(command, options->port);
    AddOutput(command, options->output);
    AddJson(command, options->json);
}

} // namespace busquill::cli
