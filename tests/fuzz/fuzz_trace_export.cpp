#include "capture/listing.h"
#include "capture/trace_stream.h"
#include "export/value_dump.h"
#include "export/value_table.h"
#include "support/board_tables.h"
#include "support/temp_dir.h"

using namespace busquill;
using namespace busquill::test;

/// A capture as a stream: surveyed, listed, and exported with the lists of the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static BoardTables board("PCIKite-1");
    static const TempDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    TextReader file;
    if (!file.Open(
            dir.Write("a.tra", "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n" + text))) {
        return 0;
    }
    TraceStream stream(file, board.tables);
    TraceSurvey survey;
    if (!stream.Survey(survey).empty()) {
        return 0;
    }
    TraceListing listing(stream.stateList, {board.board, false, survey.HasGaps(), survey.first,
                                            stream.TriggerNumber(), survey.timeToTrigger});
    ValueDump dump(stream.waveformList, ListUse::Wave, {board.board, false, stream.comment});
    ValueTable table(stream.stateList, ListUse::State, {board.board, false, true});
    std::vector<std::string> cells;
    std::string out;
    dump.Begin(out);
    while (const SampleRows* rows = stream.NextRows()) {
        listing.Load(*rows);
        for (std::size_t i = 0; i < rows->Size(); ++i) {
            listing.Cells(i, cells);
        }
        dump.Add(*rows, out);
        table.Add(*rows, out);
        out.clear();
    }
    dump.End(out);
    static_cast<void>(dump.ViewerFile("a.vcd", "a.gtkw"));
    return 0;
}
