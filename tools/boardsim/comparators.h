#pragma once

#include "traffic.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace boardsim {

/// Compares the bus with the events: returns which of eight events each sample matches.
///
/// An event compares bits with a value. Two of its bits are not bits of the bus: they select how a
/// field of the bus is compared as a number, using only its compared bits.
///
///   both compared, 00 or 11   equal      10 (the upper one set)   below
///   one or none compared      equal      01                       above
///
/// On a PCI bus the command is valid with the address only. An event for data compares its command
/// with that of the transfer, and matches nothing between transfers.
class Comparators {
public:
    /// Compares all bits individually.
    Comparators() = default;
    explicit Comparators(Family family);

    /// Takes event rows of 30 bytes, alternating value and compare bytes.
    void Load(std::span<const std::uint8_t> rows);
    /// One bit for each event. Expects the samples of the bus in order.
    [[nodiscard]] unsigned Matches(const Record& record);

private:
    /// A field, and the lower of the two bits that select how it is compared.
    struct Field {
        int selector;
        int first;
        int width;
    };
    enum class Order { Equal, Above, Below };
    struct Event {
        Record value{};
        Record compare{};
        std::vector<Order> orders; // of the fields
        bool ofTransfers = false;  // compares the command of a transfer
    };

    [[nodiscard]] Order OrderOf(const Event& event, const Field& field) const;
    [[nodiscard]] bool Matches(const Event& event, const Record& record) const;
    void FollowTransfer(const Record& record);

    std::vector<Field> fields_;
    bool followsTransfers_ = false;
    int ignoredFirst_ = 0; // bits that the bus does not have
    int ignoredWidth_ = 0;
    std::vector<Event> events_;
    std::optional<std::uint64_t> command_; // of the current transfer
};

} // namespace boardsim
