#include "testsuites/report_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Ten units for each character.
int Tens(std::string_view text) {
    return 10 * static_cast<int>(text.size());
}

CTestResult Named(const std::string& name, TestOutcome outcome = TestOutcome::Passed) {
    return {{'C', 'F', ' ', 1, 0}, name, outcome, 3};
}

TEST(ReportGeometry, APortraitPageHasFiftyLines) {
    const ReportGeometry page(2000, 3000, PageOrientation::Portrait);
    EXPECT_EQ(page.header, (PageArea{0, 0, 2000, 150}));
    EXPECT_EQ(page.footer, (PageArea{0, 2850, 2000, 150}));
    EXPECT_EQ(page.body, (PageArea{0, 150, 2000, 2700}));
    EXPECT_EQ(page.lines, 50);
    EXPECT_EQ(page.lineHeight, 54);
    EXPECT_EQ(page.bodyFont, 43);
    EXPECT_EQ(page.headerFont, 50);
    EXPECT_EQ(page.footerFont, 37);
    EXPECT_EQ(page.idWidth, 200);
    EXPECT_EQ(page.resultWidth, 250);
}

TEST(ReportGeometry, ALandscapePageHasForty) {
    const ReportGeometry page(3000, 2000, PageOrientation::Landscape);
    EXPECT_EQ(page.lines, 40);
    EXPECT_EQ(page.lineHeight, 45);
    EXPECT_EQ(page.bodyFont, 36);
    EXPECT_EQ(page.TitleWidth(), 3000 - 300 - 375);
}

TEST(ReportGeometry, ColumnsStandSideBySide) {
    const ReportGeometry page(2000, 3000, PageOrientation::Portrait);
    EXPECT_EQ(page.IdPlace(0), (PageArea{0, 150, 200, 54}));
    EXPECT_EQ(page.TitlePlace(2), (PageArea{200, 258, 1550, 54}));
    EXPECT_EQ(page.ResultPlace(49), (PageArea{1750, 150 + 49 * 54, 250, 54}));
}

TEST(WrapWords, BreaksBetweenWords) {
    EXPECT_THAT(WrapWords("the quick brown fox", 90, 50, Tens),
                ElementsAre("the quick", "brown fox"));
    EXPECT_THAT(WrapWords("the quick brown fox", 89, 50, Tens),
                ElementsAre("the", "quick", "brown", "fox"));
    EXPECT_THAT(WrapWords("one", 90, 50, Tens), ElementsAre("one"));
    EXPECT_THAT(WrapWords("", 90, 50, Tens), ElementsAre(""));
    EXPECT_THAT(WrapWords("  two   words ", 900, 50, Tens), ElementsAre("two words"));
}

TEST(WrapWords, BreaksAWordThatIsTooLong) {
    EXPECT_THAT(WrapWords("a abcdefgh b", 30, 50, Tens), ElementsAre("a", "abc", "def", "gh", "b"));
    EXPECT_THAT(WrapWords("abc", 1, 50, Tens), ElementsAre("a", "b", "c")) << "no line is empty";
    EXPECT_THAT(WrapWords("\xC3\xA4\xC3\xB6", 1, 50, Tens), ElementsAre("\xC3\xA4", "\xC3\xB6"))
        << "characters stay whole";
}

TEST(WrapWords, EndsAfterItsLines) {
    EXPECT_THAT(WrapWords("one two three", 50, 2, Tens), ElementsAre("one", "two"));
    EXPECT_THAT(WrapWords("abcdef", 20, 2, Tens), ElementsAre("ab", "cd"));
    EXPECT_THAT(WrapWords("one two", 70, 1, Tens), ElementsAre("one two"));
}

TEST(WrapWords, MeasuresAHugeWordInPieces) {
    std::size_t measured = 0;
    const auto counting = [&measured](std::string_view text) {
        measured += text.size();
        return Tens(text);
    };
    EXPECT_THAT(WrapWords(std::string(1000000, 'x'), 500, 50, counting), SizeIs(50));
    EXPECT_LT(measured, 100000U);
}

class ReportTest : public testing::Test {
protected:
    std::vector<ReportPage> Compose() { return ComposeReport(results, geometry, Tens); }

    ReportGeometry geometry{2000, 3000, PageOrientation::Portrait};
    std::vector<CTestResult> results;
    const std::string twoLines = std::string(100, 'x') + " " + std::string(100, 'y');
};

TEST_F(ReportTest, WithoutResultsThereIsNoPage) {
    EXPECT_THAT(Compose(), IsEmpty());
}

TEST_F(ReportTest, EachTestTakesTheLinesOfItsTitle) {
    results = {Named("One", TestOutcome::Failed), Named(twoLines), Named("", TestOutcome::Skipped),
               Named("Last")};
    const auto pages = Compose();
    ASSERT_THAT(pages, SizeIs(1));
    ASSERT_THAT(pages[0], SizeIs(4));
    EXPECT_EQ(pages[0][0].label, "CF1.");
    EXPECT_EQ(pages[0][0].result, "Failed(3) ");
    EXPECT_THAT(pages[0][1].title, ElementsAre(std::string(100, 'x'), std::string(100, 'y')));
    EXPECT_EQ(pages[0][1].line, 1);
    EXPECT_EQ(pages[0][2].line, 3);
    EXPECT_EQ(pages[0][2].result, "Skipped ");
    EXPECT_EQ(pages[0][3].line, 4) << "an empty title has a line too";
}

TEST_F(ReportTest, APageHoldsItsLinesAndNoMore) {
    results.assign(50, Named("One"));
    EXPECT_THAT(Compose(), SizeIs(1));
    results.assign(51, Named("One"));
    ASSERT_THAT(Compose(), SizeIs(2));
    EXPECT_EQ(Compose()[1][0].line, 0);
    geometry = ReportGeometry(2000, 3000, PageOrientation::Landscape);
    EXPECT_THAT(Compose()[0], SizeIs(40));
}

TEST_F(ReportTest, ATestIsNotSplitOverPages) {
    results.assign(49, Named("One"));
    results.push_back(Named(twoLines));
    results.push_back(Named("Last"));
    const auto pages = Compose();
    ASSERT_THAT(pages, SizeIs(2));
    EXPECT_THAT(pages[0], SizeIs(49));
    EXPECT_EQ(pages[1][0].line, 0);
    EXPECT_EQ(pages[1][1].line, 2);
}

TEST_F(ReportTest, ATitleLongerThanAPageIsCut) {
    results = {Named("One"), Named(std::string(100 * 155, 'x')), Named("Last")};
    const auto pages = Compose();
    ASSERT_THAT(pages, SizeIs(3));
    EXPECT_THAT(pages[1][0].title, SizeIs(50));
    EXPECT_EQ(pages[2][0].label, "CF1.");
}

} // namespace
} // namespace busquill::test
