#pragma once

#include "support/board_process.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace busquill::test {

/// A program of the command line and the simulated board as two processes on the ends of a pseudo
/// terminal.
class ProgramOverWire : public testing::Test {
protected:
    void StartBoard(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--baud", "9600"}); // the first rate that is probed
        board = std::make_unique<BoardProcess>(std::move(options));
        ASSERT_FALSE(board->Terminal().empty());
    }
    /// The words of a command, with the board's port.
    [[nodiscard]] std::vector<std::string> OnBoard(std::vector<std::string> words) const {
        words.insert(words.begin() + 1, {"--port", board->Terminal(), "--baud", "9600"});
        return words;
    }
    /// The number of logged functions whose line contains `words`.
    [[nodiscard]] std::ptrdiff_t Asked(const std::string& words) const {
        const auto functions = board->Functions();
        return std::ranges::count_if(functions, [&](const std::string& line) {
            return line.find(words) != std::string::npos;
        });
    }

    std::unique_ptr<BoardProcess> board;
    TempDir temporary; // for the temporary files of the program
};

} // namespace busquill::test
