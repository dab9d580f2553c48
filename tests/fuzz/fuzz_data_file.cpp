#include "exerciser/data_file.h"
#include "support/temp_dir.h"

#include <cstdlib>

using namespace busquill;
using namespace busquill::test;

/// What has been read is read again after it has been written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TempDir dir;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto bytes = ReadDataFile(dir.Write("a.dat", text));
    if (!bytes || bytes->size() > size) {
        std::abort();
    }
    if (ReadDataFile(dir.Write("b.dat", DataFileLine(*bytes))) != bytes) {
        std::abort();
    }
    return 0;
}
