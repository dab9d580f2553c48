#include "exerciser/form_values.h"

#include "exerciser/form_lists.h"

#include <algorithm>

namespace busquill {

void FormValues::Take(const std::vector<std::string>& fields) {
    if (fields.size() >= 2 && std::ranges::find(keys_, fields[0]) != keys_.end()) {
        values_[fields[0]] = fields[1];
    }
}

const std::string* FormValues::Find(std::string_view key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : &found->second;
}

void FormValues::Apply(std::string_view key, std::span<const std::string_view> list,
                       std::int32_t& index) const {
    if (const std::string* value = Find(key)) {
        index = IndexInList(list, *value);
    }
}

void FormValues::Apply(std::string_view key, BusAddress& address) const {
    if (const std::string* value = Find(key)) {
        address = ParseBusAddress(*value);
    }
}

void FormValues::Apply(std::string_view key, std::string& text) const {
    if (const std::string* value = Find(key)) {
        text = *value;
    }
}

void FormValues::Apply(std::string_view key, int bits, std::uint8_t& number) const {
    if (const std::string* value = Find(key)) {
        number = static_cast<std::uint8_t>(ParseHexByte(*value) & ((1U << bits) - 1));
    }
}

} // namespace busquill
