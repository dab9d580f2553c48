#pragma once

#include <cstdint>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace busquill::test {

/// A value change dump, parsed by the plain rules of the format.
struct ParsedDump {
    struct Variable {
        std::string type;
        std::size_t width = 0;
        std::string name; // with its range, without blanks
    };
    std::string timescale;
    std::map<std::string, Variable> variables; // by identifier
    std::vector<std::string> order;            // of the names
    /// The values by time and name, at each time at which something changed; all bits of a vector.
    std::map<std::int64_t, std::map<std::string, std::string>> values;
    std::size_t initial = 0; // values in $dumpvars

    [[nodiscard]] std::string At(std::int64_t time, const std::string& name) const {
        auto found = values.upper_bound(time);
        return found == values.begin() ? "" : std::prev(found)->second.at(name);
    }
};

inline ParsedDump ParseDump(const std::string& text) {
    ParsedDump dump;
    std::istringstream in(text);
    std::string word;
    const auto upToEnd = [&in] {
        std::vector<std::string> words;
        for (std::string each; in >> each && each != "$end";) {
            words.push_back(each);
        }
        return words;
    };
    std::map<std::string, std::string> now;
    std::int64_t time = -1;
    bool initial = false;
    while (in >> word) {
        if (word == "$var") {
            const auto words = upToEnd();
            const std::string name = words.at(3) + (words.size() > 4 ? words[4] : "");
            if (dump.variables.contains(words.at(2))) {
                throw std::runtime_error("an identifier stands for two signals: " + words[2]);
            }
            dump.variables[words[2]] = {words[0], std::stoul(words[1]), name};
            dump.order.push_back(name);
        } else if (word == "$timescale") {
            for (const std::string& each : upToEnd()) {
                dump.timescale += each;
            }
        } else if (word == "$dumpvars") {
            initial = true;
        } else if (word == "$end") {
            initial = false;
        } else if (word[0] == '$') {
            upToEnd();
        } else if (word[0] == '#') {
            const std::int64_t next = std::stoll(word.substr(1));
            if (next <= time) {
                throw std::runtime_error("time stands still at " + word);
            }
            if (time >= 0) {
                dump.values[time] = now;
            }
            time = next;
        } else {
            std::string value = word.substr(0, 1);
            std::string id = word.substr(1);
            if (word[0] == 'b') {
                value = word.substr(1);
                in >> id;
            }
            const ParsedDump::Variable& variable = dump.variables.at(id);
            if (value.size() < variable.width) {
                value.insert(0, variable.width - value.size(), '0');
            }
            now[variable.name] = value;
            dump.initial += initial ? 1 : 0;
        }
    }
    if (time >= 0) {
        dump.values[time] = now;
    }
    return dump;
}

/// The characters of a vector that holds a text.
inline std::string TextOfBits(const std::string& bits) {
    std::string text;
    for (std::size_t i = 0; i + 8 <= bits.size(); i += 8) {
        const auto c = static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2));
        if (c != 0) {
            text += c;
        }
    }
    return text;
}

} // namespace busquill::test
