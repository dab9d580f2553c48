/// Long traffic of each family, compared with what its samples show independently: findings that
/// the board marked, and edges of single lines.
#include "analysis/trace_stats.h"
#include "boardsim/traffic.h"
#include "support/board_tables.h"
#include "waves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace busquill::test {

namespace {

constexpr std::size_t sampleCount = 20000;
constexpr std::uint32_t seed = 7;
constexpr int addressPhaseBit = 95;

struct FamilyCase {
    const char* name;
    boardsim::Family family;
    const char* model;
    std::int32_t mode;
    std::int32_t width;
};

std::vector<SampleRecord> Records(const FamilyCase& family) {
    std::vector<SampleRecord> records;
    for (const boardsim::Record& bytes : boardsim::MakeRecords(family.family, seed, sampleCount)) {
        records.push_back({bytes});
    }
    return records;
}

TraceSummary SummaryOf(const FamilyCase& family, std::span<const SampleRecord> records,
                       std::size_t piece) {
    const BoardTables bus(family.model, family.mode, family.width);
    TraceStats stats(bus.board, bus.tables);
    for (std::size_t first = 0; first < records.size(); first += piece) {
        stats.Add(records.subspan(first, std::min(piece, records.size() - first)));
    }
    return stats.Summary();
}

std::uint64_t FindingsOf(const TraceSummary& summary, std::uint8_t code) {
    for (const FindingCount& finding : summary.findings.value()) {
        if (finding.code == code) {
            return finding.count;
        }
    }
    return 0;
}

/// Samples in which a line falls.
std::uint64_t Falls(std::span<const SampleRecord> records, int bit) {
    std::uint64_t falls = 0;
    for (std::size_t i = 1; i < records.size(); ++i) {
        falls += records[i - 1].Bit(bit) && !records[i].Bit(bit) ? 1 : 0;
    }
    return falls;
}

std::uint64_t Transactions(const TraceSummary& summary) {
    return std::accumulate(
        summary.commands.begin(), summary.commands.end(), std::uint64_t{0},
        [](std::uint64_t sum, const CommandCount& each) { return sum + each.transactions; });
}

std::uint64_t DataPhases(const TraceSummary& summary) {
    return std::accumulate(
        summary.commands.begin(), summary.commands.end(), std::uint64_t{0},
        [](std::uint64_t sum, const CommandCount& each) { return sum + each.dataPhases; });
}

class BelievableTraffic : public testing::TestWithParam<FamilyCase> {};
class BelievablePci : public BelievableTraffic {};
class BelievableStrobes : public BelievableTraffic {};

const FamilyCase pci32 = {"Pci32", boardsim::Family::Pci32, "PCIKite", BusPci, 0};
const FamilyCase pci64 = {"Pci64", boardsim::Family::Pci64, "PCIKite", BusPci, 1};
const FamilyCase pciX = {"PciX", boardsim::Family::PciX, "PCIKite", BusPciX, 1};
const FamilyCase vme = {"Vme", boardsim::Family::Vme, "VMEKite", BusVme, 0};
const FamilyCase lark = {"Lark", boardsim::Family::Lark, "VMELark", BusVme, 0};
const FamilyCase vsb = {"Vsb", boardsim::Family::Vsb, "VSBKite", BusVsb, 0};
const FamilyCase p2 = {"P2", boardsim::Family::ConnectorP2, "VMEKiteP2", BusVmeP2, 0};

const auto nameOf = [](const testing::TestParamInfo<FamilyCase>& info) { return info.param.name; };

INSTANTIATE_TEST_SUITE_P(Families, BelievableTraffic,
                         testing::Values(pci32, pci64, pciX, vme, lark, vsb, p2), nameOf);
INSTANTIATE_TEST_SUITE_P(Families, BelievablePci, testing::Values(pci32, pci64, pciX), nameOf);
INSTANTIATE_TEST_SUITE_P(Families, BelievableStrobes, testing::Values(vme, lark, vsb), nameOf);

} // namespace

TEST_P(BelievableTraffic, AddsUpTheSameInPiecesOfAnySize) {
    const auto records = Records(GetParam());
    const TraceSummary whole = SummaryOf(GetParam(), records, records.size());
    EXPECT_EQ(SummaryOf(GetParam(), records, 1), whole);
    EXPECT_EQ(SummaryOf(GetParam(), records, 4099), whole);
    EXPECT_EQ(whole.samples, sampleCount);
    EXPECT_LT(whole.idleTime, whole.time);
}

TEST_P(BelievablePci, EndsAsTheFindingsReport) {
    const TraceSummary summary = SummaryOf(GetParam(), Records(GetParam()), sampleCount);
    EXPECT_EQ(summary.retries, FindingsOf(summary, 112));
    EXPECT_EQ(summary.disconnects, FindingsOf(summary, 113));
    EXPECT_EQ(summary.targetAborts, FindingsOf(summary, 114));
    EXPECT_GT(summary.retries, 0U);
    EXPECT_GT(summary.disconnects, 0U);
    EXPECT_GT(summary.targetAborts, 0U);
    EXPECT_EQ(summary.masterAborts, 0U); // every transaction is claimed, except special cycles
}

TEST_P(BelievablePci, HasATransactionForEachAddressPhase) {
    const auto records = Records(GetParam());
    const auto phases = static_cast<std::uint64_t>(std::count_if(
        records.begin(), records.end(), [](const auto& r) { return r.Bit(addressPhaseBit); }));
    const TraceSummary summary = SummaryOf(GetParam(), records, sampleCount);
    EXPECT_EQ(Transactions(summary), phases);
    EXPECT_EQ(summary.idleTime % 15, 0);
}

TEST_P(BelievableStrobes, HasATransferForEachAcknowledge) {
    struct Bits {
        int select, acknowledge, error;
    };
    const std::string name = GetParam().name;
    const Bits bits = name == "Lark" ? Bits{96, 71, 70} : Bits{72, 75, 76};
    const auto records = Records(GetParam());
    const TraceSummary summary = SummaryOf(GetParam(), records, sampleCount);
    EXPECT_EQ(Transactions(summary), Falls(records, bits.select));
    EXPECT_EQ(DataPhases(summary), Falls(records, bits.acknowledge));
    EXPECT_EQ(summary.busErrors, Falls(records, bits.error));
    EXPECT_GT(summary.busErrors, 0U);
    EXPECT_EQ(summary.acknowledgeTime->transfers, DataPhases(summary));
    for (const char* words : {"A32 NON PRVL DATA Rd", "A24 NON PRVL BLT Wr", "Sys Rd"}) {
        const CommandCount command = Command(summary, words);
        EXPECT_EQ(command.bytes, 4 * command.dataPhases) << words;
    }
    EXPECT_GT(Command(summary, name == "Vsb" ? "Sys Rd" : "A24 NON PRVL BLT Wr").bytes, 0U);
}

} // namespace busquill::test
