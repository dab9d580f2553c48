#pragma once

#include "capture/trace_parser.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace busquill {

class CSampleStore;
class Prompts;

/// Reads a whole trace file into memory, in any order: of samples with the same number, and of
/// several blocks, the last one counts.
class TraceFileReader {
public:
    /// A range of bytes of the file; `end` is one past the last.
    struct Block {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    /// Samples go to the store. `absent` gets a bit for each sample of the file's range, set for
    /// those that the file does not contain.
    TraceFileReader(const TraceParser::Parts& parts, TraceParser& parser, CSampleStore& store,
                    std::vector<std::uint32_t>& absent)
        : parts_(parts), parser_(parser), store_(store), absent_(absent) {}

    /// False when the file's range of samples is larger than any capture. `fillLists` also loads
    /// the samples into the signals. `onRows` is called again and again while samples are read.
    [[nodiscard]] bool Read(bool fillLists, const std::function<void()>& onRows = nullptr);

    /// The blocks of samples, the last of which was kept.
    [[nodiscard]] const std::vector<Block>& Blocks() const noexcept { return blocks_; }
    /// Whether the file ends inside a block.
    [[nodiscard]] bool CutOff() const noexcept { return cutOff_; }

private:
    bool BeginSamples();
    void TakeRows();
    void TakeSample(std::int64_t index, std::int32_t number, const SampleRecord& record);
    void EndBlock(bool fillLists);
    void CompleteLists(bool fill);
    void LoadZoomList(bool fill);

    TraceParser::Parts parts_;
    TraceParser& parser_;
    CSampleStore& store_;
    std::vector<std::uint32_t>& absent_;
    std::vector<Block> blocks_;
    bool inZoom_ = false;
    bool cutOff_ = false;
    std::int64_t lastRead_ = 0;
};

/// What a trace file holds beyond its samples.
struct TraceFileContents {
    bool loaded = false;
    bool stateList = false;   // the file asks for the State display
    bool zoomSamples = false; // and for a Power Zoom window
};

/// Reads a trace file into the parts of a new document, its samples into the store. `absent` as for
/// TraceFileReader. When the file cannot be opened, is of another type or version, or has a range
/// that no capture can have, reports that to the user and loads nothing. Of a file that ends early,
/// the samples read are kept. `onProgress` is called with the bytes read so far.
[[nodiscard]] TraceFileContents
ReadTraceFile(const TraceParser::Parts& parts, CSampleStore& store,
              std::vector<std::uint32_t>& absent, const std::string& path, Prompts& prompts,
              const std::function<void(std::uint64_t bytes)>& onProgress = nullptr);

/// Builds what a file does not store of a list, or the default list if the file has none.
void CompleteList(CSignalList& list, bool present, std::uint32_t mode);
/// The same for the Power Zoom list, whose default begins with the clock.
void CompleteZoomList(CSignalList& list, bool present);

} // namespace busquill
