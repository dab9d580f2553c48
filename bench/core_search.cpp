#include "capture/record_pattern.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"

#include <benchmark/benchmark.h>

#include <numeric>

namespace busquill::test {
namespace {

constexpr std::size_t recordCount = 10'000'000;

/// Records whose first byte counts up; the top bit of the second byte is always clear.
const std::vector<SampleRecord>& Records() {
    static const std::vector<SampleRecord> records = [] {
        std::vector<SampleRecord> made(recordCount);
        for (std::size_t i = 0; i < made.size(); ++i) {
            for (std::size_t byte = 0; byte < made[i].bytes.size(); ++byte) {
                made[i].bytes[byte] = static_cast<std::uint8_t>((i * 31 + byte * 17) & 0x7F);
            }
            made[i].bytes[0] = static_cast<std::uint8_t>(i);
        }
        return made;
    }();
    return records;
}

/// A pattern of one bit.
CSignalList PatternOf(std::int32_t dataIndex) {
    CSignalList list(NoTables());
    CSignal* signal = list.InsertBlank(nullptr);
    signal->dataIndex = dataIndex;
    signal->data = {1};
    signal->mask = {1};
    return list;
}

void SetBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(recordCount * sizeof(SampleRecord)));
}

/// Baseline: how fast this machine reads the same memory.
void ReadMemory(benchmark::State& state) {
    const auto& records = Records();
    const auto* words = reinterpret_cast<const std::uint64_t*>(records.data());
    const std::size_t count = recordCount * sizeof(SampleRecord) / sizeof(std::uint64_t);
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::accumulate(words, words + count, std::uint64_t{0}));
    }
    SetBytes(state);
}
BENCHMARK(ReadMemory)->Unit(benchmark::kMillisecond);

/// A search that finds nothing.
void SearchForward(benchmark::State& state) {
    const auto& records = Records();
    const RecordPattern pattern(PatternOf(15));
    for (auto _ : state) {
        benchmark::DoNotOptimize(FindForward(records, pattern, 0));
    }
    SetBytes(state);
}
BENCHMARK(SearchForward)->Unit(benchmark::kMillisecond);

void SearchBackward(benchmark::State& state) {
    const auto& records = Records();
    const RecordPattern pattern(PatternOf(15));
    for (auto _ : state) {
        benchmark::DoNotOptimize(FindBackward(records, pattern, recordCount - 1));
    }
    SetBytes(state);
}
BENCHMARK(SearchBackward)->Unit(benchmark::kMillisecond);

/// The same, byte by byte.
void SearchByBytes(benchmark::State& state) {
    const auto& records = Records();
    std::array<std::uint8_t, 30> pattern{};
    pattern[2] = pattern[3] = 0x80;
    for (auto _ : state) {
        std::size_t found = 0;
        for (const SampleRecord& record : records) {
            bool fits = true;
            for (std::size_t i = 0; i < 15 && fits; ++i) {
                fits =
                    (record.bytes[i] & pattern[2 * i + 1]) == (pattern[2 * i] & pattern[2 * i + 1]);
            }
            found += fits ? 1 : 0;
        }
        benchmark::DoNotOptimize(found);
    }
    SetBytes(state);
}
BENCHMARK(SearchByBytes)->Unit(benchmark::kMillisecond);

/// A filter that keeps nothing, every second sample, or half of the samples in long runs.
void Filter(benchmark::State& state) {
    const auto& records = Records();
    const RecordPattern pattern(PatternOf(static_cast<std::int32_t>(state.range(0))));
    std::vector<std::uint32_t> samples;
    std::vector<std::uint32_t> bits;
    for (auto _ : state) {
        FindAll(records, pattern, {}, samples, bits);
        benchmark::DoNotOptimize(samples.data());
    }
    SetBytes(state);
}
BENCHMARK(Filter)->ArgName("bit")->Arg(15)->Arg(0)->Arg(7)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace busquill::test
