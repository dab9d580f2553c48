#include "core/testsuites/check_table_text.h"
#include "testsuites/anomaly_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::Each;
using testing::ElementsAre;

BoardTraits Board(const std::string& model) {
    BoardTraits traits;
    traits.modelString = model;
    return traits;
}

const CheckTable pci = AnomalyTable(Board("PCIKite"));
const CheckTable vme = AnomalyTable(Board("VMEKite"));

TEST(AnomalyTable, BelongsToTheFamily) {
    EXPECT_EQ(pci.size(), 124U);
    EXPECT_EQ(vme.size(), 73U);
    EXPECT_EQ(AnomalyTable(Board("PMCWren")).data(), pci.data());
    EXPECT_EQ(AnomalyTable(Board("VSBKite")).data(), pci.data());
    EXPECT_EQ(AnomalyTable(Board("VMELark")).data(), vme.data());
    EXPECT_EQ(AnomalyTable(Board("VMEKiteP2")).data(), vme.data());
    BoardTraits demo;
    demo.demoMode = true;
    EXPECT_EQ(AnomalyTable(demo).data(), pci.data());
    demo.bus.busMode = Bus2eVme;
    EXPECT_EQ(AnomalyTable(demo).data(), vme.data());
}

TEST(AnomalyTable, HasItsGroups) {
    EXPECT_THAT(Groups(pci, anomalyCheckLevel),
                ElementsAre("Protocol Violations 0", "Master 22", "Target 12", "General 15",
                            "Timing Violations 0", "Unstable Signals 20", "Setup and Hold 21",
                            "General 21", "Warnings 0", "Protocol 3"));
    EXPECT_THAT(Groups(vme, anomalyCheckLevel),
                ElementsAre("Timing Violations 0", "Master 30", "Slave 9", "Arbitration 6",
                            "Interrupt 19", "Other 3"));
    EXPECT_EQ(pci[0].level, 0);
    EXPECT_EQ(pci[1].level, 1);
    EXPECT_EQ(pci[2].level, 2);
}

TEST(AnomalyTable, NamesItsChecks) {
    EXPECT_EQ(AnomalyText(pci, 1), "1 - FRAME deasserted before IRDY asserted");
    EXPECT_EQ(AnomalyText(pci, 20), "20 - Master Abort during  DEVSEL");
    EXPECT_EQ(AnomalyText(pci, 25), "25 - DEVSEL deassserted before tranasction complete");
    EXPECT_EQ(AnomalyText(pci, 91), "91 - CLK Period < 15ns  (66 Mhz system)");
    EXPECT_EQ(AnomalyText(pci, 97), "97 - Gliches on CLK");
    EXPECT_EQ(AnomalyText(pci, 111), "111 - Reserved");
    EXPECT_EQ(AnomalyText(pci, 114), "114 - Target Abort");
    EXPECT_EQ(AnomalyText(vme, 11), "11 - Both DTACK* and BERR*  active (2.13a)");
    EXPECT_EQ(AnomalyText(vme, 67), "67 - No data acknowledge");
}

TEST(AnomalyTable, HasNoOtherChecks) {
    for (const int number : {0, -1, 115, 255}) {
        EXPECT_EQ(AnomalyText(pci, number), "") << number;
    }
    EXPECT_EQ(AnomalyText(vme, 68), "");
}

TEST(AnomalyTable, EveryTextIsThatOfTheFiles) {
    EXPECT_EQ(Checksum(pci), 0xAEA915A9C647A152U);
    EXPECT_EQ(Checksum(vme), 0xD756C94501B2373CU);
}

TEST(AnomalyChecklist, ASetBitSwitchesACheckOff) {
    Bits enabled(200, true);
    EXPECT_THAT(BuildAnomalyChecklist(pci, enabled), Each(0));
    enabled.Unset(2);   // 1
    enabled.Unset(10);  // 9
    enabled.Unset(25);  // 23: two headings stand above
    enabled.Unset(123); // 114
    EXPECT_THAT(BuildAnomalyChecklist(pci, enabled),
                ElementsAre(0x01, 0x01, 0x40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x02, 0));
}

TEST(AnomalyChecklist, GroupsHaveNoBits) {
    Bits enabled(200, true);
    for (const std::size_t heading : {0, 1, 24, 37, 53, 54, 75, 97, 119, 120}) {
        ASSERT_LT(pci[heading].level, anomalyCheckLevel);
        enabled.Unset(heading);
    }
    EXPECT_THAT(BuildAnomalyChecklist(pci, enabled), Each(0));
}

TEST(AnomalyChecklist, BitsPastTheLastCheckStayZero) {
    const Bits none(200);
    EXPECT_THAT(BuildAnomalyChecklist(pci, none),
                ElementsAre(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                            0xFF, 0xFF, 0x03, 0x00)); // 114
    EXPECT_THAT(BuildAnomalyChecklist(vme, none),
                ElementsAre(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x07, 0, 0, 0, 0, 0, 0,
                            0)); // 67
}

} // namespace
} // namespace busquill::test
