#include "core/testsuites/check_table_text.h"
#include "testsuites/backplane_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

BoardTraits Board(const std::string& model) {
    BoardTraits traits;
    traits.modelString = model;
    return traits;
}

const CheckTable pci = BackplaneTable(Board("PCIKite"));
const CheckTable vme = BackplaneTable(Board("VMEKite"));
const CheckTable vsb = BackplaneTable(Board("VSBKite"));
const CheckTable p2 = BackplaneTable(Board("VMEKiteP2"));
const CheckTable p0 = BackplaneTable(Board("VMEKiteP0"));

int BitOf(CheckTable table, std::string_view text) {
    const auto row = std::ranges::find(table, text, &CheckTableRow::text);
    return row == table.end() ? -1 : row->bit;
}

/// What is read back when these signals are seen.
BackplaneSignals Seen(std::initializer_list<int> bits) {
    BackplaneSignals signals{};
    for (const int bit : bits) {
        signals[static_cast<std::size_t>(2 * (bit / 8))] |=
            static_cast<std::uint8_t>(1 << (bit % 8));
    }
    return signals;
}

TEST(BackplaneTable, BelongsToTheBoard) {
    EXPECT_EQ(pci.size(), 98U);
    EXPECT_EQ(vme.size(), 106U);
    EXPECT_EQ(vsb.size(), 60U);
    EXPECT_EQ(p2.size(), 95U);
    EXPECT_EQ(p0.size(), 96U);
    EXPECT_EQ(BackplaneTable(Board("VMELark")).data(), vme.data());
    EXPECT_EQ(BackplaneTable(Board("PMCKite")).data(), pci.data());
    EXPECT_EQ(PciBackplaneTable().data(), pci.data());
    BoardTraits demo;
    demo.demoMode = true;
    demo.bus.busMode = BusVsb;
    EXPECT_EQ(BackplaneTable(demo).data(), vsb.data());
    demo.bus.busMode = BusVmeP2;
    EXPECT_EQ(BackplaneTable(demo).data(), pci.data()) << "the connectors have their models";
}

TEST(BackplaneTable, HasItsGroups) {
    EXPECT_THAT(Groups(pci, 1), ElementsAre("Address and Data 74", "Control 7", "Arbitration 4",
                                            "Error Reporting 2", "Interrupts 4", "Other 1"));
    EXPECT_THAT(Groups(vme, 1), ElementsAre("Address and Data 70", "Control 8", "Arbitration 8",
                                            "Error Reporting 1", "Interrupts 8", "Other 5"));
    EXPECT_THAT(Groups(vsb, 1), ElementsAre("Address and Data 32", "Control 15", "Arbitration 4",
                                            "Interrupts 1", "Other 3"));
    EXPECT_THAT(Groups(p2, 1), ElementsAre("P2 Signals 94"));
    EXPECT_THAT(Groups(p0, 1), ElementsAre("P2 Signals 95"));
}

TEST(BackplaneTable, SignalsHaveTheirPlaces) {
    EXPECT_EQ(pci[0].bit, 0);
    EXPECT_EQ(BitOf(pci, "AD[0]"), 0);
    EXPECT_EQ(BitOf(pci, "AD[63]"), 63);
    EXPECT_EQ(BitOf(pci, "CB/E[7]"), 71);
    EXPECT_EQ(BitOf(pci, "PAR64"), 87);
    EXPECT_EQ(BitOf(pci, "RST"), 79);
    EXPECT_EQ(BitOf(vme, "AM[5]"), 69);
    EXPECT_EQ(BitOf(vme, "BG[0]"), 84);
    EXPECT_EQ(BitOf(vme, "ACFAIL"), 107);
    EXPECT_EQ(BitOf(vsb, "DS"), 79);
    EXPECT_EQ(BitOf(vsb, "IRQ"), 78);
    EXPECT_EQ(BitOf(p2, "C1"), 108);
    EXPECT_EQ(BitOf(p2, "A19"), 0);
    EXPECT_EQ(BitOf(p0, "A1"), 71);
    EXPECT_EQ(BitOf(p0, "E17"), 0);
}

TEST(BackplaneTable, EveryRowIsThatOfTheBoard) {
    EXPECT_EQ(Checksum(pci), 0x4391D7B8477B73FBU);
    EXPECT_EQ(Checksum(vme), 0xBF6C8E5C64E2D09FU);
    EXPECT_EQ(Checksum(vsb), 0xFE6983D637999E78U);
    EXPECT_EQ(Checksum(p2), 0x1294F67929F46DA0U);
    EXPECT_EQ(Checksum(p0), 0x239D157158D69C19U);
}

TEST(BackplaneSignals, OneDriveBitIsSet) {
    for (int bit = 0; bit < backplaneBits; ++bit) {
        BackplaneSignals expected{};
        expected[static_cast<std::size_t>(2 * (bit / 8) + 1)] =
            static_cast<std::uint8_t>(1 << (bit % 8));
        EXPECT_EQ(DriveSignal(bit), expected) << bit;
    }
    EXPECT_EQ(DriveSignal(std::nullopt), BackplaneSignals{});
}

TEST(BackplaneSignals, WhatIsDrivenIsNotReadBack) {
    BackplaneSignals signals{};
    signals[3] = 0xFF; // drives 8 to 15
    EXPECT_FALSE(IsReadBack(signals, 8));
    signals[2] = 0x20;
    EXPECT_TRUE(IsReadBack(signals, 13));
    EXPECT_FALSE(IsReadBack(signals, 12));
}

TEST(EvaluateSignal, ASignalAloneIsOk) {
    EXPECT_THAT(EvaluateSignal(pci, 5, Seen({5})), ElementsAre("    Ok"));
    EXPECT_THAT(EvaluateSignal(pci, 111, Seen({111})), ElementsAre("    Ok"));
}

TEST(EvaluateSignal, ASignalThatIsNotSeenCannotBeDriven) {
    EXPECT_THAT(EvaluateSignal(pci, 5, Seen({})), ElementsAre("    Cannot drive signal"));
    EXPECT_THAT(EvaluateSignal(pci, 5, Seen({4, 6})), ElementsAre("    Cannot drive signal"))
        << "shorts are not told";
}

TEST(EvaluateSignal, ShortsComeInOrderOfTheirPlaces) {
    EXPECT_THAT(EvaluateSignal(pci, 5, Seen({4, 5, 6})),
                ElementsAre("    AD[4] SHORTED", "    AD[6] SHORTED"));
    EXPECT_THAT(EvaluateSignal(pci, 72, Seen({72, 86, 79, 0})),
                ElementsAre("    AD[0] SHORTED", "    RST SHORTED", "    PAR SHORTED"))
        << "not in the order of the table";
}

TEST(EvaluateSignal, APlaceWithoutASignalIsNamedByItsNumber) {
    EXPECT_THAT(EvaluateSignal(pci, 0, Seen({0, 92, 111})),
                ElementsAre("    Bit 92 SHORTED", "    Bit 111 SHORTED"));
    EXPECT_THAT(EvaluateSignal(vsb, 0, Seen({0, 32})), ElementsAre("    Bit 32 SHORTED"));
}

TEST(EvaluateSignal, AGroupIsNoSignal) {
    EXPECT_THAT(EvaluateSignal(pci, 5, Seen({0, 5})), ElementsAre("    AD[0] SHORTED"));
    EXPECT_THAT(EvaluateSignal(p2, 1, Seen({0, 1})), ElementsAre("    A19 SHORTED"));
}

} // namespace
} // namespace busquill::test
