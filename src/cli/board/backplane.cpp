// The backplane test: shorts and broken lines.

#include "cli/board/board_session.h"
#include "cli/board/check_choice.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/output_file.h"
#include "cli/board/polls.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/output.h"
#include "platform/text.h"
#include "testsuites/backplane_document.h"
#include "testsuites/backplane_run.h"

#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

struct BackplaneOptions {
    BoardOptions board;
    std::string file; // empty: all signals
    CheckChoice choice{.noun = "signal"};
    BackplaneSensitivity sensitivity = BackplaneSensitivity::Normal;
    std::string output; // a file
};

/// Prints signals and what was found: the lines of a window, or a line of JSON for each signal.
class Printer final : public BackplaneObserver {
public:
    explicit Printer(bool isJson) : isJson_(isJson) {}

    void OnRunning(bool running) override {
        if (!running) {
            End();
        }
    }
    void OnResultsCleared() override {}
    void OnSignal(const std::string& line) override {
        End();
        signal_ = line;
        ++signals;
        if (!isJson_) {
            output.Print(line);
        }
    }
    void OnResult(const std::string& line) override {
        isFaulty_ = isFaulty_ || line != backplaneGood;
        if (isJson_) {
            results_.push_back(JsonString(Trim(line)));
        } else {
            output.Print(line);
        }
    }

    LineOutput output;
    int signals = 0;
    int faults = 0; // signals with one

private:
    /// A signal has got all its lines.
    void End() {
        faults += isFaulty_ ? 1 : 0;
        if (!results_.empty()) {
            output.Print(JsonLine(
                {{"signal", JsonString(signal_)}, {"ok", !isFaulty_}, {"results", results_}}));
        }
        isFaulty_ = false;
        results_.clear();
    }

    const bool isJson_;
    std::string signal_;
    std::vector<std::string> results_; // for JSON
    bool isFaulty_ = false;
};

/// Takes over the ticks of a file, whose own results are dropped.
void Load(BoardSession& session, CBackplaneTestDoc& document, const std::string& path) {
    if (path.empty()) {
        return;
    }
    if (!document.OnOpenDocument(path)) {
        session.PrintMessages();
        throw ExitRequest{};
    }
    document.Results().clear();
    if (document.Table().data() != PciBackplaneTable().data()) {
        session.Status(path + " ticks signals by their names on a PCI bus; --list shows which");
    }
}

int RunBackplane(const BackplaneOptions& options) {
    if (!options.file.empty()) {
        static_cast<void>(OpenInput(options.file)); // fails before the board is asked
    }
    CheckFileBeside(options.output);
    BoardSession session(options.board);
    CBackplaneTestDoc document([&session] { return BackplaneTable(session.Link().Traits()); },
                               session.Boxes());
    Load(session, document, options.file);
    Tick(document, options.choice);
    Printer printer(options.board.json);
    if (options.choice.list) {
        return ListTicked(session, document, options.board.json, options.output);
    }
    Polls polls(session);
    BackplaneRun run(
        polls.Parts(), document, document.Table(),
        [&document](int row) { return document.IsEnabled(row); }, printer);
    run.sensitivity = options.sensitivity;
    run.Start();
    const WaitEnd end = polls.Follow(printer.output);
    if (polls.AreOn()) {
        run.Stop();
    }
    const bool failed = session.HadMessages();
    SaveChecks(session, document, options.output);
    if (end == WaitEnd::Interrupted) {
        session.Status(Printf("interrupted at signal %d", printer.signals));
    }
    if (polls.IsBoardLost()) {
        Fail("the board does not answer any more");
    }
    printer.output.Close();
    session.Status(Printf("%d signals, %d with faults", printer.signals, printer.faults));
    if (failed) {
        return ExitStatus::Failure;
    }
    if (printer.faults > 0) {
        return ExitStatus::NothingFound;
    }
    return end == WaitEnd::Done ? ExitStatus::Done : ExitStatus::Failure;
}

} // namespace

void AddBackplane(CLI::App& program) {
    const auto options = std::make_shared<BackplaneOptions>();
    CLI::App& command =
        AddCommand(program, "backplane", "looks for shorts and broken lines of a backplane",
                   [options] { return RunBackplane(*options); });
    CompletedWithFiles(Optional(AddOperand(command, "CHECKS.bpt", options->file)), ".bpt");
    AddBoardOptions(command, options->board);
    AddCheckChoice(command, options->choice);
    AddChoice<BackplaneSensitivity>(command, "--sensitivity",
                                    {{"normal", BackplaneSensitivity::Normal},
                                     {"high", BackplaneSensitivity::High},
                                     {"low", BackplaneSensitivity::Low}},
                                    options->sensitivity, "LEVEL",
                                    "to shorts: normal, high or low (default normal)");
    CompletedWithFiles(AddText(command, "-o,--output", options->output, "FILE",
                               "keep what was chosen and the results (.bpt)"),
                       ".bpt");
}

} // namespace busquill::cli::board
