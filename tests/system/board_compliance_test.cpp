// busquill-board compliance: the tests of a list, the operator and the report.

#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

#include <sstream>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

class BoardProgramCompliance : public BoardProgramOverWire {
protected:
    void SetUp() override {
        files.Write("ComplianceChecklist.txt",
                    "[Configuration]\nCFG1. One\nCFG2. Two\nCFG3. Three\n"
                    "[Interrupts]\nINT1. Four\n<Connect a probe, then press Continue.>\n"
                    "INT2. Five\n");
        files.Write("PCIVendors.txt", "8086 Intel Corporation\n");
        files.Write("PCIClass.txt", "06 Bridge\n");
    }
    void WriteList(const std::vector<std::string>& tests, const std::string& device = {}) const {
        std::string text = "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n" + device;
        for (const std::string& test : tests) {
            text += "\"Test\",\"" + test + "\",\"x\"\r\n";
        }
        files.Write("list.cpl", text);
    }
    /// The lines of a report without the first one, which has the time.
    static std::string WithoutHead(const std::string& text) {
        return text.substr(text.find('\n') + 1);
    }
    /// The payloads of one byte or four, which are test identifiers and control bytes.
    [[nodiscard]] std::vector<std::string> Payloads() const {
        std::vector<std::string> payloads;
        for (const std::string& line : board->Log()) {
            if (const auto end = line.find(" payload"); end != std::string::npos) {
                payloads.push_back(line.substr(6, end - 6));
            }
        }
        return payloads;
    }
    static constexpr auto start = "function 19 ";
    static constexpr auto stop = "function 20 ";
};

TEST_F(BoardProgramCompliance, TheTickedTestsAreRunAndReported) {
    StartBoard({"--compliance", "CFG2 fail 5, INT2 slow 2"});
    WriteList({"CFG1", "CFG2", "INT2"});
    const ProgramRun run = Run({"compliance", "list.cpl", "-o", "report.txt"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, MatchesRegex("20[0-9-]{8}T[0-9:]{8}\\.[0-9]{3}  Bridge, Intel Corporation "
                                      "\\[8086:1237\\], function 0\n(.|\n)*"));
    EXPECT_EQ(WithoutHead(run.out), "CFG1.   Passed     One\nCFG2.   Failed(5)  Two\n"
                                    "INT2.   Passed     Five\n"
                                    "2 passed, 1 failed, 0 skipped, 0 not run\n");
    EXPECT_EQ(ReadWholeFile(files.File("report.txt")), run.out);
    EXPECT_EQ(Asked(start), 3);
    EXPECT_EQ(Asked(stop), 1);
    EXPECT_THAT(board->Functions().back(), StartsWith(stop));
    EXPECT_THAT(Payloads(),
                ElementsAre("01", "43 46 47 01", "00", "43 46 47 02", "00", "49 4e 54 02", "00"));
}

TEST_F(BoardProgramCompliance, ResultsAreKeptAsAWindowKeepsThem) {
    StartBoard();
    WriteList({"CFG1"});
    const ProgramRun run = Run({"compliance", "list.cpl", "-o", "kept.cpl", "--json"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, StartsWith("{\"time\": "));
    EXPECT_EQ(WithoutHead(run.out),
              R"({"test": "CFG1", "result": "Passed", "failCode": 0, "title": "One"})"
              "\n"
              R"({"passed": 1, "failed": 0, "skipped": 0, "notRun": 0})"
              "\n");
    EXPECT_THAT(ReadWholeFile(files.File("kept.cpl")),
                AllOf(HasSubstr("\"VendorID\",8086\r\n"),
                      HasSubstr("\"Test\",\"CFG1\",\"One\"\r\n"),
                      HasSubstr("\"Result\",\"CFG1\",\"Passed\",0,\"One\"\r\n")));
}

TEST_F(BoardProgramCompliance, AResultThatCannotBeKeptIsAFailure) {
    StartBoard();
    WriteList({"CFG1"});
    const ProgramRun run = Run({"compliance", "list.cpl", "-o", "kept.cpl"}, {.diskBytes = 10});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.out, HasSubstr("1 passed"));
    EXPECT_THAT(run.err, AllOf(StartsWith("busquill-board: "), HasSubstr("kept.cpl")));
    EXPECT_FALSE(std::filesystem::exists(files.File("kept.cpl")));
}

TEST_F(BoardProgramCompliance, AReportAsPdfNeedsTheProgramThatDrawsIt) {
    WriteList({"CFG1"});
    const std::string alone = files.File("busquill-board");
    std::filesystem::copy_file(BoardProgramPath(), alone);
    const ProgramRun run =
        RunSystemProgram(alone, {"compliance", "list.cpl", "--port", "COM1", "-o", "report.PDF"},
                         {.folder = files.Path()});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("report.PDF: a report as PDF needs the program busquill-report in the "
                            "folder of busquill-board; it is built with the windows"));
}

#if BUSQUILL_HAS_WINDOWS
TEST_F(BoardProgramCompliance, AReportAsPdfIsThatOfAWindow) {
    StartBoard({"--compliance", "CFG2 fail 5"});
    WriteList({"CFG1", "CFG2"});
    files.Write("report.pdf", "old");
    // There is no display, although the environment asks for windows on one.
    const ProgramRun run = Run({"compliance", "list.cpl", "-o", "report.pdf"},
                               {.environment = {{"DISPLAY", ""},
                                                {"WAYLAND_DISPLAY", ""},
                                                {"QT_QPA_PLATFORM", "xcb"},
                                                {"XDG_RUNTIME_DIR", files.Path()}}});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(ReadWholeFile(files.File("report.pdf")), StartsWith("%PDF-"));
    const ProgramRun text = RunSystemProgram("/usr/bin/pdftotext", {"-layout", "report.pdf", "-"},
                                             {.folder = files.Path()});
    ASSERT_EQ(text.status, 0) << "needs pdftotext, of the package poppler-utils";
    EXPECT_THAT(text.out, AllOf(HasSubstr("Compliance Tests - list"), HasSubstr("Page 1"),
                                testing::ContainsRegex("CFG1\\. +One +Passed"),
                                testing::ContainsRegex("CFG2\\. +Two +Failed\\(5\\)")));
    const std::filesystem::directory_iterator left(temporary.Path());
    EXPECT_EQ(std::distance(begin(left), end(left)), 0) << "temporary files";
}
#endif

TEST_F(BoardProgramCompliance, TheDeviceOfTheListIsTested) {
    StartBoard();
    WriteList({"CFG1"}, "\"VendorID\",\"1000\"\r\n\"DeviceID\",\"0030\"\r\n");
    const ProgramRun listed = Run({"compliance", "list.cpl"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_THAT(listed.out, HasSubstr("[1000:0030]"));
    const ProgramRun given =
        Run({"compliance", "list.cpl", "--id", "8086:1237", "--address", "fe000000"});
    EXPECT_EQ(given.status, 0);
    EXPECT_THAT(given.out, HasSubstr("[8086:1237]"));
    EXPECT_THAT(Payloads(), testing::Contains("00 00 00 fe 00 00 00 00"));
    const auto before = Asked(start);
    const ProgramRun none = Run({"compliance", "list.cpl", "--id", "1234:5678"});
    EXPECT_EQ(none.status, 3);
    EXPECT_EQ(none.out, "");
    EXPECT_THAT(none.err, EndsWith(Line("the device 1234:5678 was not found")));
    EXPECT_EQ(Asked(start), before);
}

TEST_F(BoardProgramCompliance, WithoutAnOperatorTheirTestsAreSkipped) {
    StartBoard();
    WriteList({"INT1", "INT2"});
    const ProgramRun run = Run({"compliance", "list.cpl", "--no-operator"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(WithoutHead(run.out), "INT1.   Skipped    Four\nINT2.   Passed     Five\n"
                                    "1 passed, 0 failed, 1 skipped, 0 not run\n");
    EXPECT_THAT(Payloads(), ElementsAre("01", "49 4e 54 01", "01", "05", "49 4e 54 02", "00"));
    const ProgramRun noTerminal = Run({"compliance", "list.cpl"});
    EXPECT_EQ(noTerminal.status, 0);
    EXPECT_EQ(noTerminal.err, Line("INT1. Connect a probe, then press Continue. skipped: there is "
                                   "no terminal"));
    EXPECT_EQ(WithoutHead(noTerminal.out), WithoutHead(run.out));
}

TEST_F(BoardProgramCompliance, TheOperatorAnswersOnTheTerminal) {
    StartBoard();
    WriteList({"INT1", "INT2"});
    const std::string question =
        "INT1. Connect a probe, then press Continue. [continue/skip/stop] ";
    const ProgramRun run =
        Run({"compliance", "list.cpl"}, {.standardInput = "what\nc\n", .onTerminal = true});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, question + question);
    EXPECT_EQ(WithoutHead(run.out), "INT1.   Passed     Four\nINT2.   Passed     Five\n"
                                    "2 passed, 0 failed, 0 skipped, 0 not run\n");
    EXPECT_THAT(Payloads(), ElementsAre("01", "49 4e 54 01", "01", "03", "49 4e 54 02", "00"));
    const ProgramRun skipped =
        Run({"compliance", "list.cpl"}, {.standardInput = "skip\n", .onTerminal = true});
    EXPECT_EQ(skipped.status, 0);
    EXPECT_THAT(skipped.out, HasSubstr("1 passed, 0 failed, 1 skipped, 0 not run\n"));
    const ProgramRun stopped =
        Run({"compliance", "list.cpl"}, {.standardInput = "stop\n", .onTerminal = true});
    EXPECT_EQ(stopped.status, 3);
    EXPECT_EQ(WithoutHead(stopped.out), "0 passed, 0 failed, 0 skipped, 2 not run\n");
    EXPECT_THAT(board->Functions().back(), StartsWith(stop));
}

TEST_F(BoardProgramCompliance, AnInterruptStopsTheTestAndKeepsWhatCame) {
    StartBoard({"--compliance", "CFG2 slow 1000"});
    WriteList({"CFG1", "CFG2", "CFG3"});
    const ProgramRun run =
        Run({"compliance", "list.cpl", "-o", "part.txt"}, {.interruptWhen = Has(start, 2)});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("interrupted"));
    EXPECT_EQ(WithoutHead(run.out),
              "CFG1.   Passed     One\n1 passed, 0 failed, 0 skipped, 2 not run\n");
    EXPECT_EQ(ReadWholeFile(files.File("part.txt")), run.out);
    EXPECT_THAT(board->Functions().back(), StartsWith(stop));
}

TEST_F(BoardProgramCompliance, AnUnknownOutcomeIsAFailure) {
    StartBoard({"--compliance", "CFG2 unknown"});
    WriteList({"CFG1", "CFG2", "CFG3"});
    const ProgramRun run = Run({"compliance", "list.cpl"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("Unknown test status from analyzer."));
    EXPECT_THAT(run.out, EndsWith("1 passed, 0 failed, 0 skipped, 2 not run\n"));
}

TEST_F(BoardProgramCompliance, WrongUse) {
    const auto wrong = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"compliance", "--port", "COM1"});
        ExpectWrongUse(more, says);
    };
    wrong({}, "compliance needs LIST.cpl");
    for (const char* id : {"8086", "8086:", "8086:123456", "intel:1237"}) {
        wrong({"list.cpl", "--id", id},
              std::string("--id is two hexadecimal numbers such as 1317:0985, not \"") + id + "\"");
    }
    wrong({"list.cpl", "--address", "here"},
          "--address takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"here\"");
    wrong({"list.cpl", "--no-operator=1"}, "--no-operator takes no value");
    wrong({"list.cpl", "--for", "1s"}, "compliance takes no --for");
    const auto fails = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"compliance", "--port", "COM1"});
        const ProgramRun run = RunWithoutBoard(more);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.err, Line(says));
    };
    fails({"none.cpl"}, "Error opening file none.cpl.");
    WriteList({});
    fails({"list.cpl"}, "list.cpl: One or more tests must be selected to execute.");
    files.Write("no.cpl", "hello\n");
    fails({"no.cpl"}, "Invalid compliance file type of ''.");
    WriteList({"CFG1"});
    fails({"list.cpl", "-o", "none/report.txt"}, "Error creating file none/report.txt.");
    std::filesystem::remove(files.File("ComplianceChecklist.txt"));
    fails({"list.cpl"}, "there are no tests: " + std::filesystem::canonical(files.Path()).string() +
                            "/ComplianceChecklist.txt cannot be read or is empty");
}

} // namespace
} // namespace busquill::test
