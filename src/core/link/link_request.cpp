#include "link/link_request.h"

#include <array>
#include <utility>

namespace busquill {

namespace {

LinkRequestPtr Read(LinkCommand command, std::uint32_t address, std::size_t length,
                    std::span<std::uint8_t> into) {
    LinkRequestPtr request = NewRequest(command);
    request->address = address;
    request->length = static_cast<std::uint32_t>(length);
    request->reply = into;
    return request;
}

} // namespace

LinkRequestPtr NewRequest(std::int32_t command, LinkRequest::Completion completion) {
    auto request = std::make_unique<LinkRequest>();
    request->command = command;
    request->completion = std::move(completion);
    return request;
}

LinkRequestPtr RunCommand(FunctionCommand command) {
    return NewRequest(command);
}

LinkRequestPtr WritePayload(RegisterCommand command, LinkRequest::PayloadMaker make) {
    LinkRequestPtr request = NewRequest(command);
    request->makePayload = std::move(make);
    return request;
}

LinkRequestPtr WriteMemory(MemoryCommand command, std::uint32_t address,
                           LinkRequest::PayloadMaker make) {
    LinkRequestPtr request = NewRequest(command);
    request->address = address;
    request->makePayload = std::move(make);
    return request;
}

LinkRequestPtr ReadRegisters(std::uint32_t address, std::span<std::uint8_t> into) {
    return Read(CmdReadMemory, address, into.size(), into);
}

LinkRequestPtr ReadTarget(std::uint32_t address, std::span<std::uint8_t> into) {
    return Read(CmdTargetRead, address, into.size(), into);
}

LinkRequestPtr ReadSamples(SampleCommand command, std::uint32_t distance,
                           std::span<std::uint8_t> into) {
    return Read(command, distance, into.size() / sampleRecordSize, into);
}

LinkRequest::PayloadMaker OneByte(std::uint8_t value) {
    return [value] { return std::vector<std::uint8_t>{value}; };
}

std::uint8_t BaudCode(std::int32_t rate) noexcept {
    constexpr std::array<std::int32_t, 6> rates{19200, 28800, 38400, 57600, 115200, 750000};
    for (std::size_t i = 0; i < rates.size(); ++i) {
        if (rates[i] == rate) {
            return static_cast<std::uint8_t>(i + 1);
        }
    }
    return 0;
}

bool PreparePayload(LinkRequest& request) {
    request.payload.clear();
    const CommandRow* row = FindCommand(request.command);
    if (row == nullptr ||
        (row->kind != CommandKind::Register && row->kind != CommandKind::Memory)) {
        return true;
    }
    if (!request.makePayload) {
        return false;
    }
    request.payload = request.makePayload();
    if (row->kind == CommandKind::Register) {
        request.address = row->address;
        // The board expects a fixed number of bytes, even where fewer rows are in use.
        request.payload.resize(row->bytes);
    }
    request.length = static_cast<std::uint32_t>(request.payload.size());
    return true;
}

} // namespace busquill
