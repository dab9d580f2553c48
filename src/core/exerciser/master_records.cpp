#include "exerciser/master_records.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

/// The image of the registers of the master, from the space on.
enum SetupOffset : std::size_t {
    OffsetSpace = 0,
    OffsetAddressSize = 1,
    OffsetAddress = 2,
    OffsetLength = 10,
    OffsetDataSize = 11,
    OffsetCycle = 12,
    OffsetDataType = 13,
    OffsetData = 14,
    OffsetModifier = 46,
    OffsetRequestLevel = 47,
    SetupBytes = 48,
};
static_assert(OffsetData + masterStepLimit == OffsetModifier);

// The code 3 is never sent.
constexpr std::array<std::uint8_t, 6> commandCodes = {1, 2, 4, 5, 6, 7};
constexpr std::uint8_t laterStep = 0x80;

constexpr std::uint8_t modifierMask = (1U << addressModifierBits) - 1;

struct StatusBit {
    std::uint8_t bit;
    std::string_view line;
};
constexpr std::array<StatusBit, 3> busErrors = {{
    {0x40, "No Device Select"},
    {0x20, "No Target Ack"},
    {0x10, "No Bus Grant"},
}};
constexpr std::uint8_t resultMask = 0x07;
constexpr std::uint8_t resultPass = 1;
constexpr std::uint8_t resultFail = 2;

} // namespace

std::vector<std::uint8_t> BuildMasterSetup(const MasterForm& form, const MasterFamily& family,
                                           std::uint8_t stepLength,
                                           std::span<const std::uint8_t> fileData) {
    std::vector<std::uint8_t> setup(SetupBytes);
    setup[OffsetSpace] = static_cast<std::uint8_t>(form.addressSpace);
    setup[OffsetAddressSize] = static_cast<std::uint8_t>(form.addressSize);
    std::ranges::copy(form.addressStart, setup.begin() + OffsetAddress);
    setup[OffsetLength] = stepLength;
    setup[OffsetDataSize] = static_cast<std::uint8_t>(form.dataSize);
    setup[OffsetCycle] = static_cast<std::uint8_t>(form.dataCycle);
    setup[OffsetDataType] = static_cast<std::uint8_t>(form.dataType);
    const std::span<const std::uint8_t> data =
        fileData.empty() ? std::span<const std::uint8_t>(form.dataValue) : fileData;
    std::ranges::copy(data.first(std::min<std::size_t>(data.size(), masterStepLimit)),
                      setup.begin() + OffsetData);
    if (family.addressModifier) {
        setup[OffsetModifier] = form.addressModifier & modifierMask;
        setup[OffsetRequestLevel] = form.busRequestLevel;
    }
    return setup;
}

std::vector<std::uint8_t> BuildMasterAddress(const BusAddress& address, std::uint8_t stepLength) {
    std::vector<std::uint8_t> record(address.begin(), address.end());
    record.push_back(stepLength);
    return record;
}

std::vector<std::uint8_t> BuildMasterAttributes(const MasterForm& form) {
    std::vector<std::uint8_t> record;
    record.reserve(masterAttributes.size());
    for (const MasterAttribute& attribute : masterAttributes) {
        record.push_back(form.*attribute.value);
    }
    return record;
}

std::uint8_t MasterControlByte(std::int32_t command, MasterStep step) noexcept {
    const bool known = command >= 0 && static_cast<std::size_t>(command) < commandCodes.size();
    const std::uint8_t code = known ? commandCodes[static_cast<std::size_t>(command)] : 0;
    return step == MasterStep::Later ? code | laterStep : code;
}

std::vector<std::string_view> MasterStatusLines(std::uint8_t status) {
    std::vector<std::string_view> lines;
    for (const StatusBit& error : busErrors) {
        if ((status & error.bit) != 0) {
            lines.push_back(error.line);
        }
    }
    const int result = status & resultMask;
    if (result == resultPass) {
        lines.push_back(masterPass);
    } else if (result == resultFail) {
        lines.emplace_back("Fail");
    }
    return lines;
}

} // namespace busquill
