#include "support/trace_fixture_qt.h"
#include "ui/display/state_window.h"

#include <QtTest/QTest>
#include <benchmark/benchmark.h>

#include <map>

namespace busquill::test {
namespace {

/// A listing of `samples` samples at 1600 x 1000.
class Listing : public TraceFixture {
public:
    explicit Listing(int samples) {
        document = std::make_unique<CTesselDoc>(context, prompts);
        static_cast<void>(document->store.AllocateForFile(0, samples - 1));
        for (int i = 0; i < samples; ++i) {
            SampleRecord record;
            for (std::size_t byte = 0; byte < record.bytes.size(); ++byte) {
                record.bytes[byte] = static_cast<std::uint8_t>(i * 31 + byte * 17);
            }
            document->store.PutSample(static_cast<std::uint32_t>(i), record);
        }
        document->stateList.BuildFromTables(0, ModeState);
        document->stateList.ResizeSamples(static_cast<std::uint32_t>(samples));
        document->stateList.LoadSamples(0, document->store.GetData(false));
        document->RebuildMapsFromFile();
        view = MakeView(true, false, {1600, 1000});
        window = view->findChild<CStateWnd*>();
    }
    void TestBody() override {}

    /// Puts a column with the time since the trigger before all others.
    void ShowAccumulatedTime() {
        CSignalList& list = document->stateList;
        const auto count = static_cast<std::uint32_t>(document->SampleCount(false));
        const auto add = [&](const std::shared_ptr<const CSignalDef>& def) {
            CSignal* added = list.AddSignal(&list[0], def, count, 0, 17, 0, Radix::Hex, true);
            list.LoadSignal(added, 0, document->GetStore().GetData(false));
            return added;
        };
        const CSignal* accum = add(board.tables.decodedSignals.FindByName("ACCUM"));
        list[list.IndexOf(accum)].width = 80;
        // The field that the times are summed from.
        add(board.tables.busSignals.FindByName("TIME"))->permanent = true;
        document->SetMarker(0, 0);
    }

    std::unique_ptr<CTraceView> view;
    CStateWnd* window = nullptr;
};

/// Made once for all their benchmarks, gone before the application.
std::map<int, std::unique_ptr<Listing>> listings;
std::unique_ptr<Listing> accumulating;

Listing& ListingOf(std::int64_t samples) {
    auto& listing = listings[static_cast<int>(samples)];
    if (!listing) {
        listing = std::make_unique<Listing>(static_cast<int>(samples));
    }
    return *listing;
}

/// A frame at a place of the capture, given in hundredths of its length.
void Frame(benchmark::State& state) {
    Listing* listing = &ListingOf(state.range(0));
    listing->view->ScrollToSample(state.range(0) * state.range(1) / 100);
    for (auto _ : state) {
        listing->window->Render(false);
    }
}
BENCHMARK(Frame)
    ->ArgNames({"samples", "place"})
    ->ArgsProduct({{10'000, 10'000'000}, {0, 50, 100}})
    ->Unit(benchmark::kMicrosecond);

/// What a held arrow key costs: a step of a row and the frame, events included.
void StepByKey(benchmark::State& state) {
    Listing& listing = ListingOf(state.range(0));
    listing.view->ScrollToSample(0);
    for (auto _ : state) {
        QTest::keyClick(listing.view.get(), Qt::Key_Down);
        QApplication::processEvents();
    }
}
BENCHMARK(StepByKey)
    ->ArgName("samples")
    ->Arg(10'000)
    ->Arg(10'000'000)
    ->Unit(benchmark::kMicrosecond);

/// A frame with a column of times since the trigger, which is at the start: the first frame at
/// a place walks there, the others go on from kept sums.
void FrameWithAccumulatedTime(benchmark::State& state) {
    if (!accumulating) {
        accumulating = std::make_unique<Listing>(10'000'000);
        accumulating->ShowAccumulatedTime();
    }
    accumulating->view->ScrollToSample(state.range(0) * 100'000);
    for (auto _ : state) {
        accumulating->window->Render(false);
    }
}
BENCHMARK(FrameWithAccumulatedTime)
    ->ArgName("place")
    ->Arg(0)
    ->Arg(50)
    ->Arg(100)
    ->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace busquill::test

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication app(argc, argv);
    testing::InitGoogleTest();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    busquill::test::listings.clear();
    busquill::test::accumulating.reset();
    return 0;
}
