/// Facts about a file, a setup or a board, printed line by line.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace busquill::cli {

/// A title for people, a key for programs, and the value. Several texts are printed below one
/// another.
struct Fact {
    const char* title;
    const char* key;
    std::vector<std::string> texts;
    std::optional<std::int64_t> number; // instead of a text, for programs
    bool isList = false;
};

[[nodiscard]] Fact TextFact(const char* title, const char* key, const std::string& text);
[[nodiscard]] Fact NumberFact(const char* title, const char* key, std::int64_t number);
[[nodiscard]] Fact ListFact(const char* title, const char* key, std::vector<std::string> texts);

[[nodiscard]] std::string FactsAsText(const std::vector<Fact>& facts);
[[nodiscard]] nlohmann::ordered_json FactsAsJson(const std::vector<Fact>& facts);

} // namespace busquill::cli
