// busquill-trace with a board when a run does not end normally: interrupts and failures.

#include "platform/serial_port.h"
#include "support/paths.h"
#include "support/trace_program_over_wire.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

class TraceProgramEnd : public TraceProgram {
protected:
    /// The condition that the board has logged such functions at least `times` times.
    std::function<bool()> Has(const std::string& words, std::ptrdiff_t times = 1) const {
        return [this, words, times] { return Asked(words) >= times; };
    }
    /// Sets a fault of the board once it has logged such a function.
    std::function<void()> FaultAfter(const std::string& words, const std::string& fault) {
        return [this, words, fault] {
            if (!faulty && Asked(words) > 0) {
                faulty = true;
                board->Fault(fault);
            }
        };
    }
    void ExpectNothingLeft() const {
        EXPECT_THAT(FilesIn(folder), IsEmpty());
        EXPECT_THAT(FilesIn(temporary), IsEmpty());
    }
    static std::string Line(const std::string& text) { return "busquill-trace: " + text + "\n"; }
    /// The samples that `info` finds in the target.
    int SamplesInTarget() const {
        const ProgramRun info = RunTrace({"info", "--json", target});
        EXPECT_EQ(info.status, 0) << info.err;
        const auto at = info.out.find("\"samples\": ");
        return at == std::string::npos ? -1 : std::stoi(info.out.substr(at + 11));
    }

    bool faulty = false;
    static constexpr auto live = "address 425";
    static constexpr auto muteWrites = "mute 2"; // the function that writes a setup
};

// Interrupts.

TEST_F(TraceProgramEnd, AnInterruptedRunIsStoppedAndSaved) {
    // At this rate the memory takes a minute after the trigger.
    StartBoard({"--buffer", "64", "--rate", "500"});
    const ProgramRun run = Capture(memoryWrite, {}, {.interruptWhen = Has(live, 4)});
    EXPECT_EQ(run.status, 0);
    EXPECT_GE(Asked("stop trace"), 1);
    const int samples = SamplesInTarget();
    EXPECT_GT(samples, 0);
    EXPECT_LT(samples, 32768);
    EXPECT_EQ(run.err, Line("interrupted; what the board has is fetched") +
                           Line(target + ": " + std::to_string(samples) + " samples"));
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
}

TEST_F(TraceProgramEnd, AnInterruptedUploadKeepsTheSamplesThatArrived) {
    // Six answers for each block of 32 samples: more than ten seconds for all of them.
    StartBoard({"--buffer", "1", "--fault", "delay 50"});
    const ProgramRun run =
        Capture(Writes(40), {}, {.interruptWhen = Has("read samples after the trigger", 3)});
    EXPECT_EQ(run.status, 0);
    const int samples = SamplesInTarget();
    EXPECT_GE(samples, 64);
    EXPECT_LT(samples, 1024);
    EXPECT_EQ(run.err, Line(std::to_string(samples) + " of 1024 samples have come") +
                           Line(target + ": " + std::to_string(samples) + " samples"));
    EXPECT_EQ(RowsOf(ReadWholeFile(target)).records.size(), static_cast<std::size_t>(samples));
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
}

TEST_F(TraceProgramEnd, AnInterruptEndsEndlessRuns) {
    StartBoard({"--buffer", "1"});
    const ProgramRun run =
        Capture(memoryWrite, {"--repeat", "0"}, {.interruptWhen = Has("start trace", 3)});
    EXPECT_EQ(run.status, 0);
    EXPECT_GE(FilesIn(folder).size(), 2U);
}

TEST_F(TraceProgramEnd, AnInterruptedRunWithoutSamplesWritesNoFile) {
    StartBoard({"--buffer", "1"});
    const ProgramRun run = Capture(Never("None"), {}, {.interruptWhen = Has(live, 2)});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
              Line("interrupted; what the board has is fetched") + Line("no samples have come"));
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, AnInterruptWhileConnectingStartsNoRun) {
    StartBoard({"--buffer", "1"});
    // The board then has two seconds to settle.
    const ProgramRun run = Capture(memoryWrite, {}, {.interruptWhen = Has("address 0 length 18")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("interrupted"));
    EXPECT_EQ(Asked("write memory"), 0);
    EXPECT_EQ(Asked("start trace"), 0);
    ExpectNothingLeft();
}

// No board.

TEST_F(TraceProgramEnd, InvalidPortsAreReported) {
    const TempDir files;
    for (const std::string& port :
         {std::string("/dev/null"), files.Write("port", "no terminal\n")}) {
        const ProgramRun run = RunTrace({"board", "--port", port});
        EXPECT_EQ(run.status, 3);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, Line("the port " + port + " is not a serial port"));
    }
    EXPECT_EQ(ReadWholeFile(files.File("port")), "no terminal\n");
    const ProgramRun run = RunTrace({"board", "--port", "/nonexistent/tty"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("there is no port /nonexistent/tty; ports are COM1 to COM8, USB and "
                            "paths of terminal devices"));
}

TEST_F(TraceProgramEnd, APortInUseIsReported) {
    StartBoard();
    auto other = OpenSerialPort(board->Terminal());
    ASSERT_NE(other, nullptr);
    const ProgramRun run = Run({"board"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("the port " + board->Terminal() + " is in use by another program"));
    other.reset();
    EXPECT_EQ(Run({"board"}).status, 0);
}

TEST_F(TraceProgramEnd, ASilentBoardIsNotABoard) {
    StartBoard({"--fault", "silence"});
    const ProgramRun run = Run({"board"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("no board answers on " + board->Terminal()));
}

TEST_F(TraceProgramEnd, ABoardThatFallsSilentAfterItsIdentityIsNotShown) {
    StartBoard();
    const ProgramRun run =
        Run({"board"}, {.meanwhile = FaultAfter("address 0 length 18", "silence")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("the board on " + board->Terminal() + " does not answer any more"));
}

TEST_F(TraceProgramEnd, ABoardThatDoesNotReturnItsBusIsNotShown) {
    // One acknowledgement for the search for its rate, five for the identity.
    StartBoard({"--fault", "refuse 7"});
    const ProgramRun run = Run({"board", "--json"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("the board on " + board->Terminal() + " does not answer any more"));
    EXPECT_EQ(Asked("address 0 length 18"), 1);
}

TEST_F(TraceProgramEnd, ABoardWhoseIdentityArrivesTooLateIsNotShownWithoutAName) {
    // Three short replies take nine seconds; by then the program requests the bus.
    StartBoard({"--fault", "short-reply 2"});
    std::ptrdiff_t short_ = 1;
    const ProgramRun run = Run({"board"}, {.meanwhile = [&] {
                                   if (short_ < 3 && Asked("address 0 length 18") >= short_) {
                                       ++short_;
                                       board->Fault("short-reply 2");
                                   }
                               }});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, Line("the board on " + board->Terminal() + " has not told what it is"));
    EXPECT_EQ(Asked("address 18 length 2"), 1) << "the board answers again";
}

// A board that stops in the middle of a command, which the link repeats without end.

TEST_F(TraceProgramEnd, AnInterruptEndsASetupThatTheBoardNeverAccepts) {
    StartBoard({"--buffer", "1", "--fault", muteWrites});
    const ProgramRun run = Capture(memoryWrite, {}, {.interruptWhen = Has("write memory", 2)});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("Error sending trace parameter data to analyzer.") +
                           Line("interrupted; the board has not taken the setup"));
    EXPECT_EQ(Asked("start trace"), 0);
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, ATimeoutEndsASetupThatTheBoardNeverAccepts) {
    StartBoard({"--buffer", "1", "--fault", muteWrites});
    const ProgramRun run = Capture(memoryWrite, {"--timeout", "8"});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, EndsWith(Line("the time is over; the board has not taken the setup")));
    EXPECT_EQ(Asked("start trace"), 0);
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, ASetupThatTheBoardNeverAcceptsIsGivenUp) {
    StartBoard({"--buffer", "1", "--fault", muteWrites});
    const ProgramRun run = Capture(memoryWrite);
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err,
                EndsWith(Line("no end after 30 seconds; the board has not taken the setup")));
    EXPECT_GT(Asked("write memory"), 3) << "the link itself does not give up";
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, AnInterruptEndsAnUploadThatStalls) {
    StartBoard({"--buffer", "1", "--fault", "delay 50"});
    const ProgramRun run =
        Capture(Writes(40), {},
                {.meanwhile = FaultAfter("read samples after the trigger", "mute 5"),
                 .interruptWhen = Has("read samples after the trigger", 4)});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr(" of 1024 samples have come\n"));
    EXPECT_LT(SamplesInTarget(), 512);
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
}

TEST_F(TraceProgramEnd, AnUploadThatStallsIsGivenUp) {
    StartBoard({"--buffer", "1", "--fault", "delay 50"});
    const ProgramRun run = Capture(
        Writes(40), {}, {.meanwhile = FaultAfter("read samples after the trigger", "mute 5")});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr(Line("the board hands over no more samples")));
    EXPECT_GT(SamplesInTarget(), 0);
}

TEST_F(TraceProgramEnd, ARunWithoutAStatusIsGivenUp) {
    StartBoard({"--buffer", "64", "--rate", "500"});
    const ProgramRun run = Capture(memoryWrite, {}, {.meanwhile = FaultAfter(live, "mute 1")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("the board does not answer any more; nothing has been fetched"));
    ExpectNothingLeft();
}

// Captures that fail.

TEST_F(TraceProgramEnd, AFileThatIsNotASetupIsNotSent) {
    StartBoard({"--buffer", "1"});
    const std::string missing = setups.File("none.tsp");
    const ProgramRun none = Capture(missing);
    EXPECT_EQ(none.status, 3);
    EXPECT_THAT(none.err, HasSubstr("Error opening file " + missing + "."));
    const std::string trace = SourceFile("data/Trigger1.tra");
    const ProgramRun other = Capture(trace);
    EXPECT_EQ(other.status, 3);
    EXPECT_THAT(other.err,
                HasSubstr(trace + ": Error: File type of 'Trace Setup File' not found."));
    EXPECT_EQ(Asked("write memory"), 0);
    EXPECT_EQ(Asked("start trace"), 0);
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, ABoardThatDoesNotAcceptTheSetupIsNotStarted) {
    // One acknowledgement for the search for its rate, five each for the identity and the bus.
    StartBoard({"--buffer", "1", "--fault", "refuse 12"});
    const ProgramRun run = Capture(memoryWrite);
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, EndsWith(Line("the board has not taken the setup")));
    EXPECT_EQ(Asked("address 18 length 2"), 1);
    EXPECT_EQ(Asked("start trace"), 0);
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, LostAnswersToTheSetupAreRequestedAgain) {
    StartBoard({"--buffer", "1", "--fault", "wrong-ack 14,drop-ack 16"});
    const ProgramRun run = Capture(memoryWrite);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Asked("start trace"), 1);
    EXPECT_GT(SamplesInTarget(), 512);
}

TEST_F(TraceProgramEnd, ALostLinkLeavesTheTargetUnchanged) {
    StartBoard({"--buffer", "64", "--rate", "500"});
    folder.Write("out.tra", "an older capture\n");
    const ProgramRun run = Capture(memoryWrite, {}, {.meanwhile = FaultAfter(live, "go-away")});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err,
                EndsWith(Line("the board does not answer any more; nothing has been fetched")));
    EXPECT_THAT(run.err, HasSubstr("Error writing to " + board->Terminal() + ", err "))
        << "the port by the name that the user gave";
    EXPECT_EQ(ReadWholeFile(target), "an older capture\n");
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
}

TEST_F(TraceProgramEnd, ABoardThatFallsSilentDuringTheRunLeavesNoFile) {
    StartBoard({"--buffer", "64", "--rate", "500"});
    const ProgramRun run = Capture(memoryWrite, {}, {.meanwhile = FaultAfter(live, "silence")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("the board does not answer any more; nothing has been fetched"));
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, ALinkLostDuringTheUploadKeepsTheSamplesThatArrivedAndFails) {
    StartBoard({"--buffer", "1", "--fault", "delay 50"});
    const ProgramRun run = Capture(
        Writes(40), {}, {.meanwhile = FaultAfter("read samples before the trigger", "go-away")});
    EXPECT_EQ(run.status, 3);
    EXPECT_THAT(run.err, HasSubstr(" of 1024 samples have come\n"));
    const int samples = SamplesInTarget();
    EXPECT_GT(samples, 0);
    EXPECT_LT(samples, 1024);
}

TEST_F(TraceProgramEnd, ATargetThatCannotBeCreated) {
    StartBoard({"--buffer", "1"});
    target = folder.File("none/out.tra");
    const ProgramRun run = Capture(memoryWrite);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.err, Line("Error creating file " + target + "."));
    EXPECT_EQ(Asked("start trace"), 0); // the samples would be lost
    ExpectNothingLeft();
}

TEST_F(TraceProgramEnd, ANewCaptureReplacesTheOldOne) {
    StartBoard({"--buffer", "1"});
    folder.Write("out.tra", "an older capture\n");
    ASSERT_EQ(Capture(memoryWrite).status, 0);
    EXPECT_GT(SamplesInTarget(), 512);
    EXPECT_THAT(FilesIn(folder), ElementsAre("out.tra"));
}

} // namespace
} // namespace busquill::test
