/// The rows of the index, compared with those of the follower that saw the whole capture.
#include "analysis/transaction_index.h"
#include "boardsim/deeds.h"
#include "support/board_tables.h"
#include "waves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace busquill::test {

namespace {

struct RowsCase {
    const char* name;
    boardsim::Family family;
    const char* model;
    std::int32_t mode;
    std::int32_t width;
};
void PrintTo(const RowsCase& family, std::ostream* out) {
    *out << family.name;
}

class TransactionRows : public testing::TestWithParam<RowsCase> {
protected:
    void Record(unsigned gaps) {
        const auto recording =
            boardsim::RecordDeeds(GetParam().family, 3, sampleCount, sampleCount / 2, gaps);
        absent.Reset(sampleCount);
        for (std::size_t i = 0; i < sampleCount; ++i) {
            records.push_back({recording.samples[i]});
            absent.Assign(i, recording.missing[i]);
        }
    }
    /// The first `count` samples.
    [[nodiscard]] CapturedSamples Samples(std::size_t count = sampleCount) const {
        return {std::span(records).first(count), -static_cast<std::int64_t>(sampleCount / 2),
                absent.Words()};
    }
    [[nodiscard]] std::vector<Transaction> Followed() const {
        std::vector<Transaction> transactions;
        TransactionFollower follower(bus.board, bus.tables);
        follower.KeepWords(4);
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (!absent.Test(i)) {
                const auto ended = follower.Add(
                    static_cast<std::int64_t>(i) - std::int64_t{sampleCount / 2}, records[i]);
                transactions.insert(transactions.end(), ended.begin(), ended.end());
            }
        }
        if (const auto unfinished = follower.Unfinished()) {
            transactions.push_back(*unfinished);
        }
        return transactions;
    }

    static constexpr std::size_t sampleCount = 20000;
    std::vector<SampleRecord> records;
    Bits absent;
    BoardTables bus{GetParam().model, GetParam().mode, GetParam().width};
};

INSTANTIATE_TEST_SUITE_P(
    Families, TransactionRows,
    testing::Values(RowsCase{"Pci32", boardsim::Family::Pci32, "PCIKite", BusPci, 0},
                    RowsCase{"Pci64", boardsim::Family::Pci64, "PCIKite", BusPci, 1},
                    RowsCase{"PciX", boardsim::Family::PciX, "PCIKite", BusPciX, 1},
                    RowsCase{"Vme", boardsim::Family::Vme, "VMEKite", BusVme, 0},
                    RowsCase{"Lark", boardsim::Family::Lark, "VMELark", BusVme, 0},
                    RowsCase{"Vsb", boardsim::Family::Vsb, "VSBKite", BusVsb, 0}),
    [](const auto& each) { return each.param.name; });

class TransactionsWithoutIdleSamples : public TransactionRows {};

INSTANTIATE_TEST_SUITE_P(
    Families, TransactionsWithoutIdleSamples,
    testing::Values(RowsCase{"Pci32", boardsim::Family::Pci32, "PCIKite", BusPci, 0},
                    RowsCase{"Pci64", boardsim::Family::Pci64, "PCIKite", BusPci, 1},
                    RowsCase{"PciX", boardsim::Family::PciX, "PCIKite", BusPciX, 1}),
    [](const auto& each) { return each.param.name; });

} // namespace

TEST_P(TransactionRows, TellWhatTheFollowerOfTheWholeCaptureTold) {
    for (const unsigned gaps : {0U, 150U}) {
        records.clear();
        Record(gaps);
        const auto wanted = Followed();
        TransactionIndex index(bus.board, bus.tables);
        index.Extend(Samples());
        ASSERT_EQ(index.Size(), wanted.size());
        // Backwards, since rows are asked for in any order.
        for (std::size_t row = wanted.size(); row-- > 0;) {
            ASSERT_EQ(index.Row(row, Samples(), 4), wanted[row]) << row;
            ASSERT_EQ(static_cast<std::int64_t>(index.StartOf(row)) - std::int64_t{sampleCount / 2},
                      wanted[row].sample);
        }
    }
}

TEST_P(TransactionRows, AreTheSameWhenTheCaptureArrivesInPieces) {
    Record(100);
    TransactionIndex whole(bus.board, bus.tables);
    whole.Extend(Samples());
    TransactionIndex pieces(bus.board, bus.tables);
    for (std::size_t count = 1; count < sampleCount; count += 777) {
        pieces.Extend(Samples(count));
        if (pieces.Size() != 0) { // the last one may still go on
            EXPECT_EQ(pieces.Row(pieces.Size() - 1, Samples(count), 0).number, pieces.Size());
        }
    }
    pieces.Extend(Samples());
    ASSERT_EQ(pieces.Size(), whole.Size());
    for (std::size_t row = 0; row < whole.Size(); row += 13) {
        ASSERT_EQ(pieces.Row(row, Samples(), 2), whole.Row(row, Samples(), 2)) << row;
    }
}

TEST_P(TransactionRows, AreFoundByTheirSamples) {
    Record(100);
    TransactionIndex index(bus.board, bus.tables);
    index.Extend(Samples());
    std::vector<std::optional<std::size_t>> rows(sampleCount);
    for (std::size_t row = 0; row < index.Size(); ++row) {
        const Transaction each = index.Row(row, Samples(), 0);
        for (std::int64_t sample = each.sample; sample <= each.lastSample; ++sample) {
            rows[static_cast<std::size_t>(sample + std::int64_t{sampleCount / 2})] = row;
        }
    }
    for (std::size_t i = 0; i < sampleCount; i += 7) {
        ASSERT_EQ(index.RowAt(i, Samples()), rows[i]) << i;
    }
}

TEST_P(TransactionRows, TakeLessThanAQuarterOfTheRecords) {
    Record(0);
    TransactionIndex index(bus.board, bus.tables);
    index.Extend(Samples());
    EXPECT_LT(index.Bytes(), sampleCount * sizeof(SampleRecord) / 4);
}

TEST_P(TransactionRows, DoNotReadTheIdleSamplesBetweenThem) {
    constexpr std::size_t idle = 100000;
    constexpr std::size_t half = 400;
    const auto recording = boardsim::RecordDeeds(GetParam().family, 4, 2 * half, half, 0);
    TransactionFollower follower(bus.board, bus.tables);
    std::optional<SampleRecord> rest;
    for (std::size_t i = 0; i < 2 * half; ++i) {
        const SampleRecord record{recording.samples[i]};
        if (follower.IsIdle(record) && !rest && i >= half) {
            rest = record;
            records.insert(records.end(), idle, record);
        }
        records.push_back(record);
    }
    const CapturedSamples samples{records, 0, {}};
    TransactionIndex index(bus.board, bus.tables);
    index.Extend(samples);
    const auto all = [&] {
        std::vector<Transaction> rows;
        for (std::size_t row = 0; row < index.Size(); ++row) {
            rows.push_back(index.Row(row, samples, 4));
        }
        return rows;
    };
    const auto wanted = all();
    // Whoever reads them now finds other transactions.
    for (std::size_t i = 0; i < idle - 2500; ++i) {
        records[half + 1250 + i] = records[i % half];
    }
    EXPECT_EQ(all(), wanted);
}

TEST_P(TransactionsWithoutIdleSamples, AreTheSame) {
    Record(0);
    const auto wanted = Followed();
    const TransactionFollower follower(bus.board, bus.tables);
    records.erase(std::remove_if(records.begin(), records.end(),
                                 [&](const auto& record) { return follower.IsIdle(record); }),
                  records.end());
    ASSERT_LT(records.size(), sampleCount - sampleCount / 10);
    const auto found = Followed();
    ASSERT_EQ(found.size(), wanted.size());
    for (std::size_t row = 0; row < found.size(); ++row) {
        EXPECT_EQ(found[row].address, wanted[row].address) << row;
        EXPECT_EQ(found[row].words, wanted[row].words) << row;
        EXPECT_EQ(found[row].end, wanted[row].end) << row;
    }
}

namespace {

/// A PCI-X target that takes one word only has released DEVSEL and ACK64 in its data phase, which
/// alone does not show that it is wide.
bool HidesItsWidth(const Transaction& transaction) {
    return transaction.end == TransactionEnd::DisconnectWithData && transaction.sequence &&
           transaction.words.size() == 1 && transaction.words[0].width == 8;
}

} // namespace

TEST_P(TransactionsWithoutIdleSamples, HaveTheirDataIfOnlyAddressAndDataPhasesAreStored) {
    constexpr int addressPhase = 95;
    constexpr int attributePhase = 93;
    constexpr std::uint32_t specialCycle = 1;
    Record(0);
    const auto wanted = Followed();
    const auto isAsserted = [&](const SampleRecord& record, const char* name) {
        return !record.Bit(bus.tables.busSignals.FindByName(name)->dataIndex);
    };
    const auto isStored = [&](const SampleRecord& record) {
        return record.Bit(addressPhase) || (bus.board.IsPciXMode() && record.Bit(attributePhase)) ||
               (isAsserted(record, "IRDY") && isAsserted(record, "TRDY"));
    };
    records.erase(std::remove_if(records.begin() + 1, records.end(),
                                 [&](const auto& record) { return !isStored(record); }),
                  records.end());
    ASSERT_LT(records.size(), sampleCount / 2);
    const auto found = Followed();
    ASSERT_EQ(found.size(), wanted.size());
    std::size_t known = 0;
    for (std::size_t row = 0; row < found.size(); ++row) {
        EXPECT_EQ(found[row].command, wanted[row].command) << row;
        EXPECT_EQ(found[row].address, wanted[row].address) << row;
        if (HidesItsWidth(wanted[row])) {
            EXPECT_EQ(found[row].words[0].value, wanted[row].words[0].value & 0xFFFFFFFF) << row;
        } else if (wanted[row].command != specialCycle) { // nobody is ready for its message
            EXPECT_EQ(found[row].words, wanted[row].words) << row;
        }
        known += found[row].HasEnd() ? 1 : 0;
        EXPECT_TRUE(found[row].end == wanted[row].end || !found[row].HasEnd()) << row;
    }
    EXPECT_GT(known, found.size() / 2);
}

TEST(TransactionRowsOfAConnector, AreNone) {
    const BoardTables bus("VMEKiteP2", BusVmeP2);
    const std::vector<SampleRecord> records(100);
    TransactionIndex index(bus.board, bus.tables);
    index.Extend({records, 0, {}});
    EXPECT_EQ(index.Size(), 0U);
    EXPECT_EQ(index.RowAt(5, {records, 0, {}}), std::nullopt);
}

TEST(TransactionRowsBeforeMissingSamples, AreCutOffUnlessOthersFollow) {
    const BoardTables bus("PCIKite");
    Waves waves(bus);
    waves.Line("FRAME", "~______~").Set("C/BE", 0xF6).At(1, "ADR/DATA", 1);
    const auto end = [&](std::size_t count) {
        const std::array<std::uint32_t, 1> absent = {0b0111'0000};
        const CapturedSamples samples{std::span(waves.Records()).first(count), 0, absent};
        TransactionIndex index(bus.board, bus.tables);
        index.Extend(samples);
        return index.Row(0, samples, 0).end;
    };
    EXPECT_EQ(end(7), TransactionEnd::CutOff);
    EXPECT_EQ(end(8), TransactionEnd::Unknown);
}

TEST(TransactionRowsOfAddressPhases, BeginAfterADualAddressWhoseSecondHalfLooksLikeAFirst) {
    const BoardTables bus("PCIKite");
    Waves waves(bus);
    waves.Line("FRAME", "~____~~").Line("IRDY", "~~~~__~").Line("TRDY", "~~~~~_~");
    for (const auto& [sample, code] : {std::pair{1U, 0xFDU}, {2U, 0xFDU}, {3U, 0xF6U}}) {
        waves.At(sample, "ADR/DATA", 1).At(sample, "C/BE", code);
    }
    const CapturedSamples samples{waves.Records(), 0, {}};
    TransactionIndex index(bus.board, bus.tables);
    index.Extend(samples);
    ASSERT_EQ(index.Size(), 2U);
    EXPECT_FALSE(index.Row(1, samples, 0).isHeadless);
    EXPECT_EQ(index.Row(1, samples, 1000), waves.Transactions().at(1));
}

TEST(TransactionRowsOfAddressPhases, AreOneForEachSample) {
    const BoardTables bus("PCIKite");
    Waves waves(bus);
    waves.Line("FRAME", "______").Set("ADR/DATA", 1).Set("C/BE", 0xF6);
    TransactionIndex index(bus.board, bus.tables);
    index.Extend({waves.Records(), 0, {}});
    EXPECT_EQ(index.Size(), 6U);
    EXPECT_EQ(index.RowAt(3, {waves.Records(), 0, {}}), 3U);
}

} // namespace busquill::test
