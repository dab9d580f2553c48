#include "exerciser/target_document.h"
#include "exerciser/target_records.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

/// A form that has been read can be sent, and reads back as itself after it has been written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const char* model : {"PCIKite", "VMEKite", "VSBKite"}) {
        RecordingPrompts prompts;
        const BoardTraits board = TraitsOfModel(model).value();
        CTargetDoc document([&] { return board; }, prompts);
        if (!document.OnOpenDocument(dir.Write("a.tgt", text))) {
            continue;
        }
        static_cast<void>(BuildTargetSetup(document.Form(), document.Family()));
        static_cast<void>(BuildTargetAddress(document.Form()));
        if (!document.OnSaveDocument(dir.File("b.tgt"))) {
            std::abort();
        }
        CTargetDoc again([&] { return board; }, prompts);
        if (!again.OnOpenDocument(dir.File("b.tgt")) ||
            again.Form().addressStart != document.Form().addressStart ||
            again.Form().dataSize != document.Form().dataSize) {
            std::abort();
        }
    }
    return 0;
}
