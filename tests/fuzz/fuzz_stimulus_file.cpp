#include "stimulus/stimulus_document.h"
#include "support/board_tables.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

namespace {

/// The documents of one board. A reading leaves nothing of the program before it.
struct Documents {
    explicit Documents(const std::string& model, std::int32_t mode) : board(model, mode) {}

    BoardTables board;
    RecordingPrompts prompts;
    CStimulusDoc read{board.tables, prompts};
    CStimulusDoc again{board.tables, prompts};
};

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

/// Whatever a file holds, nothing is reported, and the program that it leaves can be sent and
/// saved. What is saved reads back as itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static Documents kite("PCIKite-1", BusPci);
    static Documents lark("VME Lark", BusVme);
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (Documents* of : {&kite, &lark}) {
        const StimulusProgram& program = of->read.Program();
        static_cast<void>(of->read.OnOpenDocument(dir.Write("a.stm", text)));
        Check(BuildStimulusControl(program).size() == 80);
        Check(BuildStimulusPatterns(program).size() == 450);
        Check(BuildStimulusEvents(program).size() ==
              static_cast<std::size_t>(program.eventCount) * 30);
        Check(of->read.OnSaveDocument(dir.File("b.stm")));
        Check(of->again.OnOpenDocument(dir.File("b.stm")));
        const auto levels = of->again.Program().control.levels;
        Check(of->again.OnSaveDocument(dir.File("c.stm")));
        Check(of->again.OnOpenDocument(dir.File("c.stm")));
        Check(of->again.Program().control.levels == levels);
        Check(of->prompts.Boxes().empty());
    }
    return 0;
}
