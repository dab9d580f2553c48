#pragma once

#include "support/board_process.h"
#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace busquill::test {

/// busquill-board and the simulated board as two processes on the ends of a pseudo terminal.
class BoardProgramOverWire : public testing::Test {
protected:
    void StartBoard(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--baud", "9600"}); // the first rate that is probed
        board = std::make_unique<BoardProcess>(std::move(options));
        ASSERT_FALSE(board->Terminal().empty());
    }
    /// Runs a command with the board, in the folder `files` unless the input names another.
    ProgramRun Run(std::vector<std::string> arguments, ProgramInput input = {}) const {
        arguments.insert(arguments.begin() + 1, {"--port", board->Terminal(), "--baud", "9600"});
        input.folder = input.folder.empty() ? files.Path() : input.folder;
        input.temporaryFolder = temporary.Path();
        return RunBoard(arguments, input);
    }
    /// Runs a command that is wrong before any board is looked for.
    ProgramRun RunWithoutBoard(const std::vector<std::string>& arguments) const {
        return RunBoard(arguments, {.folder = files.Path()});
    }
    /// Expects a wrong use, which is told in one line.
    void ExpectWrongUse(const std::vector<std::string>& arguments, const std::string& says) const {
        const ProgramRun run = RunWithoutBoard(arguments);
        EXPECT_EQ(run.status, 2) << says;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, Line(says));
    }
    static std::string Line(const std::string& text) { return "busquill-board: " + text + "\n"; }

    /// The number of logged functions whose line contains `words`.
    [[nodiscard]] std::ptrdiff_t Asked(const std::string& words) const {
        const auto functions = board->Functions();
        return std::ranges::count_if(functions, [&](const std::string& line) {
            return line.find(words) != std::string::npos;
        });
    }
    /// The condition that the board has logged such functions at least `times` times.
    [[nodiscard]] std::function<bool()> Has(const std::string& words,
                                            std::ptrdiff_t times = 1) const {
        return [this, words, times] { return Asked(words) >= times; };
    }

    std::unique_ptr<BoardProcess> board;
    TempDir files;
    TempDir temporary; // for the temporary files of the program
};

} // namespace busquill::test
