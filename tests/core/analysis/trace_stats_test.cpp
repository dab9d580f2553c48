#include "analysis/trace_stats.h"
#include "capture/sample_rows.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "waves.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace busquill::test {

namespace {

TraceSummary SummaryOf(const BoardTables& bus, const CaptureBuilder& capture) {
    TraceStats stats(bus.board, bus.tables);
    stats.Add(capture.Records());
    return stats.Summary();
}

CaptureBuilder SomeTraffic() {
    return CaptureBuilder()
        .Idle(3)
        .Read(0x1000, 1)
        .Idle(2)
        .Write(0x2000, 0xAB)
        .Finding(112)
        .IoRead(0x60)
        .Idle()
        .Address(0x3000, PciCommand::MemoryRead)
        .Wait(2);
}

} // namespace

TEST(TraceStats, AreZeroWithoutSamples) {
    const BoardTables bus("PCIKite");
    TraceSummary nothing;
    nothing.waitStates.emplace();
    nothing.anomalies = 0;
    nothing.findings.emplace();
    EXPECT_EQ(SummaryOf(bus, CaptureBuilder()), nothing);
}

TEST(TraceStats, GiveOneSampleNoTime) {
    const TraceSummary summary = SummaryOf(BoardTables("PCIKite"), CaptureBuilder().Idle());
    EXPECT_EQ(summary.samples, 1U);
    EXPECT_EQ(summary.idleSamples, 1U);
    EXPECT_EQ(summary.time, 0);
    EXPECT_EQ(summary.idleTime, 0);
}

TEST(TraceStats, AddUpTheTimesOfAllSamplesButTheFirst) {
    const CaptureBuilder capture = CaptureBuilder()
                                       .Idle()
                                       .After(9999)
                                       .Idle()
                                       .After(30)
                                       .Idle()
                                       .After(4, 1) // us
                                       .Idle()
                                       .After(5, 2) // ms
                                       .Idle()
                                       .After(6, 3); // s
    EXPECT_EQ(SummaryOf(BoardTables("PCIKite"), capture).time, 6'005'004'030);
}

TEST(TraceStats, KeepTheBitsOfAFindingOutOfTheTime) {
    // The finding's lowest bit lies directly above the field.
    const CaptureBuilder capture = CaptureBuilder().Idle().Idle().Finding(0xFF);
    EXPECT_EQ(SummaryOf(BoardTables("PCIKite"), capture).time, 30);
}

TEST(TraceStats, CountTimeAsIdleFromAnIdleSampleToTheNext) {
    const CaptureBuilder capture = CaptureBuilder()
                                       .Idle()
                                       .Write(0x1000, 1) // address and data
                                       .After(100)       // busy since the address
                                       .Idle()
                                       .After(200); // busy since the data
    const TraceSummary summary = SummaryOf(BoardTables("PCIKite"), capture);
    EXPECT_EQ(summary.idleSamples, 2U);
    EXPECT_EQ(summary.idleTime, 30);
    EXPECT_EQ(summary.time, 330);
}

TEST(TraceStats, CountFindingsByCodeWithTheFirstSample) {
    const CaptureBuilder capture =
        CaptureBuilder().Idle(2).Finding(114).Idle().Finding(2).Idle().Idle().Finding(114);
    const std::vector<FindingCount> expected = {
        {2, "FRAME asserted without IRDY or TRDY", 1, 2},
        {114, "Target Abort", 2, 1},
    };
    EXPECT_EQ(SummaryOf(BoardTables("PCIKite"), capture).findings, expected);
}

TEST(TraceStats, NameAFindingThatIsNotInTheTableByItsCode) {
    const std::vector<FindingCount> expected = {{200, "", 1, 0}};
    EXPECT_EQ(SummaryOf(BoardTables("PCIKite"), CaptureBuilder().Idle().Finding(200)).findings,
              expected);
}

TEST(TraceStats, CountAnomalySamples) {
    constexpr int anomaly = 94;
    const CaptureBuilder capture =
        CaptureBuilder().Idle().With(anomaly, true).Idle().Idle().With(anomaly, true);
    EXPECT_EQ(SummaryOf(BoardTables("PCIKite"), capture).anomalies, 2U);
}

TEST(TraceStats, IgnoreAnAnomalyBitThatIsTheClock) {
    const BoardTables bus("VMEKite");
    EXPECT_EQ(Waves(bus).Line("CLK", "~~~").Summary().anomalies, std::nullopt);
}

TEST(TraceStats, NameFindingsWithTheTextsOfTheBus) {
    const BoardTables bus("VMEKite");
    const std::vector<FindingCount> expected = {{67, "No data acknowledge", 1, 1}};
    EXPECT_EQ(Waves(bus).Line("AS", "~~").At(1, "RULE CHECK", 67).Summary().findings, expected);
}

TEST(TraceStats, HaveNoFindingsWhereTheBoardChecksNoRules) {
    for (const char* model : {"VSBKite", "VMELark"}) {
        const BoardTables bus(model);
        Waves waves(bus);
        waves.Line("CLK", "~~");
        SampleRecord record = waves.Records().front();
        record.bytes[16] = 2; // RULE CHECK of other boards
        TraceStats stats(bus.board, bus.tables);
        stats.Add({&record, 1});
        EXPECT_EQ(stats.Summary().findings, std::nullopt) << model;
    }
}

TEST(TraceStats, CountSamplesTimeAndFindingsOfAConnector) {
    for (const char* model : {"VMEKiteP2", "VMEKiteP0"}) {
        const BoardTables bus(model);
        TraceSummary expected;
        expected.samples = 3;
        expected.time = 20;
        expected.findings = {{5, "", 1, 1}};
        EXPECT_EQ(Waves(bus).Line("A1", "~_~").At(1, "RULE CHECK", 5).Summary(), expected) << model;
    }
}

TEST(TraceStats, DoNotDependOnTheSizeOfThePieces) {
    const BoardTables bus("PCIKite");
    const CaptureBuilder capture = SomeTraffic();
    const TraceSummary whole = SummaryOf(bus, capture);
    const std::span<const SampleRecord> all = capture.Records();
    for (std::size_t size = 1; size < all.size(); ++size) {
        TraceStats stats(bus.board, bus.tables);
        for (std::size_t first = 0; first < all.size(); first += size) {
            stats.Add(all.subspan(first, std::min(size, all.size() - first)));
        }
        EXPECT_EQ(stats.Summary(), whole) << "in pieces of " << size;
    }
}

TEST(TraceStats, KnowTheNumberOfAFindingsFirstSample) {
    const BoardTables bus("PCIKite");
    SampleRows rows;
    const CaptureBuilder capture = CaptureBuilder().Idle().Idle().Finding(112).Idle().Finding(112);
    for (std::int32_t number = -50; const SampleRecord& record : capture.Records()) {
        rows.Add(number, record);
        number += 10; // a capture of which samples are missing
    }
    TraceStats stats(bus.board, bus.tables);
    stats.Add(rows);
    const FindingCount finding = stats.Summary().findings.value().front();
    EXPECT_EQ(finding.count, 2U);
    EXPECT_EQ(finding.firstSample, -40);
}

TEST(TraceStats, GoOnAfterASummary) {
    const BoardTables bus("PCIKite");
    const CaptureBuilder capture = SomeTraffic();
    const std::span<const SampleRecord> all = capture.Records();
    TraceStats stats(bus.board, bus.tables);
    for (std::size_t i = 0; i < all.size(); ++i) {
        stats.Add(all.subspan(i, 1));
        TraceStats fresh(bus.board, bus.tables);
        fresh.Add(all.first(i + 1));
        EXPECT_EQ(stats.Summary(), fresh.Summary()) << "after sample " << i;
    }
}

} // namespace busquill::test
