#pragma once

#include "support/paths.h"
#include "support/program_over_wire.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace busquill::test {

/// busquill-board and the simulated board.
class BoardProgramOverWire : public ProgramOverWire {
protected:
    /// Runs a command with the board, in the folder `files` unless the input names another.
    ProgramRun Run(const std::vector<std::string>& arguments, ProgramInput input = {}) const {
        input.folder = input.folder.empty() ? files.Path() : input.folder;
        input.temporaryFolder = temporary.Path();
        return RunBoard(OnBoard(arguments), input);
    }
    /// Runs a command that is wrong before any board is looked for.
    ProgramRun RunWithoutBoard(const std::vector<std::string>& arguments) const {
        return RunBoard(arguments, {.folder = files.Path()});
    }
    /// Expects a wrong use, which is reported in one line.
    void ExpectWrongUse(const std::vector<std::string>& arguments, const std::string& says) const {
        const ProgramRun run = RunWithoutBoard(arguments);
        EXPECT_EQ(run.status, 2) << says;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, Line(says));
    }
    static std::vector<std::string> LinesOf(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    static std::string Line(const std::string& text) { return "busquill-board: " + text + "\n"; }

    /// The condition that the board has logged such functions at least `times` times.
    [[nodiscard]] std::function<bool()> Has(const std::string& words,
                                            std::ptrdiff_t times = 1) const {
        return [this, words, times] { return Asked(words) >= times; };
    }

    TempDir files;
};

} // namespace busquill::test
