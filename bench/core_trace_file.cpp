#include "capture/trace_document.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

namespace busquill::test {
namespace {

constexpr int samples = 200'000;

/// A capture on disk, written once.
const std::string& CapturePath() {
    static const TempDir dir;
    static const std::string path = [] {
        std::string text =
            "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n\"Trace Data\",0," +
            std::to_string(samples - 1) + "\n";
        for (int i = 0; i < samples; ++i) {
            text += std::to_string(i);
            for (int byte = 0; byte < 18; ++byte) {
                text += "," + std::to_string((i * 31 + byte * 17) & 255);
            }
            text += "\n";
        }
        return dir.Write("bench.tra", text + "\"End of Trace Data\"\n");
    }();
    return path;
}

void CountBytes(benchmark::State& state) {
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(CapturePath()));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * bytes);
}

/// Baseline: reads the lines of the same file with the standard library and ignores them.
void ReadLinesOnly(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream file(CapturePath());
        std::size_t length = 0;
        for (std::string line; std::getline(file, line);) {
            length += line.size();
        }
        benchmark::DoNotOptimize(length);
    }
    CountBytes(state);
}
BENCHMARK(ReadLinesOnly)->Unit(benchmark::kMillisecond);

/// Loads the whole capture: samples, default lists, rows and labels.
void ReadTraceFile(benchmark::State& state) {
    BoardTables board("PCIKite-1");
    RecordingPrompts prompts;
    for (auto _ : state) {
        NewTraceContext context{board.tables};
        CTesselDoc document(context, prompts);
        benchmark::DoNotOptimize(document.OnOpenDocument(CapturePath()));
    }
    CountBytes(state);
}
BENCHMARK(ReadTraceFile)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace busquill::test
