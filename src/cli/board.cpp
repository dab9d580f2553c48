#include "cli/board_facts.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/commands.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "cli/output.h"
#include "cli/session.h"

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
    CAnalyzerLink& link = session.Link();
    const std::vector<Fact> facts = BoardFacts(link.Identity(), link.Traits().bus);
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
