#include "capture/analyzer.h"
#include "capture/trace_document.h"
#include "capture/trace_writer.h"
#include "support/board_tables.h"
#include "support/temp_dir.h"
#include "support/wire_fixture.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

namespace busquill::test {
namespace {

using Frame = std::array<std::uint8_t, 2>;
constexpr std::int64_t blocks = 256; // of 32 samples, half of them before the trigger
constexpr std::size_t replySize = 32 * sizeof(SampleRecord) + 2;

void CountBlocks(benchmark::State& state) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * blocks);
}

/// Baseline: the same frames and replies, exchanged by a loop over the bare port.
void ExchangeBlocksOnly(benchmark::State& state) {
    const BoardProcess board({"--baud", "9600", "--samples", "8192"});
    const auto port = OpenSerialPort(board.Terminal());
    port->ReadConfiguration();
    port->Configure(9600);
    port->SetReadTimeout(std::chrono::milliseconds(100));
    std::array<std::uint8_t, replySize> reply{};
    const auto exchange = [&](Frame frame, std::size_t expected) {
        port->Write(frame);
        for (std::size_t came = 0; came < expected;) {
            const auto count = port->Read(std::span(reply).subspan(came, expected - came));
            came += count.value_or(expected);
        }
    };
    for (auto _ : state) {
        for (std::int64_t block = 0; block < blocks; ++block) {
            const auto distance = static_cast<std::uint16_t>(block * 16);
            exchange({4, static_cast<std::uint8_t>(distance)}, 1);
            exchange({6, static_cast<std::uint8_t>(distance >> 8)}, 1);
            exchange({8, 0}, 1);
            exchange({10, 32}, 1);
            exchange({12, 0}, 1);
            exchange({2, 5}, replySize);
        }
    }
    CountBlocks(state);
}
BENCHMARK(ExchangeBlocksOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A whole upload: link, store and observer.
void UploadBlocks(benchmark::State& state) {
    const BoardProcess board({"--baud", "9600", "--model", "PCIWren", "--buffer", "16"});
    MemorySettings settings;
    RecordingPrompts prompts;
    ImpatientClock clock;
    MainThread mainThread;
    ScriptedUsb usb;
    settings.WriteProfileString("Setup", "ComPort", "COM1");
    settings.WriteProfileInt("Setup", "BaudRate", 9600);
    settings.WriteProfileString("Setup", "ComDevice1", board.Terminal());
    Analyzer analyzer({mainThread, prompts, settings, clock, usb, OpenSerialPort,
                       WorkingDirectory("/nonexistent")});
    CAnalyzerLink& link = analyzer.Link();
    BoardCapture& capture = analyzer.Capture();
    link.Connect(ReadPortSetting(settings));
    // The simplest program: everything is stored, the first sample triggers.
    std::array<std::uint8_t, 160> control{};
    std::fill_n(control.begin(), 16, std::uint8_t{0xFF});
    control[16] = 1;
    control[18] = 8;
    if (!link.Exchange(WritePayload(CmdTraceControl, [&] {
            return std::vector<std::uint8_t>(control.begin(), control.end());
        }))) {
        state.SkipWithError("no board");
    }
    const auto uploaded = [&] { return !capture.IsRunning() && !capture.upload.IsUploading(); };
    capture.StartCapture();
    while (!mainThread.WaitUntil(std::chrono::milliseconds(10), uploaded)) {
    }
    if (capture.store.GetCount(false) != blocks * 32) {
        state.SkipWithError("another capture than expected");
    }
    for (auto _ : state) {
        capture.upload.BeginUpload();
        while (!mainThread.WaitUntil(std::chrono::seconds(10), uploaded)) {
        }
    }
    CountBlocks(state);
}
BENCHMARK(UploadBlocks)->Unit(benchmark::kMillisecond)->UseRealTime();

constexpr int savedSamples = 1'000'000;

/// A capture in memory, as if loaded from a file.
std::unique_ptr<CTesselDoc> MakeCapture(NewTraceContext& context, Prompts& prompts) {
    auto document = std::make_unique<CTesselDoc>(context, prompts);
    static_cast<void>(document->store.AllocateForFile(-savedSamples / 2, savedSamples / 2 - 1));
    for (std::uint32_t i = 0; i < savedSamples; ++i) {
        SampleRecord record;
        for (std::size_t byte = 0; byte < record.bytes.size(); ++byte) {
            record.bytes[byte] = static_cast<std::uint8_t>(i * 31 + byte * 17);
        }
        document->store.PutSample(i, record);
    }
    document->RebuildMapsFromFile();
    return document;
}

/// Baseline: writes the same number of bytes, already prepared.
void WriteBytesOnly(benchmark::State& state) {
    const TempDir dir;
    std::string text(static_cast<std::size_t>(savedSamples) * 73, '1');
    for (auto _ : state) {
        std::ofstream(dir.File("bytes"), std::ios::binary) << text;
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size()));
}
BENCHMARK(WriteBytesOnly)->Unit(benchmark::kMillisecond);

void SaveTraceFile(benchmark::State& state) {
    BoardTables board("PCIKite-1");
    const TempDir dir;
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
    const auto document = MakeCapture(context, prompts);
    std::int64_t bytes = 0;
    for (auto _ : state) {
        TraceFileWriter writer(*document);
        if (!writer.Begin(dir.File("a.tra"), -savedSamples / 2, savedSamples / 2 - 1) ||
            writer.Write(savedSamples + 1) != TraceFileWriter::Step::Done) {
            state.SkipWithError("not written");
        }
        bytes += static_cast<std::int64_t>(std::filesystem::file_size(dir.File("a.tra")));
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK(SaveTraceFile)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace busquill::test
