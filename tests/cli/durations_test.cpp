#include "cli/board/durations.h"

#include <gtest/gtest.h>

namespace busquill::cli::board {
namespace {

using namespace std::chrono_literals;

TEST(Durations, AreSecondsOrHaveAUnit) {
    EXPECT_EQ(ParseDuration("90"), 90s);
    EXPECT_EQ(ParseDuration("90s"), 90s);
    EXPECT_EQ(ParseDuration("250ms"), 250ms);
    EXPECT_EQ(ParseDuration("5m"), 5min);
    EXPECT_EQ(ParseDuration("8h"), 8h);
    EXPECT_EQ(ParseDuration("007s"), 7s);
    EXPECT_EQ(ParseDuration("1ms"), 1ms);
}

TEST(Durations, AreAtMostAYear) {
    EXPECT_EQ(ParseDuration("8784h"), 366 * 24h);
    EXPECT_EQ(ParseDuration("8785h"), std::nullopt);
    EXPECT_EQ(ParseDuration("31622400"), 366 * 24h);
    EXPECT_EQ(ParseDuration("31622401"), std::nullopt);
    EXPECT_EQ(ParseDuration("31622400000ms"), 366 * 24h);
    EXPECT_EQ(ParseDuration("31622400001ms"), std::nullopt);
    EXPECT_EQ(ParseDuration("9223372036854775807h"), std::nullopt);
    EXPECT_EQ(ParseDuration("9223372036854775808"), std::nullopt);
}

TEST(Durations, AreNothingElse) {
    for (const char* text : {"", "0", "0s", "-1", "+1", "s", "ms", "1 s", " 1", "1s ", "1.5",
                             "1,5h", "1d", "1H", "1mss", "1h30m", "0x10", "1e3", "soon"}) {
        EXPECT_EQ(ParseDuration(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace busquill::cli::board
