#include "exerciser/target_records.h"

#include <algorithm>

namespace busquill {

namespace {

enum SetupOffset : std::size_t {
    OffsetBusStart = 0,
    OffsetBusLength = 8,
    OffsetSpace = 9,   // the space, and the address modifier from bit 2 on
    OffsetAnswer = 10, // data size, response from bit 2 on, wait states from bit 4 on
    OffsetCommand = 11,
    SetupBytes = 12,
};
constexpr std::uint8_t enabledBit = 0x80;

constexpr std::size_t offsetFromFile = 10;
constexpr std::size_t addressBytes = 11;

} // namespace

std::vector<std::uint8_t> BuildTargetSetup(const TargetForm& form, const TargetFamily& family) {
    std::vector<std::uint8_t> setup(SetupBytes);
    std::ranges::copy(form.busStart, setup.begin() + OffsetBusStart);
    setup[OffsetBusLength] = static_cast<std::uint8_t>(form.busLength);
    setup[OffsetSpace] = static_cast<std::uint8_t>(
        form.addressSpace | (family.addressModifier ? form.addressModifier << 2 : 0));
    setup[OffsetAnswer] =
        static_cast<std::uint8_t>(form.dataSize | form.response << 2 | form.waitStates << 4);
    setup[OffsetCommand] =
        static_cast<std::uint8_t>(form.command | (form.enabled ? enabledBit : 0));
    return setup;
}

std::vector<std::uint8_t> BuildTargetAddress(const TargetForm& form) {
    std::vector<std::uint8_t> record(addressBytes);
    std::ranges::copy(form.dataValue, record.begin());
    record[offsetFromFile] = form.dataType == DataIsFile ? 1 : 0;
    return record;
}

} // namespace busquill
