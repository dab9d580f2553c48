#include "stimulus/stimulus_program.h"
#include "stimulus/stimulus_run.h"
#include "support/link_fixture.h"
#include "support/manual_timer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string conditionFailed = "Error sending stimulus condition data to analyzer.";
const std::string controlFailed = "Error sending stimulus control setup data to analyzer.";
const std::string startFailed = "Error sending start stimulus command to analyzer.";
const std::string stopFailed = "Error sending stop stimulus command to analyzer.";
const std::string readFailed = "Error reading stimulus status from analyzer.";

constexpr int readMemory = 1;
constexpr int startStimulus = 25;
constexpr int stopStimulus = 26;

class StimulusRunTest : public LinkFixture {
protected:
    ~StimulusRunTest() override { run.reset(); }

    StimulusRun& Run() {
        if (!run) {
            program = std::make_unique<StimulusProgram>(analyzer->Tables());
            run = std::make_unique<StimulusRun>(
                BoardRun::Parts{*link, prompts, std::make_unique<ManualTimer>(timer)},
                [this](bool running) { pictures.push_back(running); });
        }
        return *run;
    }
    /// Opens the board and forgets what that has taken.
    void UseModel(const std::string& model) {
        OpenBoard(model);
        Functions();
    }
    void Go() {
        StimulusRun& started = Run();
        started.Go(*program);
    }
    void SetStatus(std::uint8_t status) {
        line->Do([&] { board.contents[929] = {status}; });
    }
    std::vector<WireBoard::Write> Writes() {
        std::vector<WireBoard::Write> writes;
        line->Do([&] { writes = std::exchange(board.writes, {}); });
        return writes;
    }
    /// The functions since the last call, without the writes.
    std::vector<int> Functions() {
        std::vector<int> functions;
        line->Do([&] { functions = std::exchange(board.functions, {}); });
        std::erase(functions, 2);
        return functions;
    }
    /// The board does not answer the frame that begins a write to an address, or this function.
    void Ignore(std::uint8_t opcode, std::uint8_t parameter) {
        line->SetAnswer([this, opcode, parameter](const Bytes& sent, int baud) {
            return sent == Bytes{opcode, parameter} ? Bytes{} : board.Answer(sent, baud);
        });
    }

    std::shared_ptr<TimerState> timer = std::make_shared<TimerState>();
    std::unique_ptr<StimulusProgram> program;
    std::unique_ptr<StimulusRun> run;
    std::vector<bool> pictures;
};

TEST_F(StimulusRunTest, GoSendsEventsPatternsAndLevelsAndStarts) {
    UseModel("PCIKite");
    Run();
    CSignal* pattern = program->patterns.InsertBlank(nullptr);
    pattern->dataIndex = 119;
    pattern->data = pattern->mask = {0x4000};
    CSignal* event = program->control.events.InsertBlank(nullptr);
    event->dataIndex = 0;
    event->data = {0x80};
    program->control.levels[0].thenGoto = stimulusStop;
    Go();

    const std::vector<WireBoard::Write> writes = Writes();
    ASSERT_THAT(writes, SizeIs(3));
    EXPECT_EQ(writes[0].address, 1600U);
    ASSERT_THAT(writes[0].bytes, SizeIs(240));
    EXPECT_EQ(writes[0].bytes[210], 0x01);
    EXPECT_EQ(writes[1].address, 930U);
    ASSERT_THAT(writes[1].bytes, SizeIs(480));
    EXPECT_EQ(writes[1].bytes[448], 0x80);
    EXPECT_EQ(writes[1].bytes[449], 0x80);
    EXPECT_THAT(Bytes(writes[1].bytes.begin() + 450, writes[1].bytes.end()), Each(0));
    EXPECT_EQ(writes[2].address, 1410U);
    ASSERT_THAT(writes[2].bytes, SizeIs(80));
    EXPECT_EQ(Bytes(writes[2].bytes.begin(), writes[2].bytes.begin() + 5),
              (Bytes{0x1F, 0x0F, 1, 1, 1}));
    EXPECT_THAT(Functions(), ElementsAre(startStimulus));
    EXPECT_THAT(pictures, ElementsAre(true));
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 400ms);
    EXPECT_THAT(prompts.Boxes(), IsEmpty());
}

TEST_F(StimulusRunTest, FourEventsAreFollowedByZeros) {
    UseModel("VME Lark");
    Run();
    ASSERT_EQ(program->eventCount, 4);
    CSignal* event = program->control.events.InsertBlank(nullptr);
    event->dataIndex = 0;
    event->data = event->mask = {0xFF};
    Go();
    const Bytes events = Writes().at(0).bytes;
    ASSERT_THAT(events, SizeIs(240));
    EXPECT_EQ(events[90], 0x01);
    EXPECT_THAT(Bytes(events.begin() + 120, events.end()), Each(0));
}

TEST_F(StimulusRunTest, RunsUntilTheBoardHasEnded) {
    UseModel("PCIKite");
    SetStatus(0x80);
    Go();
    Functions();
    timer->tick();
    EXPECT_THAT(pictures, ElementsAre(true));
    EXPECT_TRUE(timer->runs);
    SetStatus(0x7F);
    timer->tick();
    EXPECT_THAT(pictures, ElementsAre(true, false));
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(Functions(), ElementsAre(readMemory, readMemory)); // and no stop
}

TEST_F(StimulusRunTest, StopIsSentInARunAndWithoutOne) {
    UseModel("PCIKite");
    Go();
    Functions();
    run->Stop();
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(pictures, ElementsAre(true, false));
    run->Stop();
    EXPECT_THAT(Functions(), ElementsAre(stopStimulus, stopStimulus));
}

TEST_F(StimulusRunTest, GoDuringARunSendsEverythingAgain) {
    UseModel("PCIKite");
    Go();
    Writes();
    program->control.levels[0].occurs = 77;
    Go();
    const std::vector<WireBoard::Write> writes = Writes();
    ASSERT_THAT(writes, SizeIs(3));
    EXPECT_EQ(writes[2].bytes[2], 77);
    EXPECT_THAT(Functions(), ElementsAre(startStimulus, startStimulus));
    EXPECT_TRUE(timer->runs);
}

TEST_F(StimulusRunTest, AFailureOfDataIsReportedAndTheBoardStarts) {
    UseModel("PCIKite");
    const std::pair<std::uint8_t, std::string> failures[] = {
        {0x40, conditionFailed}, {0xA2, conditionFailed}, {0x82, controlFailed}};
    for (const auto& [addressLow, message] : failures) { // of registers 1600, 930, 1410
        Ignore(4, addressLow);
        prompts.Forget();
        pictures.clear();
        Go();
        ASSERT_THAT(prompts.Texts(), ElementsAre(message));
        EXPECT_TRUE(prompts.Boxes()[0].topmost);
        EXPECT_THAT(Writes(), SizeIs(2));
        EXPECT_THAT(Functions(), Contains(startStimulus));
        EXPECT_THAT(pictures, ElementsAre(true));
    }
}

TEST_F(StimulusRunTest, AFailedStartChangesNothing) {
    UseModel("PCIKite");
    Ignore(2, startStimulus);
    Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre(startFailed));
    EXPECT_THAT(pictures, IsEmpty());
    EXPECT_FALSE(timer->runs);
}

TEST_F(StimulusRunTest, AFailedStartLeavesARunAsItWas) {
    UseModel("PCIKite");
    SetStatus(0x80);
    Go();
    Ignore(2, startStimulus);
    Go();
    EXPECT_THAT(pictures, ElementsAre(true));
    EXPECT_TRUE(timer->runs);
}

TEST_F(StimulusRunTest, AFailedReadStopsTheBoard) {
    UseModel("PCIKite");
    Go();
    Functions();
    Ignore(4, 0xA1); // the address of the status
    timer->tick();
    EXPECT_THAT(prompts.Texts(), ElementsAre(readFailed));
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(pictures, ElementsAre(true, false));
    EXPECT_THAT(Functions(), ElementsAre(stopStimulus));
}

TEST_F(StimulusRunTest, AFailedStopEndsTheRunToo) {
    UseModel("PCIKite");
    Go();
    Ignore(2, stopStimulus);
    run->Stop();
    EXPECT_THAT(prompts.Texts(), ElementsAre(stopFailed));
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(pictures, ElementsAre(true, false));
}

TEST_F(StimulusRunTest, ARunThatIsDestroyedSendsNothing) {
    UseModel("PCIKite");
    Go();
    Functions();
    run.reset();
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(Functions(), IsEmpty());
    EXPECT_THAT(pictures, ElementsAre(true));
}

TEST_F(StimulusRunTest, WithoutABoardARunEndsAtTheFirstTick) {
    Go(); // the link is not open
    EXPECT_THAT(pictures, ElementsAre(true));
    EXPECT_TRUE(timer->runs);
    timer->tick();
    EXPECT_THAT(pictures, ElementsAre(true, false));
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(prompts.Boxes(), IsEmpty());
}

} // namespace
} // namespace busquill::test
