#include "tracesetup/setup_encoding.h"

#include "platform/bits.h"

#include <algorithm>
#include <array>
#include <span>

namespace busquill {

namespace {

constexpr std::uint8_t gotoMask = 0x07;
constexpr std::uint8_t triggerBit = 0x08;

// Codes by the setup's index. The codes of the first two clock rates are swapped.
// clang-format off
constexpr std::array<std::uint8_t, 17> clockCodes{0, 2, 0, 1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::array<std::uint8_t, 6> positionCodes{0, 3, 4, 0, 1, 2};
constexpr std::array<std::uint8_t, 9> zoomClockCodes{0, 0, 1, 2, 3, 4, 5, 6, 7};
// clang-format on

std::uint8_t CodeOf(std::span<const std::uint8_t> codes, std::int32_t value) {
    const auto index = static_cast<std::uint32_t>(value);
    return index < codes.size() ? codes[index] : 0;
}

std::uint8_t Branch(std::int32_t level, bool trigger) {
    return static_cast<std::uint8_t>((level & gotoMask) | (trigger ? triggerBit : 0));
}

} // namespace

std::vector<std::uint8_t> BuildTraceParams(const TraceSetup& setup) {
    return {CodeOf(clockCodes, setup.clock), CodeOf(positionCodes, setup.triggerPosition),
            CodeOf(zoomClockCodes, setup.powerZoomClock)};
}

std::vector<std::uint8_t> BuildSearchControl(std::uint32_t distance, bool after) {
    constexpr std::uint8_t afterTrigger = 2;
    return {after ? afterTrigger : std::uint8_t{0}, static_cast<std::uint8_t>(distance),
            static_cast<std::uint8_t>(distance >> 8), static_cast<std::uint8_t>(distance >> 16)};
}

std::vector<std::uint8_t> BuildEventRows(const CSignalList& list, int columns) {
    const auto count = static_cast<std::size_t>(std::clamp(columns, 0, 32));
    std::vector<std::uint8_t> rows(count * eventRowSize);
    for (const auto& signal : list.All()) {
        if (signal->dataIndex < 0 || signal->dataIndex >= eventRowBits) {
            continue;
        }
        const auto index = static_cast<std::size_t>(signal->dataIndex);
        const std::size_t valueBit = index / 8 * 16 + index % 8;
        for (std::size_t c = 0; c < count; ++c) {
            const auto row = std::span(rows).subspan(c * eventRowSize, eventRowSize);
            if (TestBit(signal->data, c)) {
                SetBit(row, valueBit);
            }
            if (TestBit(signal->mask, c)) {
                SetBit(row, valueBit + 8);
            }
        }
    }
    return rows;
}

std::vector<std::uint8_t> BuildTraceControl(const TraceSetup& setup) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < traceLevels; ++i) {
        const TraceLevel& level = setup.levels[static_cast<std::size_t>(i)];
        bytes.insert(bytes.end(), level.ifExpr.begin(), level.ifExpr.end());
        bytes.insert(bytes.end(), level.storeExpr.begin(), level.storeExpr.end());
        bytes.push_back(static_cast<std::uint8_t>(level.occurs));
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(level.occurs) >> 8));
        bytes.push_back(Branch(level.thenGoto, level.thenTrigger));
        bytes.push_back(Branch(level.elseGoto, level.elseTrigger));
    }
    return bytes;
}

} // namespace busquill
