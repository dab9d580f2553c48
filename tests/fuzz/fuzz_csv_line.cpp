#include "document/csv_line.h"

#include <cstdint>

using namespace busquill;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> fields;
    const bool goesOn = CsvSplitLine(text.substr(0, size / 2), fields);
    if (goesOn) {
        static_cast<void>(CsvSplitLine(text.substr(size / 2), fields));
    }
    static_cast<void>(CsvQuote(text));
    return 0;
}
