#include "performance/performance_setup_file.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

// A setup that was read is the same when it has been written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const WorkingDirectory folder(dir.Path());
    RecordingPrompts prompts;
    PerformanceSetup setup;
    dir.Write("a.psu", {reinterpret_cast<const char*>(data), size});
    if (!LoadPerformanceSetup(setup, folder, "a", prompts) ||
        !SavePerformanceSetup(setup, folder, SetupNameTyped::No, prompts)) {
        std::abort();
    }
    PerformanceSetup again;
    if (!LoadPerformanceSetup(again, folder, "a", prompts) || again != setup) {
        std::abort();
    }
    static_cast<void>(BuildPerformanceSetup(setup));
    return 0;
}
