#include "cli/board/program.h"

#include "cli/board/commands.h"
#include "cli/exit_request.h"
#include "cli/interrupt.h"
#include "cli/output.h"

#include <algorithm>
#include <new>

namespace busquill::cli::board {

namespace {

/// Reads the command line and runs its command, which ends by an ExitRequest.
void ParseAndRun(CLI::App& program, std::span<const std::string> texts) {
    std::vector<std::string> reversed(texts.rbegin(), texts.rend()); // as the parser takes them
    try {
        program.parse(std::move(reversed));
    } catch (const CLI::CallForHelp&) {
        const auto chosen = program.get_subcommands();
        Output output("");
        output.Write(chosen.empty() ? program.help() : chosen.front()->help());
        output.Close();
    } catch (const CLI::CallForVersion& version) {
        Output output("");
        output.Write(std::string(version.what()) + "\n");
        output.Close();
    } catch (const CLI::ParseError& error) {
        WrongUse(error.what());
    }
}

} // namespace

int Run(std::span<const std::string> texts) {
    SetProgramName("busquill-board");
    NoticeInterrupts();
    try {
        CLI::App program("The functions of the board without windows", "busquill-board");
        program.set_version_flag("-V,--version", "busquill-board " BUSQUILL_VERSION);
        program.require_subcommand(1);
        AddCommands(program);
        ParseAndRun(program, texts);
        return ExitStatus::Done;
    } catch (const ExitRequest& request) {
        if (!request.message.empty()) {
            Say(request.message);
        }
        return request.status;
    } catch (const std::bad_alloc&) {
        Say("there is not enough memory");
        return ExitStatus::Failure;
    }
}

} // namespace busquill::cli::board
