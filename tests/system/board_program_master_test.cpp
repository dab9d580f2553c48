// busquill-board master and dump: forms, data files and memory.

#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class BoardProgramMaster : public BoardProgramOverWire {
protected:
    /// Runs the form with options.
    ProgramRun Master(std::vector<std::string> more = {}, ProgramInput input = {}) {
        more.insert(more.begin(), {"master", "form.mst"});
        return Run(std::move(more), std::move(input));
    }
    /// What the board logs of the setup that a run begins with.
    void ExpectSetup(const std::string& bytes) const {
        EXPECT_THAT(board->Log(), Contains(StartsWith("host  " + bytes)));
    }

    const std::string form = files.Write("form.mst", R"("FileType","Master File"
"Version","1.0"
"AddressSpace","Memory"
"AddressSize","32 bit"
"AddressStart",0000000000001000
"AddressEnd","000000000000103f"
"DataSize","32 bit"
"DataCycle","Burst"
"DataType","Value"
"DataValue","0000000012345678"
"DataFilename",""
"Command","Write"
"Repeat",1
)");
    static constexpr auto steps = "exerciser go";
};

TEST_F(BoardProgramMaster, RunsTheFormAndTellsEachStep) {
    StartBoard();
    const ProgramRun run = Master();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("00001000: Pass") + Line("00001020: Pass"));
    // Space, address size, start, length, data size, cycle, type, value.
    ExpectSetup("00 02 00 10 00 00 00 00 00 00 20 02 01 00 78 56 34 12 00");
    EXPECT_EQ(Asked(steps), 2);
    EXPECT_EQ(Asked("exerciser stop"), 0) << "a run that ends by itself is not stopped";
    const ProgramRun quiet = Master({"--quiet"});
    EXPECT_EQ(quiet.status, 0);
    EXPECT_EQ(quiet.err, "");
}

TEST_F(BoardProgramMaster, OptionsOverrideTheForm) {
    StartBoard();
    const ProgramRun write = Master({"--write", "--space", "i/o", "--from", "0x2000", "--to",
                                     "2003", "--value", "AABBCCDD", "--repeat", "2", "--quiet"});
    EXPECT_EQ(write.status, 0) << write.err;
    ExpectSetup("01 02 00 20 00 00 00 00 00 00 04 02 01 00 dd cc bb aa 00");
    EXPECT_EQ(Asked(steps), 2);
    const ProgramRun read = Master({"--read", "--space", "I/O", "--from", "2000", "--to", "2011"});
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.out, "00002000  dd cc bb aa 00 00 00 00 00 00 00 00 00 00 00 00  "
                        "................\n"
                        "00002010  00 00                                            ..\n");
    EXPECT_EQ(read.err, Line("00002000: Pass"));
    EXPECT_EQ(Master({"--compare", "--space", "I/O", "--from", "2000", "--to", "2003", "--value",
                      "AABBCCDD"})
                  .status,
              0);
}

TEST_F(BoardProgramMaster, AStepThatFailsIsToldAndIsTheStatus) {
    StartBoard({"--fault", "stuck-bit 4130"}); // 1022 hexadecimal
    const ProgramRun run = Master({"--test"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("00001000: Pass") + Line("00001020: Fail"));
    const ProgramRun json = Master({"--test", "--json", "--quiet"});
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(json.err, "");
    EXPECT_EQ(json.out, R"({"command": "Test", "steps": 2, "failedSteps": 1, )"
                        R"("failed": [{"address": "00001020", "status": ["Fail"]}]})"
                        "\n");
    board->Fault("step-status 98"); // no device select, no target acknowledge, failed
    const ProgramRun absent = Master({"--read", "--to", "1003"});
    EXPECT_EQ(absent.status, 1);
    EXPECT_EQ(absent.err, Line("00001000: No Device Select") + Line("00001000: No Target Ack") +
                              Line("00001000: Fail"));
}

TEST_F(BoardProgramMaster, DataFilesAreWrittenAndRead) {
    StartBoard();
    files.Write("in.dat", "00 01 02 03\n04 05 06 07\n");
    const std::vector<std::string> range = {"--from", "1000", "--to", "1007"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.end(), range.begin(), range.end());
        return more;
    };
    EXPECT_EQ(Master(with({"--write", "--data", "in.dat", "--quiet"})).status, 0);
    const ProgramRun toFile = Master(with({"--read", "--data", "out.dat", "--quiet"}));
    EXPECT_EQ(toFile.status, 0);
    EXPECT_EQ(toFile.out, "");
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "00 01 02 03 04 05 06 07 \n");
    const ProgramRun toOutput = Master(with({"--read", "--data", "-", "--quiet"}));
    EXPECT_EQ(toOutput.status, 0);
    EXPECT_EQ(toOutput.out, "00 01 02 03 04 05 06 07 \n");
    const ProgramRun fromInput = Master(with({"--compare", "--data", "-", "--quiet"}),
                                        {.standardInput = "00 01 02 03 04 05 06 08\n"});
    EXPECT_EQ(fromInput.status, 1) << "the last byte differs";
    EXPECT_TRUE(std::filesystem::is_empty(temporary.Path()));
    const ProgramRun json = Master(with({"--read", "--json", "--quiet"}));
    EXPECT_THAT(json.out, EndsWith(R"("failed": [], "data": "0001020304050607"})"
                                   "\n"));
}

// Questions.

constexpr auto question = "File already exists. Overwrite?";

TEST_F(BoardProgramMaster, WithoutATerminalTheAnswerIsNoAndPrinted) {
    StartBoard();
    files.Write("out.dat", "an older file\n");
    const ProgramRun run = Master({"--read", "--data", "out.dat", "--quiet"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line(std::string(question) + " no"));
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "an older file\n");
    EXPECT_EQ(Asked(steps), 0);
    EXPECT_EQ(Master({"--read", "--data", "out.dat", "--no"}).status, 3);
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "an older file\n");
}

TEST_F(BoardProgramMaster, YesAnswersEachQuestion) {
    StartBoard();
    files.Write("out.dat", "an older file\n");
    const ProgramRun run = Master({"--read", "--to", "1001", "--data", "out.dat", "--yes"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, Line(std::string(question) + " yes") + Line("00001000: Pass"));
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "00 00 \n");
}

TEST_F(BoardProgramMaster, OnATerminalTheUserIsAsked) {
    StartBoard();
    files.Write("out.dat", "an older file\n");
    const std::vector<std::string> read = {"--read", "--to",    "1001",
                                           "--data", "out.dat", "--quiet"};
    const ProgramRun no = Master(read, {.standardInput = "\n", .onTerminal = true});
    EXPECT_EQ(no.status, 3);
    EXPECT_EQ(no.err, std::string(question) + " [y/N] ");
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "an older file\n");
    const ProgramRun yes = Master(read, {.standardInput = "y\n", .onTerminal = true});
    EXPECT_EQ(yes.status, 0);
    EXPECT_EQ(yes.err, std::string(question) + " [y/N] ");
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "00 00 \n");
}

// Ends.

TEST_F(BoardProgramMaster, AnInterruptStopsTheBoardAndKeepsWhatWasRead) {
    StartBoard({"--fault", "delay 5"});
    const ProgramRun run = Master({"--read", "--to", "2FFF", "--data", "out.dat", "--quiet"},
                                  {.interruptWhen = Has(steps, 4)});
    EXPECT_EQ(run.status, 3) << "the range was not gone through";
    EXPECT_EQ(Asked("exerciser stop"), 1);
    EXPECT_THAT(board->Functions().back(), HasSubstr("exerciser stop"));
    const std::string read = ReadWholeFile(files.File("out.dat"));
    EXPECT_THAT(read, StartsWith("00 00 "));
    EXPECT_THAT(read, EndsWith(" \n"));
    EXPECT_LT(read.size(), 8192U);
}

TEST_F(BoardProgramMaster, AnInterruptIsTold) {
    StartBoard({"--fault", "step-busy 1000000"});
    const ProgramRun run = Master({}, {.interruptWhen = Has("address 801", 3)});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("interrupted after 1 steps"));
    EXPECT_EQ(Asked("exerciser stop"), 1);
}

TEST_F(BoardProgramMaster, TheTimeEndsARun) {
    StartBoard();
    const ProgramRun run = Master({"--repeat", "1000000", "--for", "1s"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("busquill-board: the time is over after "));
    EXPECT_EQ(Asked("exerciser stop"), 1);
}

TEST_F(BoardProgramMaster, ABoardThatRefusesTheSetupIsAFailure) {
    StartBoard({"--fault", "refuse 12"});
    const ProgramRun run = Master();
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("Error sending master setup to analyzer."));
    EXPECT_EQ(Asked(steps), 0);
}

TEST_F(BoardProgramMaster, FormsAreCheckedBeforeTheBoardIsAsked) {
    files.Write("no.mst", "\"FileType\",\"Target File\"\n\"Version\",\"1.0\"\n");
    const ProgramRun other = RunWithoutBoard({"master", "no.mst", "--port", "COM1"});
    EXPECT_EQ(other.status, 3);
    EXPECT_EQ(other.err, Line("no.mst: Invalid master file type of 'Target File'."));
    const ProgramRun none = RunWithoutBoard({"master", "none.mst", "--port", "COM1"});
    EXPECT_EQ(none.status, 3);
    EXPECT_EQ(none.err, Line("Error opening file none.mst. No such file or directory."));
}

TEST_F(BoardProgramMaster, WrongUse) {
    const auto wrong = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"master", "form.mst", "--port", "COM1"});
        ExpectWrongUse(more, says);
    };
    wrong({"--from", "12x"},
          "--from takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"12x\"");
    wrong({"--to", ""}, "--to takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"\"");
    wrong({"--value", "11112222333344445"},
          "--value takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"11112222333344445\"");
    wrong({"--repeat", "0"}, "--repeat is a number of passes from 1 up, not 0");
    wrong({"--for", "soon"}, "--for is a time such as 90, 90s, 5m or 8h, not \"soon\"");
    wrong({"--read", "--test"}, "--read excludes --test");
    wrong({"--value", "1", "--data", "a.dat"}, "--value excludes --data");
    wrong({"--yes", "--no"}, "--yes excludes --no");
    wrong({"other.mst"}, "master takes FORM.mst, not also \"other.mst\"");
    StartBoard();
    const ProgramRun space = Master({"--space", "Memo"});
    EXPECT_EQ(space.status, 2);
    EXPECT_EQ(space.err, Line("no space \"Memo\" on this board; there are Memory, I/O, Config"));
    EXPECT_EQ(Asked("write memory"), 0);
}

TEST_F(BoardProgramMaster, OnVmeTheSpaceIsTheAddressModifier) {
    StartBoard({"--model", "VMEKite", "--bus-byte", "0"});
    EXPECT_EQ(Master({"--space", "3D", "--quiet"}).status, 0);
    // The modifier and the level of the bus request are the last bytes of the setup.
    EXPECT_THAT(board->Log(), Contains(HasSubstr("00 00 00 00 3d 01 payload")));
    const ProgramRun wrong = Master({"--space", "40"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.err, Line("on this board the space is an address modifier, 00 to 3F in "
                              "hexadecimal; not \"40\""));
}

// dump

class BoardProgramDump : public BoardProgramMaster {};

TEST_F(BoardProgramDump, PrintsMemoryAsLinesBytesAndJson) {
    StartBoard();
    ASSERT_EQ(Master({"--to", "1003", "--value", "64636261"}).status, 0);
    const ProgramRun lines = Run({"dump", "memory", "1000", "1011"});
    EXPECT_EQ(lines.status, 0);
    EXPECT_EQ(lines.err, "");
    EXPECT_EQ(lines.out, "00001000  61 62 63 64 00 00 00 00 00 00 00 00 00 00 00 00  "
                         "abcd............\n"
                         "00001010  00 00                                            ..\n");
    const ProgramRun bytes = Run({"dump", "Memory", "0x1000", "0x1005", "--bytes"});
    EXPECT_EQ(bytes.status, 0);
    EXPECT_EQ(bytes.out, std::string("abcd\0\0", 6));
    const ProgramRun json = Run({"dump", "Memory", "1001", "1004", "--json"});
    EXPECT_EQ(json.out, R"({"space": "Memory", "from": "00001001", "data": "62636400"})"
                        "\n");
    const ProgramRun file = Run({"dump", "Memory", "1000", "1003", "--bytes", "-o", "memory.bin"});
    EXPECT_EQ(file.out, "");
    EXPECT_EQ(ReadWholeFile(files.File("memory.bin")), "abcd");
}

TEST_F(BoardProgramDump, MoreThanARunKeepsIsReadInSeveral) {
    StartBoard();
    ASSERT_EQ(Master({"--from", "30D40", "--to", "30D40", "--value", "7A"}).status, 0);
    // 200,016 bytes, of which a run keeps 200,000. Thousands of steps take a while.
    const ProgramRun run =
        Run({"dump", "memory", "0", "30D4F", "--bytes"}, {.limit = std::chrono::seconds(240)});
    EXPECT_EQ(run.status, 0);
    ASSERT_EQ(run.out.size(), 200'016U);
    EXPECT_EQ(run.out[200'000], 'z');
    EXPECT_EQ(std::ranges::count(run.out, '\0'), 200'015);
}

TEST_F(BoardProgramDump, AddressesOf64BitsAreReached) {
    StartBoard();
    const ProgramRun run = Run({"dump", "memory", "1FFFFFFF0", "1FFFFFFF3"});
    EXPECT_EQ(run.status, 0);
    ExpectSetup("00 03 f0 ff ff ff 01 00 00 00 04");
}

TEST_F(BoardProgramDump, StepsThatFailAreTold) {
    StartBoard({"--fault", "step-status 66"}); // no device select, failed
    const ProgramRun run = Run({"dump", "memory", "0", "0"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, Line("00000000: No Device Select") + Line("00000000: Fail"));
}

TEST_F(BoardProgramDump, AnInterruptStopsTheBoardAndWhatCameIsKept) {
    StartBoard({"--fault", "delay 5"});
    const ProgramRun run =
        Run({"dump", "memory", "0", "FFFF", "-o", "memory.txt"}, {.interruptWhen = Has(steps, 4)});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, StartsWith("busquill-board: interrupted after "));
    EXPECT_EQ(Asked("exerciser stop"), 1);
    EXPECT_THAT(ReadWholeFile(files.File("memory.txt")), StartsWith("00000000  00 00 "));
}

TEST_F(BoardProgramDump, AReaderThatHasGoneStopsTheBoard) {
    StartBoard({"--fault", "delay 5"});
    const ProgramRun run = Run({"dump", "memory", "0", "FFFF"}, {.readAtMost = 100});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(Asked("exerciser stop"), 1);
}

TEST_F(BoardProgramDump, WrongUse) {
    const auto wrong = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"dump", "--port", "COM1"});
        ExpectWrongUse(more, says);
    };
    wrong({"memory", "x", "10"}, "FROM is a hexadecimal number of at most 16 digits; not \"x\"");
    wrong({"memory", "0", "1G"}, "TO is a hexadecimal number of at most 16 digits; not \"1G\"");
    wrong({"memory", "10", "F"}, "TO is the last address, not below FROM; not \"F\"");
    wrong({"memory", "0"}, "dump needs SPACE FROM TO");
    wrong({"memory", "0", "F", "--bytes", "--json"}, "--json excludes --bytes");
    const ProgramRun folder =
        RunWithoutBoard({"dump", "memory", "0", "F", "--port", "COM1", "-o", "none/memory"});
    EXPECT_EQ(folder.status, 3);
    EXPECT_EQ(folder.err, Line("Error creating file none/memory."));
}

} // namespace
} // namespace busquill::test
