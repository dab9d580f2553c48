// The board as a master: a form, fields of which the options override.

#include "cli/board/check_form.h"
#include "cli/board/commands.h"
#include "cli/board/master_runner.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/input.h"
#include "cli/json.h"
#include "cli/temporary_file.h"
#include "exerciser/master_document.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

struct MasterOptions {
    BoardOptions board;
    std::string form;
    std::optional<MasterCommand> command;
    std::string space;
    std::optional<std::uint64_t> from;
    std::optional<std::uint64_t> to;
    std::optional<std::uint64_t> value;
    std::string data; // a file; "-" is standard input or output
    std::optional<std::int64_t> repeat;
    std::optional<Milliseconds> limit;
};

void Override(MasterForm& form, const MasterFamily& family, const MasterOptions& options) {
    form.command = options.command.value_or(static_cast<MasterCommand>(form.command));
    if (!options.space.empty()) {
        SetSpace(form, family, options.space);
    }
    if (options.from) {
        form.addressStart = AddressOf(*options.from);
    }
    if (options.to) {
        form.addressEnd = AddressOf(*options.to);
    }
    if (options.value) {
        form.dataType = DataIsValue;
        form.dataValue = AddressOf(*options.value);
    }
    if (!options.data.empty()) {
        form.dataType = DataIsFile;
        form.dataFilename = options.data;
    }
    if (options.repeat) {
        form.repeat = std::to_string(*options.repeat);
    }
}

/// Standard input as a data file, which a run reads by its name.
std::unique_ptr<TemporaryFile> StandardInput() {
    auto copy = std::make_unique<TemporaryFile>(".dat");
    TextWriter file;
    if (!file.Create(copy->Path())) {
        Fail("Error creating file " + copy->Path() + ".");
    }
    std::array<char, 65536> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), stdin)) {
        file.Write({bytes.data(), count});
    }
    if (std::ferror(stdin) != 0 || !file.Close()) {
        Fail("standard input cannot be read");
    }
    return copy;
}

std::string ResultAsJson(const MasterForm& form, const MasterRunner& runner) {
    nlohmann::ordered_json failed = nlohmann::ordered_json::array();
    for (const FailedStep& step : runner.Failed()) {
        failed.push_back(
            {{"address", Printf("%08llx", static_cast<unsigned long long>(step.address))},
             {"status", step.status}});
    }
    nlohmann::ordered_json result = {{"command", TextInList(masterCommands, form.command)},
                                     {"steps", runner.Steps()},
                                     {"failedSteps", runner.FailedCount()},
                                     {"failed", failed}};
    if (form.command == MasterRead) {
        result["data"] = HexText(runner.Memory());
    }
    return JsonLine(result);
}

int RunMaster(const MasterOptions& options) {
    CheckForm<CMasterDoc>(options.form);
    BoardSession session(options.board);
    CMasterDoc document([&session] { return session.Link().Traits(); }, session.Boxes());
    if (!document.OnOpenDocument(options.form)) {
        session.PrintMessages();
        return ExitStatus::Failure;
    }
    MasterForm& form = document.Form();
    Override(form, document.Family(), options);
    const bool isRead = form.command == MasterRead;
    const bool isFile = form.dataType == DataIsFile;
    const bool isStandard = isFile && form.dataFilename == "-";
    std::unique_ptr<TemporaryFile> input;
    if (isStandard && isRead) {
        form.dataType = DataIsValue;
    } else if (isStandard) {
        input = StandardInput();
        form.dataFilename = input->Path();
    }
    LineOutput output;
    MasterRunner runner(session, form, output,
                        !isRead || options.board.json ? MemoryForm::Nothing
                        : isStandard                  ? MemoryForm::DataFile
                        : isFile                      ? MemoryForm::Nothing
                                                      : MemoryForm::Dump,
                        StepLines::All);
    session.SetLimit(options.limit);
    const WaitEnd end = runner.Run();
    if (options.board.json) {
        output.Print(ResultAsJson(form, runner));
    }
    output.Close();
    return MasterStatus(session, runner, end);
}

void AddCommandFlags(CLI::App& command, std::optional<MasterCommand>& into) {
    struct Row {
        const char* name;
        MasterCommand command;
        const char* help;
    };
    const Row rows[] = {
        {"--read", MasterRead, "read the range"},
        {"--write", MasterWrite, "write the data"},
        {"--verify", MasterVerify, "verify the range with the data"},
        {"--test", MasterTest, "test the memory of the range"},
        {"--compare", MasterCompare, "compare the range with the data"},
    };
    std::vector<CLI::Option*> before;
    for (const Row& row : rows) {
        CLI::Option& option = AddFlag(
            command, row.name, [&into, value = row.command] { into = value; }, row.help);
        for (CLI::Option* other : before) {
            Excluding(option, *other);
        }
        before.push_back(&option);
    }
}

} // namespace

void AddMaster(CLI::App& program) {
    const auto options = std::make_shared<MasterOptions>();
    CLI::App& command = AddCommand(program, "master", "runs the board as a master on the bus",
                                   [options] { return RunMaster(*options); });
    constexpr std::uint64_t any = ~std::uint64_t{0};
    CompletedWithFiles(AddOperand(command, "FORM.mst", options->form), ".mst");
    AddBoardOptions(command, options->board);
    AddAnswers(command, options->board);
    AddCommandFlags(command, options->command);
    AddText(command, "--space", options->space, "SPACE",
            "Memory, I/O or Config; Sys, I/O or Alt on VSB; the address modifier on VME");
    AddHexNumber(
        command, "--from", [options](std::uint64_t number) { options->from = number; }, "ADDRESS",
        any, "begin the range here");
    AddHexNumber(
        command, "--to", [options](std::uint64_t number) { options->to = number; }, "ADDRESS", any,
        "the last address of the range");
    CLI::Option& value = AddHexNumber(
        command, "--value", [options](std::uint64_t number) { options->value = number; }, "VALUE",
        any, "the data are this value");
    CLI::Option& data =
        AddText(command, "--data", options->data, "FILE",
                "the data are in a file, or go there (.dat); - is standard input or output");
    CompletedWithFiles(Excluding(data, value), ".dat");
    AddNumber(command, "--repeat", options->repeat, "N",
              {.least = 1, .most = 2147483647, .are = "a number of passes from 1 up"},
              "go through the range N times");
    AddLimit(command, options->limit);
}

} // namespace busquill::cli::board
