#include "cli/json.h"

#include "cli/output.h"
#include "platform/text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace busquill::cli {

namespace {

void Append(std::string& line, const nlohmann::ordered_json& value) {
    const bool isObject = value.is_object();
    if (!isObject && !value.is_array()) {
        line += value.dump();
        return;
    }
    line += isObject ? '{' : '[';
    const char* before = "";
    for (const auto& item : value.items()) {
        line += before;
        line += isObject ? nlohmann::ordered_json(item.key()).dump() + ": " : std::string();
        Append(line, item.value());
        before = ", ";
    }
    line += isObject ? '}' : ']';
}

} // namespace

std::string JsonString(std::string_view text) {
    return ToUtf8(text);
}

void AppendJsonText(std::string& line, std::string_view text) {
    const bool isPlain = std::ranges::all_of(
        text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
    if (!isPlain) {
        line += nlohmann::ordered_json(JsonString(text)).dump();
        return;
    }
    line += '"';
    line += text;
    line += '"';
}

std::string JsonLine(const nlohmann::ordered_json& value) {
    std::string line;
    Append(line, value);
    return line;
}

void JsonArray::Add(const nlohmann::ordered_json& value) {
    AddJson(JsonLine(value));
}

void JsonArray::AddJson(std::string_view element) {
    output_.Write(any_ ? frame_.between : frame_.begin);
    output_.Write(element);
    any_ = true;
}

void JsonArray::End() {
    output_.Write(any_ ? frame_.end : frame_.empty);
}

} // namespace busquill::cli
