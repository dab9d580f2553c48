#include "capture/capture_run.h"
#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/facts.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/line_prompts.h"
#include "cli/output.h"
#include "link/command_rows.h"
#include "platform/text.h"
#include "tracesetup/setup_encoding.h"
#include "tracesetup/setup_file.h"
#include "tracesetup/setup_words.h"

#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

struct Options {
    std::string file;
    OutputOptions output;
    BusOptions bus;
    bool payload = false;
    bool json = false;
};

/// The payload of one command.
struct Payload {
    std::string command;
    int address;
    std::vector<std::uint8_t> bytes;
};

std::vector<Payload> PayloadsOf(const TraceSetup& setup, const BoardTraits& board) {
    std::vector<Payload> payloads;
    for (const RunStep& step : SetupSteps(setup, board)) {
        LinkRequest& request = *step.request;
        static_cast<void>(PreparePayload(request)); // as the link does before sending
        payloads.push_back({std::string(LinkCommandName(request.command)),
                            static_cast<int>(request.address), std::move(request.payload)});
    }
    return payloads;
}

std::string HexOf(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += Printf("%s%02X", text.empty() ? "" : " ", byte);
    }
    return text;
}

std::string AsText(const Payload& payload, std::size_t perLine) {
    std::string text = Printf("\n%s, register %d, %zu bytes:\n", payload.command.c_str(),
                              payload.address, payload.bytes.size());
    const std::span<const std::uint8_t> bytes(payload.bytes);
    for (std::size_t at = 0; at < bytes.size(); at += perLine) {
        text += "  " + HexOf(bytes.subspan(at, std::min(perLine, bytes.size() - at))) + "\n";
    }
    return text;
}

nlohmann::ordered_json AsJson(const std::vector<Payload>& payloads) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const Payload& payload : payloads) {
        array.push_back({{"command", payload.command},
                         {"register", payload.address},
                         {"bytes", HexOf(payload.bytes)}});
    }
    return array;
}

int Run(const Options& options) {
    CheckTarget(options.output, {options.file});
    Bus bus(options.bus);
    const std::string& path = options.file;
    TextReader file = OpenInput(path);
    TraceSetup setup(bus.Tables());
    LinePrompts prompts;
    if (!LoadSetupFile(setup, file, prompts)) {
        Fail(path + ": " + prompts.TakeFirst("no setup"));
    }
    const std::vector<Fact> facts = {
        TextFact("Name", "name", setup.name),
        TextFact("Description", "description", setup.description),
        ListFact("Program", "program", SetupWords(setup, bus.Board()))};
    const bool withPayload = options.payload;
    const auto payloads = PayloadsOf(setup, bus.Board());
    Output output(options.output.path);
    if (options.json) {
        nlohmann::ordered_json json = FactsAsJson(facts);
        if (withPayload) {
            json["payload"] = AsJson(payloads);
        }
        output.Write(JsonLine(json) + "\n");
    } else {
        output.Write(FactsAsText(facts));
        // A line for each event and each level.
        constexpr std::size_t controlRow = 20;
        for (std::size_t i = 0; withPayload && i < payloads.size(); ++i) {
            output.Write(AsText(payloads[i], i == 2 ? controlRow : eventRowSize));
        }
    }
    output.Close();
    return ExitStatus::Done;
}

} // namespace

void AddSetup(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(program, "setup", "a trigger program in plain words",
                                   [options] { return Run(*options); });
    CompletedWithFiles(AddOperand(command, "FILE", options->file), ".tsp");
    AddOutput(command, options->output);
    AddOverwrite(command, options->output);
    AddJson(command, options->json);
    AddBusOptions(command, options->bus);
    AddFlag(command, "--payload", options->payload, "also the bytes that go to the board");
}

} // namespace busquill::cli
