// busquill-board performance: readings as they come, and the file of the measurement.

#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::EndsWith;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class BoardProgramPerformance : public BoardProgramOverWire {
protected:
    /// The numbers after the time of each line of comma separated values, without the head.
    static std::vector<std::string> ValuesOf(const std::string& csv) {
        std::vector<std::string> lines = LinesOf(csv);
        lines.erase(lines.begin());
        for (std::string& line : lines) {
            line.erase(0, line.find(',') + 1);
        }
        return lines;
    }
    static constexpr auto readings = "address 748";
};

TEST_F(BoardProgramPerformance, PrintsALineForEachReading) {
    StartBoard();
    const ProgramRun run = Run({"performance", "transfer-rate", "--count", "3"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    const auto lines = LinesOf(run.out);
    ASSERT_THAT(lines, SizeIs(4));
    EXPECT_EQ(lines[0], "Time                     Cycle : All  GNT0 : All  GNT1 : All  GNT2 : All  "
                        "GNT3 : All");
    EXPECT_THAT(lines[3], MatchesRegex("20[0-9-]{8}T[0-9:]{8}\\.[0-9]{3}( +[0-9]+){5}"));
    EXPECT_EQ(lines[3].size(), lines[0].size());
    EXPECT_EQ(Asked("start performance"), 1);
    EXPECT_EQ(Asked("stop performance"), 1);
}

TEST_F(BoardProgramPerformance, TheRowsOfASetupFileAreCounted) {
    StartBoard();
    files.Write("writes.psu", "Version=1.00\nItem0=1\nCycle0=3\nItem5=1\nCycle5=3\nItem7=3\n");
    const ProgramRun run = Run({"performance", "Statistics", "writes.psu", "--csv", "--count", "2",
                                "--interval", "20ms", "-o", "run.per"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, Line("run.per: 2 readings"));
    const auto lines = LinesOf(run.out);
    ASSERT_THAT(lines, SizeIs(3));
    EXPECT_EQ(lines[0], "Time,Cycle : Mem Wr (A),Cycle : Mem Wr (F),Target Abort : All");
    EXPECT_THAT(lines[2], MatchesRegex("[^,]+,[0-9]+,[0-9]+,[0-9]+"));
    // The type, then for each row its addresses, cycle and item.
    EXPECT_THAT(board->Log(), testing::Contains(StartsWith(
                                  "host  04 00 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff 03 "
                                  "01 00")));
    const std::string file = ReadWholeFile(files.File("run.per"));
    EXPECT_THAT(file, StartsWith("\"FileType\",\"Performance File\"\r\n"));
    EXPECT_THAT(file, HasSubstr("\"SetupName\",\"writes\"\r\n\"UpdateInterval\",20\r\n"));
    EXPECT_THAT(file, HasSubstr("\"Number of Results\",2\r\n"));
    // The file holds what was printed.
    const std::string last = lines[2].substr(lines[2].find(',') + 1);
    EXPECT_THAT(file, HasSubstr("\r\n1, " + last.substr(0, last.find(',')) + ", "));
}

TEST_F(BoardProgramPerformance, PrintsJsonLinesUntilItsTimeIsOver) {
    StartBoard();
    const ProgramRun run =
        Run({"performance", "burst-distribution", "--json", "--interval", "100ms", "--for", "1s"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    const auto lines = LinesOf(run.out);
    EXPECT_THAT(lines.size(), testing::AllOf(Ge(3U), Lt(12U)));
    EXPECT_THAT(lines.front(), MatchesRegex(R"(\{"time": "[^"]+", "Cycle : All": [0-9]+, )"
                                            R"("Cycle : Mem": [0-9]+, "Cycle : I/O": [0-9]+, )"
                                            R"("Cycle : Cfg": [0-9]+\})"));
    EXPECT_EQ(Asked("stop performance"), 1);
}

TEST_F(BoardProgramPerformance, AReadingThatIsDueWhenTheTimeIsOverStillComes) {
    StartBoard();
    const ProgramRun one =
        Run({"performance", "latency", "--csv", "--interval", "1s", "--for", "1"});
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.err, "");
    // On a busy machine more than one may become due meanwhile.
    EXPECT_THAT(ValuesOf(one.out), SizeIs(testing::Ge(1U)));
    const ProgramRun some =
        Run({"performance", "latency", "--csv", "--interval", "300ms", "--for", "1s"});
    EXPECT_EQ(some.status, 0);
    EXPECT_THAT(ValuesOf(some.out), SizeIs(testing::Ge(3U)));
}

TEST_F(BoardProgramPerformance, NoReadingComesAfterTheLastThatWasAskedFor) {
    StartBoard();
    const ProgramRun run = Run(
        {"performance", "latency", "--csv", "--count", "4", "--interval", "1ms", "-o", "run.per"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(ValuesOf(run.out), SizeIs(4));
    EXPECT_EQ(run.err, Line("run.per: 4 readings"));
    EXPECT_THAT(ReadWholeFile(files.File("run.per")), HasSubstr("\"Number of Results\",4\r\n"));
}

TEST_F(BoardProgramPerformance, LinesComeAtOnceAndTheBoardIsStoppedWhenTheReaderHasGone) {
    StartBoard();
    const ProgramRun run =
        Run({"performance", "utilization", "--interval", "50ms"}, {.readAtMost = 300});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_GE(LinesOf(run.out).size(), 2U);
    EXPECT_EQ(Asked("stop performance"), 1);
}

TEST_F(BoardProgramPerformance, AnInterruptStopsTheBoardAndKeepsWhatCame) {
    StartBoard();
    const ProgramRun run = Run({"performance", "latency", "--csv", "-o", "night.per"},
                               {.interruptWhen = Has(readings, 4)});
    EXPECT_EQ(run.status, 0);
    const auto values = ValuesOf(run.out);
    ASSERT_THAT(values.size(), Ge(2U));
    EXPECT_EQ(run.err, Line("interrupted") +
                           Line("night.per: " + std::to_string(values.size()) + " readings"));
    EXPECT_EQ(Asked("stop performance"), 1);
    EXPECT_THAT(board->Functions().back(), HasSubstr("stop performance"));
    EXPECT_THAT(ReadWholeFile(files.File("night.per")),
                HasSubstr("\"Number of Results\"," + std::to_string(values.size()) + "\r\n"));
}

TEST_F(BoardProgramPerformance, QuietPrintsReadingsAlone) {
    StartBoard();
    const ProgramRun run =
        Run({"performance", "latency", "--quiet", "--count", "1", "-o", "run.per"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(LinesOf(run.out), SizeIs(2));
}

TEST_F(BoardProgramPerformance, ABoardThatGoesAwayEndsTheRunAndWhatCameIsKept) {
    StartBoard();
    bool gone = false;
    const ProgramRun run =
        Run({"performance", "latency", "--csv", "-o", "night.per"}, {.meanwhile = [&] {
                if (!gone && Asked(readings) >= 3) {
                    gone = true;
                    board->Unplug();
                }
            }});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, EndsWith(Line("the board does not answer any more")));
    const auto values = ValuesOf(run.out);
    EXPECT_THAT(values, Not(IsEmpty()));
    EXPECT_THAT(ReadWholeFile(files.File("night.per")),
                HasSubstr("\"Number of Results\"," + std::to_string(values.size()) + "\r\n"));
}

TEST_F(BoardProgramPerformance, ABoardThatRefusesTheSetupIsNotMeasured) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--fault", "refuse 12"});
    const ProgramRun run = Run({"performance", "latency", "-o", "run.per"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, StartsWith(Line("Error sending performance setup to analyzer.")));
    EXPECT_THAT(run.err, EndsWith(Line("the board has not taken the measurement")));
    EXPECT_FALSE(std::filesystem::exists(files.File("run.per")));
}

TEST_F(BoardProgramPerformance, WrongUse) {
    const auto wrong = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"performance", "--port", "COM1"});
        ExpectWrongUse(more, says);
    };
    wrong({"latenci"}, "no measurement \"latenci\"; there are latency, utilization, "
                       "transfer-rate, burst-distribution, statistics");
    wrong({"latency", "--for", "8d"}, "--for is a time such as 90, 90s, 5m or 8h, not \"8d\"");
    wrong({"latency", "--for", "0"}, "--for is a time such as 90, 90s, 5m or 8h, not \"0\"");
    wrong({"latency", "--interval", "11m"}, "--interval is at most 10m, not 11m");
    wrong({"latency", "--count", "0"}, "--count is a number of readings from 1 up, not 0");
    wrong({"latency", "--count", "few"}, "--count takes a whole number, not \"few\"");
    wrong({"latency", "--interval", "1s", "--for", "999ms"},
          "--for is shorter than the interval of 1000 ms, so there would be no reading");
    wrong({"latency", "--for", "99ms"},
          "--for is shorter than the interval of 100 ms, so there would be no reading");
    wrong({"latency", "--csv", "--json"}, "--json excludes --csv");
    wrong({}, "performance needs TYPE [SETUP.psu]");
}

TEST_F(BoardProgramPerformance, FilesAreCheckedBeforeTheBoardIsAsked) {
    const std::vector<std::string> start = {"performance", "latency", "--port", "COM1"};
    const auto fails = [&](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), start.begin(), start.end());
        const ProgramRun run = RunWithoutBoard(more);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.err, says);
    };
    fails({"none.psu"}, Line("Error opening file none.psu. No such file or directory."));
    fails({"-o", "none/run.per"}, Line("Error creating file none/run.per."));
    files.Write("no.psu", "hello\n");
    fails({"no.psu"}, Line("no.psu: Warning: Expected version number 1.000000 in performance setup "
                           "file, found 0.000000.") +
                          Line("no.psu: nothing is counted"));
}

} // namespace
} // namespace busquill::test
