#include "exerciser/data_file.h"

#include "platform/text_file.h"

namespace busquill {

namespace {

constexpr char hexDigits[] = "0123456789abcdef";

/// The value of a hexadecimal digit of either case, or nothing.
std::optional<std::uint8_t> DigitValue(char c) noexcept {
    if (c >= '0' && c <= '9') {
        return static_cast<std::uint8_t>(c - '0');
    }
    const char lower = static_cast<char>(c | 0x20);
    if (lower >= 'a' && lower <= 'f') {
        return static_cast<std::uint8_t>(lower - 'a' + 10);
    }
    return std::nullopt;
}

} // namespace

void DataFileParser::Take(std::string_view text, std::vector<std::uint8_t>& bytes) {
    for (const char c : text) {
        if (const auto digit = DigitValue(c)) {
            value_ = static_cast<std::uint8_t>(value_ << 4 | *digit);
            begun_ = true;
            continue;
        }
        End(bytes);
        if (c == '\n') {
            value_ = 0;
        }
    }
}

void DataFileParser::End(std::vector<std::uint8_t>& bytes) {
    if (begun_) {
        bytes.push_back(value_);
        begun_ = false;
    }
}

std::optional<std::vector<std::uint8_t>> ReadDataFile(const std::string& path) {
    TextReader file;
    if (!file.Open(path)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    DataFileParser parser;
    // Not by lines, which may be longer than a reader of lines takes.
    for (auto text = file.AtHand(); !text.empty(); text = file.AtHand()) {
        parser.Take(text, bytes);
        file.Skip(text.size());
    }
    parser.End(bytes);
    return file.Failed() ? std::nullopt : std::optional(std::move(bytes));
}

std::string DataFileLine(std::span<const std::uint8_t> bytes) {
    std::string line;
    for (const std::uint8_t byte : bytes) {
        line += hexDigits[byte >> 4];
        line += hexDigits[byte & 0x0F];
        line += ' ';
    }
    return line + '\n';
}

} // namespace busquill
