// Scans and compliance tests on the simulated board, over a real pseudo terminal.

#include "document/hex_fields.h"
#include "platform/working_directory.h"
#include "support/paths.h"
#include "support/temp_dir.h"
#include "support/wire_fixture.h"
#include "testsuites/check_list.h"
#include "testsuites/compliance_document.h"
#include "testsuites/compliance_run.h"
#include "testsuites/config_header.h"
#include "testsuites/config_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Operator final : public ComplianceObserver {
public:
    void OnRunning(bool on) override { running = on; }
    void OnResultsCleared() override {}
    void OnTestStarted(const CTestResult& /*test*/) override {}
    void OnTestEnded(const CTestResult& /*test*/) override {}
    OperatorAnswer AskOperator(const std::string& instructions) override {
        asked.push_back(instructions);
        if (answers.empty()) {
            return OperatorAnswer::Continue;
        }
        const OperatorAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }

    bool running = false;
    std::vector<std::string> asked;
    std::deque<OperatorAnswer> answers;
};

class TestSuitesOverWire : public LinkOverWire {
protected:
    void Connect(const std::vector<std::string>& options = {}) {
        StartBoard(options);
        link.Connect(Port());
        quiet = board->Functions().size();
    }
    /// The functions since the connection, without addresses: "start compliance test".
    std::vector<std::string> Functions() {
        auto functions = board->Functions();
        functions.erase(functions.begin(), functions.begin() + static_cast<std::ptrdiff_t>(quiet));
        return functions;
    }
    /// The payloads that the board got for functions other than the connection's.
    std::vector<std::string> Payloads() const {
        std::vector<std::string> payloads;
        for (const std::string& line : board->Log()) {
            if (const auto end = line.find(" payload"); end != std::string::npos) {
                payloads.push_back(line.substr(6, end - 6));
            }
        }
        return payloads;
    }
    std::string HeadOf(const CConfigSpaceData& data) const {
        const auto head = AnalyzeHeader(data).head;
        return head[0] + head[1] + head[2];
    }
    /// Runs the ticked tests to their end.
    std::vector<std::string> RunTests(ComplianceRun& run, const Operator& observer) {
        run.Go();
        const auto limit = std::chrono::steady_clock::now() + 30s;
        while (run.IsOn() && std::chrono::steady_clock::now() < limit) {
            run.Poll();
        }
        EXPECT_FALSE(observer.running);
        std::vector<std::string> results;
        for (const CTestResult& test : document.Results()) {
            results.push_back(TestLabel(test) + " " + TestResultText(test));
        }
        return results;
    }

    const WorkingDirectory folder{SourceFile("data")};
    const CheckList list = LoadCheckList(folder);
    CComplianceDoc document{folder, prompts};
    std::size_t quiet = 0;
};

TEST_F(TestSuitesOverWire, AScanGoesThroughTheDevicesOfTheBus) {
    Connect({"--fault", "scan-busy 2"});
    CConfigSpaceData data(folder, prompts);
    EXPECT_EQ(ScanForDevice(link, ScanDirection::First, data, prompts), 0);
    EXPECT_EQ(HeadOf(data), " Class: Bridge Vendor: Intel Corporation Device/Rev ID: 1237.02");
    std::vector<int> functions;
    for (int i = 0; i < 6; ++i) {
        functions.push_back(ScanForDevice(link, ScanDirection::Next, data, prompts).value_or(-1));
    }
    EXPECT_THAT(functions, ElementsAre(0, 0, 1, 2, 0, 0));
    EXPECT_EQ(HeadOf(data),
              " Class: Mass storage controller Vendor: Broadcom / LSI Device/Rev ID: 0030.07");
    EXPECT_EQ(HexAddressText(data.Identity().address), "0000000080012000");
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    EXPECT_EQ(ScanForDevice(link, ScanDirection::Next, data, prompts), std::nullopt);
    EXPECT_THAT(prompts.Texts(), ElementsAre("No device found."));
    EXPECT_EQ(data.Identity().deviceId, 0x30U);
    EXPECT_EQ(ScanForDevice(link, ScanDirection::Back, data, prompts), 0);
    EXPECT_EQ(data.Identity().deviceId, 0x1229U);
    const auto wire = Functions();
    ASSERT_GE(wire.size(), 6U);
    EXPECT_EQ(wire[0], "function 2 write memory, address 850 length 1");
    EXPECT_EQ(wire[1].substr(0, 36), "function 21 start configuration scan");
    EXPECT_EQ(wire[2], "function 1 read memory, address 851 length 1");
    EXPECT_EQ(wire[3], wire[2]);
    EXPECT_EQ(wire[4], wire[2]) << "busy twice";
    EXPECT_EQ(wire[5], "function 1 read memory, address 852 length 72");
}

TEST_F(TestSuitesOverWire, DevicesComeFromAFile) {
    const TempDir dir;
    Connect({"--devices", dir.Write("one.txt", "02:03.5 x\n00: 11 10 24 00\n08: 07 00 00 02\n")});
    CConfigSpaceData data(folder, prompts);
    EXPECT_EQ(ScanForDevice(link, ScanDirection::First, data, prompts), 5);
    EXPECT_EQ(HeadOf(data), " Class: Network controller Vendor: Digital Equipment Corporation"
                            " Device/Rev ID: 0024.07");
}

TEST_F(TestSuitesOverWire, AScanThatNeverEndsTimesOut) {
    Connect({"--fault", "scan-busy 100000"});
    CConfigSpaceData data(folder, prompts);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(ScanForDevice(link, ScanDirection::First, data, prompts), std::nullopt);
    const auto took = std::chrono::steady_clock::now() - begun;
    EXPECT_GT(took, 10s);
    EXPECT_LT(took, 15s);
    EXPECT_THAT(prompts.Texts(),
                ElementsAre("Timeout while waiting for configuration scan to complete."));
}

TEST_F(TestSuitesOverWire, TestsEndAsTheDeviceDoes) {
    Connect({"--compliance", "CFG2 fail 5, CFG3 slow 4, CFG4 slow 2 fail 1"});
    Operator observer;
    ComplianceRun run(
        {link, prompts}, document, list, [](int index) { return index <= 4; }, observer);
    ASSERT_EQ(run.Find(ScanDirection::First), 0);
    EXPECT_THAT(RunTests(run, observer), ElementsAre("CFG1. Passed ", "CFG2. Failed(5) ",
                                                     "CFG3. Passed ", "CFG4. Failed(1) "));
    EXPECT_THAT(prompts.Texts(), IsEmpty());
    int starts = 0;
    int stops = 0;
    for (const std::string& line : Functions()) {
        starts += line.starts_with("function 19 ") ? 1 : 0;
        stops += line.starts_with("function 20 ") ? 1 : 0;
    }
    EXPECT_EQ(starts, 4);
    EXPECT_EQ(stops, 1);
    EXPECT_THAT(Functions().back(), testing::StartsWith("function 20 stop compliance test"));
    const auto payloads = Payloads();
    ASSERT_GE(payloads.size(), 3U);
    EXPECT_EQ(payloads[payloads.size() - 2], "43 46 47 04");
    EXPECT_EQ(payloads.back(), "00");
}

TEST_F(TestSuitesOverWire, TheOperatorContinuesAndSkips) {
    Connect();
    Operator observer;
    observer.answers = {OperatorAnswer::Continue, OperatorAnswer::Skip};
    const auto isAttended = [this, left = 2](int index) mutable {
        return !list[static_cast<std::size_t>(index)].instructions.empty() && left-- > 0;
    };
    ComplianceRun run({link, prompts}, document, list, isAttended, observer);
    ASSERT_EQ(run.Find(ScanDirection::First), 0);
    EXPECT_THAT(RunTests(run, observer), ElementsAre("INT1. Passed ", "RST3. Skipped "));
    EXPECT_THAT(observer.asked, SizeIs(2));
    const auto payloads = Payloads();
    EXPECT_THAT(std::vector(payloads.end() - 6, payloads.end()),
                ElementsAre("49 4e 54 01", "01", "03", "52 53 54 03", "01", "05"));
    const auto functions = Functions();
    EXPECT_THAT(functions.back(), testing::StartsWith("function 20 "));
    EXPECT_THAT(functions[functions.size() - 2], testing::StartsWith("function 20 "));
}

TEST_F(TestSuitesOverWire, AnUnknownOutcomeEndsTheRun) {
    Connect({"--compliance", "CFG2 unknown"});
    Operator observer;
    ComplianceRun run(
        {link, prompts}, document, list, [](int) { return true; }, observer);
    ASSERT_EQ(run.Find(ScanDirection::First), 0);
    EXPECT_THAT(RunTests(run, observer), ElementsAre("CFG1. Passed "));
    EXPECT_THAT(prompts.Texts(), ElementsAre("Unknown test status from analyzer."));
}

} // namespace
} // namespace busquill::test
