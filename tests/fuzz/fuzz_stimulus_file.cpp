#include "stimulus/stimulus_document.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

/// Whatever a file holds, nothing is reported, and the program that it leaves can be sent and saved.
/// What is saved reads back as itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    static BoardTables kite("PCIKite-1");
    static BoardTables lark("VME Lark", BusVme);
    for (BoardTables* board : {&kite, &lark}) {
        RecordingPrompts prompts;
        CStimulusDoc document(board->tables, prompts);
        static_cast<void>(document.OnOpenDocument(dir.Write("a.stm", text)));
        const auto rowBytes = static_cast<std::size_t>(document.Program().eventCount) * 30;
        if (BuildStimulusControl(document.Program()).size() != 80 ||
            BuildStimulusPatterns(document.Program()).size() != 450 ||
            BuildStimulusEvents(document.Program()).size() != rowBytes ||
            !document.OnSaveDocument(dir.File("b.stm"))) {
            std::abort();
        }
        CStimulusDoc again(board->tables, prompts);
        CStimulusDoc third(board->tables, prompts);
        if (!again.OnOpenDocument(dir.File("b.stm")) || !again.OnSaveDocument(dir.File("c.stm")) ||
            !third.OnOpenDocument(dir.File("c.stm")) || !prompts.Boxes().empty() ||
            third.Program().control.levels != again.Program().control.levels) {
            std::abort();
        }
    }
    return 0;
}
