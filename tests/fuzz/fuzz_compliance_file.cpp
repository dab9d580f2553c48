#include "support/recording_prompts.h"
#include "support/temp_dir.h"
#include "testsuites/compliance_document.h"
#include "testsuites/report_pages.h"

using namespace busquill;
using namespace busquill::test;

// What a window does with a file: it shows the results, prints them, saves all again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    static const WorkingDirectory folder(dir.Path());
    static const std::string list =
        dir.Write("ComplianceChecklist.txt", "[G]\nCF1. One\nCF2. Two\nNo dot\n");
    RecordingPrompts prompts;
    CComplianceDoc document(folder, prompts);
    static_cast<void>(
        document.OnOpenDocument(dir.Write("a.cpl", {reinterpret_cast<const char*>(data), size})));
    const ReportGeometry geometry(600, 800, PageOrientation::Portrait);
    static_cast<void>(ComposeReport(document.Results(), geometry, [](std::string_view text) {
        return static_cast<int>(text.size()) * 7;
    }));
    static_cast<void>(document.OnSaveDocument(dir.File("b.cpl")));
    return 0;
}
