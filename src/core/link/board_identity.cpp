#include "link/board_identity.h"

#include "platform/text.h"

#include <algorithm>
#include <array>

namespace busquill {

namespace {

// Layout of the status block.
constexpr std::size_t modelNameSize = 8;
constexpr std::size_t offsetSuffix = 8;
constexpr std::size_t offsetBufferSize = 9;
constexpr std::size_t offsetFirmware = 11;
constexpr std::size_t offsetHardware = 12;
constexpr std::size_t offsetSerialLow = 16;
constexpr std::size_t offsetSerialHigh = 17;

// Layout of the live status block.
constexpr std::size_t offsetBefore = 1;
constexpr std::size_t offsetAfter = 4;
constexpr std::size_t offsetOccurrences = 7;

// Bits of the first byte of the bus block.
constexpr unsigned busModeCodeMask = 0x03;
constexpr unsigned busWidthBit = 0x04;
constexpr unsigned busVoltageBit = 0x10;
constexpr unsigned busMasterLockBit = 0x80;

struct Model {
    std::int32_t id;
    std::string_view name;
};

constexpr std::array<Model, 13> models{{
    {ModelDemo, "Demo Mode"},
    {ModelPciKite, "PCIKite"},
    {ModelPciWren, "PCIWren"},
    {ModelVmeKite, "VMEKite"},
    {ModelVmeWren, "VMEWren"},
    {ModelVmeLark, "VMELark"},
    {ModelPcfKite, "PCFKite"},
    {ModelPcfWren, "PCFWren"},
    {ModelPmcKite, "PMCKite"},
    {ModelPmcWren, "PMCWren"},
    {ModelVmeKiteP2, "VMEKiteP2"},
    {ModelVmeKiteP0, "VMEKiteP0"},
    {ModelVsbKite, "VSBKite"},
}};

struct OfferedModes {
    std::int32_t model;
    std::size_t count;
    std::array<std::int32_t, 8> modes;
};

// clang-format off
constexpr std::array<OfferedModes, 13> offeredModes{{
    {ModelDemo,      8, {BusPci, BusPciX, BusVme, Bus2eVme, Bus2eSst, BusVmeP2, BusVmeP0, BusVsb}},
    {ModelPciKite,   2, {BusPci, BusPciX}},
    {ModelPciWren,   1, {BusPci}},
    {ModelVmeKite,   3, {BusVme, Bus2eVme, Bus2eSst}},
    {ModelVmeWren,   1, {BusVme}},
    {ModelVmeLark,   1, {BusVme}},
    {ModelPcfKite,   2, {BusPci, BusPciX}},
    {ModelPcfWren,   1, {BusPci}},
    {ModelPmcKite,   2, {BusPci, BusPciX}},
    {ModelPmcWren,   1, {BusPci}},
    {ModelVmeKiteP2, 1, {BusVmeP2}},
    {ModelVmeKiteP0, 1, {BusVmeP0}},
    {ModelVsbKite,   1, {BusVsb}},
}};
// clang-format on
static_assert(offeredModes.front().model == ModelDemo, "serves the models that have no row");

constexpr std::array<std::string_view, 10> busModeNames{
    "PCI", "PCI-X", "VME", "2eVME", "2eSST", "PC/104", "PC/104+", "VMEP2", "VMEP0", "VSB",
};

/// Returns null for an unknown name.
const Model* FindModel(std::string_view name) noexcept {
    const auto* model = std::ranges::find_if(
        models, [&](const Model& row) { return EqualIgnoringCase(row.name, name); });
    return model == models.end() ? nullptr : model;
}

template <std::size_t count>
std::int32_t LittleEndian(const std::uint8_t* bytes) noexcept {
    std::int32_t value = 0;
    for (std::size_t i = count; i-- > 0;) {
        value = value * 256 + bytes[i];
    }
    return value;
}

std::string Tenths(int revision) {
    return Printf("%d.%d", revision / 10, revision % 10);
}

std::int32_t SerialNumber(int low, int high) noexcept {
    const int d0 = low % 16;
    const int d1 = low / 16;
    const int d2 = high % 16;
    const int d3 = high / 16;
    return ((d3 * 10 + d2) * 10 + d1) * 10 + d0;
}

std::int32_t BusModeFromCode(unsigned code, std::int32_t modelId) noexcept {
    switch (modelId) {
    case ModelPciKite:
    case ModelPcfKite:
    case ModelPmcKite:
        return code == 1 ? BusPciX : BusPci;
    case ModelVmeKite:
        return code == 1 ? Bus2eVme : code == 2 ? Bus2eSst : BusVme;
    default:
        return CorrectBusMode(BusPci, modelId); // the other models have one mode
    }
}

unsigned BusModeCode(std::int32_t busMode) noexcept {
    switch (busMode) {
    case BusPciX:
    case Bus2eVme:
    case BusPc104:
    case BusPc104Plus:
        return 1;
    case Bus2eSst:
        return 2;
    default:
        return 0;
    }
}

} // namespace

bool BoardTraits::IsWrenBoard() const noexcept {
    return modelString.find("Wren") != std::string::npos;
}

bool BoardTraits::IsVmeFamily() const noexcept {
    return modelString.find("VME") != std::string::npos ||
           (demoMode && bus.busMode >= BusVme && bus.busMode <= Bus2eSst);
}

bool BoardTraits::IsVmeLark() const noexcept {
    return IsVmeFamily() && modelString.find("Lark") != std::string::npos;
}

bool BoardTraits::IsVmeKiteP2() const noexcept {
    return IsVmeFamily() && modelString.find("KiteP2") != std::string::npos;
}

bool BoardTraits::IsVmeKiteP0() const noexcept {
    return IsVmeFamily() && modelString.find("KiteP0") != std::string::npos;
}

bool BoardTraits::IsVsbFamily() const noexcept {
    return modelString.find("VSB") != std::string::npos || (demoMode && bus.busMode == BusVsb);
}

bool BoardTraits::IsPciXMode() const noexcept {
    return !IsVmeFamily() && bus.busMode == BusPciX;
}

bool BoardTraits::IsPci32() const noexcept {
    return bus.busMode == BusPci && bus.busWidth == 0;
}

bool BoardTraits::IsPci64() const noexcept {
    return bus.busMode == BusPci && bus.busWidth == 1;
}

bool IsSameBus(const BoardTraits& a, const BoardTraits& b) noexcept {
    return a.modelString == b.modelString && a.bus.busMode == b.bus.busMode &&
           a.bus.busWidth == b.bus.busWidth;
}

std::span<const std::string_view> BusModeNames() noexcept {
    return busModeNames;
}

std::vector<std::string_view> ModelNames() {
    std::vector<std::string_view> names;
    names.reserve(models.size());
    for (const Model& model : models) {
        names.push_back(model.name);
    }
    return names;
}

std::span<const std::int32_t> BusModesOfModel(std::string_view name) noexcept {
    const Model* model = FindModel(name);
    return BusModesOf(model == nullptr ? std::int32_t{ModelDemo} : model->id);
}

std::optional<BoardTraits> TraitsOfModel(std::string_view name) {
    const Model* model = FindModel(name);
    if (model == nullptr) {
        return std::nullopt;
    }
    BoardTraits traits;
    traits.modelString = model->name;
    traits.demoMode = model->id == ModelDemo;
    traits.bus.busMode = BusModesOf(model->id).front();
    return traits;
}

std::string_view ModelForBus(std::int32_t busMode) noexcept {
    switch (busMode) {
    case BusVmeP2:
        return "VMEKiteP2";
    case BusVmeP0:
        return "VMEKiteP0";
    default:
        return "Demo Mode";
    }
}

std::string_view BusModeName(std::int32_t busMode) noexcept {
    const auto index = static_cast<std::size_t>(busMode);
    return index < busModeNames.size() ? busModeNames[index] : busModeNames.front();
}

std::span<const std::int32_t> BusModesOf(std::int32_t modelId) noexcept {
    const auto* row = std::ranges::find(offeredModes, modelId, &OfferedModes::model);
    if (row == offeredModes.end()) {
        row = offeredModes.begin();
    }
    return std::span(row->modes).first(row->count);
}

BoardIdentity ParseIdentity(std::span<const std::uint8_t, statusBlockSize> block,
                            const BoardIdentity& previous) {
    const auto field = block.first<modelNameSize>();
    const std::string name = TrimRight(std::string(field.begin(), std::ranges::find(field, 0)));

    BoardIdentity identity;
    identity.modelString = Printf("%s-%d", name.c_str(), block[offsetSuffix]);
    const Model* model = FindModel(name);
    identity.modelId = model == nullptr ? previous.modelId : model->id;
    identity.bufferSizeK = LittleEndian<2>(&block[offsetBufferSize]);
    identity.serialNumber = SerialNumber(block[offsetSerialLow], block[offsetSerialHigh]);
    identity.firmwareRevision = Tenths(block[offsetFirmware]);
    identity.hardwareRevision = Tenths(block[offsetHardware]);
    return identity;
}

BusConfig ParseBusConfig(std::span<const std::uint8_t, busBlockSize> block,
                         std::int32_t modelId) noexcept {
    const unsigned bits = block[0];
    return {.busMode = BusModeFromCode(bits & busModeCodeMask, modelId),
            .busWidth = (bits & busWidthBit) != 0,
            .busVoltage = (bits & busVoltageBit) != 0,
            .busFrequency = block[1],
            .masterLock = (bits & busMasterLockBit) != 0};
}

std::array<std::uint8_t, busBlockSize> EncodeBusConfig(const BusConfig& config) noexcept {
    unsigned bits = BusModeCode(config.busMode);
    bits |= config.busWidth == 1 ? busWidthBit : 0;
    bits |= config.busVoltage == 1 ? busVoltageBit : 0;
    bits |= config.masterLock != 0 ? busMasterLockBit : 0;
    return {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(config.busFrequency)};
}

LiveStatus ParseLiveStatus(std::span<const std::uint8_t, liveBlockSize> block) noexcept {
    return {.liveStatus = block[0],
            .samplesBefore = LittleEndian<3>(&block[offsetBefore]),
            .samplesAfter = LittleEndian<3>(&block[offsetAfter]),
            .eventOccurrences = LittleEndian<2>(&block[offsetOccurrences])};
}

std::int32_t CorrectBusMode(std::int32_t busMode, std::int32_t modelId) noexcept {
    switch (modelId) {
    case ModelPciKite:
    case ModelPcfKite:
    case ModelPmcKite:
        return busMode == BusPciX ? BusPciX : BusPci;
    case ModelPciWren:
    case ModelPcfWren:
    case ModelPmcWren:
        return BusPci;
    case ModelVmeKite:
        return busMode == Bus2eVme || busMode == Bus2eSst ? busMode : BusVme;
    case ModelVmeWren:
    case ModelVmeLark:
        return BusVme;
    case ModelVmeKiteP2:
        return BusVmeP2;
    case ModelVmeKiteP0:
        return BusVmeP0;
    case ModelVsbKite:
        return BusVsb;
    default:
        return busMode;
    }
}

} // namespace busquill
