#include "ui/display/sample_tip.h"

#include "capture/trace_document.h"
#include "signals/cell_text.h"

#include <QStringList>

#include <algorithm>
#include <optional>

namespace busquill {

namespace {

/// Whether a sample's record can be read. Of the Power Zoom all samples have a place, even before
/// they arrive.
bool HasArrived(const CTesselDoc& document, std::int64_t sample, bool zoom) {
    return document.IsValidSample(sample, zoom) && document.GetSample(sample, zoom).has_value();
}

/// "Sample 12", or "Samples 12 to 14".
QString NumbersOf(const TippedSamples& samples, std::int64_t first, std::int64_t last) {
    const std::int64_t number = samples.document.FirstSampleNumber(samples.zoom);
    return first == last ? QString("Sample %1").arg(number + first)
                         : QString("Samples %1 to %2").arg(number + first).arg(number + last);
}

/// The notes of the samples, one a line.
void AddNotes(const TippedSamples& samples, QStringList& lines) {
    if (samples.zoom) {
        return;
    }
    constexpr int mostNotes = 5;
    constexpr int longest = 160;
    const CTesselDoc& document = samples.document;
    const std::int64_t number = document.FirstSampleNumber(false);
    const Bookmarks& all = document.GetBookmarks();
    const SampleSpan noted =
        samples.noted.value_or(SampleSpan{document.RowToSample(samples.firstRow, false),
                                          document.RowToSample(samples.lastRow, false)});
    const auto end = all.upper_bound(number + noted.last);
    int count = 0;
    for (auto each = all.lower_bound(number + noted.first); each != end; ++each) {
        if (!document.IsRowSample(each->first - number, false)) {
            continue;
        }
        if (++count > mostNotes) {
            lines << "...";
            return;
        }
        const QString note = QString::fromStdString(each->second);
        const QString of = samples.firstRow == samples.lastRow && !samples.noted
                               ? QString("Bookmark")
                               : QString("Bookmark at %1").arg(each->first);
        lines << (note.isEmpty()
                      ? of
                      : of + ": " + (note.size() > longest ? note.left(longest) + "..." : note));
    }
}

} // namespace

QString TimeSinceTrigger(const CTesselDoc& document, const CSignalList& list, std::int64_t sample,
                         bool zoom) {
    const std::int64_t trigger = document.Marker(0, zoom);
    const auto time = list.TimeFrom(trigger, sample);
    if (!time ||
        !document.HasAllSamples(std::min(trigger, sample), std::max(trigger, sample), zoom)) {
        return {};
    }
    return QString::fromStdString(FormatTimeSince(*time, sample < trigger, zoom));
}

QString SampleTip(const TippedSamples& samples, const CSignal* signal,
                  const std::function<std::string(std::int64_t)>& textOf) {
    const CTesselDoc& document = samples.document;
    const std::int64_t first = document.RowToSample(samples.firstRow, samples.zoom);
    const std::int64_t last = document.RowToSample(samples.lastRow, samples.zoom);
    std::optional<std::string> value;
    bool isSame = true;
    for (std::int64_t row = samples.firstRow; row <= samples.lastRow; ++row) {
        const std::int64_t sample = document.RowToSample(row, samples.zoom);
        if (!HasArrived(document, sample, samples.zoom)) {
            return NumbersOf(samples, first, last) + (first == last
                                                          ? " has not arrived from the board"
                                                          : " have not all arrived from the board");
        }
        if (signal != nullptr) {
            const std::string text = textOf(sample);
            isSame = isSame && (!value || *value == text);
            value = text;
        }
    }
    QStringList lines;
    if (value && (!isSame || value->find_first_not_of(' ') != std::string::npos)) {
        lines << QString::fromStdString(signal->RowName() + ": " +
                                        (isSame ? *value : "several values"));
    }
    lines << NumbersOf(samples, first, last);
    const QString begin = TimeSinceTrigger(document, samples.list, first, samples.zoom);
    const QString end = TimeSinceTrigger(document, samples.list, last, samples.zoom);
    if (!begin.isEmpty() && !end.isEmpty()) {
        lines << "Time since the trigger: " + (first == last ? begin : begin + " to " + end);
    }
    AddNotes(samples, lines);
    return lines.join('\n');
}

} // namespace busquill
