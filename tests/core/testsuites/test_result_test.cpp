#include "testsuites/test_result.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

TestId Id(char a, char b, char c, int number) {
    return {static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b),
            static_cast<std::uint8_t>(c), static_cast<std::uint8_t>(number), 0};
}

TEST(TestIdOf, TakesUpToThreeLettersAndANumber) {
    EXPECT_EQ(TestIdOf("PCI12. Title"), Id('P', 'C', 'I', 12));
    EXPECT_EQ(TestIdOf("CF7. Title"), Id('C', 'F', ' ', 7));
    EXPECT_EQ(TestIdOf("A1. x"), Id('A', ' ', ' ', 1));
    EXPECT_EQ(TestIdOf("  \tCF7. x"), Id('C', 'F', ' ', 7));
    EXPECT_EQ(TestIdOf("17 x"), Id(' ', ' ', ' ', 17));
}

TEST(TestIdOf, ATextOfLessThanThreeCharactersHasNone) {
    EXPECT_EQ(TestIdOf("C1"), Id(' ', ' ', ' ', 0));
    EXPECT_EQ(TestIdOf("  C1"), Id(' ', ' ', ' ', 0));
    EXPECT_EQ(TestIdOf(""), Id(' ', ' ', ' ', 0));
    EXPECT_EQ(TestIdOf("C12"), Id('C', ' ', ' ', 12));
}

TEST(TestIdOf, TheNumberIsAByte) {
    EXPECT_EQ(TestIdOf("PCI255. x")[3], 255);
    EXPECT_EQ(TestIdOf("PCI258. x")[3], 2);
}

TEST(TestIdOf, AFourthLetterTakesThePlaceOfTheNumber) {
    EXPECT_EQ(TestIdOf("PCIXY"), Id('P', 'C', 'I', 'X'));
    EXPECT_EQ(TestIdOf("PCI. No number"), Id('P', 'C', 'I', '.'));
    EXPECT_EQ(TestIdOf("PCIX5"), Id('P', 'C', 'I', 5)) << "a digit right after it takes it back";
    EXPECT_EQ(TestIdOf("PCIXY5"), Id('P', 'C', 'I', 'X'));
}

TEST(TestIdText, IsTheLettersAndTheNumber) {
    EXPECT_EQ(TestIdText(Id('P', 'C', 'I', 12)), "PCI12");
    EXPECT_EQ(TestIdText(Id('C', ' ', 'F', 7)), "CF7");
    EXPECT_EQ(TestIdText(Id(' ', ' ', ' ', 0)), "0");
}

TEST(TestResult, EveryOutcomeHasItsTexts) {
    CTestResult test{Id('C', 'F', ' ', 7), "Title", TestOutcome::None, 3};
    EXPECT_EQ(TestLabel(test), "CF7.");
    EXPECT_EQ(TestResultText(test), "");
    EXPECT_EQ(OutcomeWord(test.result), "Unknown");
    test.result = TestOutcome::Passed;
    EXPECT_EQ(TestResultText(test), "Passed ");
    test.result = TestOutcome::Failed;
    EXPECT_EQ(TestResultText(test), "Failed(3) ");
    test.result = TestOutcome::Skipped;
    EXPECT_EQ(TestResultText(test), "Skipped ");
    for (const TestOutcome outcome :
         {TestOutcome::None, TestOutcome::Passed, TestOutcome::Failed, TestOutcome::Skipped}) {
        EXPECT_EQ(OutcomeOf(OutcomeWord(outcome)), outcome);
    }
    EXPECT_EQ(OutcomeOf("passed"), TestOutcome::None);
}

} // namespace
} // namespace busquill::test
