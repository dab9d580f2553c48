#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace busquill {

/// By what the board knows a test: three letters, padded with blanks, and a number. The board is
/// sent four bytes; the last one stays 0.
using TestId = std::array<std::uint8_t, 5>;

/// The identifier at the beginning of a test's text, "PCI12. Latency". A text of less than three
/// characters has none, and a fourth letter takes the place of the number.
[[nodiscard]] TestId TestIdOf(std::string_view text);
/// "PCI12".
[[nodiscard]] std::string TestIdText(const TestId& id);

enum class TestOutcome { None = 0, Passed = 1, Failed = 2, Skipped = 3 };

/// "Passed", and "Unknown" for none.
[[nodiscard]] std::string_view OutcomeWord(TestOutcome outcome);
/// None for any other word.
[[nodiscard]] TestOutcome OutcomeOf(std::string_view word);

/// A test that was run.
struct CTestResult {
    TestId testId{};
    std::string name; // its title
    TestOutcome result = TestOutcome::None;
    int failCode = 0; // what the board reports, whether it failed or not
};

/// "PCI12.", as lists and reports show the test.
[[nodiscard]] std::string TestLabel(const CTestResult& test);
/// "Passed ", "Failed(3) ", "Skipped ", or nothing.
[[nodiscard]] std::string TestResultText(const CTestResult& test);

} // namespace busquill
