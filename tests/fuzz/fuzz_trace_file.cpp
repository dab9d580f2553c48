#include "capture/trace_document.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

using namespace busquill;
using namespace busquill::test;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static BoardTables board("PCIKite-1");
    static const TempDir dir;
    // A header first, so that most inputs are parsed further.
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string path =
        dir.Write("a.tra", "\"FileType\",\"Trace Data File\"\n\"Version\",\"1.0\"\n" + text);
    RecordingPrompts prompts;
    NewTraceContext context{board.tables};
    CTesselDoc document(context, prompts);
    static_cast<void>(document.OnOpenDocument(path));
    return 0;
}
