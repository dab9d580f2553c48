#include "support/trace_fixture_qt.h"
#include "ui/display/state_window.h"

#include <benchmark/benchmark.h>

#include <map>

namespace busquill::test {
namespace {

/// A listing of `samples` samples at 1600 x 1000.
class Listing : public TraceFixture {
public:
    explicit Listing(int samples) {
        Load(0, samples - 1);
        view = MakeView(true, false, {1600, 1000});
        window = view->findChild<CStateWnd*>();
    }
    void TestBody() override {}

    std::unique_ptr<CTraceView> view;
    CStateWnd* window = nullptr;
};

/// A frame at a place of the capture, given in hundredths of its length.
void Frame(benchmark::State& state) {
    const auto samples = static_cast<int>(state.range(0));
    static std::map<int, std::unique_ptr<Listing>> listings;
    auto& listing = listings[samples];
    if (!listing) {
        listing = std::make_unique<Listing>(samples);
    }
    listing->view->ScrollToSample(state.range(0) * state.range(1) / 100);
    for (auto _ : state) {
        listing->window->Render(false);
    }
}
BENCHMARK(Frame)
    ->ArgNames({"samples", "place"})
    ->ArgsProduct({{10'000, 1'000'000}, {0, 50, 100}})
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
    return 0;
}
