#include "core/testsuites/suite_wire.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_run.h"
#include "testsuites/anomaly_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t resultAt = 1548;
const Bytes checklistFrame = {4, 1532 & 0xFF};
const Bytes resultFrame = {4, resultAt & 0xFF};

const std::string checklistFailed = "Error sending anomaly checklist to analyzer.";
const std::string startFailed = "Error sending start anomaly detection command to analyzer.";
const std::string stopFailed = "Error sending stop anomaly detection command to analyzer.";
const std::string readFailed = "Error reading anomaly results data from analyzer.";

const std::string allOn = "1532: 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";
const std::string allOff = "1532: ff ff ff ff ff ff ff ff ff ff ff ff ff ff 03 00";

class Observer final : public AnomalyObserver {
public:
    void OnRunning(bool running) override { events.push_back(running ? "on" : "off"); }
    void OnResultsCleared() override { events.push_back("cleared"); }
    void OnFound(std::string_view check) override { events.emplace_back(check); }

    std::vector<std::string> events;
};

class AnomalyRunTest : public SuiteRunFixture {
protected:
    AnomalyRunTest() { OpenQuietBoard(); }

    /// A second passes, after which the board reports a check.
    void Tick(std::uint8_t reported) {
        SetMemory(resultAt, {reported});
        timer->tick();
    }

    BoardTraits traits;
    CAnomalyDetectionDoc document{[this] { return AnomalyTable(traits); }, prompts};
    Observer observer;
    std::unique_ptr<AnomalyRun> run = std::make_unique<AnomalyRun>(Parts(), document, observer);
};

TEST_F(AnomalyRunTest, SendsTheChecklistAndStarts) {
    document.AddResult(3);
    run->Start();
    EXPECT_THAT(TakeWire(), ElementsAre(allOn, "17"));
    EXPECT_THAT(observer.events, ElementsAre("cleared", "on"));
    EXPECT_THAT(document.Results(), IsEmpty());
    EXPECT_TRUE(run->IsOn());
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(timer->period, 1000ms);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnomalyRunTest, TakesOneHitEachSecond) {
    run->Start();
    TakeWire();
    observer.events.clear();
    Tick(1);
    Tick(0);
    Tick(114);
    Tick(1);
    EXPECT_THAT(TakeWire(), ElementsAre("1548?", "1548?", "1548?", "1548?"));
    EXPECT_THAT(document.Results(), ElementsAre(1, 114, 1));
    EXPECT_THAT(observer.events,
                ElementsAre("1 - FRAME deasserted before IRDY asserted", "114 - Target Abort",
                            "1 - FRAME deasserted before IRDY asserted"));
}

TEST_F(AnomalyRunTest, WhatTheTableDoesNotNameIsKeptAndNotListed) {
    run->Start();
    observer.events.clear();
    Tick(115);
    Tick(255);
    EXPECT_THAT(document.Results(), ElementsAre(115, 255));
    EXPECT_THAT(observer.events, IsEmpty());
}

TEST_F(AnomalyRunTest, WithEverythingOffARunStartsToo) {
    document.EnableAll(false);
    run->Start();
    EXPECT_THAT(TakeWire(), ElementsAre(allOff, "17"));
    EXPECT_TRUE(run->IsOn());
}

TEST_F(AnomalyRunTest, TheFamilyIsAskedEachTime) {
    run->Start();
    TakeWire();
    observer.events.clear();
    traits.modelString = "VMEKite";
    document.EnableAll(false);
    run->SendChecklist();
    EXPECT_THAT(TakeWire(), ElementsAre("1532: ff ff ff ff ff ff ff ff 07 00 00 00 00 00 00 00"));
    Tick(67);
    Tick(68);
    EXPECT_THAT(observer.events, ElementsAre("67 - No data acknowledge"));
}

TEST_F(AnomalyRunTest, AChecklistDuringARunDoesNotEndIt) {
    run->Start();
    TakeWire();
    document.Enable(2, false);
    run->SendChecklist();
    EXPECT_THAT(TakeWire(), ElementsAre("1532: 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"));
    EXPECT_TRUE(timer->runs);
}

TEST_F(AnomalyRunTest, StopEndsARunAndKeepsTheResults) {
    run->Start();
    Tick(5);
    TakeWire();
    observer.events.clear();
    run->Stop();
    EXPECT_THAT(TakeWire(), ElementsAre("18"));
    EXPECT_THAT(observer.events, ElementsAre("off"));
    EXPECT_FALSE(timer->runs);
    EXPECT_FALSE(run->IsOn());
    EXPECT_THAT(document.Results(), ElementsAre(5));
    run->Poll();
    EXPECT_THAT(TakeWire(), IsEmpty());
}

TEST_F(AnomalyRunTest, StopAtRestDoesNothing) {
    run->Stop();
    EXPECT_THAT(TakeWire(), IsEmpty());
    EXPECT_THAT(observer.events, IsEmpty());
}

TEST_F(AnomalyRunTest, ASecondStartStopsFirst) {
    run->Start();
    Tick(5);
    TakeWire();
    observer.events.clear();
    run->Start();
    EXPECT_THAT(TakeWire(), ElementsAre("18", allOn, "17"));
    EXPECT_THAT(observer.events, ElementsAre("off", "cleared", "on"));
    EXPECT_THAT(document.Results(), IsEmpty());
}

TEST_F(AnomalyRunTest, AClosedRunSendsNothing) {
    run->Start();
    TakeWire();
    run.reset();
    EXPECT_FALSE(timer->runs);
    EXPECT_THAT(TakeWire(), IsEmpty());
}

TEST_F(AnomalyRunTest, FailedCommandsAreReportedAndTheRunGoesOn) {
    Ignore({checklistFrame, {2, 17}});
    run->Start();
    EXPECT_THAT(prompts.Texts(), ElementsAre(checklistFailed, startFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_TRUE(run->IsOn());
    EXPECT_TRUE(timer->runs);
    EXPECT_EQ(observer.events.back(), "on");
}

TEST_F(AnomalyRunTest, AFailedChecklistIsReported) {
    Ignore({checklistFrame});
    run->SendChecklist();
    EXPECT_THAT(prompts.Texts(), ElementsAre(checklistFailed));
    EXPECT_TRUE(AllTopmost());
}

TEST_F(AnomalyRunTest, AFailedStopIsReportedAndTheRunHasEnded) {
    run->Start();
    Ignore({{2, 18}});
    run->Stop();
    EXPECT_THAT(prompts.Texts(), ElementsAre(stopFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_EQ(observer.events.back(), "off");
    EXPECT_FALSE(run->IsOn());
}

TEST_F(AnomalyRunTest, AFailedReadSkipsTheTick) {
    run->Start();
    Ignore({resultFrame});
    Tick(5);
    EXPECT_THAT(prompts.Texts(), ElementsAre(readFailed));
    EXPECT_TRUE(AllTopmost());
    EXPECT_THAT(document.Results(), IsEmpty());
    EXPECT_TRUE(timer->runs);
    UseBoard();
    Tick(5);
    EXPECT_THAT(document.Results(), ElementsAre(5));
}

TEST_F(AnomalyRunTest, ABoardThatIsGoneIsReportedOnce) {
    run->Start();
    Unplug();
    timer->tick();
    EXPECT_EQ(prompts.Texts().back(), readFailed);
    EXPECT_FALSE(timer->runs);
    EXPECT_TRUE(run->IsOn()) << "until Stop";
}

TEST_F(AnomalyRunTest, HitsBeyondTheLimitAreStillListed) {
    run->Start();
    for (std::size_t i = 0; i < CAnomalyDetectionDoc::resultLimit; ++i) {
        document.AddResult(1);
    }
    observer.events.clear();
    Tick(2);
    EXPECT_THAT(document.Results(), SizeIs(CAnomalyDetectionDoc::resultLimit));
    EXPECT_EQ(document.Results().back(), 1);
    EXPECT_THAT(observer.events, ElementsAre("2 - FRAME asserted without IRDY or TRDY"));
}

TEST(DemoAnomaly, HalfOfTheTimeThereIsNone) {
    EXPECT_EQ(DemoAnomaly(0), 0);
    EXPECT_EQ(DemoAnomaly(17038), 0); // n = 25
    EXPECT_EQ(DemoAnomaly(17039), 1); // n = 26
    EXPECT_EQ(DemoAnomaly(32766), 24);
    EXPECT_EQ(DemoAnomaly(32767), 25);
}

class AnomalyDemoTest : public SuiteRunFixture {};

TEST_F(AnomalyDemoTest, InDemoModeTheHitsAreInvented) {
    OpenDemo();
    CAnomalyDetectionDoc document{[] { return AnomalyTable({}); }, prompts};
    Observer observer;
    std::vector<int> numbers = {32767, 0, 17039};
    AnomalyRun run(Parts(), document, observer, [&] {
        const int next = numbers.front();
        numbers.erase(numbers.begin());
        return next;
    });
    run.Start();
    timer->tick();
    timer->tick();
    timer->tick();
    EXPECT_THAT(document.Results(), ElementsAre(25, 1));
    EXPECT_THAT(observer.events,
                ElementsAre("cleared", "on", "25 - DEVSEL deassserted before tranasction complete",
                            "1 - FRAME deasserted before IRDY asserted"));
    run.Stop();
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(AnomalyDemoTest, TheInventedHitsDiffer) {
    OpenDemo();
    CAnomalyDetectionDoc document{[] { return AnomalyTable({}); }, prompts};
    Observer observer;
    AnomalyRun run(Parts(), document, observer);
    run.Start();
    for (int i = 0; i < 400; ++i) {
        timer->tick();
    }
    const auto& results = document.Results();
    EXPECT_GT(results.size(), 100U);
    EXPECT_LT(results.size(), 300U);
    EXPECT_GT(std::set<int>(results.begin(), results.end()).size(), 10U);
}

} // namespace
} // namespace busquill::test
