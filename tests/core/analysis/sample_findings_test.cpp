#include "analysis/sample_findings.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "waves.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

constexpr int anomalyBit = 94;

TEST(FindingsOfSamples, AreBrokenRulesAndAnomalies) {
    const BoardTables bus("PCIKite");
    const SampleFindings findings(bus.tables);
    EXPECT_TRUE(findings.HasRules());
    EXPECT_TRUE(findings.HasAnomalies());
    const CaptureBuilder capture = CaptureBuilder()
                                       .Idle()
                                       .Finding(114)
                                       .Idle()
                                       .Idle()
                                       .With(anomalyBit, true)
                                       .Idle()
                                       .Finding(200)
                                       .With(anomalyBit, true)
                                       .Idle();
    const auto& records = capture.Records();
    EXPECT_EQ(findings.In(records), 0b01101U);
    EXPECT_EQ(findings.RuleOf(records[0]), 114);
    EXPECT_EQ(findings.RuleOf(records[1]), 0);
    EXPECT_FALSE(findings.IsAnomaly(records[0]));
    EXPECT_TRUE(findings.IsAnomaly(records[2]));
    EXPECT_EQ(findings.RuleOf(records[3]), 200);
    EXPECT_EQ(findings.TextOfRule(200), "") << "the table has no such rule";
    EXPECT_NE(findings.TextOfRule(114), "");
}

TEST(FindingsOfSamples, TheClockOfVmeIsNoAnomaly) {
    const BoardTables bus("VMEKite");
    const SampleFindings findings(bus.tables);
    EXPECT_TRUE(findings.HasRules());
    EXPECT_FALSE(findings.HasAnomalies());
    const Waves waves = Waves(bus).Line("CLK", "~~~");
    EXPECT_EQ(findings.In(waves.Records()), 0U);
}

} // namespace
} // namespace busquill::test
