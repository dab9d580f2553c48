// busquill-board config: the devices of the bus, and what the field's own tool reads of them.

#include "boardsim/configuration.h"
#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

#include <cstdio>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What a command prints.
std::string OutputOf(const std::string& command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        output += static_cast<char>(c);
    }
    return output;
}

class BoardProgramConfig : public BoardProgramOverWire {
protected:
    /// In the folder with the names of vendors and classes.
    ProgramRun Config(std::vector<std::string> more = {}, ProgramInput input = {}) const {
        more.insert(more.begin(), "config");
        input.folder = SourceFile("data");
        return Run(std::move(more), std::move(input));
    }
    static constexpr auto scans = "start config";
};

TEST_F(BoardProgramConfig, ALineForEachDevice) {
    StartBoard({"--fault", "scan-busy 2"});
    const ProgramRun run = Config();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "00:00.0 Bridge: Intel Corporation [8086:1237] (rev 02)\n"
                       "00:01.0 Bridge: Digital Equipment Corporation [1011:0024] (rev 03)\n"
                       "00:07.0 Bridge: Intel Corporation [8086:7110] (rev 02)\n"
                       "00:07.1 Mass storage controller: Intel Corporation [8086:7111] (rev 01)\n"
                       "00:07.2 Serial bus controller: Intel Corporation [8086:7112] (rev 01)\n"
                       "00:0a.0 Network controller: Intel Corporation [8086:1229] (rev 08)\n"
                       "01:04.0 Mass storage controller: Broadcom / LSI [1000:0030] (rev 07)\n");
}

TEST_F(BoardProgramConfig, TheFieldsOwnToolReadsTheDump) {
    StartBoard();
    const std::string dump = files.File("dump.txt");
    const ProgramRun run = Config({"--dump", "-o", dump});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    const std::string original = files.Write("original.txt", boardsim::builtInDevices);
    for (const char* const flags : {"-n", "-vv", "-xxx"}) {
        const std::string lspci = std::string("lspci ") + flags + " -F ";
        const std::string expected = OutputOf(lspci + original + " 2>/dev/null");
        ASSERT_THAT(expected, HasSubstr("01:04.0")) << "needs lspci, of the package pciutils";
        EXPECT_EQ(OutputOf(lspci + dump + " 2>/dev/null"), expected) << flags;
    }
}

TEST_F(BoardProgramConfig, ADeviceInWords) {
    StartBoard();
    const ProgramRun run = Config({"--device", "0000:00:0a.0"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, StartsWith("Class: Network controller\n"
                                    "Vendor: Intel Corporation\n"
                                    "Device/Rev ID: 1229.08\n"
                                    "\n"
                                    "Command\n"
                                    " I/O Enabled             :   Yes\n"));
    EXPECT_THAT(run.out, HasSubstr("\n\nStatus\n Capabilities List       :   Yes\n"));
    EXPECT_THAT(run.out, HasSubstr(" DEVSEL Timing           :   Medium\n"));
    EXPECT_EQ(Asked(scans), 6) << "the others are not looked for";
    const ProgramRun absent = Config({"--device", "00:08.0"});
    EXPECT_EQ(absent.status, 1);
    EXPECT_EQ(absent.out, "");
    EXPECT_EQ(absent.err, Line("there is no device 00:08.0"));
}

TEST_F(BoardProgramConfig, PrintsJsonLines) {
    StartBoard();
    const ProgramRun run = Config({"--json", "--device", "01:04.0"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(
        run.out,
        StartsWith(R"({"place": "01:04.0", "address": "0000000080012000", "vendorId": "1000", )"
                   R"("deviceId": "0030", "revision": "07", "class": "Mass storage controller", )"
                   R"("vendor": "Broadcom / LSI", "header": "00103000)"));
    EXPECT_THAT(run.out, AllOf(HasSubstr(R"("command": {"I/O Enabled": true, )"),
                               HasSubstr(R"("DEVSEL Timing": "Medium")"), EndsWith("}}\n")));
}

TEST_F(BoardProgramConfig, WithoutTheNamesTheNumbersAreShown) {
    StartBoard();
    const ProgramRun run = Run({"config"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, AllOf(HasSubstr("Warning: Vendor map file "),
                               HasSubstr("Warning: Class map file ")));
    EXPECT_THAT(run.out, StartsWith("00:00.0 Unknown - ID 0x060000: Unknown - ID 0x8086 "
                                    "[8086:1237] (rev 02)\n"));
    EXPECT_EQ(Run({"config", "--quiet"}).err, "");
}

TEST_F(BoardProgramConfig, ABusWithoutDevices) {
    StartBoard({"--devices", files.Write("none.txt", "")});
    const ProgramRun run = Config();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("no device found"));
}

TEST_F(BoardProgramConfig, AnInterruptStopsTheScanAndKeepsWhatWasFound) {
    StartBoard({"--fault", "scan-busy 3"}); // the first scan lasts until the fault below is set
    bool busy = false;
    const std::string dump = files.File("dump.txt");
    const ProgramRun run =
        Config({"-o", dump}, {.meanwhile =
                                  [&] {
                                      if (!busy && Asked(scans) >= 1) {
                                          busy = true;
                                          board->Fault("scan-busy 1000");
                                      }
                                  },
                              .interruptWhen = [&] { return Asked("address 851") >= 8; }});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, StartsWith("busquill-board: interrupted after "));
    EXPECT_EQ(Asked("stop config"), 1);
    EXPECT_THAT(ReadWholeFile(dump), StartsWith("00:00.0 Bridge"));
}

TEST_F(BoardProgramConfig, AScanThatTakesTooLongIsAFailure) {
    StartBoard({"--fault", "scan-busy 1000"});
    const ProgramRun run = Config();
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("Timeout while waiting for configuration scan to complete."));
}

TEST_F(BoardProgramConfig, WrongUse) {
    for (const std::string place : {"0:8", "00:20.0", "00:01.8", "00:01.0x", "first"}) {
        ExpectWrongUse({"config", "--port", "COM1", "--device", place},
                       "--device is a place such as 00:0a.0; not \"" + place + "\"");
    }
    ExpectWrongUse({"config", "--port", "COM1", "--dump", "--json"}, "--json excludes --dump");
    const ProgramRun folder = RunWithoutBoard({"config", "--port", "COM1", "-o", "none/a"});
    EXPECT_EQ(folder.status, 3);
    EXPECT_EQ(folder.err, Line("Error creating file none/a."));
}

} // namespace
} // namespace busquill::test
