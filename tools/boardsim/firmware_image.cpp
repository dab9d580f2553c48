#include "firmware_image.h"

#include <vector>

namespace boardsim {

namespace {

constexpr std::uint32_t rowLength = 16;

constexpr std::uint8_t typeData = 0;
constexpr std::uint8_t typeEnd = 1;
constexpr std::uint8_t typeSegment = 2;

/// The segment whose records reach an address, in units of 16 bytes. The last one starts just below
/// 1 MiB and so reaches beyond it.
std::uint16_t SegmentOf(std::uint32_t address) {
    return address < 0x100000 ? static_cast<std::uint16_t>(address >> 16 << 12) : 0xFFFF;
}

void AppendRecord(std::string& text, std::uint8_t type, std::uint16_t address,
                  std::span<const std::uint8_t> data) {
    std::vector<std::uint8_t> record = {static_cast<std::uint8_t>(data.size()),
                                        static_cast<std::uint8_t>(address >> 8),
                                        static_cast<std::uint8_t>(address), type};
    record.insert(record.end(), data.begin(), data.end());
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : record) {
        sum = static_cast<std::uint8_t>(sum + byte);
    }
    record.push_back(static_cast<std::uint8_t>(-sum));
    text += ':';
    for (const std::uint8_t byte : record) {
        constexpr auto digits = "0123456789ABCDEF";
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    text += '\n';
}

} // namespace

void FirmwareImage::Write(std::uint32_t address, std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) {
        if (address < size) {
            bytes_[address] = byte;
        }
        ++address;
    }
}

std::string FirmwareImage::HexText() const {
    std::string text;
    std::uint16_t segment = 0;
    for (auto at = bytes_.begin(); at != bytes_.end();) {
        const std::uint32_t first = at->first;
        const std::uint32_t end = (first / rowLength + 1) * rowLength;
        std::vector<std::uint8_t> row;
        for (; at != bytes_.end() && at->first == first + row.size() && at->first < end; ++at) {
            row.push_back(at->second);
        }
        if (const std::uint16_t its = SegmentOf(first); its != segment) {
            segment = its;
            AppendRecord(text, typeSegment, 0,
                         std::vector{static_cast<std::uint8_t>(segment >> 8),
                                     static_cast<std::uint8_t>(segment)});
        }
        AppendRecord(text, typeData, static_cast<std::uint16_t>(first - segment * 16U), row);
    }
    AppendRecord(text, typeEnd, 0, {});
    return text;
}

} // namespace boardsim
