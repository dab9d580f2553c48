// Memory of the bus, read by the board as a master.

#include "cli/board/commands.h"
#include "cli/board/master_runner.h"
#include "cli/board/output_file.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/exit_request.h"
#include "cli/json.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

namespace busquill::cli::board {

namespace {

/// A run keeps no more; the range is read in so many.
constexpr std::uint64_t bytesOfARun = ReadMemory::limit - ReadMemory::limit % masterStepLimit;

struct DumpOptions {
    BoardOptions board;
    std::string space;
    std::string from;
    std::string to; // the last address
    std::optional<Milliseconds> limit;
    bool bytes = false;
    std::string output;
};

int RunDump(const DumpOptions& options) {
    const std::uint64_t from = HexOperand("FROM", options.from);
    const std::uint64_t to = HexOperand("TO", options.to);
    if (to < from) {
        WrongUse("TO is the last address, not below FROM; not \"" + options.to + "\"");
    }
    CheckFolderOf(options.output);
    BoardSession session(options.board);
    MasterForm form;
    SetSpace(form, MasterFamilyOf(session.Link().Traits()), options.space);
    form.addressSize = to > std::numeric_limits<std::uint32_t>::max() ? 3 : 2;
    LineOutput output(options.output);
    MasterRunner runner(session, form, output,
                        options.board.json ? MemoryForm::Nothing
                        : options.bytes    ? MemoryForm::Bytes
                                           : MemoryForm::Dump,
                        StepLines::Failed);
    session.SetLimit(options.limit);
    if (options.board.json) {
        output.Write(Printf(R"({"space": %s, "from": "%08llx", "data": ")",
                            JsonLine(JsonString(options.space)).c_str(),
                            static_cast<unsigned long long>(from)));
    }
    WaitEnd end = WaitEnd::Done;
    for (std::uint64_t at = from;; at += bytesOfARun) {
        const bool isLast = to - at < bytesOfARun;
        form.addressStart = AddressOf(at);
        form.addressEnd = AddressOf(isLast ? to : at + bytesOfARun - 1);
        end = runner.Run();
        if (options.board.json) {
            output.Write(HexText(runner.Memory()));
        }
        if (isLast || end != WaitEnd::Done || session.HadMessages() || !output.IsOpen()) {
            break;
        }
    }
    if (options.board.json) {
        output.Write("\"}\n");
    }
    output.Close();
    return MasterStatus(session, runner, end);
}

} // namespace

void AddDump(CLI::App& program) {
    const auto options = std::make_shared<DumpOptions>();
    CLI::App& command = AddCommand(program, "dump", "memory of the bus, read as a master",
                                   [options] { return RunDump(*options); });
    AddOperand(command, "SPACE", options->space);
    AddOperand(command, "FROM", options->from);
    AddOperand(command, "TO", options->to);
    AddBoardOptions(command, options->board);
    AddLimit(command, options->limit);
    Excluding(AddFlag(command, "--bytes", options->bytes, "the bytes as they are"),
              OptionOf(command, "--json"));
    CompletedWithFiles(AddText(command, "-o,--output", options->output, "FILE", "write to FILE"));
}

} // namespace busquill::cli::board
