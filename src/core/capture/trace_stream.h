#pragma once

#include "capture/sample_store.h"
#include "capture/trace_file.h"
#include "capture/trace_parser.h"
#include "platform/text_file.h"
#include "signals/signal_list.h"
#include "tracesetup/trace_setup.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace busquill {

/// The result of a pass over a whole trace file.
struct TraceSurvey {
    bool hasSamples = false;
    std::int64_t first = 0; // sample numbers, as announced in the file
    std::int64_t last = 0;
    std::int64_t rows = 0;     // samples in the file
    std::int64_t firstRow = 0; // numbers of the first and the last of them
    std::int64_t lastRow = 0;
    std::int64_t rowsBefore = 0; // before the sample at which the trigger is marked
    bool hasTriggerRow = false;  // whether that sample is in the file
    bool cutOff = false;         // the file ends inside the samples
    bool hasZoom = false;
    /// Power Zoom samples by index; zeros for those that the file does not contain.
    std::vector<SampleRecord> zoom;
    /// The sum of TIME up to the trigger; only if a list has TIME.
    std::int64_t timeToTrigger = 0;

    /// Whether samples of the announced range are missing.
    [[nodiscard]] bool HasGaps() const noexcept { return rows != last - first + 1; }
};

/// Describes in words where the trigger is marked; `marked` is the number of that sample. It is not
/// sample 0 if no samples follow sample 0.
[[nodiscard]] std::string TriggerWords(const TraceSurvey& survey, std::int64_t marked);

/// Reads a trace file sequentially, in memory that does not grow with the file. A file whose
/// samples do not ascend, or are not in one block after everything else, is held in memory; its
/// samples are then returned as a window shows them: in order, and of several with the same number,
/// or of several blocks, the last. Functions that return a text return an error message, empty on
/// success.
class TraceStream {
public:
    /// The reader must be open; it and the tables outlive the stream.
    TraceStream(TextReader& file, SignalTables& tables);

    /// Reads what precedes the samples.
    [[nodiscard]] std::string ReadHead();
    /// The next samples in ascending order, without those outside the announced range. Null at the
    /// end and on an error, see `Wrong`.
    [[nodiscard]] const SampleRows* NextRows();
    [[nodiscard]] const std::string& Wrong() const noexcept { return wrong_; }
    /// Passes over the whole file; afterwards the stream is where ReadHead left it.
    [[nodiscard]] std::string Survey(TraceSurvey& survey);

    [[nodiscard]] bool HasSamples() const noexcept { return hasSamples_; }
    /// The range of sample numbers, as announced in the file.
    [[nodiscard]] std::int64_t First() const noexcept { return first_; }
    [[nodiscard]] std::int64_t Last() const noexcept { return last_; }
    /// The number of the sample at which the trigger is marked.
    [[nodiscard]] std::int64_t TriggerNumber() const noexcept;
    [[nodiscard]] const TraceParser& Parser() const noexcept { return *parser_; }
    /// Whether the file ends inside the samples. Known once they have all been read.
    [[nodiscard]] bool CutOff() const noexcept { return cutOff_; }
    /// Earlier blocks of samples, which the last block replaces.
    [[nodiscard]] std::span<const TraceFileReader::Block> BlocksBefore() const noexcept;
    /// File offsets where the block of samples begins and ends, its first and last lines included.
    [[nodiscard]] std::uint64_t BlockBegin() const noexcept { return blockBegin_; }
    [[nodiscard]] std::uint64_t BlockEnd() const noexcept { return blockEnd_; }

    std::string comment;
    TraceSetup setup;
    /// As in a trace window: the file's lists, or default ones.
    CSignalList stateList;
    CSignalList waveformList;
    CSignalList zoomList;

private:
    /// The content of a file that cannot be read in one pass.
    struct Held {
        CSampleStore store;
        std::vector<std::uint32_t> absent;
        std::vector<TraceFileReader::Block> blocks;
        bool cutOff = false;
        std::int64_t next = 0; // sample
    };

    void Restart(TraceParser::Use use = TraceParser::Use::Read);
    [[nodiscard]] std::string Inspect();
    [[nodiscard]] std::string Hold();
    void ReadHeldHead();
    [[nodiscard]] const SampleRows* NextHeldRows();
    [[nodiscard]] std::string CheckHeader() const;
    [[nodiscard]] std::string BeginSamples();
    void EndSamples();
    void TakeZoom(TraceParser::Event event);

    TextReader& file_;
    std::unique_ptr<TraceParser> parser_;
    bool inspected_ = false;
    std::string defect_; // error message found by Inspect
    std::unique_ptr<Held> held_;
    std::string wrong_;
    bool hasSamples_ = false;
    bool inSamples_ = false;
    bool cutOff_ = false;
    std::int64_t first_ = 0;
    std::int64_t last_ = -1;
    std::int64_t lastNumber_ = 0; // of the previous row
    std::uint64_t blockBegin_ = 0;
    std::uint64_t blockEnd_ = 0;
    SampleRows inRange_;
    std::vector<SampleRecord> zoom_; // by index, zeros where missing; may be empty
};

} // namespace busquill
