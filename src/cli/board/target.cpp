// The board as a target on the bus.

#include "cli/board/board_session.h"
#include "cli/board/check_form.h"
#include "cli/board/commands.h"
#include "cli/board/line_output.h"
#include "cli/board/output_file.h"
#include "cli/board/polls.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/output.h"
#include "exerciser/target_document.h"
#include "exerciser/target_run.h"
#include "platform/text.h"

#include <filesystem>
#include <memory>

namespace busquill::cli::board {

namespace {

struct TargetOptions {
    BoardOptions board;
    std::string form;
    std::optional<std::uint64_t> base;
    std::optional<std::int64_t> waitStates;
    std::optional<std::size_t> response; // in targetResponses
    std::optional<std::uint64_t> from;
    std::optional<std::uint64_t> to;
    std::optional<std::uint64_t> value;
    std::string fill; // data files
    std::string read;
    std::optional<Milliseconds> limit;
};

void Override(TargetForm& form, const TargetOptions& options) {
    if (options.base) {
        form.busStart = AddressOf(*options.base);
    }
    form.waitStates = static_cast<std::int32_t>(options.waitStates.value_or(form.waitStates));
    if (options.response) {
        form.response = static_cast<std::int32_t>(*options.response);
    }
    if (options.from) {
        form.addressStart = AddressOf(*options.from);
    }
    if (options.to) {
        form.addressEnd = AddressOf(*options.to);
    }
    if (options.value) {
        form.dataValue = AddressOf(*options.value);
    }
}

/// What the command does with the board: fill, answer the bus, read. The target is off before and
/// after it answers, so that the bus meets no memory that is half filled.
class Target final : private ExerciserObserver {
public:
    Target(BoardSession& session, TargetForm& form)
        : session_(session), form_(form), polls_(session), run_(polls_.Parts(), form, *this) {}

    /// Fills the range from a file, or with the form's value if there is none. Throws ExitRequest
    /// on a failure.
    void Fill(const std::string& path) {
        form_.command = TargetWrite;
        form_.dataType = path.empty() ? DataIsValue : DataIsFile;
        form_.dataFilename = path;
        run_.Go();
        if (!run_.IsOn()) {
            session_.PrintMessages();
            Fail("the target's memory was not filled");
        }
        const WaitEnd end = polls_.Follow(output_);
        if (end == WaitEnd::Interrupted) {
            Fail("interrupted; the target's memory is filled in part");
        }
        if (session_.HadMessages()) {
            Fail("the target's memory was not filled");
        }
    }

    /// Answers the bus until the end that the user asks for.
    void Answer() {
        Enable(true);
        if (session_.HadMessages()) {
            Enable(false);
            Fail("the board has not taken the setup");
        }
        session_.Status("the target is enabled");
        end_ = session_.WaitUntil([this] { return session_.Link().IsBoardGone(); });
    }

    /// Disables the target, and reads the range into a file. What was read of it is kept.
    void End(const std::string& path) {
        form_.enabled = false;
        if (path.empty()) {
            Enable(false);
            return;
        }
        const std::string part = path + ".part"; // takes the place of the old file when complete
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
        form_.command = TargetRead;
        form_.dataType = DataIsFile;
        form_.dataFilename = part;
        run_.Go(); // its setup disables the target
        polls_.Finish();
        std::error_code failed;
        if (std::filesystem::exists(part, ignored)) {
            std::filesystem::rename(part, path, failed);
        }
        if (failed) {
            Fail(Printf("Error writing file %s.", path.c_str()));
        }
    }

    [[nodiscard]] WaitEnd AnswerEnd() const noexcept { return end_; }
    [[nodiscard]] std::size_t BytesRead() const {
        return run_.Memory() != nullptr ? run_.Memory()->Bytes().size() : 0;
    }

private:
    void OnRunning(bool /*running*/) override {}
    void OnMemoryChanged() override {}

    void Enable(bool enabled) {
        form_.enabled = enabled;
        run_.SendSetup(); // reports its failure
        session_.PrintMessages();
    }

    BoardSession& session_;
    TargetForm& form_;
    const LineOutput output_;
    Polls polls_;
    TargetRun run_;
    WaitEnd end_ = WaitEnd::Done;
};

/// The data file of a read is not made before the end, too late for a question.
void AskToReplace(BoardSession& session, const std::string& path) {
    std::error_code unknown;
    if (!path.empty() && std::filesystem::exists(path, unknown) &&
        !session.Boxes().AskYesNo("File already exists. Overwrite?")) {
        Fail(path + " is kept; nothing was done");
    }
}

int RunTarget(const TargetOptions& options) {
    CheckForm<CTargetDoc>(options.form);
    if (!options.fill.empty()) {
        static_cast<void>(OpenInput(options.fill));
    }
    CheckFileBeside(options.read);
    BoardSession session(options.board);
    CTargetDoc document([&session] { return session.Link().Traits(); }, session.Boxes());
    if (!document.OnOpenDocument(options.form)) {
        session.PrintMessages();
        return ExitStatus::Failure;
    }
    TargetForm& form = document.Form();
    Override(form, options);
    if (NumberOf(form.addressEnd) < NumberOf(form.addressStart)) {
        Fail("End Address must be >= Start Address.");
    }
    AskToReplace(session, options.read);
    Target target(session, form);
    if (!options.fill.empty() || options.value) {
        target.Fill(options.fill);
    }
    session.SetLimit(options.limit);
    target.Answer();
    target.End(options.read);
    const bool failed = session.HadMessages() || session.Link().IsBoardGone();
    const bool interrupted = target.AnswerEnd() == WaitEnd::Interrupted;
    if (options.board.json) {
        LineOutput output;
        output.Print(Printf(R"({"end": "%s", "read": %zu})",
                            interrupted ? "interrupted" : "time over", target.BytesRead()));
        output.Close();
    }
    if (!options.read.empty()) {
        session.Status(Printf("%s: %zu bytes", options.read.c_str(), target.BytesRead()));
    }
    if (failed) {
        Fail("the board does not answer as it should");
    }
    session.Status(std::string(interrupted ? "interrupted" : "the time is over") +
                   "; the target is disabled");
    return ExitStatus::Done;
}

} // namespace

void AddTarget(CLI::App& program) {
    const auto options = std::make_shared<TargetOptions>();
    CLI::App& command = AddCommand(program, "target", "has the board answer as a target on the bus",
                                   [options] { return RunTarget(*options); });
    constexpr std::uint64_t any = ~std::uint64_t{0};
    const auto address = [&](const char* name, std::optional<std::uint64_t>& into,
                             const char* value, const char* help) -> CLI::Option& {
        return AddHexNumber(
            command, name, [&into](std::uint64_t number) { into = number; }, value, any, help);
    };
    CompletedWithFiles(AddOperand(command, "FORM.tgt", options->form), ".tgt");
    AddBoardOptions(command, options->board);
    AddAnswers(command, options->board);
    address("--base", options->base, "ADDRESS", "where on the bus the board answers");
    AddNumber(command, "--wait-states", options->waitStates, "N",
              {.least = 0, .most = targetWaitStates - 1, .are = "a number from 0 to 15"},
              "wait before each answer");
    std::vector<std::string> responses;
    responses.reserve(std::size(targetResponses));
    for (const std::string_view response : targetResponses) {
        responses.push_back(ToLower(response));
    }
    AddChoice(
        command, "--response", responses,
        [options](std::size_t index) { options->response = index; }, "RESPONSE",
        "normal, retry or disconnect");
    address("--from", options->from, "ADDRESS", "begin the range of memory here");
    address("--to", options->to, "ADDRESS", "the last address of the range");
    CLI::Option& value = address("--value", options->value, "VALUE", "fill the range with a value");
    CLI::Option& fill =
        AddText(command, "--fill", options->fill, "FILE", "fill the range from a file (.dat)");
    CompletedWithFiles(Excluding(fill, value), ".dat");
    CompletedWithFiles(AddText(command, "--read-into", options->read, "FILE",
                               "read the range at the end into a file (.dat)"),
                       ".dat");
    AddLimit(command, options->limit);
}

} // namespace busquill::cli::board
