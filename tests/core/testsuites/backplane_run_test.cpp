#include "core/testsuites/suite_wire.h"
#include "testsuites/backplane_document.h"
#include "testsuites/backplane_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t statusAt = 1551;
constexpr std::uint32_t signalsAt = 1552;

const std::string invalidSignal = "Invalid signal index for backplane test.";
const std::string sensitivityFailed = "Error sending backplane sensitivity to analyzer.";
const std::string signalsFailed = "Error sending backplane test signals to analyzer.";
const std::string startFailed = "Error sending start backplane test command to analyzer.";
const std::string stopFailed = "Error sending stop backplane test command to analyzer.";
const std::string statusFailed = "Error reading backplane results data from analyzer.";
const std::string readFailed = "Error reading backplane test signal results data from analyzer.";

class Observer final : public BackplaneObserver {
public:
    void OnRunning(bool running) override { events.push_back(running ? "on" : "off"); }
    void OnResultsCleared() override { events.push_back("cleared"); }
    void OnSignal(const std::string& line) override { events.push_back("> " + line); }
    void OnResult(const std::string& line) override { events.push_back(line); }

    std::vector<std::string> events;
};

/// The signals as they are sent: one byte of the 28 is not 0.
std::string Signals(std::size_t byte = 28, const std::string& value = "") {
    std::string text = "1552:";
    for (std::size_t i = 0; i < 28; ++i) {
        text += " " + (i == byte ? value : "00");
    }
    return text;
}

class BackplaneRunTest : public SuiteRunFixture {
protected:
    BackplaneRunTest() { OpenQuietBoard(); }

    BackplaneRun& Run() {
        if (!run) {
            run = std::make_unique<BackplaneRun>(
                Parts(), document, document.Table(),
                [this](int row) { return ticked.contains(row); }, observer);
        }
        return *run;
    }
    /// What the board reads back at the end of each signal's test.
    void Seen(std::initializer_list<int> bits) {
        Bytes bytes(28);
        for (const int bit : bits) {
            bytes[static_cast<std::size_t>(2 * (bit / 8))] |=
                static_cast<std::uint8_t>(1 << (bit % 8));
        }
        SetMemory(signalsAt, bytes);
    }

    BoardTraits traits;
    CBackplaneTestDoc document{[this] { return BackplaneTable(traits); }, prompts};
    std::set<int> ticked = {6, 9}; // AD[5], AD[8]
    Observer observer;
    std::unique_ptr<BackplaneRun> run;
};

TEST_F(BackplaneRunTest, TestsTheTickedSignalsInTheirOrder) {
    document.Results() = {"old"};
    Seen({5});
    Run().Start();
    EXPECT_THAT(TakeWire(), ElementsAre("1550: 00", Signals(1, "20"), "39"));
    EXPECT_THAT(observer.events, ElementsAre("cleared", "> AD[5]", "on"));
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 100ms);
    EXPECT_TRUE(run->IsOn());
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("1551?", "1552?", "1550: 00", Signals(3, "01"), "39"))
        << "no stop between two signals";
    EXPECT_TRUE(timer->runs);
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("1551?", "1552?", "40"));
    EXPECT_FALSE(timer->runs);
    EXPECT_FALSE(run->IsOn());
    EXPECT_THAT(observer.events, ElementsAre("cleared", "> AD[5]", "on", "    Ok", "> AD[8]", "on",
                                             "    Cannot drive signal", "off"));
    EXPECT_THAT(document.Results(),
                ElementsAre("AD[5]", "    Ok", "AD[8]", "    Cannot drive signal"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(BackplaneRunTest, ShortsAreListedBelowTheSignal) {
    ticked = {6};
    Seen({4, 5, 6, 92});
    Run().Start();
    timer->tick();
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]", "    AD[4] SHORTED", "    AD[6] SHORTED",
                                                "    Bit 92 SHORTED"));
}

TEST_F(BackplaneRunTest, ABusyBoardIsAskedAgain) {
    ticked = {6};
    SetMemory(statusAt, {0x80});
    Run().Start();
    TakeWire();
    timer->tick();
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("1551?", "1551?"));
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]"));
    SetMemory(statusAt, {0x7F});
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("1551?", "1552?", "40"));
}

TEST_F(BackplaneRunTest, GroupsAreNoSignals) {
    ticked = {0};
    Run().Start();
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more signals must be selected to test."));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(TakeWire(), IsEmpty());
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_FALSE(run->IsOn());
    EXPECT_FALSE(timer->runs);
}

TEST_F(BackplaneRunTest, ARefusedStartKeepsTheResults) {
    ticked = {};
    document.Results() = {"old"};
    Run().Start();
    EXPECT_THAT(document.Results(), ElementsAre("old"));
}

TEST_F(BackplaneRunTest, TicksAreLookedAtAgainForEachSignal) {
    Run().Start();
    ticked = {1, 97};
    TakeWire();
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("1551?", "1552?", "1550: 00", Signals(19, "80"), "39"))
        << "RST at 79; what stands above is past";
}

TEST_F(BackplaneRunTest, TheSensitivityIsSentWithEachSignal) {
    Run().sensitivity = BackplaneSensitivity::High;
    run->Start();
    EXPECT_EQ(TakeWire()[0], "1550: 01");
    run->sensitivity = BackplaneSensitivity::Low;
    timer->tick();
    EXPECT_EQ(TakeWire()[2], "1550: 02");
}

TEST_F(BackplaneRunTest, ASecondStartStopsFirst) {
    Run().Start();
    timer->tick();
    TakeWire();
    observer.events.clear();
    run->Start();
    EXPECT_THAT(TakeWire(), ElementsAre("40", "1550: 00", Signals(1, "20"), "39"));
    EXPECT_THAT(observer.events, ElementsAre("off", "cleared", "> AD[5]", "on"));
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]"));
}

TEST_F(BackplaneRunTest, ASecondStartWithoutATickOnlyStops) {
    Run().Start();
    TakeWire();
    ticked = {};
    run->Start();
    EXPECT_THAT(TakeWire(), ElementsAre("40"));
    EXPECT_FALSE(run->IsOn());
    EXPECT_FALSE(timer->runs);
}

TEST_F(BackplaneRunTest, StopTellsTheBoardAtRestToo) {
    Run().Stop();
    EXPECT_THAT(TakeWire(), ElementsAre("40"));
    EXPECT_THAT(observer.events, ElementsAre("off"));
    run->Poll();
    EXPECT_THAT(TakeWire(), IsEmpty());
}

TEST_F(BackplaneRunTest, StopEndsARun) {
    Run().Start();
    TakeWire();
    run->Stop();
    EXPECT_THAT(TakeWire(), ElementsAre("40"));
    EXPECT_FALSE(timer->runs);
    EXPECT_FALSE(run->IsOn());
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]"));
}

TEST_F(BackplaneRunTest, AClosedRunSendsNothing) {
    Run().Start();
    TakeWire();
    run.reset();
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(TakeWire(), IsEmpty());
}

TEST_F(BackplaneRunTest, FailedCommandsAreReportedAndTheRunGoesOn) {
    Ignore({{4, 1550 & 0xFF}, {4, signalsAt & 0xFF}, {2, 39}});
    Run().Start();
    EXPECT_THAT(prompts.Texts(), ElementsAre(sensitivityFailed, signalsFailed, startFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_TRUE(run->IsOn());
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(observer.events.back(), "on");
}

TEST_F(BackplaneRunTest, AFailedStatusIsReadAgain) {
    Run().Start();
    Ignore({{4, statusAt & 0xFF}});
    timer->tick();
    EXPECT_THAT(prompts.Texts(), ElementsAre(statusFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_TRUE(timer->runs);
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]"));
    UseBoard();
    timer->tick();
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]", "    Cannot drive signal", "AD[8]"));
}

TEST_F(BackplaneRunTest, AfterAFailedReadTheNextSignalIsTested) {
    Run().Start();
    Ignore({{4, signalsAt & 0xFF}});
    timer->tick();
    EXPECT_THAT(prompts.Texts(), ElementsAre(readFailed, signalsFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_THAT(document.Results(), ElementsAre("AD[5]", "AD[8]"));
}

TEST_F(BackplaneRunTest, AFailedStopIsReported) {
    Ignore({{2, 40}});
    Run().Stop();
    EXPECT_THAT(prompts.Texts(), ElementsAre(stopFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_THAT(observer.events, ElementsAre("off"));
}

TEST_F(BackplaneRunTest, ABoardThatIsGoneIsReportedOnce) {
    Run().Start();
    Unplug();
    timer->tick();
    EXPECT_EQ(prompts.Texts().back(), statusFailed);
    EXPECT_FALSE(timer->runs);
    EXPECT_TRUE(run->IsOn()) << "until Stop";
}

// The user still sees the rows of the old table.
TEST_F(BackplaneRunTest, AfterAChangeOfFamilyARowMayHaveNoSignal) {
    traits.modelString = "VMEKite";
    ticked = {105};
    Seen({});
    Run();
    traits.modelString = "PCIKite";
    run->Start();
    EXPECT_THAT(prompts.Texts(), ElementsAre(invalidSignal));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(TakeWire(), ElementsAre("1550: 00", Signals(), "39"));
    EXPECT_THAT(document.Results(), ElementsAre(""));
    timer->tick();
    EXPECT_THAT(prompts.Texts(), ElementsAre(invalidSignal, invalidSignal));
    EXPECT_THAT(TakeWire(), ElementsAre("1551?", "1552?", "40"));
    EXPECT_THAT(document.Results(), ElementsAre(""));
}

TEST_F(BackplaneRunTest, AfterAChangeOfFamilyTheTextsAreTheNewOnes) {
    traits.modelString = "VMEKite";
    ticked = {72}; // WRITE, and FRAME of the other table is at 76
    Run();
    traits.modelString = "PCIKite";
    run->Start();
    EXPECT_EQ(document.Results().at(0), "CB/E[7]");
    EXPECT_EQ(TakeWire().at(1), Signals(17, "80"));
}

class BackplaneDemoTest : public SuiteRunFixture {};

TEST_F(BackplaneDemoTest, InDemoModeNoSignalCanBeDriven) {
    OpenDemo();
    CBackplaneTestDoc document{[] { return BackplaneTable({}); }, prompts};
    Observer observer;
    BackplaneRun run(
        Parts(), document, document.Table(), [](int row) { return row < 3; }, observer);
    run.Start();
    timer->tick();
    timer->tick();
    EXPECT_FALSE(run.IsOn());
    EXPECT_THAT(document.Results(), ElementsAre("AD[0]", "    Cannot drive signal", "AD[1]",
                                                "    Cannot drive signal"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
