#include "cli/board/memory_printer.h"

#include "cli/board/line_output.h"
#include "exerciser/data_file.h"
#include "exerciser/memory_dump.h"
#include "platform/text.h"

#include <algorithm>

namespace busquill::cli::board {

namespace {

constexpr int bytesPerRow = 16;

} // namespace

std::string HexText(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += Printf("%02x", byte);
    }
    return text;
}

void MemoryPrinter::Begin(std::uint32_t address) {
    address_ = address;
    printed_ = 0;
}

void MemoryPrinter::Follow(std::span<const std::uint8_t> memory) {
    if (form_ == MemoryForm::Dump) {
        while (memory.size() - printed_ >= bytesPerRow) {
            PrintRow(memory.subspan(printed_, bytesPerRow));
        }
        return;
    }
    const auto fresh = memory.subspan(printed_);
    if (form_ == MemoryForm::DataFile && !fresh.empty()) {
        output_.Write(DataFileLine(fresh));
    } else if (form_ == MemoryForm::Bytes) {
        output_.Write({reinterpret_cast<const char*>(fresh.data()), fresh.size()});
    }
    printed_ = memory.size();
}

void MemoryPrinter::End(std::span<const std::uint8_t> memory) {
    Follow(memory);
    if (printed_ < memory.size()) {
        PrintRow(memory.subspan(printed_));
    }
}

void MemoryPrinter::PrintRow(std::span<const std::uint8_t> row) {
    const auto address = address_ + static_cast<std::uint32_t>(printed_);
    output_.Print(Trim(DumpRowText(address, 0, bytesPerRow, row)));
    printed_ += row.size();
}

} // namespace busquill::cli::board
