#include "cli/json.h"

#include "cli/output.h"
#include "platform/text.h"

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

std::string JsonLine(const nlohmann::ordered_json& value) {
    std::string line;
    Append(line, value);
    return line;
}

void JsonArray::Add(const nlohmann::ordered_json& value) {
    output_.Write((any_ ? frame_.between : frame_.begin) + JsonLine(value));
    any_ = true;
}

void JsonArray::End() {
    output_.Write(any_ ? frame_.end : frame_.empty);
}

} // namespace busquill::cli
