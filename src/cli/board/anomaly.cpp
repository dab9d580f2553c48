// Anomaly detection: a line for each violation that the board finds.

#include "cli/board/board_session.h"
#include "cli/board/check_choice.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/output_file.h"
#include "cli/board/polls.h"
#include "cli/board/time_stamp.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/text.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_run.h"
#include "testsuites/anomaly_table.h"

#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

struct AnomalyOptions {
    BoardOptions board;
    CheckChoice choice;
    std::optional<Milliseconds> limit;
    std::string output; // a file
};

/// Prints what is found.
class Printer final : public AnomalyObserver {
public:
    Printer(const CAnomalyDetectionDoc& document, bool isJson)
        : document_(document), isJson_(isJson) {}

    void OnRunning(bool /*running*/) override {}
    void OnResultsCleared() override {}
    void OnFound(std::string_view check) override {
        const std::string time = TimeStamp(std::chrono::system_clock::now());
        output.Print(isJson_ ? JsonLine({{"time", time},
                                         {"number", document_.Results().back()},
                                         {"text", JsonString(check)}})
                             : time + "  " + std::string(check));
        ++count;
    }

    LineOutput output;
    long long count = 0;

private:
    const CAnomalyDetectionDoc& document_;
    const bool isJson_;
};

int RunAnomaly(const AnomalyOptions& options) {
    CheckFileBeside(options.output);
    BoardSession session(options.board);
    CAnomalyDetectionDoc document([&session] { return AnomalyTable(session.Link().Traits()); },
                                  session.Boxes());
    Tick(document, options.choice);
    Printer printer(document, options.board.json);
    if (options.choice.list) {
        return ListTicked(session, document, options.board.json, options.output);
    }
    Polls polls(session);
    AnomalyRun run(polls.Parts(), document, printer);
    session.SetLimit(options.limit);
    run.Start();
    if (session.PrintMessages()) {
        run.Stop();
        session.PrintMessages();
        Fail("the board has not taken the checks");
    }
    const WaitEnd end = polls.Follow(printer.output);
    if (end == WaitEnd::Interrupted) {
        session.Status("interrupted");
    }
    run.Stop();
    session.PrintMessages();
    SaveChecks(session, document, options.output);
    if (polls.IsBoardLost()) {
        Fail("the board does not answer any more");
    }
    printer.output.Close();
    session.Status(Printf("%lld found", printer.count));
    return printer.count > 0 ? ExitStatus::NothingFound : ExitStatus::Done;
}

} // namespace

void AddAnomaly(CLI::App& program) {
    const auto options = std::make_shared<AnomalyOptions>();
    CLI::App& command =
        AddCommand(program, "anomaly", "watches the bus for violations of protocol and timing",
                   [options] { return RunAnomaly(*options); });
    AddBoardOptions(command, options->board);
    AddCheckChoice(command, options->choice);
    AddLimit(command, options->limit);
    CompletedWithFiles(
        AddText(command, "-o,--output", options->output, "FILE", "keep what was chosen (.adt)"),
        ".adt");
}

} // namespace busquill::cli::board
