/// Finding the transactions of a capture of a million samples, and showing rows of its table.
#include "analysis/transaction_index.h"
#include "boardsim/traffic.h"
#include "support/board_tables.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

namespace busquill {
namespace {

constexpr std::size_t captureSize = 1000000;

struct Capture {
    const char* model;
    BusMode mode;
    boardsim::Family family;
};
constexpr Capture captures[] = {{"PCIKite", BusPci, boardsim::Family::Pci32},
                                {"PCIKite", BusPciX, boardsim::Family::PciX},
                                {"VMEKite", BusVme, boardsim::Family::Vme},
                                {"VSBKite", BusVsb, boardsim::Family::Vsb}};

std::vector<SampleRecord> RecordsOf(boardsim::Family family) {
    std::vector<SampleRecord> records;
    records.reserve(captureSize);
    const auto traffic = boardsim::MakeTraffic(family, 3);
    for (std::size_t i = 0; i < captureSize; ++i) {
        records.push_back({traffic->Next()});
    }
    return records;
}

/// `bytes_per_record`: the memory of the index. The records themselves have 18 bytes.
void IndexTransactions(benchmark::State& state) {
    const Capture& capture = captures[state.range(0)];
    const test::BoardTables bus(capture.model, capture.mode);
    const auto records = RecordsOf(capture.family);
    std::size_t rows = 0;
    std::size_t bytes = 0;
    for (auto _ : state) {
        TransactionIndex index(bus.board, bus.tables);
        index.Extend({records, 0, {}});
        rows = index.Size();
        bytes = index.Bytes();
    }
    state.SetLabel(capture.model);
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["bytes_per_record"] = static_cast<double>(bytes) / captureSize;
}
BENCHMARK(IndexTransactions)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

/// A screen of rows anywhere in the table.
void ShowTransactions(benchmark::State& state) {
    constexpr std::size_t screen = 50;
    const Capture& capture = captures[state.range(0)];
    const test::BoardTables bus(capture.model, capture.mode);
    const auto records = RecordsOf(capture.family);
    TransactionIndex index(bus.board, bus.tables);
    index.Extend({records, 0, {}});
    std::mt19937 random(1);
    for (auto _ : state) {
        const std::size_t first = random() % (index.Size() - screen);
        for (std::size_t row = first; row < first + screen; ++row) {
            benchmark::DoNotOptimize(index.Row(row, {records, 0, {}}, 8));
        }
    }
    state.SetLabel(capture.model);
}
BENCHMARK(ShowTransactions)->DenseRange(0, 3)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace busquill
