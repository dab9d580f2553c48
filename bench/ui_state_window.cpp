#include "ui/display/state_window.h"
#include "ui_fixture.h"

#include <QtTest/QTest>
#include <benchmark/benchmark.h>

#include <map>

namespace busquill::test {
namespace {

/// A listing of `samples` samples at 1600 x 1000.
class Listing : public LongCapture {
public:
    explicit Listing(int samples) : LongCapture(samples) {
        document->stateList.BuildFromTables(0, ModeState);
        Load(document->stateList);
        document->RebuildMapsFromFile();
        view = MakeView(true, false, {1600, 1000});
        window = view->findChild<CStateWnd*>();
    }

    /// Inserts a column with the time since the trigger before all others.
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
        // The field from which times are summed.
        add(board.tables.busSignals.FindByName("TIME"))->permanent = true;
        document->SetMarker(0, 0);
    }

    /// Inserts a column with the time since the row above before all others, filters to every
    /// hundredth sample, and sets the markers to both ends.
    void ShowTimesUnderAFilter() {
        CSignalList& list = document->stateList;
        const std::int64_t count = document->SampleCount(false);
        CSignal* time = list.AddSignal(&list[0], board.tables.decodedSignals.FindByName("TIME"), 0,
                                       0, 0, 0, Radix::Hex, true);
        document->LoadSignal(list, *time, false);
        time->width = 80;
        auto& excluded = document->excludedBits;
        excluded.assign(WordsFor(static_cast<std::uint32_t>(count)), ~0U);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); i += 100) {
            UnsetBit(excluded, i);
        }
        document->RebuildMapsFromFile();
        document->SetMarker(1, 0);
        document->SetMarker(2, count - 1);
    }

    std::unique_ptr<CTraceView> view;
    CStateWnd* window = nullptr;
};

Listing& ListingOf(std::int64_t samples) {
    static std::map<std::int64_t, std::weak_ptr<Listing>> made;
    auto listing = made[samples].lock();
    if (!listing) {
        listing = std::make_shared<Listing>(static_cast<int>(samples));
        made[samples] = listing;
        keptUntilTheEnd.push_back(listing);
    }
    return *listing;
}

Listing& AccumulatingListing() {
    static std::weak_ptr<Listing> made;
    auto listing = made.lock();
    if (!listing) {
        listing = std::make_shared<Listing>(10'000'000);
        listing->ShowAccumulatedTime();
        made = listing;
        keptUntilTheEnd.push_back(listing);
    }
    return *listing;
}

/// A frame at a place in the capture, given in percent of its length.
void Frame(benchmark::State& state) {
    Listing* listing = &ListingOf(state.range(0));
    listing->view->ScrollToSample(state.range(0) * state.range(1) / 100);
    for (auto _ : state) {
        listing->window->Render();
    }
}
BENCHMARK(Frame)
    ->ArgNames({"samples", "place"})
    ->ArgsProduct({{10'000, 10'000'000}, {0, 50, 100}})
    ->Unit(benchmark::kMicrosecond);

/// A frame near the end of a filtered capture with a marker at either end, so that the times that
/// it shows span the whole capture.
void FrameOfFarTimes(benchmark::State& state) {
    const std::int64_t samples = state.range(0);
    static std::weak_ptr<Listing> made;
    auto listing = made.lock();
    if (!listing || listing->document->SampleCount(false) != samples) {
        keptUntilTheEnd.clear();
        listing = std::make_shared<Listing>(static_cast<int>(samples));
        keptUntilTheEnd.push_back(listing);
        made = listing;
        listing->ShowTimesUnderAFilter();
    }
    listing->view->ScrollToSample(samples - 1);
    for (auto _ : state) {
        listing->window->Render();
    }
}
BENCHMARK(FrameOfFarTimes)
    ->ArgName("samples")
    ->Arg(10'000)
    ->Arg(4'000'000)
    ->Unit(benchmark::kMicrosecond);

/// The cost of a held arrow key: a step of one row and the frame, events included.
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

/// A frame with a column of times since the trigger, which is at the start: the first frame at a
/// place sums up to there, later frames use the sums that were kept.
void FrameWithAccumulatedTime(benchmark::State& state) {
    Listing& listing = AccumulatingListing();
    listing.view->ScrollToSample(state.range(0) * 100'000);
    for (auto _ : state) {
        listing.window->Render();
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
