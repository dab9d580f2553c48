#include "cli/bus.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/text.h"
#include "signals/signal_names.h"

#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

struct Options {
    std::string file; // empty: without a capture
    OutputOptions output;
    BusOptions bus;
    bool json = false;
};

nlohmann::ordered_json AsJson(const NamedSignal& signal, const std::vector<std::string>& labels) {
    nlohmann::ordered_json texts = nlohmann::ordered_json::array();
    for (const std::string& label : labels) {
        texts.push_back(JsonString(label));
    }
    return {{"name", JsonString(signal.name)},
            {"bits", signal.positions.size()},
            {"labels", std::move(texts)}};
}

/// A line for the name, and one for each label, as a pattern to be typed.
std::string AsText(const NamedSignal& signal, const std::vector<std::string>& labels) {
    std::string text = signal.name + "\n";
    for (const std::string& label : labels) {
        text += signal.name + "=" + label + "\n";
    }
    return text;
}

int Run(const Options& options) {
    CheckTarget(options.output, {options.file});
    Bus bus(options.bus);
    std::optional<TraceInput> input;
    const CSignalList none(bus.Tables()); // without a capture
    if (!options.file.empty()) {
        input.emplace(options.file, bus.Tables());
        input->ReadHead();
    }
    const std::initializer_list<const CSignalList*> lists = {
        input ? &input->Stream().stateList : &none, input ? &input->Stream().waveformList : &none};
    const bool json = options.json;
    Output output(options.output.path);
    JsonArray array(output, {"[", ",\n ", "]\n", "[]\n"});
    for (const NamedSignal& signal : AllSignals(bus.Tables(), lists)) {
        const auto labels = signal.decoded ? LabelsOf(*signal.decoded) : std::vector<std::string>();
        if (json) {
            array.Add(AsJson(signal, labels));
        } else {
            output.Write(AsText(signal, labels));
        }
    }
    if (json) {
        array.End();
    }
    output.Close();
    return ExitStatus::Done;
}

} // namespace

void AddNames(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        AddCommand(program, "names", "the signals and labels of a bus, as patterns take them",
                   [options] { return Run(*options); });
    CompletedWithFiles(Optional(AddOperand(command, "FILE", options->file)), ".tra");
    AddOutput(command, options->output);
    AddOverwrite(command, options->output);
    AddJson(command, options->json);
    AddBusOptions(command, options->bus);
}

} // namespace busquill::cli
