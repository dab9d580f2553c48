#include "performance/performance_document.h"
#include "performance/result_statistics.h"
#include "performance/time_page.h"
#include "support/recording_prompts.h"
#include "support/temp_dir.h"

using namespace busquill;
using namespace busquill::test;

// What a window does with a file: it shows the results, sends the setup, saves all again. The first
// byte selects the board. Saving writes a row for each result, so few are saved.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static constexpr const char* models[] = {"PCIKite", "VMEKite", "VSBKite"};
    const char* model = models[size == 0 ? 0 : data[0] % 3];
    const std::string text(reinterpret_cast<const char*>(data), size);
    RecordingPrompts prompts;
    CPerformanceDoc document([model] { return TraitsOfModel(model).value(); }, prompts);
    static_cast<void>(document.OnOpenDocument(dir.Write("a.per", text)));
    TimePage page;
    static_cast<void>(page.Follow(document.Results()));
    page.ScrollBack(document.Results());
    page.ScrollForward(document.Results());
    static_cast<void>(document.GetResult(0, document.Results().OldestHeld()));
    static_cast<void>(BuildPerformanceSetup(document.Setup()));
    for (std::size_t row = 0; row < performanceItems; ++row) {
        static_cast<void>(PerformanceRowText(document.Setup(), row, TraitsOfModel(model).value()));
    }
    if (document.Results().Count() < 1000) {
        RangeStatistics range;
        range.Clear(document.Setup());
        range.AddAll(document.Results());
        static_cast<void>(document.OnSaveDocument(dir.File("b.per")));
    }
    return 0;
}
