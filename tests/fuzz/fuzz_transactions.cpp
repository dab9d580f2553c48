#include "analysis/trace_stats.h"
#include "analysis/transaction_index.h"
#include "support/board_tables.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

using namespace busquill;
using namespace busquill::test;

namespace {

/// A bus and the lines that decide what its transactions do. The last group is the command.
struct Bus {
    BoardTables tables;
    std::vector<const char*> control;
    const char* command;
};

const Bus& BusOf(std::uint8_t choice) {
    static const std::vector<const char*> pci = {"FRAME",    "IRDY", "TRDY",  "BSTOP", "DEVSEL",
                                                 "ADR/DATA", "SBO",  "REQ64", "ACK64"};
    static const std::vector<const char*> vme = {"AS",    "DS",    "DTACK", "BERR",
                                                 "RETRY", "WRITE", "LWORD", "IACK"};
    static const std::vector<const char*> vsb = {"PAS", "DS", "ACK", "ERR", "WR", "SIZE", "ASACK"};
    static const std::array<Bus, 6> buses = {Bus{BoardTables{"PCIKite", BusPci, 0}, pci, "C/BE"},
                                             Bus{BoardTables{"PCIKite", BusPci, 1}, pci, "C/BE"},
                                             Bus{BoardTables{"PCIKite", BusPciX, 1}, pci, "C/BE"},
                                             Bus{BoardTables{"VMEKite", BusVme, 0}, vme, "AM"},
                                             Bus{BoardTables{"VMELark", BusVme, 0}, vme, "AM"},
                                             Bus{BoardTables{"VSBKite", BusVsb, 0}, vsb, "SPACE"}};
    return buses[choice % buses.size()];
}

/// A capture made of four bytes for each sample: two for control lines, one for the command and one
/// for everything else.
struct Capture {
    static constexpr std::size_t sampleBytes = 4;
    static constexpr std::size_t longest = 1000;
    static constexpr std::uint32_t absentBit = 1U << 15;

    std::vector<SampleRecord> records;
    std::vector<std::uint32_t> absent;
    std::int64_t first = 0;

    Capture(const Bus& bus, const std::uint8_t* data, std::size_t size) {
        const auto& signals = bus.tables.tables.busSignals;
        const std::size_t count = std::min(size / sampleBytes, longest);
        absent.resize(count / 32 + 1);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t* const bytes = data + i * sampleBytes;
            std::uint32_t control = bytes[0] | std::uint32_t{bytes[1]} << 8;
            absent[i / 32] |= (control & absentBit) != 0 ? 1U << i % 32 : 0;
            SampleRecord record;
            record.bytes.fill(bytes[3]);
            for (const char* name : bus.control) {
                control = Put(record, *signals.FindByName(name), control);
            }
            Put(record, *signals.FindByName(bus.command), bytes[2]);
            records.push_back(record);
        }
    }
    [[nodiscard]] CapturedSamples Samples(std::size_t count) const {
        return {std::span(records).first(count), first, absent};
    }

private:
    /// Returns the bits that are left.
    static std::uint32_t Put(SampleRecord& record, const CBusSignalDef& def, std::uint32_t value) {
        for (int bit = 0; bit < def.Width(); ++bit, value >>= 1) {
            const int place = def.dataIndex + bit;
            std::uint8_t& byte = record.bytes.at(static_cast<std::size_t>(place) / 8);
            const auto mask = static_cast<std::uint8_t>(1U << place % 8);
            byte = static_cast<std::uint8_t>((value & 1) != 0 ? byte | mask : byte & ~mask);
        }
        return value;
    }
};

void Require(bool holds, const char* what, std::size_t row) {
    if (!holds) {
        std::fprintf(stderr, "row %zu: %s\n", row, what);
        std::abort();
    }
}

void Print(const Transaction& row) {
    std::fprintf(stderr, "%llu: samples %lld to %lld, times %lld to %lld, command %X, %s%s\n",
                 static_cast<unsigned long long>(row.number), static_cast<long long>(row.sample),
                 static_cast<long long>(row.lastSample), static_cast<long long>(row.time),
                 static_cast<long long>(row.lastTime), row.command, NameOf(row.end).data(),
                 row.isHeadless ? ", headless" : "");
    std::fprintf(stderr, "  %llu words, gap %lld, %llu findings, completes %lld\n",
                 static_cast<unsigned long long>(row.dataPhases),
                 static_cast<long long>(row.gap.value_or(-1)),
                 static_cast<unsigned long long>(row.findings.value_or(0)),
                 static_cast<long long>(row.splitRequest.value_or(0)));
}

constexpr std::size_t wordsKept = 3;

std::vector<Transaction> Follow(const Bus& bus, const Capture& capture) {
    TransactionFollower follower(bus.tables.board, bus.tables.tables);
    follower.KeepWords(wordsKept);
    std::vector<Transaction> rows;
    const CapturedSamples samples = capture.Samples(capture.records.size());
    for (std::size_t i = 0; i < capture.records.size(); ++i) {
        if (samples.Has(i)) {
            const auto number = samples.first + static_cast<std::int64_t>(i);
            const auto ended = follower.Add(number, capture.records[i]);
            rows.insert(rows.end(), ended.begin(), ended.end());
        }
    }
    if (const auto unfinished = follower.Unfinished()) {
        rows.push_back(*unfinished);
    }
    return rows;
}

void CheckRows(const std::vector<Transaction>& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Transaction& row = rows[i];
        Require(row.number == i + 1, "numbers count up", i);
        Require(row.sample <= row.lastSample && row.time <= row.lastTime, "ends before it begins",
                i);
        Require(i == 0 || rows[i - 1].lastSample < row.sample, "overlaps the one before", i);
        Require(row.words.size() == std::min<std::uint64_t>(row.dataPhases, wordsKept),
                "has a word for each data phase", i);
        Require(row.firstData.has_value() == (row.dataPhases != 0), "first data", i);
        Require(!row.gap || *row.gap >= 0, "gap", i);
        Require(!row.isHeadless || (row.dataPhases == 0 && !row.sequence && !row.HasEnd()),
                "nothing is known of it", i);
        Require(!row.splitRequest || *row.splitRequest < row.number, "completes a later one", i);
    }
}

void CheckIndex(const Bus& bus, const Capture& capture, const std::vector<Transaction>& rows,
                std::size_t piece) {
    const std::size_t size = capture.records.size();
    const CapturedSamples samples = capture.Samples(size);
    TransactionIndex index(bus.tables.board, bus.tables.tables);
    for (std::size_t count = 0; count < size; count += piece) {
        index.Extend(capture.Samples(count));
    }
    index.Extend(samples);
    Require(index.Size() == rows.size(), "the index has as many rows", index.Size());
    std::vector<std::optional<std::size_t>> rowOf(size);
    for (std::size_t i = rows.size(); i-- > 0;) {
        if (const Transaction row = index.Row(i, samples, wordsKept); row != rows[i]) {
            Print(rows[i]);
            Print(row);
            Require(false, "the index tells the same", i);
        }
        for (std::int64_t sample = rows[i].sample; sample <= rows[i].lastSample; ++sample) {
            rowOf[static_cast<std::size_t>(sample - samples.first)] = i;
        }
    }
    for (std::size_t i = 0; i < size; ++i) {
        Require(index.RowAt(i, samples) == rowOf[i], "the row of a sample", i);
    }
}

} // namespace

// The first byte selects the bus, the second the pieces in which the capture arrives, the third the
// place of the trigger.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t head = 3;
    if (size < head) {
        return 0;
    }
    const Bus& bus = BusOf(data[0]);
    Capture capture(bus, data + head, size - head);
    capture.first = -std::int64_t{data[2]};
    const auto rows = Follow(bus, capture);
    CheckRows(rows);
    CheckIndex(bus, capture, rows, 1U + data[1]);
    TraceStats stats(bus.tables.board, bus.tables.tables);
    stats.Add(capture.records);
    static_cast<void>(stats.Summary());
    return 0;
}
