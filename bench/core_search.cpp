#include "capture/record_pattern.h"
#include "capture/sample_condition.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <bit>
#include <chrono>
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

/// The samples for which a condition on them holds, in blocks as all searches take them.
template <typename MatchesOf>
std::size_t CountMatches(MatchesOf matchesOf) {
    const std::span<const SampleRecord> records(Records());
    constexpr std::size_t block = RecordPattern::blockSize;
    std::size_t found = 0;
    for (std::size_t first = 0; first < records.size(); first += block) {
        const std::size_t count = std::min(block, records.size() - first);
        found += static_cast<std::size_t>(
            std::popcount(matchesOf(first, records.subspan(first, count))));
    }
    return found;
}

/// A search for a pattern, with which expressions are compared.
std::size_t CountMasked() {
    static const RecordPattern pattern = [] {
        SampleRecord value;
        SampleRecord care;
        for (int bit = 0; bit < 12; ++bit) {
            care.SetBit(bit);
            value.SetBit(bit, (0x1E0 >> bit & 1) != 0);
        }
        return RecordPattern(value, care);
    }();
    return CountMatches([](std::size_t /*first*/, std::span<const SampleRecord> records) {
        return pattern.MatchesOf(records);
    });
}

/// Seconds that it takes to do something, at best.
template <typename Work>
double BestOf(int times, Work work) {
    double best = 1e9;
    for (int i = 0; i < times; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(work());
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        best = std::min(best, taken.count());
    }
    return best;
}

void SearchMasked(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CountMasked());
    }
    SetBytes(state);
}
BENCHMARK(SearchMasked)->Unit(benchmark::kMillisecond);

/// An expression; "ofMasked" is its time as a multiple of that of a masked search, both at best.
void SearchWhere(benchmark::State& state, const char* where) {
    const BoardTables board("PCIKite-1", BusPci, 1);
    const auto parsed = SampleCondition::Parse(where, board.tables, {});
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        state.SkipWithError(error->message.c_str());
        return;
    }
    const auto& condition = std::get<SampleCondition>(parsed);
    static const std::vector<std::int32_t> all = [] {
        std::vector<std::int32_t> numbers(recordCount);
        std::iota(numbers.begin(), numbers.end(), 0);
        return numbers;
    }();
    const std::span<const std::int32_t> numbers(all);
    const std::span<const SampleRecord> samples(Records());
    const auto count = [&] {
        return CountMatches([&](std::size_t first, std::span<const SampleRecord> records) {
            return condition.MatchesOf({.records = records,
                                        .numbers = numbers.subspan(first, records.size()),
                                        .before = first == 0 ? nullptr : &samples[first - 1]});
        });
    };
    for (auto _ : state) {
        benchmark::DoNotOptimize(count());
    }
    constexpr int rounds = 5;
    state.counters["ofMasked"] = BestOf(rounds, count) / BestOf(rounds, CountMasked);
    state.SetLabel(condition.IsMasked() ? "masked" : "general");
    SetBytes(state);
}
BENCHMARK_CAPTURE(SearchWhere, Mask, "AD == 0xXXXX_XXXX_XXXX_X1E0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SearchWhere, SeveralMasks,
                  "FRAME == 0 and IRDY == 0 and AD[11..0] in 0x100..0x1FF and not ACK64 == 1")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SearchWhere, Edge, "FRAME falls")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SearchWhere, Range, "AD[31..0] in 5..0x7654_3210")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SearchWhere, MaskAndRange,
                  "AD == 0xXXXX_XXXX_XXXX_X1E0 and AD[63..32] in 5..0x7654_3210")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SearchWhere, General,
                  "AD changes and (C/BE in 3..200 or TIME > 1us) and not sample in 100..200")
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace busquill::test
