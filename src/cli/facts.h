/// What is told of one thing, line by line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace busquill::cli {

/// A name for people, one for programs, and what it is. Several texts are lines below one another.
struct Fact {
    const char* title;
    const char* key;
    std::vector<std::string> texts;
    bool isNumber = false;
    bool isList = false;
};

[[nodiscard]] Fact TextFact(const char* title, const char* key, const std::string& text);
[[nodiscard]] Fact NumberFact(const char* title, const char* key, std::int64_t number);
[[nodiscard]] Fact ListFact(const char* title, const char* key, std::vector<std::string> texts);

[[nodiscard]] std::string FactsAsText(const std::vector<Fact>& facts);
/// One object, without a line end.
[[nodiscard]] std::string FactsAsJson(const std::vector<Fact>& facts);

} // namespace busquill::cli
