// A stimulus program, which the board runs by itself.

#include "cli/board/board_session.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/polls.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/output.h"
#include "platform/text.h"
#include "stimulus/stimulus_document.h"
#include "stimulus/stimulus_run.h"

#include <memory>

namespace busquill::cli::board {

namespace {

struct StimulusOptions {
    BoardOptions board;
    std::string program;
    std::optional<Milliseconds> limit;
};

const char* WordFor(WaitEnd end) {
    return end == WaitEnd::Interrupted ? "interrupted"
           : end == WaitEnd::TimeOver  ? "time over"
                                       : "ended";
}

int RunStimulus(const StimulusOptions& options) {
    static_cast<void>(OpenInput(options.program)); // fails before the board is asked
    BoardSession session(options.board);
    CStimulusDoc document(session.Tables(), session.Boxes());
    if (!document.OnOpenDocument(options.program)) {
        // A file of another kind is refused without a message.
        session.PrintMessages();
        Fail(options.program + " is no stimulus program");
    }
    Polls polls(session);
    StimulusRun run(polls.Parts(), [](bool) {});
    session.SetLimit(options.limit);
    run.Go(document.Program());
    if (session.PrintMessages() || !polls.AreOn()) {
        run.Stop(); // half a program must not drive the bus
        session.PrintMessages();
        Fail("the board has not taken the program");
    }
    LineOutput output;
    const WaitEnd end = polls.Follow(output);
    if (polls.AreOn()) {
        run.Stop();
    }
    if (session.HadMessages()) {
        return ExitStatus::Failure;
    }
    if (options.board.json) {
        output.Print(Printf(R"({"end": "%s"})", WordFor(end)));
        output.Close();
    }
    session.Status(end == WaitEnd::Done ? "the program has ended"
                                        : std::string(WordFor(end)) + "; the program was stopped");
    return end == WaitEnd::Interrupted ? ExitStatus::Failure : ExitStatus::Done;
}

} // namespace

void AddStimulus(CLI::App& program) {
    const auto options = std::make_shared<StimulusOptions>();
    CLI::App& command =
        AddCommand(program, "stimulus", "has the board drive patterns, and waits for the end",
                   [options] { return RunStimulus(*options); });
    CompletedWithFiles(AddOperand(command, "PROGRAM.stm", options->program), ".stm");
    AddBoardOptions(command, options->board);
    AddLimit(command, options->limit);
}

} // namespace busquill::cli::board
