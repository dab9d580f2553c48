#include "support/board_tables.h"
#include "support/capture_builder.h"
#include "waves.h"

#include <gtest/gtest.h>

namespace busquill::test {

namespace {

using Lengths = std::map<std::uint64_t, std::uint64_t>;

class PciStats : public testing::Test {
protected:
    TraceSummary Of(const CaptureBuilder& capture) {
        TraceStats stats(bus.board, bus.tables);
        stats.Add(capture.Records());
        return stats.Summary();
    }
    /// Waves of a 32-bit transaction; sample 1 is the address phase of a memory read.
    Waves Transaction(std::string_view frame) {
        return AddressAndClocks(frame).At(1, "C/BE", 0xF6);
    }
    Waves AddressAndClocks(std::string_view frame) {
        Waves waves(bus);
        waves.Line("FRAME", frame).Set("C/BE", 0xF0);
        return waves.At(1, "ADR/DATA", 1);
    }

    BoardTables bus{"PCIKite"};
};

} // namespace

TEST_F(PciStats, CountTransactionsByCommandInTheOrderOfTheTable) {
    const TraceSummary summary = Of(CaptureBuilder()
                                        .Idle()
                                        .Write(0x2000, 1)
                                        .Idle()
                                        .Read(0x1000)
                                        .Idle()
                                        .IoWrite(0x60, 2)
                                        .Idle()
                                        .Write(0x2004, 3)
                                        .Idle());
    const std::vector<CommandCount> expected = {
        {"I/O Wr", 1, 1, 4}, {"Mem Rd", 1, 1, 4}, {"Mem Wr", 2, 2, 8}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.bytes, 16U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 4}}));
    EXPECT_EQ(summary.unfinished, 0U);
    EXPECT_EQ(summary.masterAborts, 0U);
}

TEST_F(PciStats, NameACommandThatIsNotInTheTableByItsCode) {
    const TraceSummary summary = Of(CaptureBuilder().Address(0, 0x4).Data(0).Idle().Read(0).Idle());
    EXPECT_EQ(Labels(summary), (std::vector<std::string>{"Mem Rd", "C/BE 4"}));
}

TEST_F(PciStats, CountTheBytesOfEnabledLanes) {
    const TraceSummary summary =
        Of(CaptureBuilder().Address(0, PciCommand::MemoryWrite).Data(0, 0b0110).Idle());
    EXPECT_EQ(summary.bytes, 2U);
    EXPECT_EQ(Command(summary, "Mem Wr").bytes, 2U);
}

TEST_F(PciStats, CountEightLanesWhereBothSidesAreWide) {
    struct Case {
        const char *req64, *ack64;
        std::uint64_t bytes;
    };
    for (const auto& [req64, ack64, bytes] : {
             Case{"~_~~", "~~_~", 7}, // seven of eight lanes below
             Case{"~~~~", "~~_~", 4},
             Case{"~_~~", "~~~~", 4},
         }) {
        const TraceSummary summary = AddressAndClocks("~_~~")
                                         .Line("IRDY", "~~_~")
                                         .Line("TRDY", "~~_~")
                                         .Line("DEVSEL", "~~_~")
                                         .Line("REQ64", req64)
                                         .Line("ACK64", ack64)
                                         .At(1, "C/BE", 0xF7)
                                         .At(2, "C/BE", 0x80)
                                         .Summary();
        EXPECT_EQ(summary.bytes, bytes) << req64 << " " << ack64;
    }
}

TEST_F(PciStats, IgnoreAck64WithoutDevsel) {
    const auto bytes = [&](const char* devsel, const char* ack64) {
        return AddressAndClocks("~___~~")
            .Line("IRDY", "~~___~")
            .Line("TRDY", "~~~~_~")
            .Line("DEVSEL", devsel)
            .Line("REQ64", "~___~~")
            .Line("ACK64", ack64)
            .At(1, "C/BE", 0xF7)
            .At(4, "C/BE", 0x00)
            .Summary()
            .bytes;
    };
    EXPECT_EQ(bytes("~~~__~", "~~_~~~"), 4U) << "nobody has claimed it yet";
    EXPECT_EQ(bytes("~~~__~", "~~~__~"), 8U);
    EXPECT_EQ(bytes("~~~__~", "~~~_~~"), 8U) << "the width does not change";
}

TEST_F(PciStats, CountADataPhaseWhereBothSidesAreReady) {
    const TraceSummary summary = Transaction("~______~~~")
                                     .Line("IRDY", "~~__~____~")
                                     .Line("TRDY", "~~~____~_~")
                                     .Line("DEVSEL", "~~_______~")
                                     .Summary();
    EXPECT_EQ(Command(summary, "Mem Rd").dataPhases, 4U); // samples 3, 5, 6 and 8
    EXPECT_EQ(summary.burstLengths, (Lengths{{4, 1}}));
}

TEST_F(PciStats, CountWaitStatesOfEachSide) {
    const TraceSummary summary = Transaction("~_____~~")
                                     .Line("IRDY", "~~~~___~")
                                     .Line("TRDY", "~~~~~__~")
                                     .Line("DEVSEL", "~~~____~")
                                     .Summary();
    EXPECT_EQ(summary.waitStates, (WaitStates{2, 3}));
}

TEST_F(PciStats, EndWithTheDataPhaseInWhichFrameIsDeasserted) {
    // Sample 3 follows the end and does not count, whatever its lines are.
    const TraceSummary summary = Transaction("~_~~~")
                                     .Line("IRDY", "~~__~")
                                     .Line("TRDY", "~~__~")
                                     .Line("DEVSEL", "~~__~")
                                     .Summary();
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}}));
    EXPECT_EQ(summary.bytes, 4U);
}

TEST_F(PciStats, GoOnWhileFrameIsDeassertedAndTheTargetWaits) {
    const TraceSummary summary = Transaction("~_~~~~")
                                     .Line("IRDY", "~~___~")
                                     .Line("TRDY", "~~~~_~")
                                     .Line("DEVSEL", "~~___~")
                                     .Summary();
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}}));
    EXPECT_EQ(summary.waitStates, (WaitStates{0, 2}));
}

TEST_F(PciStats, EndWithTheNextAddressPhase) {
    const TraceSummary summary = Transaction("~___~~")
                                     .Line("IRDY", "~~_~_~")
                                     .Line("TRDY", "~~_~_~")
                                     .Line("DEVSEL", "~~_~_~")
                                     .At(3, "ADR/DATA", 1)
                                     .At(3, "C/BE", 0xF7)
                                     .Summary();
    const std::vector<CommandCount> expected = {{"Mem Rd", 1, 1, 4}, {"Mem Wr", 1, 1, 4}};
    EXPECT_EQ(summary.commands, expected);
}

TEST_F(PciStats, NeedFrameForAnAddressPhase) {
    const TraceSummary summary = Transaction("~~~~").Line("IRDY", "~__~").Summary();
    EXPECT_TRUE(summary.commands.empty());
}

TEST_F(PciStats, TakeTheCommandOfADualAddressCycleFromTheSecondAddressPhase) {
    // C/BE[7:4] of the first is not driven.
    const TraceSummary summary = AddressAndClocks("~__~~")
                                     .Line("IRDY", "~~~_~")
                                     .Line("TRDY", "~~~_~")
                                     .Line("DEVSEL", "~~~_~")
                                     .At(1, "C/BE", 0xFD)
                                     .At(2, "C/BE", 0xF6)
                                     .At(2, "ADR/DATA", 1)
                                     .Summary();
    const std::vector<CommandCount> expected = {{"DAC-Mem Rd", 1, 1, 4}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.waitStates, (WaitStates{0, 0}));
}

TEST_F(PciStats, TakeTheCommandOfADualAddressCycleFromItsUpperHalf) {
    const TraceSummary summary = AddressAndClocks("~_~~")
                                     .Line("IRDY", "~~_~")
                                     .Line("TRDY", "~~_~")
                                     .Line("REQ64", "~_~~")
                                     .At(1, "C/BE", 0x7D)
                                     .Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"DAC-Mem Wr"});
}

TEST_F(PciStats, NameADualAddressCycleThatIsNotInTheTableByItsCommand) {
    const TraceSummary summary =
        AddressAndClocks("~_~~").Line("REQ64", "~_~~").At(1, "C/BE", 0xED).Summary();
    EXPECT_EQ(Labels(summary), std::vector<std::string>{"DAC-Mem Rd Line"});
}

TEST_F(PciStats, TreatAnAddressPhaseAfterAnotherClockAsANewTransaction) {
    const TraceSummary summary = AddressAndClocks("~___~")
                                     .Line("DEVSEL", "~~_~~")
                                     .Line("REQ64", "~_~~~")
                                     .At(1, "C/BE", 0x6D)
                                     .At(3, "C/BE", 0xF7)
                                     .At(3, "ADR/DATA", 1)
                                     .Summary();
    EXPECT_EQ(Labels(summary), (std::vector<std::string>{"Mem Wr", "DAC-Mem Rd"}));
}

TEST_F(PciStats, TreatAddressPhasesAloneAsTransactions) {
    const TraceSummary summary = Of(CaptureBuilder()
                                        .Address(0, PciCommand::MemoryRead)
                                        .Address(4, PciCommand::MemoryRead)
                                        .Address(8, PciCommand::MemoryRead)
                                        .Idle());
    EXPECT_EQ(Command(summary, "Mem Rd").transactions, 3U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 3}}));
    EXPECT_EQ(summary.masterAborts, 0U);
}

TEST_F(PciStats, CallStopWithoutDataARetry) {
    // The target holds STOP until FRAME is deasserted.
    const TraceSummary summary = Transaction("~___~~")
                                     .Line("IRDY", "~~___~")
                                     .Line("DEVSEL", "~~___~")
                                     .Line("BSTOP", "~~~__~")
                                     .Summary();
    EXPECT_EQ(summary.retries, 1U);
    EXPECT_EQ(summary.disconnects, 0U);
    EXPECT_EQ(summary.masterAborts, 0U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 1}}));
    EXPECT_EQ(summary.waitStates,
              (WaitStates{0, 1})); // a target that stops does not insert wait states
}

TEST_F(PciStats, CallStopAfterDataADisconnect) {
    const TraceSummary summary = Transaction("~___~~")
                                     .Line("IRDY", "~~___~")
                                     .Line("TRDY", "~~_~~~")
                                     .Line("DEVSEL", "~~___~")
                                     .Line("BSTOP", "~~~__~")
                                     .Summary();
    EXPECT_EQ(summary.retries, 0U);
    EXPECT_EQ(summary.disconnects, 1U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}}));
}

TEST_F(PciStats, CallStopWithDataADisconnect) {
    // In sample 2 the target is ready and the initiator is not.
    const TraceSummary summary = Transaction("~___~~")
                                     .Line("IRDY", "~~~__~")
                                     .Line("TRDY", "~~__~~")
                                     .Line("DEVSEL", "~~___~")
                                     .Line("BSTOP", "~~___~")
                                     .Summary();
    EXPECT_EQ(summary.retries, 0U);
    EXPECT_EQ(summary.disconnects, 1U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}}));
}

TEST_F(PciStats, EndWithAStopInWhichFrameIsDeasserted) {
    // Sample 3 would be a data phase.
    const TraceSummary summary = Transaction("~_~~~")
                                     .Line("IRDY", "~~__~")
                                     .Line("TRDY", "~~~_~")
                                     .Line("DEVSEL", "~~__~")
                                     .Line("BSTOP", "~~_~~")
                                     .Summary();
    EXPECT_EQ(summary.retries, 1U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{0, 1}}));
}

TEST_F(PciStats, CallStopWithoutDevselATargetAbort) {
    for (const char* devsel : {"~~_~~~", "~~~~~~"}) {
        const TraceSummary summary = Transaction("~___~~")
                                         .Line("IRDY", "~~___~")
                                         .Line("DEVSEL", devsel)
                                         .Line("BSTOP", "~~~__~")
                                         .Summary();
        EXPECT_EQ(summary.targetAborts, 1U) << devsel;
        EXPECT_EQ(summary.masterAborts, 0U) << devsel;
        EXPECT_EQ(summary.retries, 0U) << devsel;
        EXPECT_EQ(summary.disconnects, 0U) << devsel;
    }
}

TEST_F(PciStats, CallATransactionThatNobodyClaimsAMasterAbort) {
    const TraceSummary summary = Transaction("~____~~").Line("IRDY", "~~____~").Summary();
    EXPECT_EQ(summary.masterAborts, 1U);
    EXPECT_EQ(Command(summary, "Mem Rd").transactions, 1U);
}

TEST_F(PciStats, DoNotCallAClaimedTransactionAMasterAbort) {
    const TraceSummary summary =
        Transaction("~____~~").Line("IRDY", "~~____~").Line("DEVSEL", "~~~_~~~").Summary();
    EXPECT_EQ(summary.masterAborts, 0U);
}

TEST_F(PciStats, DoNotCallDataWithoutDevselAMasterAbort) {
    const TraceSummary summary =
        Transaction("~__~~").Line("IRDY", "~~__~").Line("TRDY", "~~~_~").Summary();
    EXPECT_EQ(summary.masterAborts, 0U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{1, 1}}));
}

TEST_F(PciStats, DoNotCallASpecialCycleAMasterAbort) {
    const auto summary = [&](std::uint32_t code) {
        return AddressAndClocks("~____~~")
            .Line("IRDY", "~~____~")
            .Line("REQ64", "~____~~")
            .At(1, "C/BE", code)
            .Summary();
    };
    EXPECT_EQ(summary(0xF1).masterAborts, 0U);
    EXPECT_EQ(Labels(summary(0xF1)), std::vector<std::string>{"Spc Cyc"});
    EXPECT_EQ(summary(0x1D).masterAborts, 0U); // DAC-Spc Cyc
    EXPECT_EQ(summary(0xF2).masterAborts, 1U);
}

TEST_F(PciStats, IgnoreATransactionWhoseAddressPhaseIsMissing) {
    const TraceSummary summary = Of(CaptureBuilder().Wait(2).Data(1).Idle(2));
    EXPECT_EQ(summary.samples, 5U);
    EXPECT_EQ(summary.idleSamples, 2U);
    EXPECT_EQ(summary.time, 4 * 30);
    EXPECT_TRUE(summary.commands.empty());
    EXPECT_TRUE(summary.burstLengths.empty());
    EXPECT_EQ(summary.bytes, 0U);
    EXPECT_EQ(summary.waitStates, WaitStates{});
}

TEST_F(PciStats, CountAnOpenTransactionAsFarAsItIsCaptured) {
    const TraceSummary summary = Transaction("~____")
                                     .Line("IRDY", "~~___")
                                     .Line("TRDY", "~~~__")
                                     .Line("DEVSEL", "~~___")
                                     .Summary();
    const std::vector<CommandCount> expected = {{"Mem Rd", 1, 2, 8}};
    EXPECT_EQ(summary.commands, expected);
    EXPECT_EQ(summary.unfinished, 1U);
    EXPECT_EQ(summary.burstLengths, (Lengths{{2, 1}}));
    EXPECT_EQ(summary.waitStates, (WaitStates{0, 1}));
}

TEST_F(PciStats, DoNotCallAnOpenTransactionAMasterAbort) {
    EXPECT_EQ(Transaction("~____").Line("IRDY", "~~___").Summary().masterAborts, 0U);
}

TEST_F(PciStats, CallTheBusIdleWithoutFrameAndIrdy) {
    const TraceSummary summary =
        Transaction("~__~~~").Line("IRDY", "~~___~").Line("DEVSEL", "______").Summary();
    EXPECT_EQ(summary.idleSamples, 2U);
}

TEST_F(PciStats, HaveNoAttributePhase) {
    // Another line lies where PCI-X marks its attribute phase.
    const TraceSummary summary = Transaction("~_~~")
                                     .Line("IRDY", "~~_~")
                                     .Line("TRDY", "~~_~")
                                     .Line("DEVSEL", "~~_~")
                                     .Line("SBO", "~~~~")
                                     .Summary();
    EXPECT_EQ(summary.bytes, 4U);
}

} // namespace busquill::test
