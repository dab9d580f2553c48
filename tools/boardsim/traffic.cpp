#include "traffic.h"

#include <algorithm>

namespace boardsim {

namespace {

/// Nanoseconds, by unit code.
constexpr std::uint64_t timeUnits[] = {1, 1000, 1000000, 1000000000};
constexpr std::uint64_t largestCount = 0x7FFF;

} // namespace

std::uint64_t TimeField(std::uint64_t time) {
    unsigned code = 0;
    while (time / timeUnits[code] > largestCount && code < 3) {
        ++code;
    }
    return std::min(time / timeUnits[code], largestCount) << 2 | code;
}

std::uint64_t TimeOfField(std::uint64_t field) {
    return (field >> 2) * timeUnits[field & 3];
}

std::optional<Family> FamilyOf(std::string_view name) {
    constexpr std::pair<std::string_view, Family> names[] = {
        {"pci32", Family::Pci32},    {"pci64", Family::Pci64},    {"pcix", Family::PciX},
        {"vme", Family::Vme},        {"vsb", Family::Vsb},        {"lark", Family::Lark},
        {"p2", Family::ConnectorP2}, {"p0", Family::ConnectorP0},
    };
    for (const auto& [known, family] : names) {
        if (known == name) {
            return family;
        }
    }
    return std::nullopt;
}

Record Traffic::Next() {
    while (waiting_.empty()) {
        Cycle();
    }
    const Record record = waiting_.front();
    waiting_.pop_front();
    return record;
}

void Traffic::Put(Record record, unsigned nanoseconds, unsigned rule) {
    SetField(record, bitTime, timeBits, TimeField(nanoseconds));
    SetField(record, bitRule, 8, rule);
    waiting_.push_back(record);
}

std::unique_ptr<Traffic> MakeTraffic(Family family, std::uint32_t seed) {
    switch (family) {
    case Family::Pci32:
        return MakePciTraffic(seed, false, false);
    case Family::Pci64:
        return MakePciTraffic(seed, true, false);
    case Family::PciX:
        return MakePciTraffic(seed, true, true);
    case Family::Vme:
        return MakeVmeTraffic(seed, false);
    case Family::Lark:
        return MakeVmeTraffic(seed, true);
    case Family::Vsb:
        return MakeVsbTraffic(seed);
    case Family::ConnectorP2:
    case Family::ConnectorP0:
        break;
    }
    return MakeConnectorTraffic(seed);
}

std::vector<Record> MakeRecords(Family family, std::uint32_t seed, std::size_t count) {
    const auto traffic = MakeTraffic(family, seed);
    std::vector<Record> records(count);
    std::generate(records.begin(), records.end(), [&] { return traffic->Next(); });
    return records;
}

std::vector<Record> MakeZoom(const std::vector<Record>& records, std::size_t trigger,
                             unsigned picoseconds) {
    constexpr std::int64_t before = 255;
    constexpr std::int64_t count = 511;
    constexpr std::int64_t clockPeriod = 30000; // of the bus, in picoseconds
    std::vector<Record> zoom;
    for (std::int64_t i = -before; i < count - before; ++i) {
        const std::int64_t time = i * picoseconds;
        const std::int64_t offset = (time - (time < 0 ? clockPeriod - 1 : 0)) / clockPeriod;
        const std::int64_t wanted = static_cast<std::int64_t>(trigger) + offset;
        const std::int64_t last = static_cast<std::int64_t>(records.size()) - 1;
        Record record =
            records[static_cast<std::size_t>(std::clamp<std::int64_t>(wanted, 0, last))];
        SetBit(record, bitClock, time - offset * clockPeriod < clockPeriod / 2);
        SetField(record, bitTime, timeBits, TimeField(picoseconds));
        SetField(record, bitRule, 8, 0);
        zoom.push_back(record);
    }
    return zoom;
}

} // namespace boardsim
