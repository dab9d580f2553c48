/// What a frame reads from the capture. The number of strokes does not show that: the size of the
/// window limits it, whatever the drawing reads. The linker redirects these two functions here, see
/// CMakeLists.txt.
#include "support/trace_fixture_qt.h"
#include "ui/display/state_window.h"
#include "ui/display/wave_window.h"

#include <cstddef>

namespace {

std::size_t reads = 0; // packed values and records

} // namespace

std::span<const std::uint8_t> RealGroupRow(const busquill::CSignal*, std::size_t) //
    __asm__("__real__ZNK8busquill7CSignal8GroupRowEm");
std::span<const std::uint8_t> CountedGroupRow(const busquill::CSignal*, std::size_t) //
    __asm__("__wrap__ZNK8busquill7CSignal8GroupRowEm");
std::optional<busquill::SampleRecord>
RealGetSample(const busquill::CTesselDoc*, std::int64_t,
              bool) __asm__("__real__ZNK8busquill10CTesselDoc9GetSampleElb");
std::optional<busquill::SampleRecord>
CountedGetSample(const busquill::CTesselDoc*, std::int64_t,
                 bool) __asm__("__wrap__ZNK8busquill10CTesselDoc9GetSampleElb");

std::span<const std::uint8_t> CountedGroupRow(const busquill::CSignal* signal, std::size_t sample) {
    ++reads;
    return RealGroupRow(signal, sample);
}

std::optional<busquill::SampleRecord> CountedGetSample(const busquill::CTesselDoc* document,
                                                       std::int64_t index, bool zoom) {
    ++reads;
    return RealGetSample(document, index, zoom);
}

namespace busquill::test {
namespace {

class FrameReads : public TraceFixture {
protected:
    /// A capture with a marker at either end; with a filter, only every hundredth row is shown.
    void MakeCapture(std::int64_t samples, bool isFiltered) {
        view.reset();
        document = std::make_unique<CTesselDoc>(context, prompts);
        ASSERT_TRUE(document->OnNewDocument());
        ASSERT_TRUE(document->store.AllocateForFile(0, samples - 1));
        if (isFiltered) {
            document->excludedBits.assign(WordsFor(static_cast<std::uint32_t>(samples)), ~0U);
            for (std::size_t i = 0; i < static_cast<std::size_t>(samples); i += 100) {
                document->excludedBits[i / 32] &= ~(1U << (i % 32));
            }
        }
        // All columns that show sums of times.
        CSignalList& list = document->stateList;
        for (const char* name : {"ACCUM", "TIME", "DELTA"}) {
            CSignal* column = list.AddSignal(&list[0], board.tables.decodedSignals.FindByName(name),
                                             0, 0, 0, 0, Radix::Hex, true);
            ASSERT_NE(column, nullptr);
            column->width = 80;
        }
        for (CSignalList* each : {&list, &document->waveformList}) {
            each->ResizeSamples(static_cast<std::uint32_t>(samples));
            for (const auto& signal : each->All()) {
                if (signal->baseName == "TIME" && signal->IsGroupStart()) {
                    each->LoadSignal(signal.get(), 0, document->store.GetData(false));
                }
            }
        }
        document->RebuildMapsFromFile();
        document->SetMarker(0, samples / 2);
        document->SetMarker(1, 0);
        document->SetMarker(2, samples - 1);
    }
    /// The reads of a frame at a sample that is not the first frame there.
    std::size_t ReadsAt(std::int64_t sample) {
        view->ScrollToSample(sample);
        reads = 0;
        auto* listing = view->findChild<CStateWnd*>();
        listing != nullptr ? listing->Render() : view->findChild<CWaveformWnd*>()->Render();
        return reads;
    }

    std::unique_ptr<CTraceView> view;
};

constexpr std::int64_t shortCapture = 10'000;
constexpr std::int64_t longCapture = 1'000'000;
/// The offset of a time within its block of sums differs from frame to frame.
constexpr std::size_t perTime = 2 * 64;

TEST_F(FrameReads, AListingReadsTheSameAmountInAnyCapture) {
    for (const bool isFiltered : {false, true}) {
        std::vector<std::size_t> counts;
        std::size_t rows = 0;
        for (const std::int64_t samples : {shortCapture, longCapture}) {
            MakeCapture(samples, isFiltered);
            view = MakeView(true, false, {800, 600});
            rows = static_cast<std::size_t>(view->findChild<CStateWnd*>()->VisibleSampleCount());
            for (const std::int64_t place : {std::int64_t{0}, samples / 2 - 5, samples - 1}) {
                counts.push_back(ReadsAt(place));
            }
        }
        const auto [least, most] = std::ranges::minmax(counts);
        EXPECT_GT(least, rows) << isFiltered;
        EXPECT_LE(most - least, rows * 2 * perTime) << isFiltered;
        EXPECT_LE(most, rows * 1000) << isFiltered;
    }
}

TEST_F(FrameReads, WaveformsReadTheSameAmountInAnyCapture) {
    for (const bool isFiltered : {false, true}) {
        std::vector<std::size_t> counts;
        for (const std::int64_t samples : {shortCapture, longCapture}) {
            MakeCapture(samples, isFiltered);
            view = MakeView(false, false, {800, 600});
            for (const std::int64_t place : {std::int64_t{0}, samples / 2 - 5, samples - 1}) {
                counts.push_back(ReadsAt(place));
            }
        }
        const auto [least, most] = std::ranges::minmax(counts);
        EXPECT_GT(least, 0U) << isFiltered;
        EXPECT_LE(most - least, perTime) << isFiltered; // between the markers
    }
}

} // namespace
} // namespace busquill::test
