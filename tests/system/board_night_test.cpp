// The script of the manual for a night on a test bench, as it stands there.

#include "support/board_program_over_wire.h"
#include "support/manual_page.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class BoardNight : public BoardProgramOverWire {
protected:
    void SetUp() override {
        const std::string script = BlockOfManual("test-bench.md", "sh");
        ASSERT_THAT(script, StartsWith("#!/bin/sh\n"));
        files.Write("night.sh", script);
        files.Write("ComplianceChecklist.txt",
                    "[Configuration]\nCFG1. One\n"
                    "[Interrupts]\nINT1. Two\n<Connect a probe, then press Continue.>\n");
        files.Write("PCIVendors.txt", "8086 Intel Corporation\n");
        files.Write("PCIClass.txt", "06 Bridge\n");
    }
    void WriteList() const {
        files.Write("card.cpl", "\"FileType\",\"Compliance File\"\r\n\"Version\",\"1.0\"\r\n"
                                "\"Test\",\"CFG1\",\"x\"\r\n\"Test\",\"INT1\",\"x\"\r\n");
    }
    /// Runs the script for a short night, with more of its variables. It is in a group of processes
    /// of its own, all of which get an interrupt, as from a terminal.
    ProgramRun Night(std::vector<std::pair<std::string, std::string>> variables = {},
                     ProgramInput input = {}) const {
        const std::string program = BoardProgramPath();
        const char* const path = std::getenv("PATH");
        input.folder = files.Path();
        input.limit = std::chrono::seconds(120);
        input.environment = {
            {"PATH", program.substr(0, program.rfind('/')) + ":" + (path != nullptr ? path : "")},
            {"PORT", board->Terminal()},
            {"BAUD", "9600"},
            {"NIGHT", "2500ms"},
            {"TRAFFIC", "2500ms"}};
        input.environment.insert(input.environment.end(), variables.begin(), variables.end());
        return RunSystemProgram("/usr/bin/timeout", {"120", "/bin/sh", "night.sh"}, input);
    }
    /// The files of the only night.
    [[nodiscard]] std::vector<std::string> Kept() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
    [[nodiscard]] std::string Content(const std::string& name) const {
        return ReadWholeFile(Folder() + "/" + name);
    }
    [[nodiscard]] std::string Folder() const {
        std::vector<std::string> nights;
        for (const auto& entry : std::filesystem::directory_iterator(files.File("nights"))) {
            nights.push_back(entry.path());
        }
        EXPECT_EQ(nights.size(), 1U);
        return nights.empty() ? "" : nights.front();
    }
};

TEST_F(BoardNight, AGoodNight) {
    StartBoard({"--anomaly-rate", "0"});
    WriteList();
    const ProgramRun run = Night({{"EMPTY", "yes"}});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, MatchesRegex("[^\n]+: [^\n]+, serial number [0-9]+\n"
                                      "info: good\nconfig: good\nperformance: good\n"
                                      "anomaly: good\ncompliance: good\nbackplane: good\n"));
    EXPECT_THAT(Folder(), MatchesRegex(".*/20[0-9]{2}-[0-9]{2}-[0-9]{2}T[0-9-]{8}"));
    EXPECT_THAT(Kept(),
                UnorderedElementsAre("info.txt", "devices.txt", "traffic.csv", "traffic.per",
                                     "anomalies.txt", "anomalies.adt", "compliance.txt",
                                     "backplane.txt", "backplane.bpt", "messages.txt"));
    EXPECT_THAT(Content("info.txt"), StartsWith("Model: "));
    EXPECT_THAT(Content("devices.txt"),
                AllOf(StartsWith("00:00.0 Bridge: Intel Corporation"), HasSubstr("\n00: 86 80 ")));
    EXPECT_THAT(Content("traffic.csv"), MatchesRegex("Time,[^\n]+\n(20[^\n]+\n){2,3}"));
    EXPECT_THAT(Content("traffic.per"), HasSubstr("\"UpdateInterval\",1000\r\n"));
    EXPECT_EQ(Content("anomalies.txt"), "");
    EXPECT_THAT(Content("compliance.txt"), EndsWith("1 passed, 0 failed, 1 skipped, 0 not run\n"));
}

TEST_F(BoardNight, WhatIsFoundMakesItABadOne) {
    StartBoard({"--anomaly-rate", "100", "--compliance", "CFG1 fail 5", "--backplane", "0+1"});
    WriteList();
    const ProgramRun run = Night({{"EMPTY", "yes"}});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, MatchesRegex("[^\n]+\ninfo: good\nconfig: good\nperformance: good\n"
                                      "anomaly: bad, see nights/[^\n/]+/anomalies.txt\n"
                                      "compliance: bad, see nights/[^\n/]+/compliance.txt\n"
                                      "backplane: bad, see nights/[^\n/]+/backplane.txt\n"));
    EXPECT_THAT(Content("anomalies.txt"), MatchesRegex("(20[^\n]+  [0-9]+ - [^\n]+\n){2}"));
    EXPECT_THAT(Content("compliance.txt"), HasSubstr("CFG1.   Failed(5)  One\n"));
    EXPECT_THAT(Content("backplane.txt"), StartsWith("AD[0]\n    AD[1] SHORTED\n"));
    EXPECT_THAT(Content("backplane.bpt"), HasSubstr("\"    AD[1] SHORTED\"\r\n"));
    EXPECT_THAT(Content("messages.txt"), HasSubstr(Line("2 found")));
}

TEST_F(BoardNight, ACommandThatFailsIsToldAndTheOthersAreRun) {
    StartBoard({"--anomaly-rate", "100"});
    const ProgramRun run = Night({{"NIGHT", "1500ms"}, {"TRAFFIC", "1 day"}});
    EXPECT_EQ(run.status, 3) << "also where something was found";
    EXPECT_THAT(run.out, MatchesRegex("[^\n]+\ninfo: good\nconfig: good\n"
                                      "performance: failed, see nights/[^\n/]+/messages.txt\n"
                                      "anomaly: bad, see nights/[^\n/]+/anomalies.txt\n"))
        << "there is no list of compliance tests, and something is plugged in";
    EXPECT_THAT(Content("messages.txt"),
                HasSubstr(Line("--for is a time such as 90, 90s, 5m or 8h, not \"1 day\"")));
}

TEST_F(BoardNight, AnInterruptKeepsWhatCameAndLeavesOutTheRest) {
    StartBoard({"--anomaly-rate", "100"});
    WriteList();
    const ProgramRun run = Night({{"NIGHT", ""}, {"TRAFFIC", "1500ms"}},
                                 {.interruptWhen = Has("address 1548", 2)}); // results of anomalies
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.out, HasSubstr("anomaly: bad, see nights/"));
    EXPECT_THAT(run.out, EndsWith("compliance: not run\n"));
    EXPECT_THAT(Content("anomalies.txt"), Not(IsEmpty()));
    EXPECT_THAT(Content("messages.txt"), HasSubstr(Line("interrupted")));
    EXPECT_THAT(board->Functions().back(), StartsWith("function 18 ")) << "the board is stopped";
}

TEST_F(BoardNight, WithoutABoardThereIsNoNight) {
    StartBoard();
    const ProgramRun run = Night({{"PORT", "/dev/null"}});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.out, AllOf(StartsWith("/dev/null: "), Not(HasSubstr("info"))));
    EXPECT_EQ(board->Functions().size(), 0U);
}

} // namespace
} // namespace busquill::test
