#include "platform/clock.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using namespace std::chrono_literals;

TEST(SystemClock, GivesTheTimeOfDayInSeconds) {
    const std::time_t before = std::time(nullptr);
    const std::time_t now = SystemClock().Time();
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::time(nullptr));
}

TEST(SystemClock, PausesForTheTimeAsked) {
    const auto start = std::chrono::steady_clock::now();
    SystemClock().Sleep(30ms);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
}

} // namespace
} // namespace busquill::test
