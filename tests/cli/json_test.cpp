#include "cli/json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace busquill::cli {
namespace {

std::string Text(std::string_view text) {
    std::string line = "[";
    AppendJsonText(line, text);
    return line + "]";
}

TEST(JsonText, IsQuotedAndEscaped) {
    EXPECT_EQ(Text(""), "[\"\"]");
    EXPECT_EQ(Text("Mem Wr ~"), "[\"Mem Wr ~\"]");
    EXPECT_EQ(Text("say \"no\""), R"(["say \"no\""])");
    EXPECT_EQ(Text("a\\b"), R"(["a\\b"])");
    EXPECT_EQ(Text("a\nb\x01"), R"(["a\nb\u0001"])");
    EXPECT_EQ(Text("\x7F"), "[\"\x7F\"]");
    EXPECT_EQ(Text("5 \xB5s"), "[\"5 \xC2\xB5s\"]") << "not in UTF-8";
    EXPECT_EQ(Text("5 \xC2\xB5s"), "[\"5 \xC2\xB5s\"]");
}

TEST(JsonText, IsThatOfTheLibrary) {
    for (int c = 0; c < 256; ++c) {
        const std::string text(1, static_cast<char>(c));
        EXPECT_EQ(Text(text), "[" + JsonLine(JsonString(text)) + "]") << c;
    }
}

} // namespace
} // namespace busquill::cli
