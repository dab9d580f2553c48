#include "tracesetup/setup_encoding.h"

#include "link/analyzer_link.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr std::uint8_t gotoMask = 0x07;
constexpr std::uint8_t triggerBit = 0x08;

std::uint8_t Branch(std::int32_t level, bool trigger) {
    return static_cast<std::uint8_t>((level & gotoMask) | (trigger ? triggerBit : 0));
}

} // namespace

std::vector<std::uint8_t> BuildEventRows(const CSignalList& list, int columns) {
    const int count = std::clamp(columns, 0, 32);
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(count) * eventRowSize);
    for (const auto& signal : list.All()) {
        if (signal->dataIndex < 0 || signal->dataIndex >= eventRowBits) {
            continue;
        }
        const std::size_t pair = static_cast<std::size_t>(signal->dataIndex) / 8 * 2;
        const auto bit = static_cast<std::uint8_t>(1U << (signal->dataIndex % 8));
        const std::uint32_t values = signal->data.empty() ? 0 : signal->data.front();
        const std::uint32_t compared = signal->mask.empty() ? 0 : signal->mask.front();
        for (int c = 0; c < count; ++c) {
            std::uint8_t* row = rows.data() + static_cast<std::size_t>(c) * eventRowSize;
            row[pair] |= (values >> c & 1) != 0 ? bit : 0;
            row[pair + 1] |= (compared >> c & 1) != 0 ? bit : 0;
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

PayloadEncoders SetupEncoders() {
    return {
        {CmdTraceEvents,
         [](const LinkRequest& request) {
             return BuildEventRows(*request.DataAs<const CSignalList>(),
                                   static_cast<int>(request.words[3]));
         }},
        {CmdTraceControl,
         [](const LinkRequest& request) {
             return BuildTraceControl(*request.DataAs<const TraceSetup>());
         }},
        {CmdSearchSample,
         [](const LinkRequest& request) {
             return BuildEventRows(*request.DataAs<const CSignalList>(), 1);
         }},
    };
}

void RegisterSetupEncoders(CAnalyzerLink& link) {
    for (auto& [command, encoder] : SetupEncoders()) {
        link.RegisterEncoder(command, encoder);
    }
}

} // namespace busquill
