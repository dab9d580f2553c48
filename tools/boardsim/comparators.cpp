#include "comparators.h"

namespace boardsim {

namespace {

constexpr std::size_t eventRow = 30;
constexpr int busRange = 110;  // selects how AD, or the address of a VME bus, is compared
constexpr int dataRange = 118; // the same for the data of a VME bus
constexpr int halfWidth = 32;

// Of a PCI bus; control lines are electrical levels.
constexpr int bitCommand = 64;
constexpr int commandBits = 8;
constexpr int bitFrame = 72;
constexpr int bitIrdy = 74;
constexpr int bitAddress = 95;

bool IsPci(Family family) {
    return family == Family::Pci32 || family == Family::Pci64 || family == Family::PciX;
}

} // namespace

Comparators::Comparators(Family family) : followsTransfers_(IsPci(family)) {
    switch (family) {
    case Family::Pci32:
    case Family::Vsb:
        fields_ = {{busRange, 0, halfWidth}};
        ignoredFirst_ = halfWidth;
        ignoredWidth_ = halfWidth;
        break;
    case Family::Pci64:
    case Family::PciX:
        fields_ = {{busRange, 0, 2 * halfWidth}};
        break;
    case Family::Vme:
    case Family::Lark:
        fields_ = {{busRange, 0, halfWidth}, {dataRange, halfWidth, halfWidth}};
        break;
    case Family::ConnectorP2:
    case Family::ConnectorP0:
        break;
    }
}

Comparators::Order Comparators::OrderOf(const Event& event, const Field& field) const {
    if (GetField(event.compare, field.selector, 2) != 3) {
        return Order::Equal;
    }
    const std::uint64_t choice = GetField(event.value, field.selector, 2);
    return choice == 1 ? Order::Above : choice == 2 ? Order::Below : Order::Equal;
}

void Comparators::Load(std::span<const std::uint8_t> rows) {
    events_.clear();
    command_.reset();
    for (std::size_t row = 0; row + eventRow <= rows.size(); row += eventRow) {
        Event& event = events_.emplace_back();
        for (std::size_t i = 0; i < eventRow / 2; ++i) {
            event.value[i] = rows[row + 2 * i];
            event.compare[i] = rows[row + 2 * i + 1];
        }
        for (const Field& field : fields_) {
            event.orders.push_back(OrderOf(event, field));
            SetField(event.compare, field.selector, 2, 0);
        }
        SetField(event.compare, ignoredFirst_, ignoredWidth_, 0);
        event.ofTransfers = followsTransfers_ && GetBit(event.compare, bitAddress) &&
                            !GetBit(event.value, bitAddress) &&
                            GetField(event.compare, bitCommand, commandBits) != 0;
    }
}

void Comparators::FollowTransfer(const Record& record) {
    if (GetBit(record, bitAddress)) {
        command_ = GetField(record, bitCommand, commandBits);
    } else if (GetBit(record, bitFrame) && GetBit(record, bitIrdy)) {
        command_.reset();
    }
}

bool Comparators::Matches(const Event& event, const Record& record) const {
    Record seen = record;
    if (event.ofTransfers) {
        if (!command_) {
            return false;
        }
        SetField(seen, bitCommand, commandBits, *command_);
    }
    Record compare = event.compare;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const Field& field = fields_[i];
        if (event.orders[i] == Order::Equal) {
            continue;
        }
        const std::uint64_t mask = GetField(compare, field.first, field.width);
        const std::uint64_t wanted = GetField(event.value, field.first, field.width) & mask;
        const std::uint64_t found = GetField(seen, field.first, field.width) & mask;
        if (event.orders[i] == Order::Above ? found <= wanted : found >= wanted) {
            return false;
        }
        SetField(compare, field.first, field.width, 0);
    }
    for (std::size_t i = 0; i < eventRow / 2; ++i) {
        if (((seen[i] ^ event.value[i]) & compare[i]) != 0) {
            return false;
        }
    }
    return true;
}

unsigned Comparators::Matches(const Record& record) {
    if (followsTransfers_) {
        FollowTransfer(record);
    }
    unsigned matches = 0;
    for (std::size_t e = 0; e < events_.size(); ++e) {
        matches |= Matches(events_[e], record) ? 1U << e : 0;
    }
    return matches;
}

} // namespace boardsim
