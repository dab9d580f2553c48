#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "tracesetup/setup_encoding.h"
#include "tracesetup/setup_file.h"

using namespace busquill;
using namespace busquill::test;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static BoardTables board("PCIKite-1");
    static const TempDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    RecordingPrompts prompts;
    TraceSetup setup(board.tables);
    static_cast<void>(LoadSetupFile(setup, dir.Write("a.tsp", text), prompts));
    static_cast<void>(BuildTraceControl(setup));
    static_cast<void>(BuildEventRows(setup.events, 8));
    static_cast<void>(SaveSetupFile(setup, dir.File("b.tsp"), prompts));
    return 0;
}
