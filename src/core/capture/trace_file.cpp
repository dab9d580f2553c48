#include "capture/trace_file.h"

#include "capture/trace_document.h"
#include "document/csv_line.h"
#include "platform/prompts.h"
#include "platform/text.h"
#include "platform/text_file.h"
#include "tracesetup/setup_file.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

using Fields = std::vector<std::string>;

constexpr std::size_t rowFields = 1 + sizeof(SampleRecord);
constexpr std::int64_t zoomFirst = -255;

/// A row of samples: its number and the bytes of its record.
struct SampleRow {
    std::int64_t number = 0;
    SampleRecord record;
};

/// The fast way for what nearly every line of a trace is: nothing but numbers and commas, as many
/// as a row has. Anything else takes the general way, which gives the same for these.
bool ParsePlainRow(std::string_view line, SampleRow& row) noexcept {
    const char* at = line.data();
    const char* const end = at + line.size();
    for (std::size_t field = 0; field < rowFields; ++field) {
        const bool negative = at != end && *at == '-';
        at += negative ? 1 : 0;
        const char* const digits = at;
        std::int32_t value = 0;
        while (at != end && *at >= '0' && *at <= '9' && at - digits < 9) {
            value = value * 10 + (*at++ - '0');
        }
        const bool last = field == rowFields - 1;
        if (at == digits || (last ? at != end : at == end || *at != ',')) {
            return false;
        }
        ++at;
        value = negative ? -value : value;
        if (field == 0) {
            row.number = value;
        } else {
            row.record.bytes[field - 1] = static_cast<std::uint8_t>(value);
        }
    }
    return true;
}

bool ParseRow(const Fields& fields, SampleRow& row) {
    if (fields.size() < rowFields) {
        return false;
    }
    row.number = ParseInt(fields[0]);
    for (std::size_t i = 1; i < rowFields; ++i) {
        row.record.bytes[i - 1] = static_cast<std::uint8_t>(ParseInt(fields[i]));
    }
    return true;
}

class TraceFileReader {
public:
    TraceFileReader(CTesselDoc& document, TextReader& file) : document_(document), file_(file) {}

    /// False when the file's range of samples is larger than any capture.
    bool Read() {
        Fields fields;
        while (const auto line = file_.ReadLine()) {
            SampleRow row;
            if (block_ != Block::None && ParsePlainRow(*line, row)) {
                TakeRow(row);
                continue;
            }
            SplitCsvRecord(*line, file_, fields);
            if (!fields.empty() && !Dispatch(fields)) {
                return false;
            }
        }
        EndBlock(); // a file that was cut off
        if (!dataRead_) {
            LoadLists(0);
        }
        return true;
    }

    [[nodiscard]] const std::string& FileType() const noexcept { return fileType_; }
    [[nodiscard]] const std::string& Version() const noexcept { return version_; }
    [[nodiscard]] bool HasStateList() const noexcept { return hasState_; }

private:
    enum class Block { None, Samples, Zoom };

    bool Dispatch(const Fields& fields) {
        const std::string& key = fields[0];
        const bool hasValue = fields.size() > 1;
        if (key == "FileType" || key == "Version" || key == "Description") {
            if (hasValue) {
                (key == "FileType"  ? fileType_
                 : key == "Version" ? version_
                                    : document_.comment) = fields[1];
            }
        } else if (key == "Trace Setup") {
            ReadSetupBody(document_.setup, file_);
        } else if (key == "State Signals") {
            list_ = &document_.stateList;
            document_.stateList.mode = ModeState;
            hasState_ = true;
        } else if (key == "Waveform Signals") {
            list_ = &document_.waveformList;
            document_.waveformList.mode = ModeWaveform;
            hasWaveform_ = true;
        } else if (key == "Power Zoom Signals") {
            list_ = &document_.zoomList;
            document_.zoomList.mode = ModeState;
            hasZoom_ = true;
        } else if (key == "Signal") {
            // A title row is told by its second field, wherever it stands.
            if (list_ != nullptr && hasValue && fields[1] != "Name") {
                list_->ReadSignal(fields, file_);
            }
        } else if (key == "Trace Data") {
            return fields.size() < 3 || BeginSamples(ParseInt(fields[1]), ParseInt(fields[2]));
        } else if (key == "Power Zoom Data") {
            if (fields.size() >= 3) {
                EndBlock();
                document_.store.ResetZoom();
                block_ = Block::Zoom;
            }
        } else if (key == "End of Trace Data" || key == "End of Power Zoom Data") {
            EndBlock();
        } else if (SampleRow row; block_ != Block::None && ParseRow(fields, row)) {
            TakeRow(row);
        }
        return true;
    }

    bool BeginSamples(std::int64_t first, std::int64_t last) {
        EndBlock();
        if (!document_.store.AllocateForFile(first, last)) {
            return false;
        }
        first_ = first;
        lastRead_ = first - 1;
        const std::uint32_t count = document_.store.GetCount(false);
        document_.excludedBits.assign(WordsFor(count), ~0U);
        block_ = Block::Samples;
        return true;
    }

    void TakeRow(const SampleRow& row) {
        const std::int64_t index = row.number - (block_ == Block::Zoom ? zoomFirst : first_);
        if (index < 0) {
            return;
        }
        if (block_ == Block::Zoom) {
            document_.store.PutZoomSample(static_cast<std::uint32_t>(index), row.record);
            return;
        }
        lastRead_ = row.number;
        if (index >= document_.store.GetCount(false)) {
            return;
        }
        const auto sample = static_cast<std::uint32_t>(index);
        document_.store.PutSample(sample, row.record);
        document_.excludedBits[sample / 32] &= ~(1U << (sample % 32));
    }

    void EndBlock() {
        if (block_ == Block::Samples) {
            LoadLists(lastRead_ < first_ ? 0 : document_.store.GetCount(false));
        } else if (block_ == Block::Zoom) {
            LoadZoomList();
        }
        block_ = Block::None;
    }

    void LoadLists(std::uint32_t count) {
        dataRead_ = true;
        const auto load = [&](CSignalList& list, bool present, std::uint32_t mode) {
            if (present) {
                list.RebuildAfterRead();
            } else {
                list.BuildFromTables(0, mode);
            }
            list.ResizeSamples(count);
            list.LoadSamples(0, document_.store.GetData(false).first(count));
        };
        load(document_.stateList, hasState_, ModeState);
        load(document_.waveformList, hasWaveform_, ModeWaveform);
    }

    void LoadZoomList() {
        CSignalList& list = document_.zoomList;
        if (hasZoom_) {
            list.RebuildAfterRead();
        } else {
            list.BuildFromTables(0, ModeState);
            const auto clock =
                std::find_if(list.All().begin(), list.All().end(),
                             [](const auto& signal) { return signal->name == "CLK"; });
            if (clock != list.All().end()) {
                list.MoveGroup(clock->get(), list.All().front().get());
            }
        }
        list.ResizeSamples(zoomSampleCount);
        list.LoadSamples(0, document_.store.GetData(true));
    }

    CTesselDoc& document_;
    TextReader& file_;
    std::string fileType_;
    std::string version_;
    CSignalList* list_ = nullptr; // the list whose section is being read
    bool hasState_ = false;
    bool hasWaveform_ = false;
    bool hasZoom_ = false;
    bool dataRead_ = false;
    Block block_ = Block::None;
    std::int64_t first_ = 0;
    std::int64_t lastRead_ = 0;
};

} // namespace

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
    if (reader.FileType() != traceFileType) {
        prompts.Message(Printf(fileTypeMissing, traceFileType));
        return {};
    }
    if (reader.Version() != fileVersion) {
        prompts.Message(Printf(fileVersionMissing, fileVersion));
        return {};
    }
    return {true, reader.HasStateList()};
}

} // namespace busquill
