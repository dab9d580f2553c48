#include "core/testsuites/names_dir.h"
#include "document/hex_fields.h"
#include "support/link_fixture.h"
#include "support/manual_timer.h"
#include "testsuites/compliance_document.h"
#include "testsuites/compliance_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <set>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t statusAt = 1517;

const std::string idFailed = "Error sending compliance test id to analyzer.";
const std::string controlFailed = "Error sending compliance control to analyzer.";
const std::string startFailed = "Error sending start compliance test command to analyzer.";
const std::string stopFailed = "Error sending stop compliance test command to analyzer.";

/// Keeps what a run reports, and answers as the operator.
class Observer final : public ComplianceObserver {
public:
    void OnRunning(bool running) override { events.push_back(running ? "on" : "off"); }
    void OnResultsCleared() override { events.push_back("cleared"); }
    void OnTestStarted(const CTestResult& test) override {
        events.push_back(TestLabel(test) + " " + test.name + TestResultText(test));
    }
    void OnTestEnded(const CTestResult& test) override {
        events.push_back(TestLabel(test) + " " + TestResultText(test));
    }
    OperatorAnswer AskOperator(const std::string& instructions) override {
        events.push_back("asked: " + instructions);
        if (answers.empty()) {
            return OperatorAnswer::Continue;
        }
        const OperatorAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::vector<std::string> events;
    std::deque<OperatorAnswer> answers;
};

CheckItem Group(const std::string& title) {
    return {true, "[" + title + "]", title, ""};
}
CheckItem Check(const std::string& text, const std::string& instructions = "") {
    return {false, text, text, instructions};
}

class ComplianceRunTest : public LinkFixture {
protected:
    ComplianceRunTest() {
        OpenBoard("PCIKite");
        SetStatus(0x01);
        TakeWire();
        document->deviceFound = true;
    }

    ComplianceRun& Run() {
        if (!run) {
            run = std::make_unique<ComplianceRun>(
                BoardRun::Parts{*link, prompts, std::make_unique<ManualTimer>(timer)}, *document,
                list, [this](int index) { return ticked.contains(index); }, observer);
        }
        return *run;
    }
    void SetStatus(std::uint8_t status) {
        line->Do([&] { board.contents[statusAt] = {status}; });
    }
    /// What the board got since the last call: "id PCI12", "control 1", "start", "stop", "read".
    std::vector<std::string> TakeWire() {
        std::vector<std::string> wire;
        line->Do([&] {
            std::size_t write = 0;
            for (const int function : board.functions) {
                if (function == 2) {
                    wire.push_back(Describe(board.writes[write++]));
                } else {
                    wire.push_back(function == 19   ? "start"
                                   : function == 20 ? "stop"
                                   : function == 1  ? "read"
                                                    : std::to_string(function));
                }
            }
            board.functions.clear();
            board.writes.clear();
        });
        return wire;
    }
    static std::string Describe(const WireBoard::Write& write) {
        if (write.address == 1516 && write.bytes.size() == 1) {
            return "control " + std::to_string(write.bytes[0]);
        }
        std::string text = write.address == 1518   ? "id "
                           : write.address == 1522 ? "target "
                                                   : std::to_string(write.address) + " ";
        for (const std::uint8_t byte : write.bytes) {
            text += byte >= 'A' && byte <= 'Z' ? std::string(1, static_cast<char>(byte))
                                               : "_" + std::to_string(byte);
        }
        return text;
    }
    /// The board does not answer these frames.
    void Ignore(std::vector<Bytes> frames) {
        line->SetAnswer([this, frames](const Bytes& sent, int baud) {
            return std::ranges::find(frames, sent) != frames.end() ? Bytes{}
                                                                   : board.Answer(sent, baud);
        });
    }
    std::vector<std::string> Results() {
        std::vector<std::string> results;
        for (const CTestResult& test : document->Results()) {
            results.push_back(TestIdText(test.testId) + " " +
                              std::string(OutcomeWord(test.result)));
        }
        return results;
    }

    const NamesDir dir;
    std::shared_ptr<TimerState> timer = std::make_shared<TimerState>();
    std::unique_ptr<CComplianceDoc> document =
        std::make_unique<CComplianceDoc>(WorkingDirectory(dir.Path()), prompts);
    CheckList list = {Check("ZZ9. Before all groups"),
                      Group("Configuration"),
                      Check("CF7. One"),
                      Check("PCI12. Two"),
                      Group("Master"),
                      Check("MS1. Three")};
    std::set<int> ticked = {0, 1, 2, 3, 4, 5};
    Observer observer;
    std::unique_ptr<ComplianceRun> run;
};

TEST_F(ComplianceRunTest, RunsTheTickedTestsInTheirOrder) {
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 0", "start"));
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One"));
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 200ms);
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("read", "id PCI_12", "control 0", "start"))
        << "no stop between tests that ran to their end";
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("read", "id MS_32_1", "control 0", "start"));
    EXPECT_TRUE(run->IsOn());
    timer->tick();
    EXPECT_THAT(TakeWire(), ElementsAre("read", "stop"));
    EXPECT_FALSE(timer->runs);
    EXPECT_FALSE(run->IsOn());
    EXPECT_THAT(observer.events,
                ElementsAre("on", "cleared", "CF7. One", "CF7. Passed ", "PCI12. Two",
                            "PCI12. Passed ", "MS1. Three", "MS1. Passed ", "off"));
    EXPECT_THAT(Results(), ElementsAre("CF7 Passed", "PCI12 Passed", "MS1 Passed"));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(ComplianceRunTest, OnlyTicksOfTestsInGroupsCount) {
    ticked = {0, 1, 4, 5};
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id MS_32_1", "control 0", "start"));
    ticked = {0, 1, 4};
    Run().Stop();
    TakeWire();
    Run().Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more tests must be selected to execute."));
}

TEST_F(ComplianceRunTest, TicksAreLookedAtAgainForEachTest) {
    ticked = {2, 3};
    Run().Go();
    ticked = {2, 5};
    timer->tick();
    EXPECT_EQ(TakeWire().at(4), "id MS_32_1");
}

TEST_F(ComplianceRunTest, GoNeedsADevice) {
    document->deviceFound = false;
    document->Results() = {{{}, "old", TestOutcome::Passed, 0}};
    Run().Go();
    document->loadedFromFile = true;
    Run().Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device was found - select Find.",
                                             "Select Find before starting test."));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(TakeWire(), IsEmpty());
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_THAT(document->Results(), SizeIs(1)) << "the old results stay";
}

TEST_F(ComplianceRunTest, GoNeedsATickedTest) {
    ticked = {};
    document->Results() = {{{}, "old", TestOutcome::Passed, 0}};
    Run().Go();
    list.clear();
    Run().Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre("One or more tests must be selected to execute.",
                                             "One or more tests must be selected to execute."));
    EXPECT_FALSE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_THAT(document->Results(), SizeIs(1));
}

TEST_F(ComplianceRunTest, ARefusedGoLeavesARunAlone) {
    ticked = {2};
    Run().Go();
    ticked = {};
    Run().Go();
    EXPECT_TRUE(run->IsOn());
    EXPECT_TRUE(timer->runs);
    timer->tick();
    EXPECT_THAT(Results(), ElementsAre("CF7 Passed"));
}

TEST_F(ComplianceRunTest, AnotherGoBeginsAgain) {
    Run().Go();
    timer->tick();
    TakeWire();
    observer.events.clear();
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 0", "start"));
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One"));
    EXPECT_THAT(document->Results(), IsEmpty());
}

TEST_F(ComplianceRunTest, ARunningTestIsPolledAgain) {
    SetStatus(0x83);
    Run().Go();
    timer->tick();
    timer->tick();
    EXPECT_TRUE(timer->runs);
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 0", "start", "read", "read"));
    EXPECT_THAT(document->Results(), IsEmpty());
    SetStatus(0x01);
    timer->tick();
    EXPECT_THAT(Results(), ElementsAre("CF7 Passed"));
}

TEST_F(ComplianceRunTest, TheStatusHasOutcomeAndCode) {
    struct Row {
        std::uint8_t status;
        std::string text;
        int code;
    };
    for (const Row& row :
         {Row{0x1A, "Failed(3) ", 3}, Row{0x02, "Failed(0) ", 0}, Row{0x7E, "Failed(15) ", 15},
          Row{0x03, "Passed ", 0}, Row{0x29, "Passed ", 5}}) {
        ticked = {2};
        SetStatus(row.status);
        Run().Go();
        timer->tick();
        ASSERT_THAT(document->Results(), SizeIs(1));
        EXPECT_EQ(TestResultText(document->Results()[0]), row.text);
        EXPECT_EQ(document->Results()[0].failCode, row.code);
    }
}

TEST_F(ComplianceRunTest, AnUnknownStatusEndsTheRun) {
    SetStatus(0x78);
    Run().Go();
    timer->tick();
    EXPECT_THAT(prompts.Texts(), ElementsAre("Unknown test status from analyzer."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 0", "start", "read", "stop"));
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One", "off"));
    EXPECT_THAT(document->Results(), IsEmpty());
    EXPECT_FALSE(timer->runs);
}

TEST_F(ComplianceRunTest, AFailedStatusEndsTheRun) {
    Run().Go();
    Ignore({{4, statusAt & 0xFF}});
    timer->tick();
    EXPECT_THAT(prompts.Texts(), ElementsAre("Error reading test status from analyzer."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_EQ(TakeWire().back(), "stop");
    EXPECT_EQ(observer.events.back(), "off");
    EXPECT_FALSE(timer->runs);
}

TEST_F(ComplianceRunTest, TheOperatorContinues) {
    list[2].instructions = "Look";
    ticked = {2};
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 1", "start", "control 3"));
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One", "asked: Look"));
    EXPECT_TRUE(timer->runs);
    timer->tick();
    EXPECT_THAT(Results(), ElementsAre("CF7 Passed"));
}

TEST_F(ComplianceRunTest, InstructionsOfAGroupAreNotShown) {
    list[1].instructions = "For the group";
    ticked = {2};
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 0", "start"));
}

TEST_F(ComplianceRunTest, ASkippedTestIsStoppedAndTheNextOneRuns) {
    list[2].instructions = "Look";
    observer.answers = {OperatorAnswer::Skip};
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 1", "start", "control 5", "stop",
                                        "id PCI_12", "control 0", "start"));
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One", "asked: Look",
                                             "CF7. Skipped ", "PCI12. Two"));
    EXPECT_THAT(Results(), ElementsAre("CF7 Skipped"));
    EXPECT_TRUE(timer->runs);
}

TEST_F(ComplianceRunTest, AfterTheLastTestWasSkippedTheStopGoesOutTwice) {
    list[5].instructions = "Look";
    ticked = {5};
    observer.answers = {OperatorAnswer::Skip};
    Run().Go();
    EXPECT_THAT(TakeWire(),
                ElementsAre("id MS_32_1", "control 1", "start", "control 5", "stop", "stop"));
    EXPECT_EQ(observer.events.back(), "off");
    EXPECT_FALSE(timer->runs);
}

TEST_F(ComplianceRunTest, TheOperatorStops) {
    list[2].instructions = "Look";
    observer.answers = {OperatorAnswer::Stop};
    Run().Go();
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 1", "start", "stop"));
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One", "asked: Look", "off"));
    EXPECT_THAT(document->Results(), IsEmpty());
    EXPECT_FALSE(timer->runs);
}

TEST_F(ComplianceRunTest, ManyTestsAreSkippedInARow) {
    list = {Group("G")};
    ticked.clear();
    for (int i = 1; i <= 2000; ++i) {
        list.push_back(Check("AB1. x", "Look"));
        ticked.insert(i);
    }
    observer.answers.assign(2000, OperatorAnswer::Skip);
    link->Close(); // nothing is sent
    Run().Go();
    EXPECT_THAT(document->Results(), SizeIs(2000));
    EXPECT_EQ(observer.events.back(), "off");
}

TEST_F(ComplianceRunTest, StopIsSentEvenWhenNothingRuns) {
    Run().Stop();
    EXPECT_THAT(TakeWire(), ElementsAre("stop"));
    Run().Go();
    TakeWire();
    Run().Stop();
    EXPECT_THAT(TakeWire(), ElementsAre("stop"));
    EXPECT_FALSE(timer->runs);
    EXPECT_EQ(observer.events.back(), "off");
    timer->tick(); // one that was under way
    EXPECT_THAT(TakeWire(), IsEmpty());
}

TEST_F(ComplianceRunTest, AFailedStopIsReported) {
    Ignore({{2, 20}});
    Run().Stop();
    EXPECT_THAT(prompts.Texts(), ElementsAre(stopFailed));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(observer.events, ElementsAre("off"));
}

TEST_F(ComplianceRunTest, AFailedIdentifierOrControlIsReportedAndTheTestRuns) {
    Ignore({{4, 1518 & 0xFF}, {4, 1516 & 0xFF}});
    Run().Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre(idFailed, controlFailed));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_TRUE(prompts.Boxes()[1].topmost);
    EXPECT_THAT(TakeWire(), ElementsAre("start"));
    EXPECT_TRUE(timer->runs);
}

TEST_F(ComplianceRunTest, FailedControlsOfTheOperatorAreReported) {
    list[2].instructions = list[3].instructions = "Look";
    observer.answers = {OperatorAnswer::Skip, OperatorAnswer::Continue};
    Ignore({{4, 1516 & 0xFF}});
    Run().Go();
    EXPECT_THAT(prompts.Texts(),
                ElementsAre(controlFailed, controlFailed, controlFailed, controlFailed));
    EXPECT_TRUE(timer->runs);
}

TEST_F(ComplianceRunTest, AFailedStartEndsTheRunWithThePictureRunning) {
    list[2].instructions = "Look";
    Ignore({{2, 19}});
    Run().Go();
    EXPECT_THAT(prompts.Texts(), ElementsAre(startFailed));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
    EXPECT_THAT(observer.events, ElementsAre("on", "cleared", "CF7. One"));
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(TakeWire(), ElementsAre("id CF_32_7", "control 1")) << "no stop";
    Run().Stop();
    EXPECT_EQ(observer.events.back(), "off");
}

TEST_F(ComplianceRunTest, TheEndOfARunSendsNothing) {
    Run().Go();
    TakeWire();
    run.reset();
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(TakeWire(), IsEmpty());
}

TEST_F(ComplianceRunTest, TheTargetAddressGoesOutLowByteFirst) {
    Run().SendTargetAddress({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_THAT(TakeWire(), ElementsAre("target _1_2_3_4_5_6_7_8"));
    Ignore({{4, 1522 & 0xFF}});
    Run().SendTargetAddress({});
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Error sending compliance target start address to analyzer."));
    EXPECT_TRUE(prompts.Boxes()[0].topmost);
}

TEST_F(ComplianceRunTest, FindLooksForADevice) {
    document->deviceFound = false;
    document->loadedFromFile = true;
    board.contents[851] = {0x05};
    board.contents[852] = {0x86, 0x80};
    EXPECT_EQ(Run().Find(ScanDirection::Next), 2);
    EXPECT_EQ(TakeWire().at(0), "850 _2");
    EXPECT_TRUE(document->deviceFound);
    EXPECT_FALSE(document->loadedFromFile);
    EXPECT_EQ(document->Device().Identity().vendorId, 0x8086U);
}

TEST_F(ComplianceRunTest, AFindWithoutADeviceLeavesTheOldOne) {
    document->loadedFromFile = true;
    EXPECT_EQ(Run().Find(ScanDirection::First), std::nullopt);
    EXPECT_TRUE(document->deviceFound);
    EXPECT_FALSE(document->loadedFromFile);
    document->deviceFound = false;
    EXPECT_EQ(Run().Find(ScanDirection::First), std::nullopt);
    EXPECT_FALSE(document->deviceFound);
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device found.", "No device found."));
}

TEST_F(ComplianceRunTest, WithoutABoardThereIsADeviceAndEveryTestPasses) {
    portOpens = false;
    static_cast<void>(link->Open(Port()));
    prompts.Forget();
    ASSERT_TRUE(link->IsDemoMode());
    document->deviceFound = false;
    document->loadedFromFile = true;
    EXPECT_EQ(Run().Find(ScanDirection::Back), 0);
    const DeviceIdentity& device = document->Device().Identity();
    EXPECT_EQ(device.vendorId, 4887U);
    EXPECT_EQ(device.deviceId, 2437U);
    EXPECT_EQ(HexAddressText(device.address), "0000000080000000");
    EXPECT_EQ(device.vendorName, "Admtek Inc.");
    EXPECT_EQ(device.className, "Network Controller");
    EXPECT_TRUE(document->deviceFound);
    EXPECT_TRUE(document->loadedFromFile) << "stays as it was";
    Run().Go();
    for (int i = 0; i < 3; ++i) {
        timer->tick();
    }
    EXPECT_THAT(Results(), ElementsAre("CF7 Passed", "PCI12 Passed", "MS1 Passed"));
    EXPECT_EQ(document->Results()[0].failCode, 0);
    EXPECT_THAT(TakeWire(), IsEmpty());
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

} // namespace
} // namespace busquill::test
