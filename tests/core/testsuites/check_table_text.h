#pragma once

#include "testsuites/check_table.h"

#include <cstdint>
#include <string>
#include <vector>

namespace busquill::test {

/// Changes with any level, text, bit or order of a table.
inline std::uint64_t Checksum(CheckTable table) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (const CheckTableRow& row : table) {
        for (const char c : std::to_string(row.level) + "|" + std::string(row.text) + "|" +
                                std::to_string(row.bit) + "\n") {
            sum = (sum ^ static_cast<std::uint8_t>(c)) * 0x100000001B3;
        }
    }
    return sum;
}

/// The groups and subgroups with the number of rows directly in each: "Master 22".
inline std::vector<std::string> Groups(CheckTable table, int leaf) {
    std::vector<std::string> groups;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].level == leaf) {
            continue;
        }
        std::size_t end = i + 1;
        while (end < table.size() && table[end].level == leaf) {
            ++end;
        }
        groups.push_back(std::string(table[i].text) + " " + std::to_string(end - i - 1));
    }
    return groups;
}

} // namespace busquill::test
