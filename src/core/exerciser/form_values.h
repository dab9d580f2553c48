#pragma once

#include "exerciser/bus_address.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace busquill {

/// The values of a form's file by their keys. What the file lacks leaves its field as it stands.
class FormValues {
public:
    /// Values of other keys are skipped.
    explicit FormValues(std::span<const std::string_view> keys) : keys_(keys) {}

    void Clear() { values_.clear(); }
    void Take(const std::vector<std::string>& fields);

    /// Null for a key that has no value.
    [[nodiscard]] const std::string* Find(std::string_view key) const;

    /// The index of the text in a list; of an unknown text, 0.
    void Apply(std::string_view key, std::span<const std::string_view> list,
               std::int32_t& index) const;
    void Apply(std::string_view key, BusAddress& address) const;
    void Apply(std::string_view key, std::string& text) const;
    /// A hexadecimal number, of which a field of so many bits keeps the low ones.
    void Apply(std::string_view key, int bits, std::uint8_t& number) const;

private:
    const std::span<const std::string_view> keys_;
    std::map<std::string, std::string, std::less<>> values_;
};

} // namespace busquill
