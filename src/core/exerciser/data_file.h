/// Data files of the exercisers: text, with bytes in hexadecimal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// Takes the text of a data file piece by piece. Digits make a byte, anything else ends it. A
/// byte's value begins with what the digits before it in its line have left: "1f 2" is 1f and f2.
/// Files written with two digits for each byte do not show it, and others rely on it.
class DataFileParser {
public:
    /// Appends the bytes that the text completes.
    void Take(std::string_view text, std::vector<std::uint8_t>& bytes);
    /// Ends the text: a byte that has begun is appended.
    void End(std::vector<std::uint8_t>& bytes);

private:
    std::uint8_t value_ = 0;
    bool begun_ = false;
};

/// All bytes of a data file; nothing when it cannot be read.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> ReadDataFile(const std::string& path);

/// The line of one step: "00 ff ", and a line feed.
[[nodiscard]] std::string DataFileLine(std::span<const std::uint8_t> bytes);

} // namespace busquill
