/// Results as JSON, by nlohmann/json: a blank after each comma and colon, all on one line.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace busquill::cli {

class TextSink;

/// A text for a JSON value, in UTF-8.
[[nodiscard]] std::string JsonString(std::string_view text);

/// Appends a text as a JSON value: for the many texts of a listing.
void AppendJsonText(std::string& line, std::string_view text);

[[nodiscard]] std::string JsonLine(const nlohmann::ordered_json& value);

/// Writes the elements of an array as they come, so that memory does not grow with their number.
class JsonArray {
public:
    /// `begin` is written before the first element, `between` before each of the others, `end`
    /// after the last; `empty` is written if there is none.
    struct Frame {
        const char* begin = "[";
        const char* between = ", ";
        const char* end = "]";
        const char* empty = "[]";
    };

    JsonArray(TextSink& output, const Frame& frame) : output_(output), frame_(frame) {}

    void Add(const nlohmann::ordered_json& value);
    /// An element that is JSON already.
    void AddJson(std::string_view element);
    void End();

private:
    TextSink& output_;
    const Frame frame_;
    bool any_ = false;
};

} // namespace busquill::cli
