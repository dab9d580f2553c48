#include "link/hex_records.h"

#include <algorithm>

namespace busquill {

namespace {

int DigitOf(char character) noexcept {
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    return static_cast<unsigned char>(character) - '0';
}

} // namespace

std::size_t HexRecords::Colons() const noexcept {
    return static_cast<std::size_t>(std::count(text_.begin(), text_.end(), ':'));
}

std::optional<std::uint8_t> HexRecords::NextByte() {
    if (text_.size() - position_ < 2) {
        position_ = text_.size();
        return std::nullopt;
    }
    const int value = DigitOf(text_[position_]) * 16 + DigitOf(text_[position_ + 1]);
    position_ += 2;
    return static_cast<std::uint8_t>(value);
}

HexRecords::Step HexRecords::Next(HexRecord& record) {
    const std::size_t colon = text_.find(':', position_);
    if (colon == std::string::npos) {
        position_ = text_.size();
        return Step::EndOfFile;
    }
    position_ = colon + 1;
    const auto count = NextByte();
    const auto high = NextByte();
    const auto low = NextByte();
    const auto type = NextByte();
    if (!type || *type > HexRecord::Segment) {
        return Step::Invalid;
    }
    record.type = static_cast<HexRecord::Type>(*type);
    record.address = static_cast<std::uint16_t>(*high << 8 | *low);
    record.data.clear();
    for (int i = 0; i < *count; ++i) {
        const auto byte = NextByte();
        if (!byte) {
            return Step::Invalid;
        }
        record.data.push_back(*byte);
    }
    return Step::Record;
}

} // namespace busquill
