// busquill-trace transactions, compared with what the simulated board's generator wrote down while
// it made the samples.

#include "support/paths.h"
#include "support/sanitizers.h"
#include "support/temp_dir.h"
#include "support/trace_program.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <optional>
#include <ostream>
#include <sstream>

namespace busquill::test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct FamilyCase {
    const char* family;
    std::vector<std::string> bus;
    std::vector<std::string> ends; // that the traffic must contain
};
void PrintTo(const FamilyCase& family, std::ostream* out) {
    *out << family.family;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> CellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream stream(line);
    for (std::string cell; std::getline(stream, cell, ',');) {
        cells.push_back(cell);
    }
    return cells;
}

/// Counts the lines of the table by one of its cells.
std::map<std::string, int> CountBy(const std::vector<std::string>& lines, std::size_t cell) {
    std::map<std::string, int> counts;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        ++counts[CellsOf(lines[i]).at(cell)];
    }
    return counts;
}

constexpr std::size_t commandCell = 3;
constexpr std::size_t addressCell = 4;
constexpr std::size_t bytesCell = 6;
constexpr std::size_t endCell = 10;
constexpr std::size_t splitCell = 13;

/// Counts the lines with this command and end, and with this address if one is given.
int CountOf(const std::vector<std::string>& lines, const std::string& command,
            const std::string& end, const std::optional<std::string>& address = {}) {
    return static_cast<int>(std::ranges::count_if(lines, [&](const std::string& line) {
        const auto cells = CellsOf(line);
        return cells.at(commandCell) == command && cells.at(endCell) == end &&
               (!address || cells.at(addressCell) == *address);
    }));
}

class GeneratedTransactions : public testing::TestWithParam<FamilyCase> {
protected:
    /// Records samples and returns what the generator wrote down.
    std::vector<std::string> Record(int samples, int gaps, int seed) {
        const ProgramRun run = RunSystemProgram(
            BoardSimulator(),
            {"record", "--family", GetParam().family, "--samples", std::to_string(samples),
             "--seed", std::to_string(seed), "--gaps", std::to_string(gaps), "--transactions",
             dir.File("wanted.csv"), "-o", dir.File("capture.tra")});
        EXPECT_EQ(run.status, 0) << run.err;
        return LinesOf(ReadWholeFile(dir.File("wanted.csv")));
    }
    ProgramRun Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin() + 1, dir.File("capture.tra"));
        arguments.insert(arguments.end(), GetParam().bus.begin(), GetParam().bus.end());
        return RunTrace(arguments);
    }
    void ExpectSame(const std::vector<std::string>& wanted) {
        const ProgramRun run = Run({"transactions", "--format", "csv", "--words", "100000"});
        EXPECT_EQ(run.status, 0) << run.err;
        const std::vector<std::string> found = LinesOf(run.out);
        for (std::size_t i = 0; i < std::min(wanted.size(), found.size()); ++i) {
            ASSERT_EQ(found[i], wanted[i]);
        }
        ASSERT_EQ(found.size(), wanted.size());
    }

    const TempDir dir;
};

TEST_P(GeneratedTransactions, AreFoundAsTheyWereMade) {
    const int samples = livesOnAddresses ? 100000 : 1000000; // a sanitizer takes its time
    const auto wanted = Record(samples, 0, 7);
    ASSERT_GT(wanted.size(), static_cast<std::size_t>(samples / 25));
    ExpectSame(wanted);
    const auto ends = CountBy(wanted, endCell);
    for (const std::string& end : GetParam().ends) {
        EXPECT_GT(ends.contains(end) ? ends.at(end) : 0, 50) << end;
    }
    EXPECT_FALSE(ends.contains("unknown"));
    if (GetParam().bus.back().starts_with("VME")) {
        EXPECT_GT(CountBy(wanted, commandCell)["A32 NON PRVL DATA RMW"], samples / 20000);
        const int few = samples / 50000; // refused in the first phase of the address
        EXPECT_GT(CountOf(wanted, "2eVME/2eSST(6U) Wr", "retry", ""), few);
        EXPECT_GT(CountOf(wanted, "2eVME/2eSST(6U) Wr", "bus-error", ""), few);
    }
    if (GetParam().bus[1] == "PCI-X") {
        EXPECT_GT(CountOf(wanted, "I/O Wr", "split-response"), 50);
        EXPECT_GT(CountOf(wanted, "Mem Wr Blk", "disconnect-with-data"), 50);
    } else if (GetParam().bus[1] == "PCI") {
        EXPECT_GT(CountOf(wanted, "Int Ack", "complete", ""), 50) << "without an address";
    }
}

TEST_P(GeneratedTransactions, AreNotInventedWhereSamplesAreMissing) {
    for (const int seed : {1, 2, 3, 4}) {
        const auto wanted = Record(20000, 300, seed);
        EXPECT_GT(CountBy(wanted, endCell)["unknown"], 50);
        EXPECT_GT(CountBy(wanted, commandCell)[""], 20); // without a beginning
        ExpectSame(wanted);
    }
    // An address of which a part is missing is no empty text.
    EXPECT_THAT(Run({"transactions", "--json"}).out, Not(HasSubstr("\"address\": \"\"")));
}

TEST_P(GeneratedTransactions, AddUpToTheStatistics) {
    const auto wanted = Record(20000, 50, 5);
    const std::string stats = Run({"stats"}).out;
    std::uint64_t transactions = 0;
    std::uint64_t bytes = 0;
    std::map<std::string, std::uint64_t> ends;
    for (std::size_t i = 1; i < wanted.size(); ++i) {
        const auto cells = CellsOf(wanted[i]);
        const bool isHeadless = cells.at(commandCell).empty();
        transactions += isHeadless ? 0 : 1;
        ends[cells.at(endCell)] += isHeadless ? 0 : 1;
        bytes += std::stoull(cells.at(bytesCell));
    }
    const auto expectLine = [&](std::string title, std::uint64_t count) {
        title.resize(25, ' ');
        EXPECT_THAT(stats, HasSubstr(title + std::to_string(count) + "\n"));
    };
    expectLine("Transactions:", transactions);
    expectLine("Bytes:", bytes);
    expectLine("Retries:", ends["retry"]);
    expectLine("Disconnects:", ends["disconnect-with-data"] + ends["disconnect-without-data"]);
    expectLine("Master aborts:", ends["master-abort"]);
    if (stats.find("Target aborts:") != std::string::npos) {
        expectLine("Target aborts:", ends["target-abort"]);
        expectLine("Split responses:", ends["split-response"]);
    } else {
        expectLine("Bus errors:", ends["bus-error"]);
    }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Families, GeneratedTransactions, testing::Values(
    FamilyCase{"pci32", {"--bus", "PCI"}, {"complete", "retry", "disconnect-with-data", "disconnect-without-data", "target-abort", "master-abort"}},
    FamilyCase{"pci64", {"--bus", "PCI", "--width", "64"}, {"complete", "retry", "disconnect-with-data", "disconnect-without-data", "target-abort", "master-abort"}},
    FamilyCase{"pcix", {"--bus", "PCI-X", "--width", "64"}, {"complete", "retry", "disconnect-with-data", "target-abort", "master-abort", "split-response"}},
    FamilyCase{"vme", {"--model", "VMEKite", "--bus", "VME"}, {"complete", "retry", "disconnect-with-data", "bus-error", "master-abort"}},
    FamilyCase{"lark", {"--model", "VMELark"}, {"complete", "retry", "disconnect-with-data", "bus-error", "master-abort"}},
    FamilyCase{"vsb", {"--bus", "VSB"}, {"complete", "bus-error", "master-abort"}}),
    [](const auto& each) { return each.param.family; });
// clang-format on

class SplitTransactions : public GeneratedTransactions {};
INSTANTIATE_TEST_SUITE_P(PciX, SplitTransactions,
                         testing::Values(FamilyCase{"pcix", {"--bus", "PCI-X"}, {}}));

TEST_P(SplitTransactions, ArePairedWithTheirCompletions) {
    const auto wanted = Record(20000, 0, 6);
    int paired = 0;
    int split = 0;
    for (std::size_t i = 1; i < wanted.size(); ++i) {
        const auto cells = CellsOf(wanted[i]);
        paired += cells.at(splitCell).empty() ? 0 : 1;
        split += cells.at(endCell) == "split-response" ? 1 : 0;
    }
    EXPECT_GT(paired, 100);
    EXPECT_GT(split, 80);
    ExpectSame(wanted);
}

TEST(RecordedTransactions, NeedAFamilyThatHasThem) {
    const TempDir dir;
    const ProgramRun run =
        RunSystemProgram(BoardSimulator(), {"record", "--family", "p2", "--transactions",
                                            dir.File("a.csv"), "-o", dir.File("a.tra")});
    EXPECT_EQ(run.status, 2);
}

} // namespace
} // namespace busquill::test
