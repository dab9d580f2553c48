// The query of the manual's chapter on many captures, as it stands there.

#include "support/manual_page.h"
#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <tuple>

namespace busquill::test {
namespace {

constexpr const char* page = "many-captures.md";

class TransactionQuery : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(dir.File("captures"));
        dir.Write("retries.sql", BlockOfManual(page, "sql"));
    }
    /// Runs a script of the shell that finds busquill-trace.
    ProgramRun Shell(const std::string& script) {
        const std::string program = TraceProgramPath();
        const char* const path = std::getenv("PATH");
        return RunSystemProgram(
            "/bin/sh", {"-e", dir.Write("script.sh", script)},
            {.folder = dir.Path(),
             .environment = {{"PATH", program.substr(0, program.rfind('/')) + ":" +
                                          (path != nullptr ? path : "")}}});
    }

    const TempDir dir;
};

TEST_F(TransactionQuery, OfTheManualHasTheResultThatStandsThere) {
    for (const char* name : {"Trigger1.tra", "Trigger2.tra"}) {
        std::filesystem::copy(SourceFile(std::string("data/") + name),
                              dir.File(std::string("captures/") + name));
    }
    const ProgramRun run = Shell(BlockOfManual(page, "sh"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out, "");
    EXPECT_EQ(run.out, BlockOfManual(page, "text"));
}

/// A row of the query's result.
struct Answer {
    std::string file;
    std::uint64_t transactions = 0;
    std::uint64_t bytes = 0;
    std::uint64_t retries = 0;
    std::uint64_t longest = 0;

    [[nodiscard]] std::string AsLine() const {
        std::ostringstream line;
        line << file << ", " << transactions << ", " << bytes << ", " << retries << ", " << longest
             << '\n';
        return line.str();
    }
};

/// The answer from what the generator has written down about the transactions that it made.
Answer AnswerOf(const std::string& file, const std::string& transactions) {
    constexpr std::size_t commandCell = 3;
    constexpr std::size_t bytesCell = 6;
    constexpr std::size_t latencyCell = 9;
    constexpr std::size_t endCell = 10;
    Answer answer{.file = file};
    std::istringstream lines(transactions);
    std::string line;
    std::getline(lines, line); // titles
    while (std::getline(lines, line)) {
        std::vector<std::string> cells;
        std::istringstream stream(line);
        for (std::string cell; std::getline(stream, cell, ',');) {
            cells.push_back(cell);
        }
        if (!cells.at(commandCell).starts_with("Mem")) {
            continue;
        }
        ++answer.transactions;
        answer.bytes += std::stoull(cells.at(bytesCell));
        answer.retries += cells.at(endCell) == "retry" ? 1 : 0;
        if (!cells.at(latencyCell).empty()) {
            answer.longest =
                std::max<std::uint64_t>(answer.longest, std::stoull(cells.at(latencyCell)));
        }
    }
    return answer;
}

TEST_F(TransactionQuery, AnswersFromTheTransactionsThatWereMade) {
    std::vector<Answer> wanted;
    for (int seed = 1; seed <= 4; ++seed) {
        const std::string file = "captures/" + std::to_string(seed) + ".tra";
        const ProgramRun made =
            RunSystemProgram(BoardSimulator(),
                             {"record", "--family", "pci32", "--samples",
                              std::to_string(5000 * seed), "--seed", std::to_string(seed), "--gaps",
                              "10", "--transactions", dir.File("made.csv"), "-o", dir.File(file)});
        ASSERT_EQ(made.status, 0) << made.err;
        wanted.push_back(AnswerOf(file, ReadWholeFile(dir.File("made.csv"))));
        ASSERT_GT(wanted.back().retries, 5U);
        ASSERT_GT(wanted.back().longest, 0U);
    }
    std::ranges::sort(wanted, [](const Answer& a, const Answer& b) {
        return std::tie(b.retries, a.file) < std::tie(a.retries, b.file);
    });
    std::string lines = "file, transactions, bytes, retries, longest\n";
    for (const Answer& each : wanted) {
        lines += each.AsLine();
    }
    const ProgramRun run = Shell(BlockOfManual(page, "sh"));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, lines);
}

} // namespace
} // namespace busquill::test
