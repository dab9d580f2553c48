#include "capture/trace_file.h"

#include "capture/trace_document.h"
#include "capture/trace_parser.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "tracesetup/setup_file.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr std::int64_t zoomFirst = -255;

/// Fills a document with what a file holds.
class TraceFileReader {
public:
    TraceFileReader(CTesselDoc& document, TextReader& file)
        : document_(document), parser_({document.comment, document.setup, document.stateList,
                                        document.waveformList, document.zoomList},
                                       file) {}

    /// False when the file's range of samples is larger than any capture.
    bool Read() {
        while (true) {
            switch (parser_.Next()) {
            case TraceParser::Event::Samples:
                if (!BeginSamples()) {
                    return false;
                }
                break;
            case TraceParser::Event::Zoom:
                document_.store.ResetZoom();
                block_ = Block::Zoom;
                break;
            case TraceParser::Event::Rows:
                TakeRows();
                break;
            case TraceParser::Event::EndOfBlock:
                EndBlock();
                break;
            case TraceParser::Event::End:
                if (!dataRead_) {
                    LoadLists(0);
                }
                return true;
            }
        }
    }

    [[nodiscard]] const TraceParser& Parser() const noexcept { return parser_; }

private:
    enum class Block { Samples, Zoom };

    bool BeginSamples() {
        if (!document_.store.AllocateForFile(parser_.First(), parser_.Last())) {
            return false;
        }
        lastRead_ = parser_.First() - 1;
        const std::uint32_t count = document_.store.GetCount(false);
        document_.excludedBits.assign(WordsFor(count), ~0U);
        block_ = Block::Samples;
        return true;
    }

    void TakeRows() {
        const SampleRows& rows = parser_.Rows();
        for (std::size_t i = 0; i < rows.Size(); ++i) {
            const std::int64_t first = block_ == Block::Zoom ? zoomFirst : parser_.First();
            if (const std::int64_t index = rows.numbers[i] - first; index >= 0) {
                block_ == Block::Zoom ? document_.store.PutZoomSample(
                                            static_cast<std::uint32_t>(index), rows.records[i])
                                      : TakeSample(index, rows.numbers[i], rows.records[i]);
            }
        }
    }

    void TakeSample(std::int64_t index, std::int64_t number, const SampleRecord& record) {
        lastRead_ = number;
        if (index >= document_.store.GetCount(false)) {
            return;
        }
        const auto sample = static_cast<std::uint32_t>(index);
        document_.store.PutSample(sample, record);
        document_.excludedBits[sample / 32] &= ~(1U << (sample % 32));
    }

    void EndBlock() {
        if (block_ == Block::Zoom) {
            LoadZoomList();
        } else {
            LoadLists(lastRead_ < parser_.First() ? 0 : document_.store.GetCount(false));
        }
    }

    void LoadLists(std::uint32_t count) {
        dataRead_ = true;
        const auto load = [&](CSignalList& list, bool present, std::uint32_t mode) {
            CompleteList(list, present, mode);
            list.ResizeSamples(count);
            list.LoadSamples(0, document_.store.GetData(false).first(count));
        };
        load(document_.stateList, parser_.HasStateList(), ModeState);
        load(document_.waveformList, parser_.HasWaveformList(), ModeWaveform);
    }

    void LoadZoomList() {
        CSignalList& list = document_.zoomList;
        CompleteZoomList(list, parser_.HasZoomList());
        list.ResizeSamples(zoomSampleCount);
        list.LoadSamples(0, document_.store.GetData(true));
    }

    CTesselDoc& document_;
    TraceParser parser_;
    bool dataRead_ = false;
    Block block_ = Block::Samples;
    std::int64_t lastRead_ = 0;
};

} // namespace

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

TraceFileContents ReadTraceFile(CTesselDoc& document, const std::string& path, Prompts& prompts) {
    TextReader file;
    if (!file.Open(path)) {
        prompts.Message(Printf("Error opening file %s.", path.c_str()));
        return {};
    }
    TraceFileReader reader(document, file);
    if (!reader.Read()) {
        prompts.Message(
            Printf("Error reading file %s: no capture has so many samples.", path.c_str()));
        return {};
    }
    if (reader.Parser().FileType() != traceFileType) {
        prompts.Message(Printf(fileTypeMissing, traceFileType));
        return {};
    }
    if (reader.Parser().Version() != fileVersion) {
        prompts.Message(Printf(fileVersionMissing, fileVersion));
        return {};
    }
    return {true, reader.Parser().HasStateList(), document.store.HasZoom()};
}

} // namespace busquill
