#pragma once

#include "capture/sample_rows.h"

#include <deque>
#include <string>

namespace busquill {

class CSignalList;
class TextReader;
class TraceSetup;

constexpr auto traceFileType = "Trace Data File";

/// Reads a trace file piece by piece: what stands before the samples goes where it is told, the
/// samples come in rows.
class TraceParser {
public:
    /// Where the rest goes. The lists get their signals as they stand in the file.
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
        End, // of the file; a block that it cuts off has ended before
    };
    static constexpr std::size_t rowsAtOnce = 4096;

    /// What is wanted of the rows: themselves, or only whether they ascend.
    enum class Use { Read, Skim };

    TraceParser(const Parts& parts, TextReader& file, Use use = Use::Read)
        : parts_(parts), file_(file), skims_(use == Use::Skim) {}

    /// Reads up to the next event.
    [[nodiscard]] Event Next();

    /// The block's numbers, as it announces them.
    [[nodiscard]] std::int64_t First() const noexcept { return first_; }
    [[nodiscard]] std::int64_t Last() const noexcept { return last_; }
    /// Whatever stands in the file, inside the block's range or not. Valid until the next event.
    [[nodiscard]] const SampleRows& Rows() const noexcept { return rows_; }
    /// Where in the file the line begins that began or ended the block.
    [[nodiscard]] std::uint64_t BlockLine() const noexcept { return blockLine_; }

    /// Whether a line ended the block that ended last, and not the file.
    [[nodiscard]] bool HasEndOfBlock() const noexcept { return hasEndOfBlock_; }

    /// Whether the rows of samples that were skimmed ascend.
    [[nodiscard]] bool Ascends() const noexcept { return ascends_; }
    /// Whether some of what else a file holds, but Power Zoom samples, came after a block of
    /// samples.
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
    std::int64_t lastNumber_ = 0; // of the rows that are skimmed
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
    std::deque<Event> waiting_; // behind the rows that were read before them
};

} // namespace busquill
