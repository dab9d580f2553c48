#include "performance/time_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A page over results that hold their own index.
class TimePageTest : public testing::Test {
protected:
    void Add(int count) {
        for (int i = 0; i < count; ++i) {
            PerformanceResults reading{};
            reading[0] = static_cast<std::int32_t>(results.Count());
            reading[7] = -reading[0];
            results.Add(reading);
        }
    }
    TimePage::Change AddAndFollow(int count) {
        Add(count);
        return page.Follow(results);
    }
    void Expect(std::int64_t first, std::int64_t shown) {
        EXPECT_EQ(page.FirstShown(), first);
        EXPECT_EQ(page.ShownCount(), shown);
        EXPECT_EQ(page.NextToShow(), first + shown);
        for (std::int64_t i = 0; i < shown; ++i) {
            EXPECT_EQ(page.Values(0)[static_cast<std::size_t>(i)], first + i);
            EXPECT_EQ(page.Values(7)[static_cast<std::size_t>(i)], -(first + i));
        }
    }

    ResultStore results;
    TimePage page;
};

TEST_F(TimePageTest, TakesTheResultsThatHaveCome) {
    TimePage::Change change = page.Follow(results);
    EXPECT_FALSE(change.page || change.count);
    EXPECT_THAT(page.Values(0), IsEmpty());
    change = AddAndFollow(3);
    EXPECT_TRUE(change.page && change.count);
    EXPECT_THAT(page.Values(0), ElementsAre(0, 1, 2));
    EXPECT_EQ(page.LastCount(), 3);
    change = page.Follow(results);
    EXPECT_FALSE(change.page || change.count);
    static_cast<void>(AddAndFollow(1));
    Expect(0, 4);
}

TEST_F(TimePageTest, TurnsWhenItsThirtiethValueComes) {
    static_cast<void>(AddAndFollow(29));
    Expect(0, 29);
    EXPECT_TRUE(AddAndFollow(1).page);
    Expect(30, 0);
    static_cast<void>(AddAndFollow(1));
    Expect(30, 1);
    EXPECT_EQ(page.ScrollMaximum(), 30);
}

TEST_F(TimePageTest, AFastMeasurementTurnsSeveralPagesAtOnce) {
    static_cast<void>(AddAndFollow(10));
    static_cast<void>(AddAndFollow(90));
    Expect(90, 10);
    static_cast<void>(AddAndFollow(160000));
    Expect(160080, 20);
    EXPECT_EQ(page.LastCount(), 160100);
}

TEST_F(TimePageTest, APageThatWasScrolledBackToStays) {
    static_cast<void>(AddAndFollow(65));
    Expect(60, 5);
    page.ScrollBack(results);
    Expect(30, 30);
    const TimePage::Change change = AddAndFollow(7);
    EXPECT_FALSE(change.page);
    EXPECT_TRUE(change.count);
    EXPECT_EQ(page.LastCount(), 72);
    Expect(30, 30);
    EXPECT_EQ(page.ScrollMaximum(), 60);
    page.ScrollForward(results);
    Expect(60, 12);
    EXPECT_TRUE(AddAndFollow(1).page);
    Expect(60, 13);
}

TEST_F(TimePageTest, ScrollingEndsAtTheFirstAndTheLastResult) {
    page.ScrollBack(results);
    page.ScrollForward(results);
    page.ScrollTo(500, results);
    Expect(0, 0);
    static_cast<void>(AddAndFollow(45));
    page.ScrollBack(results);
    page.ScrollBack(results);
    Expect(0, 30);
    page.ScrollForward(results);
    Expect(30, 15);
    page.ScrollForward(results);
    Expect(44, 1);
    page.ScrollForward(results);
    Expect(44, 1);
    page.ScrollTo(7, results);
    Expect(7, 30);
    EXPECT_EQ(page.ScrollMaximum(), 37);
    page.ScrollTo(-7, results);
    Expect(0, 30);
    page.ScrollTo(1000, results);
    Expect(44, 1);
}

TEST_F(TimePageTest, BeyondACleanPageIsTheLastResult) {
    static_cast<void>(AddAndFollow(30));
    page.ScrollForward(results);
    Expect(29, 1);
    static_cast<void>(AddAndFollow(1));
    Expect(29, 2);
}

TEST_F(TimePageTest, ClearGoesToTheBeginning) {
    static_cast<void>(AddAndFollow(65));
    results.Clear();
    page.Clear();
    Expect(0, 0);
    const TimePage::Change change = page.Follow(results);
    EXPECT_TRUE(change.count) << "there is no result any more";
    EXPECT_FALSE(change.page);
    EXPECT_EQ(page.LastCount(), 0);
    EXPECT_EQ(page.ScrollMaximum(), 0);
    static_cast<void>(AddAndFollow(2));
    Expect(0, 2);
}

} // namespace
} // namespace busquill::test
