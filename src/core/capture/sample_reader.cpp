#include "capture/sample_reader.h"

#include "capture/sample_store.h"
#include "capture/trace_document.h"

#include <algorithm>
#include <array>
#include <span>

namespace busquill {

namespace {

/// The Power Zoom samples are numbered like those of a capture, as far as there are any.
SampleRange RangeToRead(CTesselDoc& document, bool zoom) {
    if (!zoom) {
        return RangeOf(document);
    }
    return {zoomSamplesBefore, zoomSampleCount - 1 - zoomSamplesBefore,
            document.GetStore().HasZoom()};
}

} // namespace

SampleReader::SampleReader(CTesselDoc& document, bool zoom)
    : document_(document), zoom_(zoom), range_(RangeToRead(document, zoom)) {}

void SampleReader::Start(std::int64_t first, std::int64_t last) {
    range_ = RangeToRead(document_, zoom_);
    next_ = std::max<std::int64_t>(first + range_.before, 0);
    end_ = std::min(last, range_.after) + range_.before;
}

std::size_t SampleReader::Copy(std::size_t wanted, SampleRows& rows) const {
    const auto sample = static_cast<std::uint32_t>(next_);
    if (zoom_) {
        const auto record = document_.GetStore().GetZoomSample(sample);
        if (record) {
            rows.Add(static_cast<std::int32_t>(NextNumber()), *record);
        }
        return record ? 1 : 0;
    }
    std::array<SampleRecord, 1024> records;
    const std::size_t copied = document_.GetStore().CopySamples(
        sample, std::span(records).first(std::min(wanted, records.size())));
    for (std::size_t i = 0; i < copied; ++i) {
        const std::int64_t index = next_ + static_cast<std::int64_t>(i);
        if (document_.IsRowSample(index, false)) {
            rows.Add(static_cast<std::int32_t>(index - range_.before), records[i]);
        }
    }
    return copied;
}

Arrival SampleReader::Await() const {
    if (!zoom_) {
        return AwaitSample(document_, next_);
    }
    return document_.IsUploading() ? Arrival::Coming : Arrival::Never;
}

SampleStep SampleReader::Read(std::size_t limit, SampleRows& rows) {
    rows.Clear();
    while (next_ <= end_) {
        const std::size_t wanted = std::min(limit, static_cast<std::size_t>(end_ - next_ + 1));
        if (wanted == 0) {
            return SampleStep::More;
        }
        const std::size_t copied = Copy(wanted, rows);
        next_ += static_cast<std::int64_t>(copied);
        limit -= copied;
        if (copied > 0) {
            continue;
        }
        if (!zoom_ && document_.LoadedFromFile()) {
            next_ = (next_ / blockSamples + 1) * blockSamples; // nothing fills this gap
            continue;
        }
        const Arrival arrival = Await();
        if (arrival != Arrival::Arrived) {
            return arrival == Arrival::Coming ? SampleStep::Waiting : SampleStep::Missing;
        }
    }
    return SampleStep::Done;
}

int SampleReader::Progress() const noexcept {
    return ProgressOf(next_, end_);
}

} // namespace busquill
