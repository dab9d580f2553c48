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

/// What a pass over a whole trace file has found.
struct TraceSurvey {
    bool hasSamples = false;
    std::int64_t first = 0; // numbers, as the file announces them
    std::int64_t last = 0;
    std::int64_t rows = 0; // samples that it holds
    bool cutOff = false;   // the file ends in the middle of them
    bool hasZoom = false;
    /// Power Zoom samples by their place, those that the file does not mention as zeros.
    std::vector<SampleRecord> zoom;
    /// The sum of TIME up to the place at which the trigger is marked; only with a list that has
    /// it.
    std::int64_t timeToTrigger = 0;

    /// Whether samples of the announced range are missing.
    [[nodiscard]] bool HasGaps() const noexcept { return rows != last - first + 1; }
};

/// A trace file that is read from its beginning to its end, in memory that does not grow with it. A
/// file whose samples do not ascend, or do not stand after all else in one block, is held in
/// memory, and its samples are given as a window shows them: in order, and of several with the same
/// number, or of several blocks, the last. The functions that return a text say what is wrong with
/// the file, or nothing.
class TraceStream {
public:
    /// The reader must be open; it and the tables outlive the stream.
    TraceStream(TextReader& file, SignalTables& tables);

    /// Reads what stands before the samples.
    [[nodiscard]] std::string ReadHead();
    /// The next samples in ascending order, those outside the announced range left out. Null at the
    /// end, and when something is wrong, which `Wrong` then tells.
    [[nodiscard]] const SampleRows* NextRows();
    [[nodiscard]] const std::string& Wrong() const noexcept { return wrong_; }
    /// A pass over the whole file; afterwards the stream stands where ReadHead left it.
    [[nodiscard]] std::string Survey(TraceSurvey& survey);

    [[nodiscard]] bool HasSamples() const noexcept { return hasSamples_; }
    /// Numbers, as the file announces them.
    [[nodiscard]] std::int64_t First() const noexcept { return first_; }
    [[nodiscard]] std::int64_t Last() const noexcept { return last_; }
    /// The number of the sample at which the trigger is marked.
    [[nodiscard]] std::int64_t TriggerNumber() const noexcept;
    [[nodiscard]] const TraceParser& Parser() const noexcept { return *parser_; }
    /// Whether the file has ended in the middle of the samples. Known at their end.
    [[nodiscard]] bool CutOff() const noexcept { return cutOff_; }
    /// Blocks of samples before the one that counts.
    [[nodiscard]] std::span<const TraceFileReader::Block> BlocksBefore() const noexcept;
    /// Where the rows of the samples begin and end, lines and all.
    [[nodiscard]] std::uint64_t BlockBegin() const noexcept { return blockBegin_; }
    [[nodiscard]] std::uint64_t BlockEnd() const noexcept { return blockEnd_; }

    std::string comment;
    TraceSetup setup;
    /// As a trace window shows them: the file's, or the default ones.
    CSignalList stateList;
    CSignalList waveformList;
    CSignalList zoomList;

private:
    /// What a file holds that cannot be read in one go.
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
    std::string defect_; // what was found wrong with the file then
    std::unique_ptr<Held> held_;
    std::string wrong_;
    bool hasSamples_ = false;
    bool inSamples_ = false;
    bool cutOff_ = false;
    std::int64_t first_ = 0;
    std::int64_t last_ = -1;
    std::int64_t lastNumber_ = 0; // of the row before
    std::uint64_t blockBegin_ = 0;
    std::uint64_t blockEnd_ = 0;
    SampleRows inRange_;
    std::vector<SampleRecord> zoom_; // by place, those not mentioned as zeros; empty for none
};

} // namespace busquill
