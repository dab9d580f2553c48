#include "cli/facts.h"

#include "cli/json.h"
#include "platform/text.h"

#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

/// The texts of a fact, split into lines.
std::vector<std::string> LinesOf(const Fact& fact) {
    std::vector<std::string> lines;
    for (const std::string& text : fact.texts) {
        lines.emplace_back();
        for (const char c : text) {
            if (c == '\n') {
                lines.emplace_back();
            } else if (c != '\r') {
                lines.back() += c;
            }
        }
    }
    return lines;
}

} // namespace

Fact TextFact(const char* title, const char* key, const std::string& text) {
    return {title, key, {text}, std::nullopt};
}

Fact NumberFact(const char* title, const char* key, std::int64_t number) {
    return {title, key, {std::to_string(number)}, number};
}

Fact ListFact(const char* title, const char* key, std::vector<std::string> texts) {
    return {title, key, std::move(texts), std::nullopt, true};
}

std::string FactsAsText(const std::vector<Fact>& facts) {
    std::string text;
    for (const Fact& fact : facts) {
        const char* title = fact.title;
        for (const std::string& line : LinesOf(fact)) {
            text += Printf("%-18s %s\n", *title != '\0' ? (std::string(title) + ":").c_str() : "",
                           line.c_str());
            title = "";
        }
    }
    return text;
}

nlohmann::ordered_json FactsAsJson(const std::vector<Fact>& facts) {
    nlohmann::ordered_json object;
    for (const Fact& fact : facts) {
        nlohmann::ordered_json& value = object[fact.key];
        if (fact.number) {
            value = *fact.number;
        } else if (fact.isList) {
            value = nlohmann::ordered_json::array();
            for (const std::string& text : fact.texts) {
                value.push_back(JsonString(text));
            }
        } else {
            value = JsonString(fact.texts.front());
        }
    }
    return object;
}

} // namespace busquill::cli
