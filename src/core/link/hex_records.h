#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace busquill {

/// A record of an Intel hex file. Its checksum is not read.
struct HexRecord {
    enum Type : std::uint8_t { Data = 0, End = 1, Segment = 2 };

    Type type = Data;
    std::uint16_t address = 0;
    std::vector<std::uint8_t> data;
};

/// Reads the records of an Intel hex file. A record begins at a ":" and has the length that it
/// states, so line ends do not matter and a ":" among its digits is a digit.
class HexRecords {
public:
    enum class Step { Record, Invalid, EndOfFile };

    explicit HexRecords(std::string text) : text_(std::move(text)) {}

    /// How many ":" the text has.
    [[nodiscard]] std::size_t Colons() const noexcept;
    /// Reads the next record. One that the text cuts off, or of a type above 2, is invalid. Any
    /// character counts as a digit.
    [[nodiscard]] Step Next(HexRecord& record);

private:
    /// The value of the next two characters, or nothing where the text ends.
    [[nodiscard]] std::optional<std::uint8_t> NextByte();

    std::string text_;
    std::size_t position_ = 0;
};

} // namespace busquill
