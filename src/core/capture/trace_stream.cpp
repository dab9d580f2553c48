#include "capture/trace_stream.h"

#include "capture/trace_file.h"
#include "platform/text.h"
#include "signals/record_field.h"
#include "signals/value_text.h"
#include "tracesetup/setup_file.h"

#include <algorithm>
#include <utility>

namespace busquill {

namespace {

constexpr std::int64_t zoomFirst = -255;

} // namespace

TraceStream::TraceStream(TextReader& file) : file_(file) {
    Restart();
}

void TraceStream::Restart() {
    file_.Rewind();
    comment.clear();
    setup.Reset();
    for (CSignalList* list : {&stateList, &waveformList, &zoomList}) {
        list->RemoveAllSignals();
    }
    parser_ = std::make_unique<TraceParser>(
        TraceParser::Parts{comment, setup, stateList, waveformList, zoomList}, file_);
    wrong_.clear();
    hasSamples_ = inSamples_ = false;
    cutOff_ = false;
    zoom_.clear();
}

std::string TraceStream::CheckHeader() const {
    if (parser_->FileType() != traceFileType) {
        return Printf(fileTypeMissing, traceFileType);
    }
    if (parser_->Version() != fileVersion) {
        return Printf(fileVersionMissing, fileVersion);
    }
    return {};
}

std::string TraceStream::BeginSamples() {
    if (hasSamples_) {
        return "it has two blocks of samples";
    }
    first_ = parser_->First();
    last_ = parser_->Last();
    if (!CountsOfRange(first_, last_)) {
        return "no capture has so many samples";
    }
    hasSamples_ = inSamples_ = true;
    lastNumber_ = first_ - 1;
    blockBegin_ = parser_->BlockLine();
    return {};
}

std::string TraceStream::ReadHead() {
    Restart();
    while (true) {
        const TraceParser::Event event = parser_->Next();
        const bool isEnd = event == TraceParser::Event::End;
        TakeZoom(event); // which may come first
        if (event != TraceParser::Event::Samples && !isEnd) {
            continue;
        }
        // The two lines come first, in any file that the program has written.
        if (std::string wrong = CheckHeader(); !wrong.empty()) {
            return wrong;
        }
        CompleteList(stateList, parser_->HasStateList(), ModeState);
        CompleteList(waveformList, parser_->HasWaveformList(), ModeWaveform);
        CompleteZoomList(zoomList, parser_->HasZoomList());
        return isEnd ? std::string() : BeginSamples();
    }
}

const SampleRows* TraceStream::NextRows() {
    while (inSamples_ && wrong_.empty()) {
        switch (parser_->Next()) {
        case TraceParser::Event::Rows: {
            const SampleRows& rows = parser_->Rows();
            const auto inOrder = [&, before = lastNumber_](std::int32_t number) mutable {
                const bool follows = number > before && number <= last_;
                before = number;
                return follows;
            };
            if (std::ranges::all_of(rows.numbers, inOrder)) {
                lastNumber_ = rows.numbers.back();
                return &rows;
            }
            inRange_.Clear();
            for (std::size_t i = 0; i < rows.Size(); ++i) {
                const std::int32_t number = rows.numbers[i];
                if (number < first_ || number > last_) {
                    continue;
                }
                if (number <= lastNumber_) {
                    wrong_ =
                        Printf("sample %d comes after sample %d; samples must ascend, as they do "
                               "once it has been opened and saved in a window",
                               number, static_cast<int>(lastNumber_));
                    return nullptr;
                }
                lastNumber_ = number;
                inRange_.Add(number, rows.records[i]);
            }
            if (!inRange_.Empty()) {
                return &inRange_;
            }
            break;
        }
        case TraceParser::Event::EndOfBlock:
            EndSamples();
            break;
        case TraceParser::Event::End: // which a block ends before
        case TraceParser::Event::Samples:
        case TraceParser::Event::Zoom:
            break; // a block ends before another begins
        }
    }
    if (wrong_.empty() && file_.Failed()) {
        wrong_ = "it cannot be read to its end";
    }
    return nullptr;
}

/// Also reads what stands behind the samples, which may be more samples.
void TraceStream::EndSamples() {
    blockEnd_ = parser_->BlockLine();
    inSamples_ = false;
    TraceParser::Event event = parser_->Next();
    cutOff_ = event == TraceParser::Event::End && !parser_->HasEndOfBlock();
    for (; event != TraceParser::Event::End && wrong_.empty(); event = parser_->Next()) {
        if (event == TraceParser::Event::Samples) {
            wrong_ = BeginSamples();
        }
        TakeZoom(event);
    }
}

std::int64_t TraceStream::TriggerNumber() const noexcept {
    const auto counts = CountsOfRange(first_, last_);
    return first_ + (counts ? TriggerIndex(*counts) : 0);
}

void TraceStream::TakeZoom(TraceParser::Event event) {
    if (event == TraceParser::Event::Zoom) {
        zoom_.assign(zoomSampleCount, SampleRecord());
    } else if (event == TraceParser::Event::Rows && !zoom_.empty()) {
        const SampleRows& rows = parser_->Rows();
        for (std::size_t i = 0; i < rows.Size(); ++i) {
            const std::int64_t index = rows.numbers[i] - zoomFirst;
            if (index >= 0 && index < zoomSampleCount) {
                zoom_[static_cast<std::size_t>(index)] = rows.records[i];
            }
        }
    }
}

std::string TraceStream::Survey(TraceSurvey& survey) {
    survey = TraceSurvey();
    if (std::string wrong = ReadHead(); !wrong.empty()) {
        return wrong;
    }
    survey.hasSamples = hasSamples_;
    survey.first = first_;
    survey.last = last_;
    const SampleTime time(stateList);
    const std::int64_t trigger = TriggerNumber();
    while (const SampleRows* rows = NextRows()) {
        survey.rows += static_cast<std::int64_t>(rows->Size());
        for (std::size_t i = 0; time.Known() && i < rows->Size() && rows->numbers[i] <= trigger;
             ++i) {
            survey.timeToTrigger = AddTimes(survey.timeToTrigger, time.Of(rows->records[i]));
        }
    }
    survey.cutOff = cutOff_;
    survey.hasZoom = !zoom_.empty();
    survey.zoom = std::exchange(zoom_, {});
    std::string wrong = wrong_;
    return wrong.empty() ? ReadHead() : wrong;
}

} // namespace busquill
