#include "capture/trace_stream.h"

#include "platform/text.h"
#include "signals/record_field.h"
#include "signals/value_text.h"
#include "tracesetup/setup_file.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

namespace busquill {

namespace {

constexpr const char* tooManySamples = "no capture has so many samples";
constexpr const char* cannotBeRead = "it cannot be read to its end";
constexpr const char* hasChanged = "it has changed while it was read";

} // namespace

TraceStream::TraceStream(TextReader& file, SignalTables& tables)
    : setup(tables), stateList(tables), waveformList(tables), zoomList(tables), file_(file) {
    Restart();
}

void TraceStream::Restart(TraceParser::Use use) {
    file_.Rewind();
    comment.clear();
    setup.Reset();
    for (CSignalList* list : {&stateList, &waveformList, &zoomList}) {
        list->RemoveAllSignals();
    }
    parser_ = std::make_unique<TraceParser>(
        TraceParser::Parts{comment, setup, stateList, waveformList, zoomList}, file_, use);
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
        return hasChanged; // the file has changed since Inspect
    }
    first_ = parser_->First();
    last_ = parser_->Last();
    if (!CountsOfRange(first_, last_)) {
        return tooManySamples;
    }
    hasSamples_ = inSamples_ = true;
    lastNumber_ = first_ - 1;
    blockBegin_ = parser_->BlockLine();
    return {};
}

/// Determines, once, whether the file can be read in one pass; most can.
std::string TraceStream::Inspect() {
    Restart(TraceParser::Use::Skim);
    int blocks = 0;
    bool headerFirst = true;
    for (auto event = parser_->Next(); event != TraceParser::Event::End; event = parser_->Next()) {
        if (event == TraceParser::Event::Samples) {
            headerFirst = headerFirst && CheckHeader().empty();
            ++blocks;
        }
    }
    if (file_.Failed()) {
        return cannotBeRead;
    }
    if (std::string wrong = CheckHeader(); !wrong.empty()) {
        return wrong;
    }
    const bool inOneGo =
        blocks < 2 && headerFirst && parser_->Ascends() && !parser_->HasPartsAfterSamples();
    return inOneGo ? std::string() : Hold();
}

std::string TraceStream::Hold() {
    Restart();
    held_ = std::make_unique<Held>();
    const TraceParser::Parts parts{comment, setup, stateList, waveformList, zoomList};
    TraceFileReader reader(parts, *parser_, held_->store, held_->absent);
    try {
        if (!reader.Read(false)) {
            return tooManySamples;
        }
    } catch (const std::bad_alloc&) {
        return "there is no memory for all of its samples, which is needed where they do not "
               "ascend, or do not stand in one block behind its header; put its lines in order";
    }
    if (!held_->store.HasZoom()) {
        CompleteZoomList(zoomList, parser_->HasZoomList());
    }
    held_->blocks = reader.Blocks();
    held_->cutOff = reader.CutOff();
    return {};
}

void TraceStream::ReadHeldHead() {
    wrong_.clear();
    hasSamples_ = inSamples_ = !held_->blocks.empty();
    first_ = parser_->First();
    last_ = parser_->Last();
    held_->next = 0;
    cutOff_ = held_->cutOff;
    zoom_ = held_->store.HasZoom() ? held_->store.AllSamples(true) : std::vector<SampleRecord>();
    if (hasSamples_) {
        blockBegin_ = held_->blocks.back().begin;
        blockEnd_ = held_->blocks.back().end;
    }
}

const SampleRows* TraceStream::NextHeldRows() {
    const std::span<const SampleRecord> records = held_->store.GetData(false);
    inRange_.Clear();
    std::int64_t& next = held_->next;
    while (inRange_.Size() < TraceParser::rowsAtOnce) {
        const std::size_t sample = FirstUnset(held_->absent, static_cast<std::size_t>(next));
        if (sample >= records.size()) {
            break;
        }
        inRange_.Add(static_cast<std::int32_t>(first_ + static_cast<std::int64_t>(sample)),
                     records[sample]);
        next = static_cast<std::int64_t>(sample) + 1;
    }
    return inRange_.Empty() ? nullptr : &inRange_;
}

std::span<const TraceFileReader::Block> TraceStream::BlocksBefore() const noexcept {
    return held_ && !held_->blocks.empty()
               ? std::span(held_->blocks).first(held_->blocks.size() - 1)
               : std::span<const TraceFileReader::Block>();
}

std::string TraceStream::ReadHead() {
    if (!inspected_) {
        inspected_ = true;
        defect_ = Inspect();
    }
    if (!defect_.empty()) {
        return defect_;
    }
    if (held_) {
        ReadHeldHead();
        return {};
    }
    Restart();
    while (true) {
        const TraceParser::Event event = parser_->Next();
        const bool isEnd = event == TraceParser::Event::End;
        TakeZoom(event); // Power Zoom samples may come first
        if (event != TraceParser::Event::Samples && !isEnd) {
            continue;
        }
        // In files written by the program, type and version come first.
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
    if (held_) {
        return NextHeldRows();
    }
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
                    wrong_ = hasChanged;
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
        case TraceParser::Event::End: // comes after the end of a block
        case TraceParser::Event::Samples:
        case TraceParser::Event::Zoom:
            break; // a block ends before the next begins
        }
    }
    if (wrong_.empty() && file_.Failed()) {
        wrong_ = cannotBeRead;
    }
    return nullptr;
}

/// Also reads what follows the samples, which may be more samples.
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

std::string TriggerWords(const TraceSurvey& survey, std::int64_t marked) {
    const auto number = static_cast<long long>(marked);
    if (survey.first > 0 || survey.last < 0) {
        return Printf("not among the samples; marked at sample %lld", number);
    }
    return Printf("%ssample %lld%s, %lld samples before it", marked == 0 ? "" : "marked at ",
                  number, survey.hasTriggerRow ? "" : ", which is not in the file",
                  static_cast<long long>(survey.rowsBefore));
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
            const std::int64_t index = rows.numbers[i] - zoomFirstNumber;
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
    RunningTime toTrigger{SampleTime(stateList)};
    const std::int64_t trigger = TriggerNumber();
    while (const SampleRows* rows = NextRows()) {
        if (survey.rows == 0) {
            survey.firstRow = rows->numbers.front();
        }
        survey.rows += static_cast<std::int64_t>(rows->Size());
        survey.lastRow = rows->numbers.back();
        const auto marked = std::ranges::lower_bound(rows->numbers, trigger);
        survey.rowsBefore += marked - rows->numbers.begin();
        survey.hasTriggerRow =
            survey.hasTriggerRow || (marked != rows->numbers.end() && *marked == trigger);
        for (std::size_t i = 0;
             toTrigger.Known() && i < rows->Size() && rows->numbers[i] <= trigger; ++i) {
            toTrigger.Add(rows->records[i]);
        }
    }
    survey.timeToTrigger = toTrigger.Sum();
    survey.cutOff = cutOff_;
    survey.hasZoom = !zoom_.empty();
    survey.zoom = std::exchange(zoom_, {});
    std::string wrong = wrong_;
    return wrong.empty() ? ReadHead() : wrong;
}

} // namespace busquill
