#include "capture/trace_search.h"

#include "capture/record_pattern.h"
#include "capture/trace_document.h"
#include "link/exchange.h"
#include "platform/prompts.h"
#include "tracesetup/setup_encoding.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr const char* noMatch = "No match found.";
constexpr std::time_t searchLimit = 6; // seconds

// Bits of the first byte of the search status.
constexpr std::uint8_t searchHit = 0x01;
constexpr std::uint8_t searchHitAfter = 0x02; // at or after the trigger
/// Polled without a pause: the user is waiting.
constexpr StatusRegister searchStatus{RegisterSearchControl, 0, std::chrono::milliseconds(0),
                                      "Error getting search status from analyzer."};

} // namespace

std::int64_t SearchStart(const CTesselDoc& document, SearchDirection direction,
                         std::int64_t firstShown) {
    const std::int64_t marker = document.Marker(1, false);
    if (marker == -1) {
        return firstShown;
    }
    return direction == SearchDirection::Forward ? marker + 1
                                                 : std::max<std::int64_t>(marker - 1, 0);
}

bool CanSearch(const CTesselDoc& document) {
    return !document.IsRealTime() || !document.CaptureActive();
}

bool CanFilter(const CTesselDoc& document) {
    return CanSearch(document) && (!document.IsRealTime() || !document.IsUploading());
}

void SearchHost(CTesselDoc& document, SearchDirection direction, std::int64_t start,
                Prompts& prompts) {
    const RecordPattern pattern(document.searchPattern);
    const auto records = document.GetStore().GetData(false);
    const auto hit = direction == SearchDirection::Forward ? FindForward(records, pattern, start)
                                                           : FindBackward(records, pattern, start);
    if (hit) {
        document.SetMarker(1, *hit);
    } else {
        prompts.Message(noMatch);
    }
}

void SearchOnAnalyzer(CAnalyzerLink& link, CTesselDoc& document, SearchDirection direction,
                      std::int64_t start, Prompts& prompts) {
    const std::int64_t before = document.GetStore().SamplesBefore();
    const bool isAfter = start >= before;
    const auto distance = static_cast<std::uint32_t>(isAfter ? start - before : before - start);
    std::vector<RunStep> steps;
    steps.push_back(
        {WritePayload(CmdSearchControl, [&] { return BuildSearchControl(distance, isAfter); }),
         "Error sending search sample to analyzer."});
    steps.push_back(
        {WritePayload(CmdSearchSample, [&] { return BuildEventRows(document.searchPattern, 1); }),
         "Error sending search condition to analyzer."});
    steps.push_back(
        {WritePayload(CmdSearchCondition, OneByte(static_cast<std::uint8_t>(direction))),
         "Error sending search control to analyzer."});
    steps.push_back({RunCommand(CmdStartSearch), "Error sending start search to analyzer."});
    if (SendSteps(link, std::move(steps), prompts) == Sent::Ended) {
        return;
    }

    const std::time_t begun = link.Time();
    std::array<std::uint8_t, 4> status{};
    while (true) {
        if (!ReadStatus(link, searchStatus, status, prompts)) {
            return;
        }
        if ((status[0] & statusRunning) == 0) {
            break;
        }
        if (link.Time() - begun >= searchLimit) {
            prompts.Message("Search timeout occurred.");
            return;
        }
    }
    if ((status[0] & searchHit) == 0) {
        prompts.Message(noMatch);
        return;
    }
    const std::int64_t away = status[1] | status[2] << 8 | status[3] << 16;
    const std::int64_t hit = (status[0] & searchHitAfter) != 0 ? before + away : before - away;
    if (hit >= 0) { // a position outside the capture does not count as a hit
        document.SetMarker(1, hit);
    }
}

} // namespace busquill
