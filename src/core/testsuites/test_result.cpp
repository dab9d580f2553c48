#include "testsuites/test_result.h"

#include "platform/text.h"

#include <algorithm>

namespace busquill {

namespace {

constexpr std::size_t letters = 3;
constexpr std::size_t numberByte = 3;
constexpr std::size_t looksAt = 5; // characters of a text

constexpr std::array<std::string_view, 4> outcomeWords = {"Unknown", "Passed", "Failed", "Skipped"};

} // namespace

TestId TestIdOf(std::string_view text) {
    TestId id = {' ', ' ', ' ', 0, 0};
    const auto begin = text.find_first_not_of(" \t\n\v\f\r");
    text = begin == std::string_view::npos ? std::string_view() : text.substr(begin);
    if (text.size() < letters) {
        return id;
    }
    for (std::size_t i = 0; i < std::min(text.size(), looksAt); ++i) {
        if (text[i] >= '0' && text[i] <= '9') {
            id[numberByte] = static_cast<std::uint8_t>(ParseInt(text.substr(i)));
            break;
        }
        if (i <= numberByte) {
            id[i] = static_cast<std::uint8_t>(text[i]);
        }
    }
    return id;
}

std::string TestIdText(const TestId& id) {
    std::string text;
    for (std::size_t i = 0; i < letters; ++i) {
        if (id[i] != ' ') {
            text += static_cast<char>(id[i]);
        }
    }
    return text + std::to_string(id[numberByte]);
}

std::string_view OutcomeWord(TestOutcome outcome) {
    return outcomeWords[static_cast<std::size_t>(outcome)];
}

TestOutcome OutcomeOf(std::string_view word) {
    const auto found = std::ranges::find(outcomeWords, word);
    return found == outcomeWords.end() ? TestOutcome::None
                                       : static_cast<TestOutcome>(found - outcomeWords.begin());
}

std::string TestLabel(const CTestResult& test) {
    return TestIdText(test.testId) + ".";
}

std::string TestResultText(const CTestResult& test) {
    switch (test.result) {
    case TestOutcome::Passed:
        return "Passed ";
    case TestOutcome::Failed:
        return Printf("Failed(%d) ", test.failCode);
    case TestOutcome::Skipped:
        return "Skipped ";
    case TestOutcome::None:
        break;
    }
    return "";
}

} // namespace busquill
