// busquill-board with a board: what holds for every command, and what it tells about the board.

#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using BoardProgram = BoardProgramOverWire;

TEST_F(BoardProgram, TellsItsCommandsAndItsVersion) {
    const ProgramRun help = RunWithoutBoard({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("info"));
    EXPECT_EQ(help.err, "");
    const ProgramRun ofCommand = RunWithoutBoard({"info", "--help"});
    EXPECT_EQ(ofCommand.status, 0);
    EXPECT_THAT(ofCommand.out, AllOf(HasSubstr("--set"), HasSubstr("--port")));
    const ProgramRun version = RunWithoutBoard({"-V"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.out, StartsWith("busquill-board "));
}

TEST_F(BoardProgram, WrongUseIsTold) {
    EXPECT_EQ(RunWithoutBoard({}).status, 2);
    EXPECT_EQ(RunWithoutBoard({"inform", "--port", "COM1"}).status, 2);
    EXPECT_EQ(RunWithoutBoard({"info"}).status, 2) << "no port";
    EXPECT_EQ(RunWithoutBoard({"info", "--port"}).status, 2);
    EXPECT_EQ(RunWithoutBoard({"info", "--port", "COM1", "--fast"}).status, 2);
    EXPECT_EQ(RunWithoutBoard({"info", "--port", "COM1", "more"}).status, 2);
    EXPECT_EQ(RunWithoutBoard({"info", "--port", "COM1", "--baud", "1200"}).status, 2);
    ExpectWrongUse({"info", "--port", "nowhere"}, "there is no port nowhere; ports are COM1 to "
                                                  "COM8, USB and paths of terminal devices");
}

TEST_F(BoardProgram, AFileBesideTheResultsIsNotStandardOutput) {
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"anomaly", "-o", "-"},
                                               {"backplane", "-o", "-"},
                                               {"performance", "latency", "-o", "-"},
                                               {"compliance", "list.cpl", "-o", "-"}}) {
        std::vector<std::string> words = command;
        words.insert(words.end(), {"--port", "COM1"});
        ExpectWrongUse(words, "the results go to standard output already; give the name of a file "
                              "instead of \"-\"");
    }
}

TEST_F(BoardProgram, ABoardThatDoesNotAnswerIsAFailure) {
    StartBoard({"--fault", "silence"});
    const ProgramRun run = Run({"info"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("no board answers on " + board->Terminal()));
}

TEST_F(BoardProgram, AnInterruptWhileConnectingIsAFailure) {
    StartBoard();
    const ProgramRun run = Run({"info"}, {.interruptWhen = Has("address 0 length 18")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("interrupted"));
}

// info

TEST_F(BoardProgram, InfoShowsTheBoardAndItsBus) {
    StartBoard({"--model", "PMCKite", "--suffix", "1", "--bus-byte", "0x15", "--mhz", "133"});
    const ProgramRun text = Run({"info"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out, "Model:             PMCKite-1\n"
                        "Buffer Size:       1024K\n"
                        "Firmware Version:  1.7\n"
                        "Hardware Version:  1.0\n"
                        "Serial Number:     1234\n"
                        "Bus Mode:          PCI-X\n"
                        "Bus Width:         64\n"
                        "Bus Voltage:       3.3V\n"
                        "Bus Frequency:     133 MHz\n");
    const ProgramRun json = Run({"info", "--json"});
    EXPECT_EQ(json.status, 0);
    EXPECT_THAT(json.out, AllOf(StartsWith(R"({"model": "PMCKite-1", )"),
                                EndsWith(R"("busFrequency": "133 MHz"})"
                                         "\n")));
    EXPECT_EQ(Asked("write memory address 18"), 0) << "nothing is changed";
}

TEST_F(BoardProgram, InfoWritesTheBusConfiguration) {
    StartBoard({"--model", "PMCKite", "--bus-byte", "0", "--mhz", "33"});
    const ProgramRun run = Run({"info", "--set", "mode=pci-x", "--set", "width=64", "--set",
                                "voltage=3.3V", "--set", "frequency=133"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, EndsWith("Bus Mode:          PCI-X\n"
                                  "Bus Width:         64\n"
                                  "Bus Voltage:       3.3V\n"
                                  "Bus Frequency:     133 MHz\n"));
    EXPECT_THAT(board->Log(), Contains("host  15 85 payload for write memory"));
    EXPECT_THAT(Run({"info"}).out, EndsWith(run.out.substr(run.out.find("Bus Mode"))))
        << "the board keeps it";
    // The other values stay.
    const ProgramRun again = Run({"info", "--set", "frequency=66"});
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(again.out, EndsWith("Bus Mode:          PCI-X\n"
                                    "Bus Width:         64\n"
                                    "Bus Voltage:       3.3V\n"
                                    "Bus Frequency:     66 MHz\n"));
}

TEST_F(BoardProgram, AWrongBusConfigurationIsNotWritten) {
    for (const auto& [set, says] : std::vector<std::pair<std::string, std::string>>{
             {"speed=1", "--set is mode=, width=, voltage= or frequency= with a value; not "
                         "\"speed=1\""},
             {"width", "--set is mode=, width=, voltage= or frequency= with a value; not "
                       "\"width\""},
             {"width=16", "width is 32 or 64; not \"16\""},
             {"voltage=12", "voltage is 5.0V or 3.3V; not \"12\""},
             {"frequency=fast", "frequency is a whole number of MHz up to 255; not \"fast\""},
             {"frequency=256", "frequency is a whole number of MHz up to 255; not \"256\""}}) {
        ExpectWrongUse({"info", "--port", "COM1", "--set", set}, says);
    }
    ExpectWrongUse(
        {"info", "--port", "COM1", "--set", "mode=2eVMX"},
        "no bus \"2eVMX\"; there are 2eVME, PCI, PCI-X, VME, 2eSST, PC/104, PC/104+, VMEP2, "
        "VMEP0, VSB");
    StartBoard(); // a PCIKite
    const ProgramRun run = Run({"info", "--set", "mode=VME"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, StartsWith("busquill-board: PCIKite-3 has no bus VME; it has PCI"));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(Asked("write memory"), 0);
}

TEST_F(BoardProgram, ABoardThatRefusesItsBusConfigurationIsAFailure) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--fault", "refuse 12"});
    const ProgramRun run = Run({"info", "--set", "frequency=66"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, EndsWith(Line("the board has not taken the bus configuration")));
}

// ports

TEST_F(BoardProgram, PortsTellsBehindWhichABoardAnswers) {
    StartBoard({"--baud", "19200"}); // at another rate than the options name
    const ProgramRun one = Run({"ports"});
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.err, "");
    EXPECT_EQ(one.out, board->Terminal() + ": PCIKite-3, serial number 1234\n");
    const ProgramRun json = Run({"ports", "--json"});
    EXPECT_EQ(json.out, R"({"port": ")" + board->Terminal() + R"(", "device": ")" +
                            board->Terminal() +
                            R"(", "description": "", "model": "PCIKite-3", "serial": 1234})"
                            "\n");
    EXPECT_EQ(Asked("write memory"), 0) << "the board's rate is left as it is";
}

TEST_F(BoardProgram, PortsListsThoseOfTheMachineWithoutOpeningThem) {
    StartBoard();
    const ProgramRun run =
        RunBoard({"ports", "--list"}, {.environment = {{"BUSQUILL_COM2", board->Terminal()}}});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, StartsWith("COM2 (" + board->Terminal() + ")\n"));
    EXPECT_EQ(Asked("function"), 0);
}

TEST_F(BoardProgram, PortsTellsWhyThereIsNoBoard) {
    StartBoard({"--fault", "silence"});
    const ProgramRun silent = Run({"ports"});
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.out, board->Terminal() + ": no board answers\n");
    const ProgramRun none = RunWithoutBoard({"ports", "--port", "/dev/null"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "/dev/null: is not a serial port\n");
    EXPECT_EQ(none.err, "");
    EXPECT_EQ(RunWithoutBoard({"ports", "--port", "nowhere"}).status, 2);
    EXPECT_EQ(RunWithoutBoard({"ports", "--port", "/dev/null", "--baud", "x"}).status, 2);
}

TEST_F(BoardProgram, AnInterruptEndsTheSearchOfPorts) {
    StartBoard({"--fault", "mute 1"}); // no identity
    const ProgramRun run = Run({"ports"}, {.interruptWhen = Has("address 0 length 18")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("interrupted"));
}

} // namespace
} // namespace busquill::test
