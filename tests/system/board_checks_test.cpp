// busquill-board anomaly and backplane: which checks are chosen, and what is found.

#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Ge;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class BoardProgramChecks : public BoardProgramOverWire {
protected:
    /// The payload of the last write of so many bytes.
    [[nodiscard]] std::string LastPayload(std::size_t bytes) const {
        std::string last;
        for (const std::string& line : board->Log()) {
            const auto end = line.find(" payload");
            if (end == 6 + 3 * bytes - 1) {
                last = line.substr(6, end - 6);
            }
        }
        return last;
    }
    static constexpr auto checklist = "write memory, address 1532";
    static constexpr auto readResult = "address 1548";
    static constexpr std::size_t checklistBytes = 16;
};

// anomaly

TEST_F(BoardProgramChecks, AnomaliesArePrintedUntilTheTimeIsOver) {
    StartBoard({"--anomaly-rate", "100"});
    const ProgramRun run = Run({"anomaly", "--only", "112,1", "--for", "3500ms"});
    EXPECT_EQ(run.status, 1);
    const auto lines = LinesOf(run.out);
    EXPECT_THAT(lines, SizeIs(3)); // one each second
    EXPECT_THAT(lines,
                Each(MatchesRegex("20[0-9-]{8}T[0-9:]{8}\\.[0-9]{3}  (112 - Target Retry|1 - FRAME "
                                  "deasserted before IRDY asserted)")));
    EXPECT_EQ(run.err, Line("3 found"));
    EXPECT_EQ(LastPayload(checklistBytes), "fe ff ff ff ff ff ff ff ff ff ff ff ff 7f 03 00");
    EXPECT_EQ(Asked(checklist), 1);
    EXPECT_EQ(Asked("function 17 "), 1);
    EXPECT_THAT(board->Functions().back(), StartsWith("function 18 "));
}

TEST_F(BoardProgramChecks, AnAnomalyIsALineOfJson) {
    StartBoard({"--anomaly-rate", "100"});
    const ProgramRun run =
        Run({"anomaly", "--only", "Target Abort", "--json", "--quiet", "--for", "1500ms"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, MatchesRegex(R"(\{"time": "[^"]+", "number": 114, "text": )"
                                      R"("114 - Target Abort"\})"
                                      "\n"));
}

TEST_F(BoardProgramChecks, ABusWithoutAnomaliesIsGood) {
    StartBoard({"--anomaly-rate", "0"});
    const ProgramRun run = Run({"anomaly", "--for", "1200ms"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(LastPayload(checklistBytes), "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00")
        << "all checks are made";
}

TEST_F(BoardProgramChecks, AnInterruptEndsAnomalyDetectionAndKeepsWhatWasTicked) {
    StartBoard({"--anomaly-rate", "100"});
    const ProgramRun run =
        Run({"anomaly", "--only", "Warnings", "--without", "retry,114", "-o", "night.adt"},
            {.interruptWhen = Has(readResult, 2)});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(LinesOf(run.out),
                AllOf(SizeIs(Ge(1U)), Each(EndsWith("  113 - Target Disconnect"))));
    EXPECT_THAT(run.err, StartsWith(Line("interrupted")));
    EXPECT_THAT(board->Functions().back(), StartsWith("function 18 "));
    EXPECT_EQ(ReadWholeFile(files.File("night.adt")),
              "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n"
              "\"Test\",\"113 - Target Disconnect\"\r\n");
}

TEST_F(BoardProgramChecks, AnomalyDetectionEndsWhenNobodyReads) {
    StartBoard({"--anomaly-rate", "100"});
    const ProgramRun run = Run({"anomaly"}, {.readAtMost = 60});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(board->Functions().back(), StartsWith("function 18 "));
}

TEST_F(BoardProgramChecks, ABoardThatGoesAwayEndsAnomalyDetection) {
    StartBoard({"--anomaly-rate", "100"});
    bool gone = false;
    const ProgramRun run = Run({"anomaly", "-o", "night.adt"}, {.meanwhile = [&] {
                                   if (!gone && Asked(readResult) >= 1) {
                                       gone = true;
                                       board->Unplug();
                                   }
                               }});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, EndsWith(Line("the board does not answer any more")));
    EXPECT_TRUE(std::filesystem::exists(files.File("night.adt")));
}

TEST_F(BoardProgramChecks, TheChecksOfTheBusAreListed) {
    StartBoard();
    const ProgramRun all = Run({"anomaly", "--list"});
    EXPECT_EQ(all.status, 0);
    const auto lines = LinesOf(all.out);
    ASSERT_THAT(lines, SizeIs(114));
    EXPECT_EQ(lines[0], "  1  Protocol Violations/Master          "
                        "FRAME deasserted before IRDY asserted");
    EXPECT_EQ(lines[113], "114  Warnings/Protocol                   Target Abort");
    const ProgramRun some =
        Run({"anomaly", "--list", "--json", "--only", "Protocol Violations/General,50", "--without",
             "36 - address "
             "par64 error,REQ to"});
    EXPECT_EQ(some.status, 0);
    EXPECT_THAT(LinesOf(some.out),
                AllOf(SizeIs(10), Contains(R"({"number": 35, "group": "Protocol )"
                                           R"(Violations/General", "text": "Data PAR error"})")));
    EXPECT_EQ(Asked(checklist), 0) << "nothing is sent";
}

TEST_F(BoardProgramChecks, AVmeBoardHasItsOwnChecks) {
    StartBoard({"--model", "VMEKite"});
    const ProgramRun run = Run({"anomaly", "--list", "--only", "Other"});
    EXPECT_EQ(LinesOf(run.out).front(),
              " 65  Timing Violations/Other        SYSRESET* not held for "
              "200ms (5.2)");
    EXPECT_THAT(Run({"anomaly", "--only", "112"}).err,
                Line("no check 112; their numbers are 1 to 67"));
}

TEST_F(BoardProgramChecks, WrongChecksAreNamed) {
    StartBoard();
    const auto wrong = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), "anomaly");
        const ProgramRun run = Run(more);
        EXPECT_EQ(run.status, 2) << says;
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("busquill-board: " + says));
    };
    wrong({"--only", "1,115"}, "no check 115; their numbers are 1 to 114");
    wrong({"--only", "0"}, "no check 0; their numbers are 1 to 114");
    wrong({"--without", "Mastre"}, "no check \"Mastre\"; there are Master, ");
    wrong({"--only", "1,,2"}, "no check \"\"; there are ");
    wrong({"--only", "Master", "--without", "Protocol Violations"}, "no check is left");
    EXPECT_EQ(Asked(checklist), 0);
}

TEST_F(BoardProgramChecks, ABoardThatRefusesTheChecksIsNotWatched) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--fault", "refuse 12"});
    const ProgramRun run = Run({"anomaly", "--for", "5s"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, AllOf(StartsWith(Line("Error sending anomaly checklist to analyzer.")),
                               EndsWith(Line("the board has not taken the checks"))));
}

TEST_F(BoardProgramChecks, WrongUseOfAnomaly) {
    const std::vector<std::string> start = {"anomaly", "--port", "COM1"};
    const auto wrong = [&](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), start.begin(), start.end());
        ExpectWrongUse(more, says);
    };
    wrong({"--for", "soon"}, "--for is a time such as 90, 90s, 5m or 8h, not \"soon\"");
    wrong({"--only"}, "--only needs a value: LIST");
    wrong({"--without"}, "--without needs a value: LIST");
    wrong({"--list=1"}, "--list takes no value");
    wrong({"night.adt"}, "anomaly takes no file, not also \"night.adt\"");
    const ProgramRun run = RunWithoutBoard({"anomaly", "--port", "COM1", "-o", "none/x.adt"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("Error creating file none/x.adt."));
}

// backplane

TEST_F(BoardProgramChecks, ShortsAndBrokenLinesAreFound) {
    StartBoard({"--backplane", "4+5+6, 8+92, broken 7"});
    const ProgramRun run = Run(
        {"backplane", "--only", "AD[5],AD[7],ad[8],10", "--sensitivity", "low", "-o", "rack.bpt"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "AD[5]\n    AD[4] SHORTED\n    AD[6] SHORTED\nAD[7]\n    Cannot drive "
                       "signal\nAD[8]\n    Bit 92 SHORTED\nAD[9]\n    Ok\n");
    EXPECT_EQ(run.err, Line("4 signals, 3 with faults"));
    EXPECT_EQ(LastPayload(1), "02") << "the sensitivity";
    EXPECT_EQ(LastPayload(28), "00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                               "00 00 00 00 00 00");
    EXPECT_EQ(Asked("function 39 "), 4);
    EXPECT_THAT(board->Functions().back(), StartsWith("function 40 "));
    const std::string file = ReadWholeFile(files.File("rack.bpt"));
    EXPECT_THAT(file, StartsWith("\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                                 "\"Test\",\"AD[5]\"\r\n"));
    EXPECT_THAT(file, HasSubstr("\"Results\"\r\n\"AD[5]\"\r\n\"    AD[4] SHORTED\"\r\n"));
    // The file ticks the same signals again, without one of them.
    const ProgramRun again = Run({"backplane", "rack.bpt", "--without", "AD[7]", "--json"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.out,
              R"({"signal": "AD[5]", "ok": false, "results": ["AD[4] SHORTED", "AD[6] SHORTED"]})"
              "\n"
              R"({"signal": "AD[8]", "ok": false, "results": ["Bit 92 SHORTED"]})"
              "\n"
              R"({"signal": "AD[9]", "ok": true, "results": ["Ok"]})"
              "\n");
    EXPECT_EQ(LastPayload(1), "00");
}

TEST_F(BoardProgramChecks, AGoodBackplaneIsGood) {
    StartBoard({"--model", "VMEKite"});
    const ProgramRun run = Run({"backplane", "--only", "Interrupts,AS"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, StartsWith("AS\n    Ok\nIRQ1\n    Ok\n"));
    EXPECT_EQ(run.err, Line("9 signals, 0 with faults"));
}

TEST_F(BoardProgramChecks, TheSignalsOfTheBusAreListed) {
    StartBoard();
    const auto all = LinesOf(Run({"backplane", "--list"}).out);
    EXPECT_THAT(all, SizeIs(92));
    const ProgramRun run = Run({"backplane", "--list", "--only", "Error Reporting"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, " 86  Error Reporting   PERR\n 87  Error Reporting   SERR\n");
    EXPECT_EQ(Asked("function 39 "), 0);
}

TEST_F(BoardProgramChecks, AGroupIsTickedWhenAllItsSignalsAre) {
    StartBoard();
    const auto kept = [this](std::vector<std::string> choice) {
        choice.insert(choice.begin(), {"backplane", "--list", "-o", "kept.bpt"});
        EXPECT_EQ(Run(choice).status, 0);
        return ReadWholeFile(files.File("kept.bpt"));
    };
    EXPECT_THAT(kept({"--only", "Error Reporting"}),
                HasSubstr("\"Test\",\"Error Reporting\"\r\n\"Test\",\"PERR\"\r\n"
                          "\"Test\",\"SERR\"\r\n"));
    EXPECT_THAT(kept({"--only", "PERR"}), Not(HasSubstr("Error Reporting")));
    const std::string without = kept({"--without", "PERR"});
    EXPECT_THAT(without, Not(HasSubstr("Error Reporting")));
    EXPECT_THAT(without, HasSubstr("\"Test\",\"SERR\"\r\n"));
    EXPECT_THAT(kept({}), HasSubstr("\"Test\",\"Error Reporting\"\r\n"));
}

TEST_F(BoardProgramChecks, AFileOnABoardOfAnotherBusIsReadAsAWindowReadsIt) {
    StartBoard({"--model", "VMEKite"});
    files.Write("vme.bpt", "\"FileType\",\"Backplane Test File\"\r\n\"Version\",\"1.0\"\r\n"
                           "\"Test\",\"AD[5]\"\r\n\"Test\",\"DTACK\"\r\n");
    const ProgramRun run = Run({"backplane", "vme.bpt", "--list"});
    EXPECT_EQ(run.out, "  6  Address and Data  AD[5]\n");
    EXPECT_EQ(run.err,
              Line("vme.bpt ticks signals by their names on a PCI bus; --list shows which"));
}

TEST_F(BoardProgramChecks, AnInterruptEndsTheBackplaneTestAndKeepsWhatCame) {
    StartBoard({"--backplane", "0+1"});
    const ProgramRun run =
        Run({"backplane", "-o", "part.bpt"}, {.interruptWhen = Has("function 39 ", 3)});
    EXPECT_EQ(run.status, 1) << "a fault was found before";
    EXPECT_THAT(run.out, StartsWith("AD[0]\n    AD[1] SHORTED\n"));
    EXPECT_THAT(run.err, StartsWith("busquill-board: interrupted at signal "));
    EXPECT_THAT(board->Functions().back(), StartsWith("function 40 "));
    EXPECT_THAT(ReadWholeFile(files.File("part.bpt")),
                HasSubstr("\"Results\"\r\n\"AD[0]\"\r\n\"    AD[1] SHORTED\"\r\n"));
    const ProgramRun good =
        Run({"backplane", "--without", "AD[0],AD[1]"}, {.interruptWhen = Has("function 39 ", 8)});
    EXPECT_EQ(good.status, 3) << "the rest is not known";
}

TEST_F(BoardProgramChecks, WrongUseOfBackplane) {
    ExpectWrongUse({"backplane", "--port", "COM1", "--sensitivity", "max"},
                   "--sensitivity is one of normal, high, low; not \"max\"");
    ExpectWrongUse({"backplane", "--port", "COM1", "a.bpt", "b.bpt"},
                   "backplane takes [CHECKS.bpt], not also \"b.bpt\"");
    EXPECT_EQ(RunWithoutBoard({"backplane", "--port", "COM1", "none.bpt"}).err,
              Line("Error opening file none.bpt. No such file or directory."));
    StartBoard();
    files.Write("no.bpt", "hello\n");
    const ProgramRun file = Run({"backplane", "no.bpt"});
    EXPECT_EQ(file.status, 3);
    EXPECT_EQ(file.err, Line("Invalid backplane file type of ''."));
    const ProgramRun run = Run({"backplane", "--only", "FRAMF"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, StartsWith("busquill-board: no signal \"FRAMF\"; there are FRAME, "));
    EXPECT_EQ(Asked("function 39 "), 0);
}

} // namespace
} // namespace busquill::test
