#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace busquill::cli::board {

class LineOutput;

/// Two digits for each byte, with nothing between them.
[[nodiscard]] std::string HexText(std::span<const std::uint8_t> bytes);

/// How memory is printed.
enum class MemoryForm {
    Nothing,
    Dump,     // rows of an address, sixteen bytes, and the same as characters
    DataFile, // as a data file of the exerciser holds it
    Bytes,    // as they are
};

/// Prints memory that is read in steps, as it comes.
class MemoryPrinter {
public:
    /// The output outlives the printer.
    MemoryPrinter(LineOutput& output, MemoryForm form) : output_(output), form_(form) {}

    /// Memory begins at another address.
    void Begin(std::uint32_t address);
    /// Prints what is new of the memory read since Begin.
    void Follow(std::span<const std::uint8_t> memory);
    /// Prints the last row, which may be a part of one.
    void End(std::span<const std::uint8_t> memory);

private:
    void PrintRow(std::span<const std::uint8_t> row);

    LineOutput& output_;
    const MemoryForm form_;
    std::uint32_t address_ = 0;
    std::size_t printed_ = 0;
};

} // namespace busquill::cli::board
