#include "cli/facts.h"

#include "cli/output.h"
#include "platform/text.h"

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
    return {title, key, {text}};
}

Fact NumberFact(const char* title, const char* key, std::int64_t number) {
    return {title, key, {std::to_string(number)}, true};
}

Fact ListFact(const char* title, const char* key, std::vector<std::string> texts) {
    return {title, key, std::move(texts), false, true};
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

std::string FactsAsJson(const std::vector<Fact>& facts) {
    std::string text;
    for (const Fact& fact : facts) {
        text += (text.empty() ? "{" : ", ") + JsonText(fact.key) + ": ";
        std::string values;
        for (const std::string& value : fact.texts) {
            values += (values.empty() ? "" : ", ") + (fact.isNumber ? value : JsonText(value));
        }
        text += fact.isList ? "[" + values + "]" : values;
    }
    return text + "}";
}

} // namespace busquill::cli
