/// Unpacking a capture into the rows of a PCI state listing, compared with a plain copy of its
/// records.
#include "signals/signal_list.h"
#include "support/temp_dir.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

namespace busquill {
namespace {

constexpr std::size_t sampleCount = std::size_t{1} << 20;

std::vector<SampleRecord> RandomRecords() {
    std::mt19937 random(1);
    std::vector<SampleRecord> records(sampleCount);
    for (SampleRecord& record : records) {
        for (std::uint8_t& byte : record.bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
    }
    return records;
}

BoardTraits PciBoard() {
    BoardTraits board;
    board.demoMode = true;
    board.bus.busMode = BusPci;
    return board;
}

/// A listing of a 32-bit PCI bus, and records to fill it with.
struct Listing {
    test::TempDir directory;
    SignalTables tables{PciBoard, WorkingDirectory(directory.Path())};
    CSignalList list{tables};
    std::vector<SampleRecord> records = RandomRecords();

    Listing() {
        tables.Load();
        list.BuildFromTables(0, ModeState);
        list.ResizeSamples(sampleCount);
    }
};

template <class Work>
double Seconds(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// `times_copy`: the time of unpacking divided by that of copying the records, measured in turn.
void UnpackIntoStateList(benchmark::State& state) {
    Listing listing;
    std::vector<SampleRecord> copy(sampleCount);
    double unpacking = 0;
    double copying = 0;
    for (auto _ : state) {
        unpacking += Seconds([&] { listing.list.LoadSamples(0, listing.records); });
        state.PauseTiming();
        copying += Seconds([&] {
            std::copy(listing.records.begin(), listing.records.end(), copy.begin());
            benchmark::DoNotOptimize(copy.data());
            benchmark::ClobberMemory();
        });
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(sampleCount) * state.iterations());
    state.counters["signals"] = static_cast<double>(listing.list.Size());
    state.counters["times_copy"] = unpacking / copying;
}
BENCHMARK(UnpackIntoStateList)->Unit(benchmark::kMillisecond);

/// The same in blocks of 32 samples, as an upload delivers them.
void UnpackBlocks(benchmark::State& state) {
    Listing listing;
    const std::span<const SampleRecord> records(listing.records);
    for (auto _ : state) {
        for (std::size_t first = 0; first < sampleCount; first += 32) {
            listing.list.LoadSamples(static_cast<std::uint32_t>(first), records.subspan(first, 32));
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(sampleCount) * state.iterations());
}
BENCHMARK(UnpackBlocks)->Unit(benchmark::kMillisecond);

/// Repacks the rows of all groups from the bits of their members.
void RebuildAllRows(benchmark::State& state) {
    Listing listing;
    listing.list.LoadSamples(0, listing.records);
    for (auto _ : state) {
        listing.list.RebuildGroupRows(0, sampleCount);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(sampleCount) * state.iterations());
}
BENCHMARK(RebuildAllRows)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace busquill
