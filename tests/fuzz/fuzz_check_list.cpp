#include "platform/text_file.h"
#include "support/temp_dir.h"
#include "testsuites/check_list.h"
#include "testsuites/name_map.h"
#include "testsuites/test_result.h"

#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

// The lists beside the program: the check list with its identifiers, and the names.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    const std::string path = dir.Write("a.txt", {reinterpret_cast<const char*>(data), size});
    TextReader file;
    if (!file.Open(path)) {
        std::abort();
    }
    for (const CheckItem& item : ReadCheckList(file)) {
        const TestId id = TestIdOf(item.text);
        static_cast<void>(TestIdText(id));
        if (item.Key().size() > item.line.size() || id.back() != 0) {
            std::abort();
        }
    }
    file.Rewind();
    NameMap map;
    map.Read(file);
    static_cast<void>(map.Find(0));
    return 0;
}
