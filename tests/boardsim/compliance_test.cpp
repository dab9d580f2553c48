#include "boardsim/compliance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace boardsim {
namespace {

constexpr std::uint8_t unattended = 0;
constexpr std::uint8_t instructions = 1;
constexpr std::uint8_t operatorContinues = 3;
constexpr std::uint8_t operatorSkips = 5;

class ComplianceTest : public testing::Test {
protected:
    void Start(const char* letters, std::uint8_t number, std::uint8_t control = unattended) {
        const std::array<std::uint8_t, 4> id = {static_cast<std::uint8_t>(letters[0]),
                                                static_cast<std::uint8_t>(letters[1]),
                                                static_cast<std::uint8_t>(letters[2]), number};
        compliance.Start(id, control);
    }
    /// The readings that find the test running, and its end.
    std::pair<int, int> Outcome(std::uint8_t control = unattended) {
        int busy = 0;
        int status = 0x80;
        while ((status = compliance.TakeStatus(control)) == 0x80 && busy < 1000) {
            ++busy;
        }
        return {busy, status};
    }

    Compliance compliance;
};

TEST_F(ComplianceTest, TestsPassUnlessTheScriptSaysOtherwise) {
    Start("CF ", 1);
    EXPECT_EQ(Outcome(), std::pair(1, 0x01));
}

TEST_F(ComplianceTest, AScriptNamesTheOutcomes) {
    ASSERT_TRUE(compliance.TakeScript("CF3 fail 5, MST1 unknown,TGT2 slow 20, TGT3 slow 3 fail 15, "
                                      "* fail 1"));
    Start("CF ", 3);
    EXPECT_EQ(Outcome().second, 0x2A);
    Start("MST", 1);
    EXPECT_EQ(Outcome().second, 0x00);
    Start("TGT", 2);
    EXPECT_EQ(Outcome(), std::pair(20, 0x01));
    Start("TGT", 3);
    EXPECT_EQ(Outcome(), std::pair(3, 0x7A));
    Start("ABC", 9);
    EXPECT_EQ(Outcome().second, 0x0A) << "all others";
}

TEST_F(ComplianceTest, WhatIsNoScriptIsRefused) {
    EXPECT_TRUE(compliance.TakeScript(""));
    EXPECT_FALSE(compliance.TakeScript("CF1 fail"));
    EXPECT_FALSE(compliance.TakeScript("CF1 fail 16"));
    EXPECT_FALSE(compliance.TakeScript("CF1 perhaps"));
    EXPECT_FALSE(compliance.TakeScript("CF1 slow"));
    EXPECT_FALSE(compliance.TakeScript("CF1 pass,,"));
}

TEST_F(ComplianceTest, ATestWithInstructionsWaitsForTheOperator) {
    Start("CF ", 1, instructions);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(compliance.TakeStatus(instructions), 0x80);
    }
    EXPECT_EQ(compliance.TakeStatus(operatorSkips), 0x80);
    EXPECT_EQ(Outcome(operatorContinues), std::pair(1, 0x01));
}

TEST_F(ComplianceTest, AStoppedTestHasNoOutcome) {
    Start("CF ", 1);
    compliance.Stop();
    EXPECT_EQ(compliance.TakeStatus(unattended), 0);
}

} // namespace
} // namespace boardsim
