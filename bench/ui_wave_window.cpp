#include "ui/display/wave_window.h"
#include "ui_fixture.h"

#include <QtTest/QTest>
#include <benchmark/benchmark.h>

#include <map>

namespace busquill::test {
namespace {

constexpr std::size_t bandCount = 60;
constexpr int longCapture = 10'000'000;

enum Kind : std::int64_t { LinesAndBuses, BusesOnly, DecodedOnly, DecodedIdle };

/// Waveforms with 60 bands at 1600 x 1000. Almost every line and bus changes at every sample.
class Waveforms : public LongCapture {
public:
    Waveforms(int samples, Kind kind) : LongCapture(samples, kind == DecodedIdle) {
        CSignalList& list = document->waveformList;
        const auto& buses = board.tables.busSignals.Defs();
        const auto& decoded = board.tables.decodedSignals.Defs();
        for (std::size_t i = 0, bands = 0; bands < bandCount; ++i) {
            if (kind >= DecodedOnly) {
                const auto& def = decoded[i % decoded.size()];
                bands += list.AddSignal(nullptr, def, 0, 0, 0, 0, Radix::Hex, true) != nullptr;
                continue;
            }
            const auto& def = buses[i % buses.size()];
            if (def->Width() > 1 || kind == LinesAndBuses) {
                list.AddSignal(nullptr, def, 0, def->firstPosition, def->lastPosition, 0,
                               Radix::Hex, def->Width() > 1);
                ++bands;
            }
        }
        for (const auto& signal : list.All()) {
            signal->height = 15; // so that all fit
        }
        Load(list);
        document->RebuildMapsFromFile();
        view = MakeView(false, false, {1600, 1000});
        window = view->findChild<CWaveformWnd*>();
    }

    std::unique_ptr<CTraceView> view;
    CWaveformWnd* window = nullptr;
};

Waveforms& WaveformsOf(std::int64_t samples, std::int64_t kind) {
    static std::map<std::pair<std::int64_t, std::int64_t>, std::weak_ptr<Waveforms>> made;
    auto& known = made[{samples, kind}];
    auto waveforms = known.lock();
    if (!waveforms) {
        keptUntilTheEnd.clear(); // several captures of ten million samples would not fit
        waveforms = std::make_shared<Waveforms>(static_cast<int>(samples), static_cast<Kind>(kind));
        known = waveforms;
        keptUntilTheEnd.push_back(waveforms);
    }
    return *waveforms;
}

/// A frame at a place in the capture, given in percent of its length.
void WaveFrame(benchmark::State& state) {
    Waveforms& waveforms = WaveformsOf(state.range(0), state.range(1));
    waveforms.window->SetZoom(static_cast<int>(state.range(2)));
    waveforms.view->ScrollToSample(state.range(0) * state.range(3) / 100);
    for (auto _ : state) {
        waveforms.window->Render();
    }
}
BENCHMARK(WaveFrame)
    ->ArgNames({"samples", "kind", "zoom", "place"})
    ->ArgsProduct({{10'000}, {LinesAndBuses}, {400, 20, 1, -2, -7}, {50}})
    ->ArgsProduct({{longCapture}, {LinesAndBuses}, {400, 20, 1, -2, -7}, {0, 50, 100}})
    ->ArgsProduct(
        {{1'000'000}, {BusesOnly, DecodedOnly, DecodedIdle}, {400, 20, 8, 1, -2, -7}, {50}})
    ->Unit(benchmark::kMicrosecond);

/// A frame with a marker at either end of the capture, and so with the time between them.
void WaveFrameBetweenMarkers(benchmark::State& state) {
    Waveforms& waveforms = WaveformsOf(state.range(0), LinesAndBuses);
    const std::int64_t count = waveforms.document->SampleCount(false);
    for (const auto& signal : waveforms.document->waveformList.All()) {
        signal->permanent = signal->baseName == "TIME"; // the field from which times are summed
    }
    waveforms.window->SetZoom(20);
    waveforms.document->SetMarker(1, 0);
    waveforms.document->SetMarker(2, count - 1);
    waveforms.view->ScrollToSample(count / 2);
    for (auto _ : state) {
        waveforms.window->Render();
    }
    waveforms.document->SetMarker(1, -1);
    waveforms.document->SetMarker(2, -1);
}
BENCHMARK(WaveFrameBetweenMarkers)
    ->ArgName("samples")
    ->Arg(10'000)
    ->Arg(4'000'000)
    ->Unit(benchmark::kMicrosecond);

/// The cost of a held arrow key: four steps of one pixel and the frame, events included.
void WaveStepByKey(benchmark::State& state) {
    Waveforms& waveforms = WaveformsOf(state.range(0), LinesAndBuses);
    waveforms.window->SetZoom(20);
    waveforms.view->ScrollToSample(0);
    for (auto _ : state) {
        QTest::keyClick(waveforms.view.get(), Qt::Key_Right);
        QApplication::processEvents();
    }
}
BENCHMARK(WaveStepByKey)
    ->ArgName("samples")
    ->Arg(10'000)
    ->Arg(longCapture)
    ->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace busquill::test
