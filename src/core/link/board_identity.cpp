#include "link/board_identity.h"

#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

struct Model {
    std::int32_t id;
    std::string_view name;
};

// clang-format off
constexpr Model models[] = {
    {ModelDemo,      "Demo Mode"},
    {ModelPciKite,   "PCIKite"},
    {ModelPciWren,   "PCIWren"},
    {ModelVmeKite,   "VMEKite"},
    {ModelVmeWren,   "VMEWren"},
    {ModelVmeLark,   "VMELark"},
    {ModelPcfKite,   "PCFKite"},
    {ModelPcfWren,   "PCFWren"},
    {ModelPmcKite,   "PMCKite"},
    {ModelPmcWren,   "PMCWren"},
    {ModelVmeKiteP2, "VMEKiteP2"},
    {ModelVmeKiteP0, "VMEKiteP0"},
    {ModelVsbKite,   "VSBKite"},
};
static_assert(std::size(models) == 13);

constexpr std::int32_t demoModes[] = {BusPci, BusPciX, BusVme, Bus2eVme, Bus2eSst,
                                      BusVmeP2, BusVmeP0, BusVsb};
constexpr std::int32_t pciKiteModes[] = {BusPci, BusPciX};
constexpr std::int32_t pciWrenModes[] = {BusPci};
constexpr std::int32_t vmeKiteModes[] = {BusVme, Bus2eVme, Bus2eSst};
constexpr std::int32_t vmeModes[]     = {BusVme};
constexpr std::int32_t p2Modes[]      = {BusVmeP2};
constexpr std::int32_t p0Modes[]      = {BusVmeP0};
constexpr std::int32_t vsbModes[]     = {BusVsb};

struct ModelModes {
    std::int32_t id;
    std::span<const std::int32_t> modes;
};

constexpr ModelModes modesOfModels[] = {
    {ModelDemo,      demoModes},
    {ModelPciKite,   pciKiteModes},
    {ModelPcfKite,   pciKiteModes},
    {ModelPmcKite,   pciKiteModes},
    {ModelPciWren,   pciWrenModes},
    {ModelPcfWren,   pciWrenModes},
    {ModelPmcWren,   pciWrenModes},
    {ModelVmeKite,   vmeKiteModes},
    {ModelVmeWren,   vmeModes},
    {ModelVmeLark,   vmeModes},
    {ModelVmeKiteP2, p2Modes},
    {ModelVmeKiteP0, p0Modes},
    {ModelVsbKite,   vsbModes},
};

constexpr std::string_view busModeNames[] = {
    "PCI", "PCI-X", "VME", "2eVME", "2eSST", "PC/104", "PC/104+", "VMEP2", "VMEP0", "VSB",
};
static_assert(std::size(busModeNames) == BusVsb + 1);

// The status block.
constexpr std::size_t nameLength     = 8;
constexpr std::size_t suffixOffset   = 8;
constexpr std::size_t bufferOffset   = 9;
constexpr std::size_t firmwareOffset = 11;
constexpr std::size_t hardwareOffset = 12;
constexpr std::size_t serialOffset   = 16;

// The bus block.
constexpr std::uint8_t modeCodeMask  = 0x03;
constexpr std::uint8_t width64Bit    = 0x04;
constexpr std::uint8_t voltage33Bit  = 0x10;
constexpr std::uint8_t masterLockBit = 0x80;
// clang-format on

bool Contains(const std::string& text, std::string_view part) noexcept {
    return text.find(part) != std::string::npos;
}

std::int32_t LittleEndian(std::span<const std::uint8_t> bytes) noexcept {
    std::int32_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = value << 8 | bytes[i];
    }
    return value;
}

std::int32_t FromBcd(std::uint8_t low, std::uint8_t high) noexcept {
    return ((high >> 4) * 10 + (high & 15)) * 100 + (low >> 4) * 10 + (low & 15);
}

std::string Revision(std::uint8_t tenths) {
    return Printf("%d.%d", tenths / 10, tenths % 10);
}

} // namespace

bool BoardTraits::IsWrenBoard() const noexcept {
    return Contains(modelString, "Wren");
}

bool BoardTraits::IsVmeFamily() const noexcept {
    return Contains(modelString, "VME") ||
           (demoMode && bus.busMode >= BusVme && bus.busMode <= Bus2eSst);
}

bool BoardTraits::IsVmeLark() const noexcept {
    return IsVmeFamily() && Contains(modelString, "Lark");
}

bool BoardTraits::IsVmeKiteP2() const noexcept {
    return IsVmeFamily() && Contains(modelString, "KiteP2");
}

bool BoardTraits::IsVmeKiteP0() const noexcept {
    return IsVmeFamily() && Contains(modelString, "KiteP0");
}

bool BoardTraits::IsVsbFamily() const noexcept {
    return Contains(modelString, "VSB") || (demoMode && bus.busMode == BusVsb);
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

std::string_view BusModeName(std::int32_t busMode) noexcept {
    const bool known = busMode > BusPci && busMode <= BusVsb;
    return busModeNames[static_cast<std::size_t>(known ? busMode : BusPci)];
}

std::span<const std::int32_t> BusModesOf(std::int32_t modelId) noexcept {
    for (const ModelModes& row : modesOfModels) {
        if (row.id == modelId) {
            return row.modes;
        }
    }
    return demoModes;
}

BoardIdentity ParseIdentity(std::span<const std::uint8_t, statusBlockSize> block,
                            const BoardIdentity& previous) {
    std::string name(block.begin(), block.begin() + nameLength);
    name.resize(std::min(name.find('\0'), name.size()));
    name = TrimRight(name);

    BoardIdentity identity;
    identity.modelString = Printf("%s-%d", name.c_str(), block[suffixOffset]);
    identity.modelId = previous.modelId;
    for (const Model& model : models) {
        if (EqualIgnoringCase(model.name, name)) {
            identity.modelId = model.id;
        }
    }
    identity.bufferSizeK = LittleEndian(block.subspan(bufferOffset, 2));
    identity.firmwareRevision = Revision(block[firmwareOffset]);
    identity.hardwareRevision = Revision(block[hardwareOffset]);
    identity.serialNumber = FromBcd(block[serialOffset], block[serialOffset + 1]);
    return identity;
}

BusConfig ParseBusConfig(std::span<const std::uint8_t, busBlockSize> block,
                         std::int32_t modelId) noexcept {
    const int code = block[0] & modeCodeMask;
    BusConfig config;
    switch (modelId) {
    case ModelPciKite:
    case ModelPcfKite:
    case ModelPmcKite:
        config.busMode = code == 1 ? BusPciX : BusPci;
        break;
    case ModelVmeKite:
        config.busMode = code == 1 ? Bus2eVme : code == 2 ? Bus2eSst : BusVme;
        break;
    case ModelVmeWren:
    case ModelVmeLark:
        config.busMode = BusVme;
        break;
    case ModelVmeKiteP2:
        config.busMode = BusVmeP2;
        break;
    case ModelVmeKiteP0:
        config.busMode = BusVmeP0;
        break;
    case ModelVsbKite:
        config.busMode = BusVsb;
        break;
    default:
        config.busMode = BusPci;
    }
    config.busWidth = (block[0] & width64Bit) != 0 ? 1 : 0;
    config.busVoltage = (block[0] & voltage33Bit) != 0 ? 1 : 0;
    config.masterLock = (block[0] & masterLockBit) != 0 ? 1 : 0;
    config.busFrequency = block[1];
    return config;
}

std::array<std::uint8_t, busBlockSize> EncodeBusConfig(const BusConfig& config) noexcept {
    std::uint8_t first = 0;
    switch (config.busMode) {
    case BusPciX:
    case Bus2eVme:
    case BusPc104:
    case BusPc104Plus:
        first = 1;
        break;
    case Bus2eSst:
        first = 2;
        break;
    default:
        break;
    }
    if (config.busWidth == 1) {
        first |= width64Bit;
    }
    if (config.busVoltage == 1) {
        first |= voltage33Bit;
    }
    if (config.masterLock != 0) {
        first |= masterLockBit;
    }
    return {first, static_cast<std::uint8_t>(config.busFrequency)};
}

LiveStatus ParseLiveStatus(std::span<const std::uint8_t, liveBlockSize> block) noexcept {
    return {block[0], LittleEndian(block.subspan(1, 3)), LittleEndian(block.subspan(4, 3)),
            LittleEndian(block.subspan(7, 2))};
}

std::int32_t CorrectBusMode(std::int32_t busMode, std::int32_t modelId) noexcept {
    // Only boards, Demo Mode keeps whatever was stored.
    if (modelId <= ModelDemo || modelId > ModelVsbKite) {
        return busMode;
    }
    const auto allowed = BusModesOf(modelId);
    const bool fits = std::find(allowed.begin(), allowed.end(), busMode) != allowed.end();
    return fits ? busMode : allowed.front();
}

} // namespace busquill
