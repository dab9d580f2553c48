#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "testsuites/anomaly_document.h"
#include "testsuites/anomaly_table.h"

using namespace busquill;
using namespace busquill::test;

// What a window does with a file: it opens it and saves all again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    RecordingPrompts prompts;
    CAnomalyDetectionDoc document([] { return AnomalyTable({}); }, prompts);
    static_cast<void>(
        document.OnOpenDocument(dir.Write("a.adt", {reinterpret_cast<const char*>(data), size})));
    static_cast<void>(document.OnSaveDocument(dir.File("b.adt")));
    return 0;
}
