#include "capture/sample_range.h"

#include "capture/trace_document.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill {

SampleRange RangeOf(CTesselDoc& document) {
    const CSampleStore& store = document.GetStore();
    SampleRange range{store.SamplesBefore(), store.SamplesAfter()};
    range.hasSamples = range.before >= 1 || range.after >= 1;
    if (document.LoadedFromFile()) {
        const std::int64_t count = store.GetCount(false);
        range.hasSamples = count > 0;
        range.before = range.hasSamples ? -std::int64_t{store.FirstNumber()} : 0;
        range.after = range.hasSamples ? count - 1 - range.before : 0;
    }
    return range;
}

std::optional<std::string> CheckSampleRange(std::int64_t first, std::int64_t last,
                                            std::int64_t before, std::int64_t after) {
    const auto outside = [&](const char* which, std::int64_t value) {
        return Printf("%s sample of %d must be between %d and %d.", which, static_cast<int>(value),
                      static_cast<int>(-before), static_cast<int>(after));
    };
    if (first < -before || first > after) {
        return outside("Start", first);
    }
    if (last < -before || last > after) {
        return outside("End", last);
    }
    if (first > last) {
        return "End sample must be >= start sample.";
    }
    return std::nullopt;
}

Arrival AwaitSample(CTesselDoc& document, std::int64_t sample) {
    // Checked before HasSample, or the last block of an upload might be taken for missing.
    const bool mayCome = document.IsUploading();
    if (document.GetStore().HasSample(static_cast<std::uint32_t>(sample))) {
        return Arrival::Arrived;
    }
    document.FetchNext(sample);
    return mayCome ? Arrival::Coming : Arrival::Never;
}

SampleWait::SampleWait(CTesselDoc& document, std::int64_t first, std::int64_t last)
    : document_(document), next_(std::max<std::int64_t>(first, 0)),
      last_(std::min(last, document.SampleCount(false) - 1)) {}

SampleStep SampleWait::Step() {
    if (document_.LoadedFromFile()) {
        next_ = last_ + 1; // whatever the file holds is there
    }
    while (next_ <= last_) {
        switch (AwaitSample(document_, next_)) {
        case Arrival::Arrived:
            next_ = (next_ / blockSamples + 1) * blockSamples;
            break;
        case Arrival::Coming:
            return SampleStep::Waiting;
        case Arrival::Never:
            return SampleStep::Missing;
        }
    }
    return SampleStep::Done;
}

int SampleWait::Progress() const noexcept {
    return ProgressOf(next_, last_);
}

int ProgressOf(std::int64_t next, std::int64_t last) noexcept {
    return last <= 0 ? 100 : static_cast<int>(std::min<std::int64_t>(next * 100 / last, 100));
}

} // namespace busquill
