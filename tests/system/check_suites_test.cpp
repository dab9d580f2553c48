// Anomaly detection and the backplane test on the simulated board, over a real pseudo terminal.

#include "link/exchange.h"
#include "support/wire_fixture.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_run.h"
#include "testsuites/anomaly_table.h"
#include "testsuites/backplane_document.h"
#include "testsuites/backplane_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace busquill::test {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class Listener final : public AnomalyObserver, public BackplaneObserver {
public:
    void OnRunning(bool on) override { running = on; }
    void OnResultsCleared() override { lines.clear(); }
    void OnFound(std::string_view check) override { lines.emplace_back(check); }
    void OnSignal(const std::string& line) override { lines.push_back(line); }
    void OnResult(const std::string& line) override { lines.push_back(line); }

    bool running = false;
    std::vector<std::string> lines;
};

class CheckSuitesOverWire : public LinkOverWire {
protected:
    void Connect(const std::vector<std::string>& options = {}) {
        StartBoard(options);
        link.Connect(Port());
        quiet = board->Log().size();
    }
    /// What the board got since the connection: functions by their numbers, payloads as bytes.
    std::vector<std::string> Wire() {
        std::vector<std::string> wire;
        const auto log = board->Log();
        for (std::size_t i = quiet; i < log.size(); ++i) {
            const std::string& line = log[i];
            if (const auto at = line.find("function "); at != std::string::npos) {
                const std::string number = line.substr(at + 9, line.find(' ', at + 9) - at - 9);
                if (number == "1") {
                    const auto address = line.find("address ") + 8;
                    wire.push_back(line.substr(address, line.find(' ', address) - address) + "?");
                } else if (number != "2") {
                    wire.push_back(number);
                }
            } else if (const auto end = line.find(" payload"); end != std::string::npos) {
                wire.push_back(line.substr(6, end - 6));
            }
        }
        quiet = log.size();
        return wire;
    }
    int ByteAt(std::uint32_t address) {
        std::array<std::uint8_t, 1> byte{};
        EXPECT_TRUE(ReadOrReport(link, address, byte, prompts, "not read"));
        return byte[0];
    }
    void RunToEnd(BackplaneRun& run) const {
        run.Start();
        for (int i = 0; run.IsOn() && i < 2000; ++i) {
            run.Poll();
        }
        EXPECT_FALSE(run.IsOn());
    }

    CAnomalyDetectionDoc anomalies{[this] { return AnomalyTable(link.Traits()); }, prompts};
    CBackplaneTestDoc backplane{[this] { return BackplaneTable(link.Traits()); }, prompts};
    Listener listener;
    std::size_t quiet = 0;
};

TEST_F(CheckSuitesOverWire, TheBoardReportsOnlyChecksThatAreOn) {
    Connect({"--anomaly-rate", "100"});
    anomalies.EnableAll(false);
    anomalies.Enable(121, true); // 112
    anomalies.Enable(2, true);   // 1
    AnomalyRun run({link, prompts}, anomalies, listener);
    run.Start();
    EXPECT_TRUE(listener.running);
    EXPECT_THAT(Wire(), ElementsAre("fe ff ff ff ff ff ff ff ff ff ff ff ff 7f 03 00", "17"));
    for (int i = 0; i < 20; ++i) {
        run.Poll();
    }
    EXPECT_THAT(Wire(), AllOf(SizeIs(20), Each("1548?")));
    EXPECT_THAT(anomalies.Results(),
                AllOf(SizeIs(20), Each(AnyOf(1, 112)), Contains(1), Contains(112)));
    EXPECT_THAT(listener.lines, AllOf(SizeIs(20), Contains("112 - Target Retry"),
                                      Contains("1 - FRAME deasserted before IRDY asserted")));
    anomalies.Enable(121, false);
    run.SendChecklist();
    for (int i = 0; i < 10; ++i) {
        run.Poll();
    }
    EXPECT_THAT(std::vector(listener.lines.end() - 10, listener.lines.end()),
                Each("1 - FRAME deasserted before IRDY asserted"));
    Wire();
    run.Stop();
    EXPECT_THAT(Wire(), ElementsAre("18"));
    EXPECT_FALSE(listener.running);
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CheckSuitesOverWire, AVmeBoardHasItsOwnChecks) {
    Connect({"--model", "VMEKite", "--anomaly-rate", "100"});
    anomalies.EnableAll(false);
    anomalies.Enable(72, true); // 67
    AnomalyRun run({link, prompts}, anomalies, listener);
    run.Start();
    EXPECT_THAT(Wire(), ElementsAre("ff ff ff ff ff ff ff ff 03 00 00 00 00 00 00 00", "17"));
    run.Poll();
    EXPECT_THAT(listener.lines, ElementsAre("67 - No data acknowledge"));
}

TEST_F(CheckSuitesOverWire, ACheckThatTheTableDoesNotNameIsKept) {
    Connect({"--anomaly-rate", "0"});
    AnomalyRun run({link, prompts}, anomalies, listener);
    run.Start();
    board->Fault("anomaly 115");
    run.Poll();
    run.Poll();
    EXPECT_THAT(anomalies.Results(), ElementsAre(115));
    EXPECT_THAT(listener.lines, IsEmpty());
}

TEST_F(CheckSuitesOverWire, TheBoardStopsWhenItIsTold) {
    Connect({"--anomaly-rate", "100", "--fault", "backplane-busy 1000"});
    AnomalyRun anomalyRun({link, prompts}, anomalies, listener);
    anomalyRun.Start();
    EXPECT_NE(ByteAt(RegisterAnomalyResults), 0);
    anomalyRun.Stop();
    EXPECT_EQ(ByteAt(RegisterAnomalyResults), 0);
    BackplaneRun run(
        {link, prompts}, backplane, backplane.Table(), [](int row) { return row == 1; }, listener);
    run.Start();
    EXPECT_EQ(ByteAt(RegisterBackplaneResult), 0x80);
    run.Stop();
    EXPECT_EQ(ByteAt(RegisterBackplaneResult), 0);
}

TEST_F(CheckSuitesOverWire, EverySignalOfAGoodBackplaneIsOk) {
    for (const auto& [model, signals] :
         {std::pair{"PCIKite", 92U}, {"VMEKite", 100U}, {"VSBKite", 55U}}) {
        Connect({"--model", model});
        BackplaneRun run(
            {link, prompts}, backplane, backplane.Table(), [](int) { return true; }, listener);
        RunToEnd(run);
        EXPECT_THAT(listener.lines, SizeIs(2 * signals)) << model;
        EXPECT_EQ(std::ranges::count(listener.lines, "    Ok"), signals) << model;
        link.Close();
    }
    EXPECT_THAT(prompts.Texts(), IsEmpty());
}

TEST_F(CheckSuitesOverWire, ShortsAndBrokenLinesAreFound) {
    Connect({"--backplane", "4+5+6, 8+92, broken 7", "--fault", "backplane-busy 2"});
    BackplaneRun run(
        {link, prompts}, backplane, backplane.Table(),
        [](int row) { return row == 6 || (row >= 8 && row <= 10); }, listener);
    run.sensitivity = BackplaneSensitivity::Low;
    RunToEnd(run);
    EXPECT_THAT(backplane.Results(), ElementsAre("AD[5]", "    AD[4] SHORTED", "    AD[6] SHORTED",
                                                 "AD[7]", "    Cannot drive signal", "AD[8]",
                                                 "    Bit 92 SHORTED", "AD[9]", "    Ok"));
    EXPECT_EQ(listener.lines, backplane.Results());
    const std::string zeros =
        "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
        "00 00 00";
    std::vector<std::string> wire;
    for (const std::string& signal :
         {"00 20 " + zeros, "00 80 " + zeros, "00 00 00 01 " + zeros.substr(6),
          "00 00 00 02 " + zeros.substr(6)}) {
        for (const std::string& step :
             {std::string("02"), signal, std::string("39"), std::string("1551?"),
              std::string("1551?"), std::string("1551?"), std::string("1552?")}) {
            wire.push_back(step);
        }
    }
    wire.emplace_back("40");
    EXPECT_EQ(Wire(), wire);
}

TEST_F(CheckSuitesOverWire, ASilentStatusIsReadAgainUntilTheBoardAnswers) {
    Connect();
    BackplaneRun run(
        {link, prompts}, backplane, backplane.Table(), [](int row) { return row == 1; }, listener);
    run.Start();
    board->Fault("silence");
    run.Poll();
    EXPECT_THAT(prompts.Texts(), Contains("Error reading backplane results data from analyzer."));
    EXPECT_TRUE(run.IsOn());
    board->Fault("normal");
    run.Poll();
    EXPECT_FALSE(run.IsOn());
    EXPECT_THAT(backplane.Results(), ElementsAre("AD[0]", "    Ok"));
}

} // namespace
} // namespace busquill::test
