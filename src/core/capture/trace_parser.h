#pragma once

#include "capture/sample_rows.h"

#include <deque>
#include <string>

namespace busquill {

class CSignalList;
class TextReader;
class TraceSetup;

constexpr auto traceFileType = "Trace Data File";

/// Reads a trace file piece by piece: what precedes the samples is stored in the given parts,
/// samples are returned in rows.
class TraceParser {
public:
    /// Targets for the rest of the file. Lists get their signals as they are in the file.
    struct Parts {
        std::string& comment;
        TraceSetup& setup;
        CSignalList& stateList;
        CSignalList& waveformList;
        CSignalList& zoomList;
    };
    enum class Event {
        Samples, // a block of samples begins: First and Last
        Zoom,    // a block of Power Zoom samples begins
        Rows,    // some rows of the block: Rows
        EndOfBlock,
        End, // of the file; EndOfBlock comes before it, even for a block that is cut off
    };
    static constexpr std::size_t rowsAtOnce = 4096;

    /// Read returns the rows, Skim only checks whether they ascend.
    enum class Use { Read, Skim };

    TraceParser(const Parts& parts, TextReader& file, Use use = Use::Read)
        : parts_(parts), file_(file), skims_(use == Use::Skim) {}

    /// Reads up to the next event.
    [[nodiscard]] Event Next();

    /// The block's range of numbers, as announced in the file.
    [[nodiscard]] std::int64_t First() const noexcept { return first_; }
    [[nodiscard]] std::int64_t Last() const noexcept { return last_; }
    /// The rows as they are in the file, inside the block's range or not. Valid until the next
    /// event.
    [[nodiscard]] const SampleRows& Rows() const noexcept { return rows_; }
    /// The file offset of the line that began or ended the block.
    [[nodiscard]] std::uint64_t BlockLine() const noexcept { return blockLine_; }

    /// Whether the last block was ended by its end line, not by the end of the file.
    [[nodiscard]] bool HasEndOfBlock() const noexcept { return hasEndOfBlock_; }

    /// Whether the skimmed rows of samples ascend.
    [[nodiscard]] bool Ascends() const noexcept { return ascends_; }
    /// Whether other parts of the file, except Power Zoom samples, came after a block of samples.
    [[nodiscard]] bool HasPartsAfterSamples() const noexcept { return partsAfter_; }

    [[nodiscard]] const std::string& FileType() const noexcept { return fileType_; }
    [[nodiscard]] const std::string& Version() const noexcept { return version_; }
    [[nodiscard]] bool HasStateList() const noexcept { return hasState_; }
    [[nodiscard]] bool HasWaveformList() const noexcept { return hasWaveform_; }
    [[nodiscard]] bool HasZoomList() const noexcept { return hasZoom_; }

private:
    using Fields = std::vector<std::string>;

    void Dispatch(const Fields& fields);
    bool TakePart(const Fields& fields);
    void SkimRows();
    void Begin(Event event);
    void EndBlock();

    Parts parts_;
    TextReader& file_;
    bool skims_;
    bool ascends_ = true;
    std::int64_t lastNumber_ = 0; // of the skimmed rows
    bool hadSamples_ = false;
    bool inZoom_ = false;
    bool partsAfter_ = false;
    std::string fileType_;
    std::string version_;
    CSignalList* list_ = nullptr; // the list whose section is being read
    bool hasState_ = false;
    bool hasWaveform_ = false;
    bool hasZoom_ = false;
    bool inBlock_ = false;
    bool hasEndOfBlock_ = false;
    std::int64_t first_ = 0;
    std::int64_t last_ = 0;
    std::uint64_t blockLine_ = 0;
    SampleRows rows_;
    Fields fields_;
    std::deque<Event> waiting_; // events to return after the rows read before them
};

} // namespace busquill
