#include "capture/trace_file.h"

#include "capture/sample_store.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "signals/signal_list.h"
#include "tracesetup/setup_file.h"

#include <algorithm>

namespace busquill {

bool TraceFileReader::Read(bool fillLists, const std::function<void()>& onRows) {
    while (true) {
        const TraceParser::Event event = parser_.Next();
        cutOff_ = cutOff_ && event == TraceParser::Event::End;
        switch (event) {
        case TraceParser::Event::Samples:
            if (!BeginSamples()) {
                return false;
            }
            break;
        case TraceParser::Event::Zoom:
            store_.ResetZoom();
            inZoom_ = true;
            break;
        case TraceParser::Event::Rows:
            TakeRows();
            if (onRows) {
                onRows();
            }
            break;
        case TraceParser::Event::EndOfBlock:
            EndBlock(fillLists);
            break;
        case TraceParser::Event::End:
            if (blocks_.empty()) {
                CompleteLists(fillLists);
            }
            return true;
        }
    }
}

bool TraceFileReader::BeginSamples() {
    if (!store_.AllocateForFile(parser_.First(), parser_.Last())) {
        return false;
    }
    lastRead_ = parser_.First() - 1;
    absent_.assign(WordsFor(store_.GetCount(false)), ~0U);
    blocks_.push_back({parser_.BlockLine(), 0});
    inZoom_ = false;
    return true;
}

void TraceFileReader::TakeRows() {
    const SampleRows& rows = parser_.Rows();
    const std::int64_t first = inZoom_ ? zoomFirstNumber : parser_.First();
    for (std::size_t i = 0; i < rows.Size(); ++i) {
        if (const std::int64_t index = rows.numbers[i] - first; index >= 0) {
            inZoom_ ? store_.PutZoomSample(static_cast<std::uint32_t>(index), rows.records[i])
                    : TakeSample(index, rows.numbers[i], rows.records[i]);
        }
    }
}

void TraceFileReader::TakeSample(std::int64_t index, std::int32_t number,
                                 const SampleRecord& record) {
    lastRead_ = number;
    if (index >= store_.GetCount(false)) {
        return;
    }
    const auto sample = static_cast<std::uint32_t>(index);
    store_.PutSample(sample, record);
    UnsetBit(absent_, sample);
}

void TraceFileReader::EndBlock(bool fillLists) {
    if (inZoom_) {
        LoadZoomList(fillLists);
        return;
    }
    blocks_.back().end = parser_.BlockLine();
    cutOff_ = !parser_.HasEndOfBlock();
    CompleteLists(fillLists);
}

void TraceFileReader::CompleteLists(bool fill) {
    const bool any = !blocks_.empty() && lastRead_ >= parser_.First();
    const std::uint32_t count = any ? store_.GetCount(false) : 0;
    const auto complete = [&](CSignalList& list, bool present, std::uint32_t mode) {
        CompleteList(list, present, mode);
        if (fill) {
            list.ResizeSamples(count);
            list.LoadSamples(0, store_.GetData(false).first(count), absent_);
        }
    };
    complete(parts_.stateList, parser_.HasStateList(), ModeState);
    complete(parts_.waveformList, parser_.HasWaveformList(), ModeWaveform);
}

void TraceFileReader::LoadZoomList(bool fill) {
    CompleteZoomList(parts_.zoomList, parser_.HasZoomList());
    if (fill) {
        parts_.zoomList.ResizeSamples(zoomSampleCount);
        parts_.zoomList.LoadSamples(0, store_.GetData(true));
    }
}

void CompleteList(CSignalList& list, bool present, std::uint32_t mode) {
    if (present) {
        list.RebuildAfterRead();
    } else {
        list.BuildFromTables(0, mode);
    }
}

void CompleteZoomList(CSignalList& list, bool present) {
    CompleteList(list, present, ModeState);
    if (present) {
        return;
    }
    const auto clock = std::find_if(list.All().begin(), list.All().end(),
                                    [](const auto& signal) { return signal->name == "CLK"; });
    if (clock != list.All().end()) {
        list.MoveGroup(clock->get(), list.All().front().get());
    }
}

TraceFileContents ReadTraceFile(const TraceParser::Parts& parts, CSampleStore& store,
                                std::vector<std::uint32_t>& absent, const std::string& path,
                                Prompts& prompts,
                                const std::function<void(std::uint64_t bytes)>& onProgress) {
    TextReader file;
    if (!file.Open(path)) {
        prompts.Message(Printf("Error opening file %s.", path.c_str()));
        return {};
    }
    TraceParser parser(parts, file);
    TraceFileReader reader(parts, parser, store, absent);
    const auto report = [&] { onProgress(file.Position()); };
    if (!reader.Read(true, onProgress ? std::function<void()>(report) : nullptr)) {
        prompts.Message(
            Printf("Error reading file %s: no capture has so many samples.", path.c_str()));
        return {};
    }
    if (parser.FileType() != traceFileType) {
        prompts.Message(Printf(fileTypeMissing, traceFileType));
        return {};
    }
    if (parser.Version() != fileVersion) {
        prompts.Message(Printf(fileVersionMissing, fileVersion));
        return {};
    }
    return {true, parser.HasStateList(), store.HasZoom()};
}

} // namespace busquill
