// Every option of every command of both programs, as the programs themselves list them, with a
// value that is empty and with one that makes no sense.

#include "cli/board/program.h"
#include "cli/command_line.h"
#include "cli/command_options.h"
#include "cli/program.h"
#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>
#include <map>
#include <set>

namespace busquill::test {
namespace {

using cli::CommandsOf;
using cli::Completion;
using cli::OperandsOf;
using cli::OptionsOf;
using testing::HasSubstr;
using testing::StartsWith;

struct Program {
    std::shared_ptr<CLI::App> table;
    ProgramRun (*run)(const std::vector<std::string>&, const ProgramInput&);
};

class EveryOption : public testing::Test {
protected:
    /// Calls `use` with each command and each of its options that takes a value.
    template <typename Use>
    void ForEach(Use use) {
        for (const Program& program : programs) {
            for (CLI::App* command : CommandsOf(*program.table)) {
                for (CLI::Option* option : OptionsOf(*command)) {
                    if (!cli::ValueName(*option).empty()) {
                        use(program, *command, *option);
                    }
                }
            }
        }
    }
    /// Runs the command with all that it needs, and the option with this value. Returns the line
    /// that says what is wrong with it.
    [[nodiscard]] std::string Complaint(const Program& program, CLI::App& command,
                                        const CLI::Option& option, const std::string& value) const {
        const std::string name = "--" + cli::LongName(option);
        std::vector<std::string> words = {command.get_name(), name + "=" + value};
        for (const CLI::Option* each : OptionsOf(command)) {
            if (each->get_required() && each != &option) {
                words.push_back("--" + cli::LongName(*each));
                words.push_back(needed.at(words.back()));
            }
        }
        for (const CLI::Option* operand : OperandsOf(command)) {
            if (operand->get_required()) {
                const auto found = needed.find(operand->get_name(true));
                words.push_back(found != needed.end() ? found->second : "file");
            }
        }
        const ProgramRun run = program.run(words, {.folder = dir.Path()});
        const std::string shown = testing::PrintToString(words);
        EXPECT_EQ(run.status, 2) << shown << run.err;
        EXPECT_EQ(run.out, "") << shown;
        EXPECT_THAT(run.err, StartsWith(program.table->get_name() + ": ")) << shown;
        EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << shown;
        return run.err;
    }

    const Program programs[2] = {{cli::MakeTraceProgram(), RunTrace},
                                 {cli::board::MakeBoardProgram(), RunBoard}};
    const std::string capture = SourceFile("data/Trigger1.tra");
    const std::map<std::string, std::string> needed = {
        {"--port", "COM1"},
        {"--output", "out.vcd"},
        {"--pattern", "FRAME=0"},
        {"--setup", SourceFile("data/MemoryWrite.tsp")},
        {"FILE", capture},
        {"A", capture},
        {"B", capture},
        {"TYPE", "latency"},
        {"SPACE", "memory"},
        {"FROM", "0"},
        {"TO", "f"}};
    const TempDir dir;
};

TEST_F(EveryOption, RefusesAnEmptyValue) {
    int count = 0;
    ForEach([&](const Program& program, CLI::App& command, const CLI::Option& option) {
        EXPECT_THAT(Complaint(program, command, option, ""),
                    HasSubstr(": --" + cli::LongName(option) + " "));
        ++count;
    });
    EXPECT_GT(count, 100);
}

TEST_F(EveryOption, NamesAValueThatMakesNoSense) {
    // Values that only a board can check are tried with one, in the tests of those commands. So is
    // the port, which is opened after the command's files.
    const std::set<std::string> triedElsewhere = {"--space", "--only", "--without", "--port",
                                                  "--stop-if-found"};
    int count = 0;
    ForEach([&](const Program& program, CLI::App& command, CLI::Option& option) {
        const bool isFile = cli::CompletionOf(option).kind == Completion::Kind::Files;
        if (!isFile && !triedElsewhere.contains("--" + cli::LongName(option))) {
            EXPECT_THAT(Complaint(program, command, option, "~?~"), HasSubstr("~?~"));
            ++count;
        }
    });
    EXPECT_GT(count, 60);
}

} // namespace
} // namespace busquill::test
