// busquill-board stimulus, firmware and target: what the board is given and told to do.

#include "support/board_program_over_wire.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

class BoardProgramDrives : public BoardProgramOverWire {
protected:
    /// The payloads of so many bytes, in their order.
    [[nodiscard]] std::vector<std::string> Payloads(std::size_t bytes) const {
        std::vector<std::string> payloads;
        for (const std::string& line : board->Log()) {
            const auto end = line.find(" payload");
            if (end == 6 + 3 * bytes - 1) {
                payloads.push_back(line.substr(6, end - 6));
            }
        }
        return payloads;
    }
};

// stimulus

class BoardProgramStimulus : public BoardProgramDrives {
protected:
    void WriteProgram(const std::string& then) const {
        files.Write("walk.stm", "\"FileType\",\"Stimulus File\"\n\"Version\",\"1.0\"\n"
                                "\"Control\",1,\"All\",3,\"" +
                                    then + "\",\"Goto SL1\",\"S1\"\n");
    }
    static constexpr auto start = "start stimulus";
    static constexpr auto stop = "stop stimulus";
    static constexpr auto readStatus = "read memory, address 929";
};

TEST_F(BoardProgramStimulus, AProgramRunsToItsEnd) {
    StartBoard();
    WriteProgram("STOP");
    const ProgramRun run = Run({"stimulus", "walk.stm"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("the program has ended"));
    const auto levels = Payloads(80);
    ASSERT_EQ(levels.size(), 1U);
    EXPECT_THAT(levels[0], StartsWith("1f 0f 03 01 01 "));
    EXPECT_EQ(Asked(start), 1);
    EXPECT_EQ(Asked(stop), 0);
}

TEST_F(BoardProgramStimulus, AProgramWithoutAnEndIsStoppedWhenItsTimeIsOver) {
    StartBoard();
    WriteProgram("Goto SL1");
    const ProgramRun run = Run({"stimulus", "walk.stm", "--for", "1500ms", "--json", "--quiet"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "{\"end\": \"time over\"}\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(Asked(readStatus), 3) << "every 400 ms";
    EXPECT_THAT(board->Functions().back(), HasSubstr(stop));
}

TEST_F(BoardProgramStimulus, AnInterruptStopsTheProgram) {
    StartBoard();
    WriteProgram("Goto SL1");
    const ProgramRun run = Run({"stimulus", "walk.stm"}, {.interruptWhen = Has(readStatus, 2)});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("interrupted; the program was stopped"));
    EXPECT_THAT(board->Functions().back(), HasSubstr(stop));
}

TEST_F(BoardProgramStimulus, HalfAProgramDoesNotDriveTheBus) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--fault", "drop-ack 13"});
    WriteProgram("Goto SL1");
    // The link tries again, so this one gets through.
    EXPECT_EQ(Run({"stimulus", "walk.stm", "--for", "500ms"}).status, 0);
    StartBoard({"--fault", "refuse 12"});
    const ProgramRun run = Run({"stimulus", "walk.stm"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, AllOf(StartsWith(Line("Error sending stimulus condition data to "
                                               "analyzer.")),
                               EndsWith(Line("the board has not taken the program"))));
}

TEST_F(BoardProgramStimulus, ABoardThatDoesNotTellItsStatusIsStopped) {
    StartBoard();
    WriteProgram("Goto SL1");
    bool gone = false;
    const ProgramRun run = Run({"stimulus", "walk.stm"}, {.meanwhile = [&] {
                                   if (!gone && Asked(readStatus) >= 1) {
                                       gone = true;
                                       board->Unplug();
                                   }
                               }});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr("Error reading stimulus status from analyzer."));
}

TEST_F(BoardProgramStimulus, WrongUse) {
    ExpectWrongUse({"stimulus", "--port", "COM1"}, "stimulus needs PROGRAM.stm");
    ExpectWrongUse({"stimulus", "--port", "COM1", "walk.stm", "--for", "0s"},
                   "--for is a time such as 90, 90s, 5m or 8h, not \"0s\"");
    ExpectWrongUse({"stimulus", "--port", "COM1", "walk.stm", "--yes"}, "stimulus takes no --yes");
    const ProgramRun none = RunWithoutBoard({"stimulus", "--port", "COM1", "none.stm"});
    EXPECT_EQ(none.status, 3);
    EXPECT_EQ(none.err, Line("Error opening file none.stm. No such file or directory."));
    StartBoard();
    files.Write("no.stm", "\"FileType\",\"Master File\"\n\"Version\",\"1.0\"\n");
    const ProgramRun run = Run({"stimulus", "no.stm"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("no.stm is no stimulus program"));
    EXPECT_EQ(Asked(start), 0);
}

// firmware

class BoardProgramFirmware : public BoardProgramDrives {
protected:
    static constexpr auto text = ":0400000001020304F2\n:04001000AABBCCDDDE\n:00000001FF\n";
    /// A file of so many records.
    void WriteFirmware(int records) const {
        std::string hex;
        for (int i = 0; i < records; ++i) {
            char line[32];
            std::snprintf(line, sizeof line, ":02%04X00ABCD00\n", 2 * i);
            hex += line;
        }
        files.Write("big.hex", hex + ":00000001FF\n");
    }
    static constexpr auto sent = "firmware record";
    static constexpr auto question = "Replace the firmware of the PCIKite-3 by new.hex?";
};

TEST_F(BoardProgramFirmware, IsReplacedWhenTheUserSaysYes) {
    StartBoard();
    files.Write("new.hex", text);
    const ProgramRun run = Run({"firmware", "new.hex", "--yes"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "Download complete.\n");
    EXPECT_EQ(run.err, Line(std::string(question) + " yes"));
    EXPECT_THAT(board->Firmware(), AllOf(HasSubstr("01020304"), HasSubstr("AABBCCDD")));
    const ProgramRun json = Run({"firmware", "new.hex", "--yes", "--quiet", "--json"});
    EXPECT_EQ(json.status, 0);
    EXPECT_EQ(json.err, "");
    EXPECT_EQ(json.out, "{\"complete\": true, \"records\": 3, \"of\": 3}\n");
}

TEST_F(BoardProgramFirmware, StaysWhenTheUserDoesNotSayYes) {
    StartBoard();
    files.Write("new.hex", text);
    for (const auto& [more, input] : std::vector<std::pair<std::vector<std::string>, ProgramInput>>{
             {{"--no"}, {}}, {{}, {}}, {{}, {.standardInput = "y\n"}}}) {
        std::vector<std::string> arguments = {"firmware", "new.hex"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const ProgramRun run = Run(arguments, input);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, Line(std::string(question) + " no") + Line("nothing was downloaded"));
    }
    const ProgramRun typed =
        Run({"firmware", "new.hex"}, {.standardInput = "n\n", .onTerminal = true});
    EXPECT_EQ(typed.status, 3);
    EXPECT_THAT(typed.err, StartsWith(std::string(question) + " [y/N] "));
    EXPECT_EQ(Asked(sent), 0);
    EXPECT_EQ(Run({"firmware", "new.hex"}, {.standardInput = "yes\n", .onTerminal = true}).status,
              0);
}

TEST_F(BoardProgramFirmware, AWrongFileIsFoundBeforeTheBoardLosesItsOwn) {
    const auto fails = [this](const std::string& content, const std::string& says) {
        files.Write("bad.hex", content);
        const ProgramRun run = RunWithoutBoard({"firmware", "bad.hex", "--port", "COM1", "--yes"});
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.err, Line(says));
    };
    fails(":0400000001020304F2\n:020000040001F9\n", "Invalid hex record 1 in file bad.hex.");
    fails(":0400000001020304F2\n:04001000AABB", "Invalid hex record 1 in file bad.hex.");
    fails("firmware\n", "bad.hex has no records");
}

TEST_F(BoardProgramFirmware, AnInterruptEndsTheDownloadAndIsTold) {
    StartBoard();
    WriteFirmware(600);
    const ProgramRun run = Run({"firmware", "big.hex", "--yes"}, {.interruptWhen = Has(sent, 5)});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, MatchesRegex("(.|\n)*busquill-board: interrupted after [0-9]+ of 601 "
                                      "records; the board holds a part of the new firmware: "
                                      "download again before you use it\n"));
    EXPECT_LT(Asked(sent), 600);
}

TEST_F(BoardProgramFirmware, ARecordThatTheBoardDoesNotTakeEndsTheDownload) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--fault", "refuse 12"});
    files.Write("new.hex", text);
    const ProgramRun run = Run({"firmware", "new.hex", "--yes"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, AllOf(HasSubstr(Line("Serial connection error sending firmware record "
                                              "1.")),
                               EndsWith(Line("the download has ended after 1 of 3 records; the "
                                             "board holds a part of the new firmware: download "
                                             "again before you use it"))));
}

TEST_F(BoardProgramFirmware, ADownloadThatDoesNotGoOnEnds) {
    StartBoard({"--fault", "mute 30"}); // the link would try for ever
    files.Write("new.hex", text);
    const ProgramRun run =
        Run({"firmware", "new.hex", "--yes"}, {.limit = std::chrono::seconds(120)});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr("the download has ended after 1 of 3 records; "));
}

TEST_F(BoardProgramFirmware, WrongUse) {
    ExpectWrongUse({"firmware", "--port", "COM1"}, "firmware needs FILE.hex");
    ExpectWrongUse({"firmware", "--port", "COM1", "a.hex", "--yes", "--no"}, "--yes excludes --no");
    ExpectWrongUse({"firmware", "--port", "COM1", "a.hex", "--for", "1s"},
                   "firmware takes no --for");
    EXPECT_EQ(RunWithoutBoard({"firmware", "--port", "COM1", "none.hex"}).err,
              Line("Error opening file none.hex. No such file or directory."));
}

// target

class BoardProgramTarget : public BoardProgramDrives {
protected:
    void SetUp() override {
        files.Write("io.tgt", "\"FileType\",\"Target File\"\r\n\"Version\",\"1.0\"\r\n"
                              "\"AddressSpace\",\"I/O\"\r\n\"AddressSize\",\"1 KB\"\r\n"
                              "\"AddressStart\",\"0000000000000100\"\r\n"
                              "\"AddressEnd\",\"0000000000000109\"\r\n\"DataSize\",\"16 bit\"\r\n"
                              "\"DataType\",\"Value\"\r\n"
                              "\"DataValue\",\"0807060504030201\"\r\n");
    }
    /// The setups that the board got: twelve bytes.
    [[nodiscard]] std::vector<std::string> Setups() const { return Payloads(12); }
    [[nodiscard]] std::function<bool()> IsEnabled() const {
        return [this] {
            const auto setups = Setups();
            return std::ranges::any_of(
                setups, [](const std::string& setup) { return setup.substr(33) >= "80"; });
        };
    }
};

TEST_F(BoardProgramTarget, AnswersTheBusUntilItsTimeIsOver) {
    StartBoard();
    const ProgramRun run = Run({"target", "io.tgt", "--base", "fe001000", "--wait-states", "3",
                                "--response", "retry", "--for", "300ms"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              Line("the target is enabled") + Line("the time is over; the target is disabled"));
    EXPECT_THAT(Setups(), testing::ElementsAre("00 10 00 fe 00 00 00 00 0b 01 35 81",
                                               "00 10 00 fe 00 00 00 00 0b 01 35 01"));
    EXPECT_EQ(Asked("target data"), 0);
}

TEST_F(BoardProgramTarget, IsFilledBeforeItAnswersAndReadAfterwards) {
    StartBoard();
    files.Write("in.dat", "de ad be ef 00 11 22 33 44 55 \n");
    const ProgramRun run = Run({"target", "io.tgt", "--fill", "in.dat", "--read-into", "out.dat",
                                "--for", "200ms", "--json"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "{\"end\": \"time over\", \"read\": 10}\n");
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "de ad be ef 00 11 22 33 44 55 \n");
    EXPECT_FALSE(std::filesystem::exists(files.File("out.dat.part")));
    std::vector<std::string> commands;
    for (const std::string& setup : Setups()) {
        commands.push_back(setup.substr(33));
    }
    // Off while it is filled and while it is read.
    EXPECT_THAT(commands, testing::ElementsAre("02", "82", "01"));
}

TEST_F(BoardProgramTarget, IsFilledWithAValueInAnotherRange) {
    StartBoard();
    const ProgramRun run = Run({"target", "io.tgt", "--value", "aa55", "--from", "0x200", "--to",
                                "3ff", "--read-into", "out.dat", "--for", "100ms", "--quiet"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    const std::string data = ReadWholeFile(files.File("out.dat"));
    EXPECT_THAT(data, StartsWith("55 aa 00 00 00 00 00 00 55 aa "));
    EXPECT_EQ(std::ranges::count(data, ' '), 0x200);
    EXPECT_EQ(std::ranges::count(data, '\n'), 3) << "steps of 248 bytes";
}

TEST_F(BoardProgramTarget, AnInterruptDisablesItAndKeepsTheMemory) {
    StartBoard();
    files.Write("in.dat", "01 02 03 04 05 06 07 08 09 0a \n");
    const ProgramRun run = Run({"target", "io.tgt", "--fill", "in.dat", "--read-into", "out.dat"},
                               {.interruptWhen = IsEnabled()});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, Line("the target is enabled") + Line("out.dat: 10 bytes") +
                           Line("interrupted; the target is disabled"));
    EXPECT_THAT(Setups().back(), EndsWith(" 01"));
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "01 02 03 04 05 06 07 08 09 0a \n");
}

TEST_F(BoardProgramTarget, AsksBeforeAFileIsReplacedOrPadded) {
    StartBoard();
    files.Write("out.dat", "old\n");
    const ProgramRun kept = Run({"target", "io.tgt", "--read-into", "out.dat", "--for", "100ms"});
    EXPECT_EQ(kept.status, 3);
    EXPECT_EQ(kept.err, Line("File already exists. Overwrite? no") +
                            Line("out.dat is kept; nothing was done"));
    files.Write("in.dat", "01 02 03 \n");
    const ProgramRun shorter = Run({"target", "io.tgt", "--fill", "in.dat", "--for", "100ms"});
    EXPECT_EQ(shorter.status, 3);
    EXPECT_EQ(shorter.err, Line("Warning: File length of 3 is less than address length of 10. "
                                "Zeros will be padded at the end of the file. Continue? no") +
                               Line("the target's memory was not filled"));
    EXPECT_THAT(Setups(), testing::Each(Not(EndsWith(" 82"))));
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "old\n");
    const ProgramRun yes = Run({"target", "io.tgt", "--fill", "in.dat", "--read-into", "out.dat",
                                "--for", "100ms", "--yes", "--quiet"});
    EXPECT_EQ(yes.status, 0);
    EXPECT_EQ(ReadWholeFile(files.File("out.dat")), "01 02 03 00 00 00 00 00 00 00 \n");
}

TEST_F(BoardProgramTarget, ABoardThatRefusesTheSetupIsTold) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--fault", "refuse 12"});
    const ProgramRun run = Run({"target", "io.tgt", "--for", "5s"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, AllOf(StartsWith(Line("Error sending target setup to analyzer.")),
                               EndsWith(Line("the board has not taken the setup"))));
}

TEST_F(BoardProgramTarget, ABoardThatGoesAwayIsTold) {
    StartBoard();
    bool gone = false;
    const ProgramRun run = Run({"target", "io.tgt"}, {.meanwhile = [&] {
                                   if (!gone && IsEnabled()()) {
                                       gone = true;
                                       board->Unplug();
                                   }
                               }});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, EndsWith(Line("the board does not answer as it should")));
}

TEST_F(BoardProgramTarget, WrongUse) {
    const auto wrong = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"target", "--port", "COM1"});
        ExpectWrongUse(more, says);
    };
    wrong({}, "target needs FORM.tgt");
    wrong({"io.tgt", "--wait-states", "16"}, "--wait-states is a number from 0 to 15, not 16");
    wrong({"io.tgt", "--response", "abort"},
          "--response is one of normal, retry, disconnect; not \"abort\"");
    wrong({"io.tgt", "--base", "fred"},
          "--base takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"fred\"");
    wrong({"io.tgt", "--from", "x"},
          "--from takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"x\"");
    wrong({"io.tgt", "--to", ""},
          "--to takes a hexadecimal number up to FFFFFFFFFFFFFFFF, not \"\"");
    wrong({"io.tgt", "--value", "1", "--fill", "in.dat"}, "--value excludes --fill");
    wrong({"io.tgt", "--yes", "--no"}, "--yes excludes --no");
    wrong({"io.tgt", "--for", "x"}, "--for is a time such as 90, 90s, 5m or 8h, not \"x\"");
    const auto fails = [this](std::vector<std::string> more, const std::string& says) {
        more.insert(more.begin(), {"target", "--port", "COM1"});
        const ProgramRun run = RunWithoutBoard(more);
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.err, Line(says));
    };
    fails({"none.tgt"}, "Error opening file none.tgt. No such file or directory.");
    files.Write("no.tgt", "hello\n");
    fails({"no.tgt"}, "no.tgt: Invalid target file type of ''.");
    fails({"io.tgt", "--fill", "none.dat"},
          "Error opening file none.dat. No such file or directory.");
    fails({"io.tgt", "--read-into", "none/out.dat"}, "Error creating file none/out.dat.");
    StartBoard();
    const ProgramRun run = Run({"target", "io.tgt", "--from", "200"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("End Address must be >= Start Address."));
    EXPECT_THAT(Setups(), testing::IsEmpty());
}

} // namespace
} // namespace busquill::test
