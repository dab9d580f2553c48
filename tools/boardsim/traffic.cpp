#include "traffic.h"

#include <algorithm>

namespace boardsim {

namespace {

constexpr unsigned timeUnits[] = {1, 1000, 1000000};

/// A time in the field's own form: a count of at most 16 bits above a unit code.
std::uint64_t TimeField(unsigned nanoseconds) {
    unsigned code = 0;
    while (nanoseconds / timeUnits[code] > 0x7FFF && code < 2) {
        ++code;
    }
    return std::uint64_t{nanoseconds / timeUnits[code]} << 2 | code;
}

} // namespace

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
    SetField(record, bitTime, 18, TimeField(nanoseconds));
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

std::vector<Record> MakeZoom(const std::vector<Record>& records, std::size_t trigger) {
    constexpr int before = 255;
    constexpr int count = 511;
    constexpr int finer = 8;
    constexpr unsigned picoseconds = 3750;
    std::vector<Record> zoom;
    for (int i = -before; i < count - before; ++i) {
        const std::int64_t offset = i >= 0 ? i / finer : (i - finer + 1) / finer;
        const std::int64_t wanted = static_cast<std::int64_t>(trigger) + offset;
        const std::int64_t last = static_cast<std::int64_t>(records.size()) - 1;
        Record record =
            records[static_cast<std::size_t>(std::clamp<std::int64_t>(wanted, 0, last))];
        SetBit(record, bitClock, (i + before + 1) % finer < finer / 2);
        SetField(record, bitTime, 18, TimeField(picoseconds));
        SetField(record, bitRule, 8, 0);
        zoom.push_back(record);
    }
    return zoom;
}

} // namespace boardsim
