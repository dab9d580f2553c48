#pragma once

#include "wire.h"

#include <deque>
#include <memory>
#include <optional>
#include <random>
#include <string_view>
#include <vector>

namespace boardsim {

enum class Family { Pci32, Pci64, PciX, Vme, Vsb, Lark, ConnectorP2, ConnectorP0 };

/// The family with a name such as "pci32"; empty for any other text.
[[nodiscard]] std::optional<Family> FamilyOf(std::string_view name);

/// Bits that every family has at the same position.
constexpr int bitClock = 109;
constexpr int bitTime = 110; // unit code below, count above
constexpr int timeBits = 18;
constexpr int bitRule = 128; // 8 bits: code of a finding

/// An endless sequence of bus cycles, one sample per clock or strobe. The same seed gives the same
/// traffic.
class Traffic {
public:
    explicit Traffic(std::uint32_t seed) : random_(seed) {}
    virtual ~Traffic() = default;

    [[nodiscard]] Record Next();

protected:
    /// Appends the samples of one or more bus cycles with Put.
    virtual void Cycle() = 0;
    /// `nanoseconds` since the previous sample.
    void Put(Record record, unsigned nanoseconds, unsigned rule = 0);
    /// A number below `limit`.
    [[nodiscard]] unsigned Pick(unsigned limit) { return random_() % limit; }
    [[nodiscard]] std::uint32_t Word() { return random_(); }

private:
    std::mt19937 random_;
    std::deque<Record> waiting_;
};

[[nodiscard]] std::unique_ptr<Traffic> MakeTraffic(Family family, std::uint32_t seed);

/// The first `count` samples of a family's traffic.
[[nodiscard]] std::vector<Record> MakeRecords(Family family, std::uint32_t seed, std::size_t count);

/// Samples the bus around `trigger` again, at intervals of `picoseconds`: 255 samples before it and
/// 256 from it on.
[[nodiscard]] std::vector<Record> MakeZoom(const std::vector<Record>& records, std::size_t trigger,
                                           unsigned picoseconds = 3750);

/// Converts a time to the form of its field, and back.
[[nodiscard]] std::uint64_t TimeField(std::uint64_t time);
[[nodiscard]] std::uint64_t TimeOfField(std::uint64_t field);

std::unique_ptr<Traffic> MakePciTraffic(std::uint32_t seed, bool wide, bool pciX);
std::unique_ptr<Traffic> MakeVmeTraffic(std::uint32_t seed, bool lark);
std::unique_ptr<Traffic> MakeVsbTraffic(std::uint32_t seed);
std::unique_ptr<Traffic> MakeConnectorTraffic(std::uint32_t seed);

} // namespace boardsim
