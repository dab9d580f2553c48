#include "analysis/transaction_fields.h"
#include "analysis/transaction_follower.h"
#include "support/board_tables.h"
#include "waves.h"

#include <gmock/gmock.h>

namespace busquill::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<TransactionEnd> Ends(const std::vector<Transaction>& transactions) {
    std::vector<TransactionEnd> ends;
    for (const Transaction& each : transactions) {
        ends.push_back(each.end);
    }
    return ends;
}

class PciTransactions : public testing::Test {
protected:
    /// A memory read at 0x1000 in sample 1.
    Waves Read(std::string_view frame) {
        Waves waves(bus);
        waves.Line("FRAME", frame).Set("C/BE", 0xF0);
        return Address(waves, 1, 0xF6, 0x1000);
    }
    static Waves& Address(Waves& waves, std::size_t sample, std::uint32_t command,
                          std::uint32_t address) {
        return waves.At(sample, "ADR/DATA", 1)
            .At(sample, "C/BE", command)
            .At(sample, "AD", address);
    }

    BoardTables bus{"PCIKite"};
};

/// Strobed lines of a VME bus, 32 bits wide.
class VmeTransactions : public testing::Test {
protected:
    Waves Access(std::string_view as, std::string_view ds, std::string_view dtack,
                 std::uint32_t modifier = 0x09) {
        Waves waves(bus);
        waves.Line("AS", as).Line("DS", ds).Line("DS", ds, 1).Line("DTACK", dtack);
        return waves.Set("AM", modifier).Set("LWORD", 0).Set("AD", 0x1000);
    }
    /// 2eVME and 2eSST have strobes of their own.
    Waves TwoEdge(std::string_view as, std::string_view ds0, std::string_view ds1,
                  std::string_view dtack, std::uint32_t extended) {
        Waves waves(bus);
        waves.Line("AS", as).Line("DS", ds0).Line("DS", ds1, 1).Line("DTACK", dtack);
        return waves.Set("AM", 0x20).Set("AD", 0x12345600 | extended);
    }

    BoardTables bus{"VMEKite"};
};

} // namespace

TEST_F(PciTransactions, TellWhatMovedAndHowLongItTook) {
    const auto transactions = Read("~______~~~~")
                                  .Line("IRDY", "~~______~~~")
                                  .Line("TRDY", "~~~~_~__~~~")
                                  .Line("DEVSEL", "~~~_____~~~")
                                  .At(4, "AD", 0xAAAA0001)
                                  .At(6, "AD", 0xAAAA0002)
                                  .At(7, "AD", 0xAAAA0003)
                                  .At(7, "C/BE", 0xFC)
                                  .At(6, "RULE CHECK", 3)
                                  .At(8, "RULE CHECK", 3) // outside
                                  .Transactions();
    ASSERT_EQ(transactions.size(), 1U);
    const Transaction& read = transactions[0];
    EXPECT_EQ(read.number, 1U);
    EXPECT_EQ(read.sample, 1);
    EXPECT_EQ(read.lastSample, 7);
    EXPECT_EQ(read.time, 10);
    EXPECT_EQ(read.lastTime, 70);
    EXPECT_EQ(read.address, 0x1000U);
    EXPECT_EQ(read.dataPhases, 3U);
    EXPECT_EQ(read.bytes, 10U);
    EXPECT_THAT(read.words, ElementsAre(DataWord{0xAAAA0001, 4, 0xF}, DataWord{0xAAAA0002, 4, 0xF},
                                        DataWord{0xAAAA0003, 4, 0x3}));
    EXPECT_EQ(read.Wait(), 3);
    EXPECT_EQ(read.Latency(), 30);
    EXPECT_EQ(read.end, TransactionEnd::Complete);
    EXPECT_EQ(read.gap, std::nullopt);
    EXPECT_EQ(read.findings, 1U);
}

TEST_F(PciTransactions, TellTheGapFromTheLastSampleOfTheOneBefore) {
    Waves waves = Read("~_~~~~_~~");
    waves.Line("IRDY", "~~_~~~~_~").Line("TRDY", "~~_~~~~_~").Line("DEVSEL", "~~_~~~~_~");
    const auto transactions = Address(waves, 6, 0xF7, 0x2000).Transactions();
    ASSERT_EQ(transactions.size(), 2U);
    EXPECT_EQ(transactions[1].gap, 40);
    EXPECT_EQ(transactions[1].number, 2U);
}

TEST_F(PciTransactions, TellBothHalvesOfADualAddress) {
    Waves waves = Read("~__~~");
    waves.Line("IRDY", "~~~_~").Line("TRDY", "~~~_~").Line("DEVSEL", "~~~_~");
    Address(waves, 1, 0xFD, 0x89ABCDE0);
    const auto transactions = Address(waves, 2, 0xF6, 0x12).Transactions();
    ASSERT_EQ(transactions.size(), 1U);
    EXPECT_EQ(transactions[0].address, 0x12'89ABCDE0U);
}

TEST_F(PciTransactions, DoNotInventTheUpperHalfOfADualAddress) {
    // The capture ends, or samples are missing, after the first half. C/BE[7:4] is not driven.
    Waves cut = Read("~_");
    const auto last = Address(cut, 1, 0xFD, 0x89ABCDE0).Transactions();
    ASSERT_THAT(Ends(last), ElementsAre(TransactionEnd::CutOff));
    EXPECT_TRUE(last[0].isHeadless);
    EXPECT_EQ(last[0].address, std::nullopt);
    Waves gap = Read("~____~");
    const auto transactions = Address(gap, 1, 0xFD, 0x89ABCDE0).Missing(2, 3).Transactions();
    EXPECT_TRUE(transactions.at(0).isHeadless);
    EXPECT_EQ(transactions[0].end, TransactionEnd::Unknown);
    // A 64-bit initiator gives it at once.
    Waves wide = Read("~_");
    wide.Line("REQ64", "~_");
    const auto whole = Address(wide, 1, 0x6D, 0).Word(1, "AD", 0x12'89ABCDE0).Transactions();
    EXPECT_EQ(whole.at(0).address, 0x12'89ABCDE0U);
    EXPECT_FALSE(whole[0].isHeadless);
}

TEST_F(PciTransactions, AfterMissingSamplesAnAddressIsTold) {
    // So are those of a capture of address phases alone, which has a gap before each.
    for (const std::size_t missing : {0U, 2U}) {
        Waves waves = Read("~_~_~");
        waves.Line("ADR/DATA", "_~_~_");
        Address(waves, 1, 0xF6, 0x12);
        const auto transactions =
            Address(waves, 3, 0xF7, 0x34).Missing(missing, missing).Missing(4, 4).Transactions();
        ASSERT_EQ(transactions.size(), 2U);
        EXPECT_EQ(transactions[0].address, 0x12U);
        EXPECT_EQ(transactions[1].address, 0x34U);
        EXPECT_FALSE(transactions[0].isHeadless || transactions[1].isHeadless);
    }
}

TEST_F(PciTransactions, DistinguishEndsByTheTarget) {
    const auto end = [&](const char* trdy, const char* devsel) {
        return Ends(Read("~____~~~")
                        .Line("IRDY", "~~____~~")
                        .Line("DEVSEL", devsel)
                        .Line("BSTOP", "~~~~__~~")
                        .Line("TRDY", trdy)
                        .Transactions());
    };
    EXPECT_THAT(end("~~~~~~~~", "~~____~~"), ElementsAre(TransactionEnd::Retry));
    EXPECT_THAT(end("~~~_~~~~", "~~____~~"), ElementsAre(TransactionEnd::DisconnectWithoutData));
    EXPECT_THAT(end("~~~__~~~", "~~____~~"), ElementsAre(TransactionEnd::DisconnectWithData));
    EXPECT_THAT(end("~~~~~~~~", "~~__~~~~"), ElementsAre(TransactionEnd::TargetAbort));
}

TEST_F(PciTransactions, CallUnansweredOnesMasterAborts) {
    EXPECT_THAT(Ends(Read("~____~~").Line("IRDY", "~~____~").Transactions()),
                ElementsAre(TransactionEnd::MasterAbort));
}

TEST_F(PciTransactions, CallABurstThatIsBrokenOffUnknown) {
    const auto end = [&](const char* frame) {
        return Ends(Read(frame)
                        .Line("IRDY", "~~___~")
                        .Line("DEVSEL", "~~___~")
                        .Line("TRDY", "~~___~")
                        .Transactions());
    };
    EXPECT_THAT(end("~___~~"), ElementsAre(TransactionEnd::Complete));
    // After a reset, the bus is idle although more data were announced.
    EXPECT_THAT(end("~____~"), ElementsAre(TransactionEnd::Unknown));
}

TEST_F(PciTransactions, TellTheMessageOfASpecialCycle) {
    // It is valid in the first clock in which the initiator is ready.
    Waves waves = Read("~_____~~");
    waves.Line("IRDY", "~~~____~").At(3, "AD", 0x00010002).At(4, "AD", 0x77);
    const auto transactions = Address(waves, 1, 0xF1, 0).Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::Complete));
    EXPECT_THAT(transactions[0].words, ElementsAre(DataWord{0x00010002, 4, 0xF}));
    EXPECT_EQ(transactions[0].bytes, 4U);
    EXPECT_EQ(transactions[0].Latency(), 20);
    EXPECT_EQ(transactions[0].waitStates, (WaitStates{1, 0})) << "no target";
}

TEST_F(PciTransactions, DoNotGuessTheEndOfAddressPhasesThatWereStoredAlone) {
    Waves waves = Read("~__~");
    EXPECT_THAT(Ends(Address(waves, 2, 0xF7, 0).Transactions()),
                ElementsAre(TransactionEnd::Unknown, TransactionEnd::Unknown));
}

TEST_F(PciTransactions, TellNoAddressWhereTheLinesCarryNone) {
    for (const std::uint32_t code : {0xF0U, 0xF1U, 0x0DU, 0x1DU}) { // the last two in 64 bits
        Waves waves = Read("~____~~");
        waves.Line("IRDY", "~~____~").Line("REQ64", "~____~~");
        const auto transactions = Address(waves, 1, code, 0x1000).Transactions();
        ASSERT_EQ(transactions.size(), 1U);
        EXPECT_FALSE(transactions[0].isHeadless);
        EXPECT_EQ(transactions[0].address, std::nullopt) << code;
    }
}

TEST_F(PciTransactions, AreSeenOneByOneWhereNoAddressPhaseIsStored) {
    // A burst of two words, one of three, one word, and two bursts whose last words are not stored.
    const auto transactions = Waves(bus)
                                  .Line("FRAME", "_~__~~_~_~")
                                  .Line("IRDY", "__________")
                                  .Line("TRDY", "_______~_~")
                                  .Line("DEVSEL", "__________")
                                  .Transactions();
    std::vector<std::pair<std::int64_t, std::int64_t>> samples;
    for (const Transaction& each : transactions) {
        EXPECT_TRUE(each.isHeadless);
        samples.emplace_back(each.sample, each.lastSample);
    }
    EXPECT_THAT(samples, ElementsAre(std::pair(0, 1), std::pair(2, 4), std::pair(5, 5),
                                     std::pair(6, 7), std::pair(8, 9)));
    EXPECT_THAT(Ends(transactions), ElementsAre(TransactionEnd::CutOff, TransactionEnd::Unknown,
                                                TransactionEnd::Unknown, TransactionEnd::Unknown,
                                                TransactionEnd::CutOff));
}

TEST_F(PciTransactions, AreNotMadeOfALineThatIsAssertedByMistake) {
    EXPECT_THAT(Waves(bus).Line("FRAME", "~~_~~~~").Line("IRDY", "~~~~_~~").Transactions(),
                IsEmpty());
}

TEST_F(PciTransactions, AreCutOffAtBothEndsOfTheCapture) {
    const auto transactions = Read("______~__")
                                  .Line("IRDY", "______~~_")
                                  .At(1, "ADR/DATA", 0)
                                  .At(7, "ADR/DATA", 1)
                                  .Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::CutOff, TransactionEnd::CutOff));
    EXPECT_TRUE(transactions[0].isHeadless);
    EXPECT_EQ(transactions[0].address, std::nullopt);
    EXPECT_EQ(transactions[0].dataPhases, 0U);
    EXPECT_EQ(transactions[0].lastSample, 5);
    EXPECT_FALSE(transactions[1].isHeadless);
    EXPECT_EQ(transactions[1].gap, 20);
}

TEST_F(PciTransactions, AreUnknownWhereSamplesAreMissing) {
    // Samples 4 to 5 are missing; the data afterwards may be of another transaction.
    const auto transactions = Read("~______~~")
                                  .Line("IRDY", "~~_____~~")
                                  .Line("TRDY", "~~~__~_~~")
                                  .Line("DEVSEL", "~~_____~~")
                                  .Missing(4, 5)
                                  .Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::Unknown, TransactionEnd::Unknown));
    EXPECT_EQ(transactions[0].dataPhases, 1U);
    EXPECT_EQ(transactions[0].lastSample, 3);
    EXPECT_TRUE(transactions[1].isHeadless);
    EXPECT_EQ(transactions[1].sample, 6);
    EXPECT_EQ(transactions[1].gap, std::nullopt);
}

TEST_F(PciTransactions, KeepAnEndThatWasSeenBeforeTheCaptureEnds) {
    // The target signals a retry in sample 3; the initiator has not taken it back yet.
    Waves waves = Read("~____");
    waves.Line("IRDY", "~~___").Line("DEVSEL", "~~___").Line("BSTOP", "~~~__");
    EXPECT_THAT(Ends(waves.Transactions()), ElementsAre(TransactionEnd::Retry));
    EXPECT_EQ(waves.Summary().retries, 1U);
    EXPECT_EQ(waves.Summary().unfinished, 1U);
}

TEST_F(PciTransactions, KeepAnEndThatWasSeenBeforeSamplesAreMissing) {
    const auto transactions = Read("~_____~")
                                  .Line("IRDY", "~~____~")
                                  .Line("DEVSEL", "~~_~~~~")
                                  .Line("BSTOP", "~~~___~")
                                  .Missing(4, 4)
                                  .Transactions();
    EXPECT_THAT(Ends(transactions),
                ElementsAre(TransactionEnd::TargetAbort, TransactionEnd::Unknown));
}

TEST_F(PciTransactions, EndTwiceInASampleAfterMissingOnes) {
    // The sample after the gap is the last clock of a transaction that began inside it.
    const auto transactions = Read("~______~~~")
                                  .Line("IRDY", "~~______~~")
                                  .Line("TRDY", "~~~~~~~_~~")
                                  .Line("DEVSEL", "~~______~~")
                                  .Missing(4, 6)
                                  .Transactions();
    ASSERT_EQ(transactions.size(), 2U);
    EXPECT_FALSE(transactions[0].isHeadless);
    EXPECT_EQ(transactions[0].lastSample, 3);
    EXPECT_TRUE(transactions[1].isHeadless);
    EXPECT_EQ(transactions[1].sample, 7);
}

TEST_F(PciTransactions, AreNotInventedWhereSamplesOfIdleTimeAreMissing) {
    EXPECT_THAT(Read("~~~~~~~~").At(1, "ADR/DATA", 0).Missing(2, 4).Transactions(), IsEmpty());
}

class PciXTransactions : public testing::Test {
protected:
    static constexpr std::uint32_t requester = 0x11U << 24 | 2U << 16 | 3U << 11 | 1U << 8;

    /// A split read of 8 bytes in samples 1 to 4, two completions from 6 and 11 on.
    Waves SplitRead() {
        Waves waves(bus);
        waves.Line("FRAME", "~___~~___~~___~~").Line("IRDY", "~~~__~~~__~~~__~");
        waves.Line("DEVSEL", "~~~_~~~~__~~~__~").Line("TRDY", "~~~~_~~~~_~~~~_~");
        waves.Set("SBO", 0).Set("C/BE", 0xF0);
        Phase(waves, 1, 0xFE, 0x1000, requester | 8);
        Phase(waves, 6, 0xFC, requester, 0x00FF0000 | 8);
        Phase(waves, 11, 0xFC, requester | 4, 0x00FF0000 | 4);
        return waves;
    }
    static void Phase(Waves& waves, std::size_t sample, std::uint32_t command,
                      std::uint32_t address, std::uint32_t attributes) {
        waves.At(sample, "ADR/DATA", 1).At(sample, "C/BE", command).At(sample, "AD", address);
        waves.At(sample + 1, "SBO", 1).At(sample + 1, "AD", attributes);
    }

    BoardTables bus{"PCIKite", BusPciX};
};

TEST_F(PciXTransactions, PairASplitWithItsCompletionsByTheRequester) {
    const auto transactions = SplitRead().Transactions();
    ASSERT_THAT(Ends(transactions),
                ElementsAre(TransactionEnd::SplitResponse, TransactionEnd::Complete,
                            TransactionEnd::Complete));
    EXPECT_EQ(transactions[0].sequence->Tag(), 0x11U);
    EXPECT_EQ(transactions[0].splitRequest, std::nullopt);
    EXPECT_EQ(transactions[1].splitRequest, 1U);
    EXPECT_EQ(transactions[1].bytes, 4U);
    EXPECT_EQ(transactions[2].splitRequest, 1U);
}

TEST_F(PciXTransactions, PairNoCompletionAfterTheLastByte) {
    Waves waves = SplitRead();
    const auto transactions = waves.At(7, "AD", 0x00FF0000 | 4).Transactions();
    EXPECT_EQ(transactions.at(1).splitRequest, 1U);
    EXPECT_EQ(transactions.at(2).splitRequest, std::nullopt);
}

TEST_F(PciXTransactions, GoOnAfterACompletionWhoseByteCountIsItsOwn) {
    // It announces and moves 4 of the 8 bytes.
    Waves waves = SplitRead();
    const auto transactions = waves.At(7, "AD", 1U << 31 | 0x00FF0000 | 4).Transactions();
    EXPECT_EQ(transactions.at(1).splitRequest, 1U);
    EXPECT_EQ(transactions.at(1).end, TransactionEnd::Complete);
    EXPECT_EQ(transactions.at(2).splitRequest, 1U);
}

TEST_F(PciXTransactions, PairNoCompletionAfterTheLastByteWhoseByteCountIsItsOwn) {
    Waves waves = SplitRead();
    waves.At(2, "AD", requester | 4); // 4 bytes are requested
    const auto transactions = waves.At(7, "AD", 1U << 31 | 0x00FF0000 | 4).Transactions();
    EXPECT_EQ(transactions.at(1).splitRequest, 1U);
    EXPECT_EQ(transactions.at(2).splitRequest, std::nullopt);
}

TEST_F(PciXTransactions, AreCompleteWhenAllAnnouncedBytesHaveMoved) {
    // The capture ends with the second of two words; FRAME tells nothing yet.
    const auto block = [&](std::uint32_t count) {
        Waves waves(bus);
        waves.Line("FRAME", "~_____").Line("IRDY", "~~~___").Line("DEVSEL", "~~~___");
        waves.Line("TRDY", "~~~~__").Set("SBO", 0).Set("C/BE", 0xF0);
        Phase(waves, 1, 0xFF, 0x1002, requester | count);
        return waves.Transactions();
    };
    EXPECT_THAT(Ends(block(6)), ElementsAre(TransactionEnd::Complete));
    EXPECT_THAT(Ends(block(7)), ElementsAre(TransactionEnd::CutOff));
}

TEST_F(PciXTransactions, CountDisabledBytesOfAWriteAsAnnounced) {
    Waves waves(bus);
    waves.Line("FRAME", "~____").Line("IRDY", "~~~__").Line("DEVSEL", "~~~__");
    waves.Line("TRDY", "~~~~_").Set("SBO", 0).Set("C/BE", 0xF0);
    Phase(waves, 1, 0xF7, 0x1000, requester | 4);
    const auto transactions = waves.At(4, "C/BE", 0xFE).Transactions();
    EXPECT_THAT(Ends(transactions), ElementsAre(TransactionEnd::Complete));
    EXPECT_EQ(transactions[0].bytes, 1U);
}

TEST_F(PciXTransactions, PairNoCompletionOfAnotherRequester) {
    Waves waves = SplitRead();
    const auto transactions = waves.At(6, "AD", requester ^ 1U << 24).Transactions();
    EXPECT_EQ(transactions.at(1).splitRequest, std::nullopt);
    EXPECT_EQ(transactions.at(2).splitRequest, 1U);
}

TEST_F(PciXTransactions, PairNoCompletionAfterMissingSamples) {
    const auto transactions = SplitRead().Missing(5, 5).Transactions();
    EXPECT_EQ(transactions.at(1).splitRequest, std::nullopt);
}

TEST_F(VmeTransactions, TellWhatMovedAndHowLongItTook) {
    Waves waves = Access("~_________~~", "~~__~~____~~", "~~~_~~~~__~~", 0x0B);
    const auto transactions = waves.At(3, "AD", 0x1000).Transactions();
    ASSERT_EQ(transactions.size(), 1U);
    const Transaction& read = transactions[0];
    EXPECT_EQ(read.address, 0x1000U);
    EXPECT_EQ(read.dataPhases, 2U);
    EXPECT_EQ(read.bytes, 8U);
    EXPECT_EQ(read.Wait(), 10 + 20);
    EXPECT_EQ(read.Latency(), 20);
    EXPECT_EQ(read.lastSample, 9);
    EXPECT_EQ(read.end, TransactionEnd::Complete);
}

TEST_F(VmeTransactions, HaveNoClocksOfTheInitiatorButFindings) {
    const auto transactions = Access("~___~", "~~__~", "~~~_~").Transactions();
    ASSERT_EQ(transactions.size(), 1U);
    EXPECT_EQ(NumberOf(transactions[0], TransactionField::InitiatorWait), std::nullopt);
    EXPECT_EQ(NumberOf(transactions[0], TransactionField::Findings), 0);
}

TEST(TransactionsWithoutAChecker, HaveNoFindings) {
    const BoardTables lark("VMELark");
    Waves waves(lark);
    waves.Line("AS", "~___~").Line("DS", "~~__~").Line("DS", "~~__~", 1).Line("DTACK", "~~~_~");
    const auto transactions = waves.Transactions();
    ASSERT_EQ(transactions.size(), 1U);
    EXPECT_EQ(NumberOf(transactions[0], TransactionField::Findings), std::nullopt);
}

TEST_F(VmeTransactions, TellTheLevelOfAnInterruptAcknowledge) {
    Waves waves = Access("~___~", "~~__~", "~~~_~");
    const auto transactions = waves.Line("IACK", "~___~").Set("AD", 0xFFFFFFFA).Transactions();
    EXPECT_EQ(transactions.at(0).address, 5U);
}

TEST_F(VmeTransactions, TakeTheSizeOfABlockFromItsAddress) {
    // LWORD and A1 are not driven any more after the first beat.
    Waves waves = Access("~______~~", "~~__~__~~", "~~~_~~_~~", 0x0B);
    const auto transactions =
        waves.At(5, "LWORD", 1).At(6, "LWORD", 1).At(6, "AD", 2).Transactions();
    ASSERT_EQ(transactions.size(), 1U);
    EXPECT_EQ(transactions[0].words.at(1).lanes, 0xF);
    EXPECT_EQ(transactions[0].bytes, 8U);
}

TEST_F(VmeTransactions, TakeTheLanesOfEachBeatFromItsStrobes) {
    // A block of bytes: the even one is on DS1, the odd one on DS0.
    Waves waves = Access("~______~~", "~~~~~~~~~", "~~~_~~_~~", 0x0B);
    waves.Line("DS", "~~~~~__~~").Line("DS", "~~__~~~~~", 1).Set("LWORD", 1);
    const auto transactions = waves.Transactions();
    ASSERT_EQ(transactions.at(0).words.size(), 2U);
    EXPECT_EQ(transactions[0].words[0].lanes, 0x2);
    EXPECT_EQ(transactions[0].words[1].lanes, 0x1);
    EXPECT_EQ(transactions[0].bytes, 2U);
}

TEST_F(VmeTransactions, TellAllBytesOfAStatusThatIs32BitsWide) {
    // A1 is a bit of the level, here of level 1.
    Waves waves = Access("~___~", "~~__~", "~~~_~");
    waves.Line("IACK", "~___~").Set("AD", 0xFFFFFFF2);
    EXPECT_EQ(waves.Transactions().at(0).bytes, 4U);
}

TEST_F(VmeTransactions, TakeTheUpperHalfOf40BitBlocksFromTheAddressLines) {
    // The first strobe carries the upper part of the address; the upper data lines do not exist.
    Waves waves = Access("~_______~~", "~~__~~__~~", "~~~_~~~_~~", 0x37);
    waves.Set("AD", 0x00ABCDE0).At(7, "AD", 0xFFFF1234).At(7, "LWORD", 1);
    const auto transactions = waves.Transactions();
    ASSERT_EQ(transactions.at(0).words.size(), 1U);
    EXPECT_EQ(transactions[0].words[0], (DataWord{0x12350000, 4, 0xF}));
    // Without LWORD, the data lines carry two bytes.
    Waves narrow = Access("~_______~~", "~~__~~__~~", "~~~_~~~_~~", 0x34);
    EXPECT_EQ(narrow.Set("LWORD", 1).Transactions().at(0).words.at(0), (DataWord{0, 2, 0x3}));
}

TEST_F(VmeTransactions, TakeDataThatAreReadBeforeTheStrobeIsReleased) {
    // The data settle in sample 4, and are gone in sample 6.
    const auto transactions = [&](const char* write, const char* ds1) {
        Waves waves = Access("~______~~", "~~____~~~", "~~~____~~", 0x09);
        waves.Line("DS", ds1, 1).Line("WRITE", write);
        for (const std::size_t sample : {2U, 3U, 4U, 5U, 6U}) {
            waves.Word(sample, "AD", (0xD0ULL + sample) << 32); // the data lines are the upper half
        }
        return waves.Transactions();
    };
    constexpr const char* reads = "~~~~~~~~~";
    EXPECT_EQ(transactions(reads, "~~____~~~").at(0).words.at(0).value, 0xD5U);
    EXPECT_EQ(transactions(reads, "~~____~~~").at(0).Latency(), 20) << "the first sample tells";
    EXPECT_EQ(transactions(reads, "~~___~~~~").at(0).words.at(0).value, 0xD4U) << "DS1 is over";
    EXPECT_EQ(transactions("_________", "~~____~~~").at(0).words.at(0).value, 0xD3U)
        << "the initiator may take written data away after the acknowledge";
}

TEST_F(VmeTransactions, TakeDataThatAreReadInTheSampleAfterTheAddressStrobe) {
    const auto value = [&](const char* ds) {
        Waves waves = Access("~___~~", ds, "~~~__~", 0x09);
        waves.Word(3, "AD", 0xD3ULL << 32).Word(4, "AD", 0xD4ULL << 32);
        return waves.Transactions().at(0).words.at(0).value;
    };
    EXPECT_EQ(value("~~___~"), 0xD4U);
    EXPECT_EQ(value("~~__~~"), 0xD3U) << "the strobe is over";
}

TEST_F(VmeTransactions, TakeAnAnswerInTheSampleAfterTheStrobe) {
    // First the address of 64 bits, then the data.
    Waves waves = Access("~_______~", "~~_~~_~~~", "~~~_~~_~~", 0x01);
    const auto transactions = waves.Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::Complete));
    EXPECT_EQ(transactions[0].dataPhases, 0U) << "the data are over too";
}

TEST_F(VmeTransactions, CallABlockWhoseLastStrobeIsNeverAnsweredAMasterAbort) {
    const auto transactions =
        Access("~_________~~", "~~__~~____~~", "~~~_~~~~~~~~", 0x0B).Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::MasterAbort));
    EXPECT_EQ(transactions[0].dataPhases, 1U);
    EXPECT_EQ(transactions[0].Wait(), 10);
}

TEST_F(VmeTransactions, AreCutOffBeforeTheirLastStrobeIsAnswered) {
    EXPECT_THAT(Ends(Access("~______", "~~__~~_", "~~~_~~~").Transactions()),
                ElementsAre(TransactionEnd::CutOff));
}

TEST_F(VmeTransactions, KeepAnErrorThatWasSeenBeforeTheCaptureEnds) {
    Waves waves = Access("~_____", "~~____", "~~~~~~");
    EXPECT_THAT(Ends(waves.Line("BERR", "~~~~__").Transactions()),
                ElementsAre(TransactionEnd::BusError));
    EXPECT_EQ(waves.Summary().busErrors, 1U);
    // Acknowledged, but another strobe may follow.
    EXPECT_THAT(Ends(Access("~_____", "~~____", "~~~~__").Transactions()),
                ElementsAre(TransactionEnd::CutOff));
}

TEST_F(VmeTransactions, MayHaveBegunBeforeTheFirstSample) {
    const auto transactions = Access("__~~", "~_~~", "~_~~").Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::CutOff));
    EXPECT_TRUE(transactions[0].isHeadless);
}

TEST_F(VmeTransactions, AreOneWhereTheBusErrorFollowsGoodTransfers) {
    const auto transactions = Access("~_________~~", "~~__~~____~~", "~~~_~~~~~~~~", 0x0B)
                                  .Line("BERR", "~~~~~~~~__~~")
                                  .Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::BusError));
    EXPECT_EQ(transactions[0].dataPhases, 1U);
}

namespace {

// Three address phases from sample 2 on, the data from sample 8 on, the end from sample 16 on.
constexpr const char* twoEdgeAs = "~_________________~~";
constexpr const char* twoEdgeDs0 = "~~__~~__________~~~~";
constexpr const char* fourBeats = "~~~~~~~~__~~__~~~~~~";           // on DS1
constexpr const char* acknowledged = "~~~__~~__~~__~~__~~~";        // on DTACK
constexpr const char* addressAcknowledged = "~~~__~~__________~~~"; // the same without the beats
constexpr const char* noStrobe = "~~~~~~~~~~~~~~~~~~~~";
constexpr const char* writes = "____________________";

} // namespace

TEST_F(VmeTransactions, MoveDataOnBothEdgesOf2eVme) {
    Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, acknowledged, 0x01);
    const auto transactions = waves.Line("WRITE", writes)
                                  .At(5, "AD", 0x80) // the lower part of the address
                                  .At(5, "LWORD", 0)
                                  .At(9, "AD", 0xAABBCCDD)
                                  .Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::Complete));
    const Transaction& block = transactions[0];
    EXPECT_EQ(block.address, 0x12345680U);
    EXPECT_EQ(block.dataPhases, 4U);
    EXPECT_EQ(block.bytes, 32U);
    EXPECT_EQ(block.words.at(0), (DataWord{0xAABBCCDD'00000000, 8, 0xFF}));
    EXPECT_EQ(block.Wait(), 40);
    EXPECT_EQ(block.Latency(), 80);
}

TEST_F(VmeTransactions, DoNotTakeTheAcknowledgeOfTheOneBeforeForA2eVmeAddress) {
    // DTACK of the transaction before rises only after the address strobe has fallen.
    Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, "_~~__~~__~~__~~__~~~", 0x01);
    const auto transactions =
        waves.Line("WRITE", writes).At(5, "AD", 0x80).At(5, "LWORD", 0).Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::Complete));
    EXPECT_EQ(transactions[0].address, 0x12345680U);
    EXPECT_EQ(transactions[0].dataPhases, 4U);
}

TEST_F(VmeTransactions, CallA2eVmeBlockWhoseLastStrobeIsNeverAnsweredAMasterAbort) {
    Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, "~~~~~~~~__~~~~~~~~~~", "~~~__~~__~~~~~~~~~~~", 1);
    const auto transactions = waves.Line("WRITE", writes).Transactions();
    ASSERT_THAT(Ends(transactions), ElementsAre(TransactionEnd::MasterAbort));
    EXPECT_EQ(transactions[0].dataPhases, 1U);
}

TEST_F(VmeTransactions, MoveDataWithTheStrobesOf2eSst) {
    Waves write = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, addressAcknowledged, 0x11);
    const auto written = write.Line("WRITE", writes).Transactions();
    ASSERT_THAT(Ends(written), ElementsAre(TransactionEnd::Complete));
    EXPECT_EQ(written[0].dataPhases, 4U);
    EXPECT_EQ(written[0].Wait(), 0);
    const auto read = TwoEdge(twoEdgeAs, twoEdgeDs0, noStrobe, acknowledged, 0x11).Transactions();
    EXPECT_EQ(read.at(0).dataPhases, 4U);
    EXPECT_EQ(read.at(0).Wait(), 0);
    EXPECT_EQ(read.at(0).acknowledgeTime.transfers, 0U);
}

TEST_F(VmeTransactions, EndA2eVmeBlockWithRetryOrError) {
    const auto end = [&](const char* line, const char* wave) {
        Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, acknowledged, 0x01);
        return Ends(waves.Line(line, wave).Transactions());
    };
    EXPECT_THAT(end("RETRY", "~~~_______________~~"), ElementsAre(TransactionEnd::Retry));
    EXPECT_THAT(end("RETRY", "~~~~~~~~~~~~~~____~~"),
                ElementsAre(TransactionEnd::DisconnectWithData));
    EXPECT_THAT(end("BERR", "~~~~~~~~~~~~~~____~~"), ElementsAre(TransactionEnd::BusError));
}

TEST_F(VmeTransactions, MoveTheBeatInTheSampleOfA2eVmeRefusal) {
    // The last of four acknowledges falls together with the other line in sample 14.
    for (const auto& [line, end] : {std::pair{"RETRY", TransactionEnd::DisconnectWithData},
                                    {"BERR", TransactionEnd::BusError}}) {
        Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, "~~~__~~__~~__~____~~", 0x01);
        const auto transactions = waves.Line(line, "~~~~~~~~~~~~~~____~~").Transactions();
        ASSERT_THAT(Ends(transactions), ElementsAre(end)) << line;
        EXPECT_EQ(transactions[0].dataPhases, 4U) << line;
    }
}

TEST_F(VmeTransactions, MoveBeatsOf2eSstThatWereUnderWayAtARetry) {
    const auto beats = [&](const char* line, const char* wave, std::uint32_t extended) {
        // The data strobe has its edges in samples 8, 10, 12 and 14.
        Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats,
                              extended == 0x11 ? addressAcknowledged : acknowledged, extended);
        const auto transactions = waves.Line("WRITE", writes).Line(line, wave).Transactions();
        EXPECT_EQ(transactions.size(), 1U);
        return std::pair(transactions.at(0).end, transactions.at(0).dataPhases);
    };
    using enum TransactionEnd;
    EXPECT_EQ(beats("RETRY", "~~~~~~~~~~~_______~~", 0x11), std::pair(DisconnectWithData, 4UL));
    EXPECT_EQ(beats("RETRY", "~~~~~~~~~~~_______~~", 0x01), std::pair(DisconnectWithData, 2UL));
    EXPECT_EQ(beats("RETRY", "~~~~~~~___________~~", 0x11), std::pair(Retry, 0UL))
        << "nothing had moved: all will come again";
    EXPECT_EQ(beats("BERR", "~~~~~~~~~~~_______~~", 0x11), std::pair(BusError, 2UL));
}

TEST_F(VmeTransactions, TakeA0OfA2eVmeAddressFromLword) {
    // An address of 64 bits: the extended modifier is 2, whatever the line of AD[0] shows.
    for (const std::uint32_t extended : {0x02U, 0x03U}) {
        Waves waves = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, acknowledged, extended);
        for (std::size_t i = 0; i < waves.Records().size(); ++i) {
            waves.Word(i, "AD", 0x0000ABCD'12345600 | extended);
        }
        const auto transactions =
            waves.Set("LWORD", 0).Word(5, "AD", 0x81).Transactions(); // the lowest byte
        ASSERT_EQ(transactions.size(), 1U);
        EXPECT_EQ(transactions[0].address, 0x0000ABCD'12345680U) << extended;
    }
    Waves narrow = TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, acknowledged, 0x00);
    EXPECT_EQ(narrow.Set("LWORD", 1).Word(5, "AD", 0x80).Transactions().at(0).address, 0x12345681U);
}

TEST_F(VmeTransactions, TellA2eVmeAddressWhoseSecondPhaseIsRefused) {
    for (const auto& [line, end] :
         {std::pair{"RETRY", TransactionEnd::Retry}, {"BERR", TransactionEnd::BusError}}) {
        Waves waves = TwoEdge("~______~", "~~__~~~~", "~~~~~~~~", "~~~____~", 0x01);
        const auto transactions =
            waves.Line(line, "~~~~~__~").At(4, "AD", 0x80).At(4, "LWORD", 0).Transactions();
        ASSERT_THAT(Ends(transactions), ElementsAre(end)) << line;
        EXPECT_EQ(transactions[0].address, 0x12345680U) << line;
    }
}

TEST_F(VmeTransactions, TellNoAddressThatIsNotWhole) {
    // The second phase of a 2eVME address does not begin any more.
    const auto cut = TwoEdge("~___", "~~__", "~~~~", "~~~_", 0x01).Transactions();
    ASSERT_EQ(cut.size(), 1U);
    EXPECT_FALSE(cut[0].isHeadless);
    EXPECT_EQ(cut[0].address, std::nullopt);
    // The upper half of an address of 64 bits comes with a strobe.
    EXPECT_EQ(Access("~__", "~~~", "~~~", 0x01).Transactions().at(0).address, std::nullopt);
    EXPECT_EQ(Access("~___", "~~__", "~~~~", 0x01).Transactions().at(0).address, 0x1000U);
    EXPECT_EQ(Access("~__", "~~~", "~~~", 0x08).Transactions().at(0).address, 0x1000U)
        << "32 bits are whole, although a strobe repeats them";
}

TEST_F(VmeTransactions, CountDataOf2eVmeInTheStatistics) {
    const TraceSummary summary =
        TwoEdge(twoEdgeAs, twoEdgeDs0, fourBeats, acknowledged, 0x01).Summary();
    EXPECT_EQ(Command(summary, "2eVME/2eSST(6U) Rd").bytes, 32U);
}

TEST(DataWordText, HasDashesForBytesThatWereNotTransferred) {
    EXPECT_EQ(TextOf({0x1234ABCD, 4, 0xF}), "1234ABCD");
    EXPECT_EQ(TextOf({0x1234ABCD, 4, 0x5}), "--34--CD");
    EXPECT_EQ(TextOf({0x12, 2, 0x1}), "--12");
    EXPECT_EQ(TextOf({0x1234ABCD, 8, 0xFF}), "000000001234ABCD");
}

} // namespace busquill::test
