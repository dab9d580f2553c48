#include "exerciser/master_document.h"
#include "exerciser/master_records.h"
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
        CMasterDoc document([&] { return board; }, prompts);
        if (!document.OnOpenDocument(dir.Write("a.mst", text))) {
            continue;
        }
        static_cast<void>(BuildMasterSetup(document.Form(), document.Family(), 32, {}));
        static_cast<void>(BuildMasterAttributes(document.Form()));
        if (!document.OnSaveDocument(dir.File("b.mst"))) {
            std::abort();
        }
        CMasterDoc again([&] { return board; }, prompts);
        if (!again.OnOpenDocument(dir.File("b.mst")) ||
            again.Form().addressStart != document.Form().addressStart ||
            again.Form().dataSize != document.Form().dataSize) {
            std::abort();
        }
    }
    return 0;
}
