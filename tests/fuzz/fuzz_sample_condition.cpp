#include "capture/sample_condition.h"
#include "support/board_tables.h"
#include "support/capture_builder.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <numeric>

using namespace busquill;
using namespace busquill::test;

/// The first byte is the place of the cursor, the rest the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const BoardTables board("PCIKite-1");
    static const std::vector<SampleRecord> records =
        CaptureBuilder().Read(0x1000).Idle(3).Write(0xFEBF0000, 0xAB).Idle(25).Records();
    static const std::vector<std::int32_t> numbers = [] {
        std::vector<std::int32_t> made(records.size());
        std::iota(made.begin(), made.end(), -4);
        return made;
    }();
    const std::size_t cursor = size == 0 ? 0 : std::min<std::size_t>(data[0], size - 1);
    const std::string_view text(reinterpret_cast<const char*>(data) + (size == 0 ? 0 : 1),
                                size == 0 ? 0 : size - 1);
    const auto completion = SampleCondition::Complete(text, cursor, board.tables, {});
    if (completion.place > cursor) {
        std::abort();
    }
    const auto parsed = SampleCondition::Parse(text, board.tables, {});
    if (const auto* const error = std::get_if<ExpressionError>(&parsed)) {
        if (error->place > text.size() || error->message.empty()) {
            std::abort();
        }
        return 0;
    }
    const auto& condition = std::get<SampleCondition>(parsed);
    static const std::vector<std::int64_t> times(numbers.begin(), numbers.end());
    const SampleBlock block{.records = std::span(records).first(32),
                            .numbers = std::span(numbers).first(32),
                            .times = std::span(times).first(32)};
    // One by one, or all at once: the same is found.
    const std::uint32_t matches = condition.MatchesOf(block);
    for (std::size_t i = 0; i < 32; ++i) {
        const SampleBlock one{.records = block.records.subspan(i, 1),
                              .numbers = block.numbers.subspan(i, 1),
                              .before = i == 0 ? nullptr : &records[i - 1],
                              .times = block.times.subspan(i, 1)};
        if ((condition.MatchesOf(one) & 1) != (matches >> i & 1)) {
            std::abort();
        }
    }
    return 0;
}
