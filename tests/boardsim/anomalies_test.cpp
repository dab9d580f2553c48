#include "boardsim/anomalies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace boardsim {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsSubsetOf;
using testing::Not;
using testing::SizeIs;

class AnomaliesTest : public testing::Test {
protected:
    std::vector<int> Read(int count) {
        std::vector<int> results;
        for (int i = 0; i < count; ++i) {
            results.push_back(anomalies.TakeResult(checklist));
        }
        return results;
    }
    std::set<int> Found(int count) {
        const std::vector<int> results = Read(count);
        return {results.begin(), results.end()};
    }

    Anomalies anomalies{114};
    std::array<std::uint8_t, checklistBytes> checklist{};
};

TEST_F(AnomaliesTest, NothingIsFoundAtRest) {
    anomalies.rate = 100;
    EXPECT_THAT(Read(5), Each(0));
    anomalies.Start();
    EXPECT_THAT(Read(5), Each(testing::Gt(0)));
    anomalies.Stop();
    EXPECT_THAT(Read(5), Each(0));
}

TEST_F(AnomaliesTest, TheRateIsThePartOfTheReadings) {
    anomalies.rate = 25;
    anomalies.Start();
    const std::vector<int> results = Read(100);
    EXPECT_EQ(std::ranges::count(results, 0), 75);
    EXPECT_EQ(std::vector(results.begin(), results.begin() + 3), std::vector(3, 0));
    EXPECT_NE(results[3], 0);
    anomalies.rate = 0;
    EXPECT_THAT(Read(100), Each(0));
}

TEST_F(AnomaliesTest, EveryCheckOfTheFamilyIsFoundAndNoOther) {
    anomalies.rate = 100;
    anomalies.Start();
    const std::set<int> found = Found(5000);
    EXPECT_THAT(found, SizeIs(114));
    EXPECT_EQ(*found.begin(), 1);
    EXPECT_EQ(*found.rbegin(), 114);
}

TEST_F(AnomaliesTest, ASetBitSwitchesACheckOff) {
    anomalies.rate = 100;
    anomalies.Start();
    checklist.fill(0xFF);
    checklist[0] = 0xFE;  // 1 runs
    checklist[14] = 0xFD; // 114 runs
    EXPECT_THAT(Found(200), ElementsAre(1, 114));
    checklist[14] = 0xFF;
    EXPECT_THAT(Found(200), ElementsAre(1)) << "also during a run";
    checklist[0] = 0xFF;
    EXPECT_THAT(Read(20), Each(0));
}

TEST_F(AnomaliesTest, AFindingOfTheUserComesNext) {
    anomalies.rate = 0;
    anomalies.Start();
    checklist.fill(0xFF);
    anomalies.Find(115);
    anomalies.Find(2);
    EXPECT_THAT(Read(3), ElementsAre(115, 2, 0));
    anomalies.Find(7);
    anomalies.Stop();
    anomalies.Start();
    EXPECT_THAT(Read(1), ElementsAre(0)) << "a stop forgets it";
}

} // namespace
} // namespace boardsim
