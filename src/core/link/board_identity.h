/// The connected board: its model, its bus configuration, and the status of its capture.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Model ids. An unknown model name leaves the id unchanged.
enum ModelId : std::int32_t {
    ModelDemo = 1,
    ModelPciKite,
    ModelPciWren,
    ModelVmeKite,
    ModelVmeWren,
    ModelVmeLark,
    ModelPcfKite,
    ModelPcfWren,
    ModelPmcKite,
    ModelPmcWren,
    ModelVmeKiteP2,
    ModelVmeKiteP0,
    ModelVsbKite,
};

enum BusMode : std::int32_t {
    BusPci = 0,
    BusPciX,
    BusVme,
    Bus2eVme,
    Bus2eSst,
    BusPc104,
    BusPc104Plus,
    BusVmeP2,
    BusVmeP0,
    BusVsb,
};

/// The bus that the board is set up for.
struct BusConfig {
    std::int32_t busMode = 0;
    std::int32_t busWidth = 0;     // 0: 32 bit, 1: 64 bit
    std::int32_t busVoltage = 0;   // 0: 5.0V, 1: 3.3V
    std::int32_t busFrequency = 0; // MHz
    std::int32_t masterLock = 0;

    friend bool operator==(const BusConfig&, const BusConfig&) = default;
};

struct BoardIdentity {
    std::string modelString;
    std::int32_t modelId = 0;
    std::int32_t bufferSizeK = 0; // units of 1024 samples
    std::int32_t serialNumber = 0;
    std::string firmwareRevision;
    std::string hardwareRevision;
};

/// What the rest of the program needs to know about the board: a copy of what determines its
/// family.
struct BoardTraits {
    std::string modelString;
    bool demoMode = false;
    BusConfig bus;

    [[nodiscard]] bool IsDemoMode() const noexcept { return demoMode; }
    [[nodiscard]] bool IsWrenBoard() const noexcept;
    [[nodiscard]] bool IsVmeFamily() const noexcept;
    [[nodiscard]] bool IsVmeLark() const noexcept;
    [[nodiscard]] bool HasPowerZoom() const noexcept { return !IsWrenBoard() && !IsVmeLark(); }
    [[nodiscard]] bool IsVmeKiteP2() const noexcept;
    [[nodiscard]] bool IsVmeKiteP0() const noexcept;
    [[nodiscard]] bool IsVsbFamily() const noexcept;
    [[nodiscard]] bool IsPciXMode() const noexcept;
    [[nodiscard]] bool IsPci32() const noexcept;
    [[nodiscard]] bool IsPci64() const noexcept;
};

/// Whether the records of one board mean the same as those of another.
[[nodiscard]] bool IsSameBus(const BoardTraits& a, const BoardTraits& b) noexcept;

constexpr std::size_t statusBlockSize = 18;
constexpr std::size_t liveBlockSize = 9;
constexpr std::size_t busBlockSize = 2;

/// Bits of the live status byte.
constexpr std::uint8_t liveLevelMask = 0x07;
constexpr std::uint8_t liveBufferFull = 0x10;
constexpr std::uint8_t liveTriggered = 0x20;
constexpr std::uint8_t liveTraceActive = 0x80;

struct LiveStatus {
    std::uint8_t liveStatus = 0;
    std::int32_t samplesBefore = 0;
    std::int32_t samplesAfter = 0;
    std::int32_t eventOccurrences = 0;
};

/// The display names of all bus modes, by their numbers.
[[nodiscard]] std::span<const std::string_view> BusModeNames() noexcept;
/// The names of all models, Demo Mode first.
[[nodiscard]] std::vector<std::string_view> ModelNames();
/// The traits of a model by its name, in its first bus mode; nothing for an unknown model.
[[nodiscard]] std::optional<BoardTraits> TraitsOfModel(std::string_view name);

/// The model to assume for a capture of which only the bus is known. The P2 and P0 connectors have
/// models of their own; for every other bus, any model is suitable.
[[nodiscard]] std::string_view ModelForBus(std::int32_t busMode) noexcept;

/// The bus modes of a model by its name; those of Demo Mode for an unknown one.
[[nodiscard]] std::span<const std::int32_t> BusModesOfModel(std::string_view name) noexcept;

/// The display name of a bus mode; any other number is shown as "PCI".
[[nodiscard]] std::string_view BusModeName(std::int32_t busMode) noexcept;

/// The bus modes that a model offers; an unknown model is treated as Demo Mode.
[[nodiscard]] std::span<const std::int32_t> BusModesOf(std::int32_t modelId) noexcept;

/// Parses the status block; an unknown model name keeps `previous.modelId`.
[[nodiscard]] BoardIdentity ParseIdentity(std::span<const std::uint8_t, statusBlockSize> block,
                                          const BoardIdentity& previous);
[[nodiscard]] BusConfig ParseBusConfig(std::span<const std::uint8_t, busBlockSize> block,
                                       std::int32_t modelId) noexcept;
[[nodiscard]] std::array<std::uint8_t, busBlockSize>
EncodeBusConfig(const BusConfig& config) noexcept;
[[nodiscard]] LiveStatus
ParseLiveStatus(std::span<const std::uint8_t, liveBlockSize> block) noexcept;
/// A stored bus mode, corrected to one that the model supports.
[[nodiscard]] std::int32_t CorrectBusMode(std::int32_t busMode, std::int32_t modelId) noexcept;

} // namespace busquill
