#include "boardsim/backplane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace boardsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BackplaneTest : public testing::Test {
protected:
    /// The lines that are seen when one is driven.
    std::vector<int> Drive(int line) {
        bytes.fill(0);
        bytes[static_cast<std::size_t>(2 * (line / 8) + 1)] =
            static_cast<std::uint8_t>(1 << (line % 8));
        backplane.Start(bytes, busy);
        std::vector<int> seen;
        for (int each = 0; each < backplaneLines; ++each) {
            if ((bytes[static_cast<std::size_t>(2 * (each / 8))] >> (each % 8) & 1) != 0) {
                seen.push_back(each);
            }
        }
        return seen;
    }

    Backplane backplane;
    std::array<std::uint8_t, backplaneBytes> bytes{};
    int busy = 0;
};

TEST_F(BackplaneTest, AGoodLineIsSeenAlone) {
    for (int line = 0; line < backplaneLines; ++line) {
        EXPECT_THAT(Drive(line), ElementsAre(line));
    }
    EXPECT_EQ(bytes[27], 0x80) << "what was driven stays";
}

TEST_F(BackplaneTest, ShortsAreSeenFromBothEndsAndSpread) {
    ASSERT_TRUE(backplane.TakeFaults("5+6, 6+111 , 20 + 21+40"));
    EXPECT_THAT(Drive(5), ElementsAre(5, 6, 111));
    EXPECT_THAT(Drive(111), ElementsAre(5, 6, 111));
    EXPECT_THAT(Drive(21), ElementsAre(20, 21, 40));
    EXPECT_THAT(Drive(7), ElementsAre(7));
}

TEST_F(BackplaneTest, ABrokenLineIsNeverSeen) {
    ASSERT_TRUE(backplane.TakeFaults("broken 9,8+9, broken 30+31"));
    EXPECT_THAT(Drive(9), IsEmpty());
    EXPECT_THAT(Drive(31), IsEmpty());
    EXPECT_THAT(Drive(8), ElementsAre(8));
    ASSERT_TRUE(backplane.TakeFaults(""));
    EXPECT_THAT(Drive(9), ElementsAre(9)) << "other faults replace these";
}

TEST_F(BackplaneTest, OtherFaultsAreRefused) {
    for (const char* faults : {"5", "5+", "5+x", "112+5", "-1+5", "broken", "broken 112", "5-6",
                               "x", "5+6,,", "5+6 7"}) {
        EXPECT_FALSE(backplane.TakeFaults(faults)) << faults;
    }
}

TEST_F(BackplaneTest, ATestIsBusyForAWhile) {
    EXPECT_EQ(backplane.TakeStatus(), 0);
    busy = 2;
    Drive(1);
    EXPECT_EQ(backplane.TakeStatus(), 0x80);
    EXPECT_EQ(backplane.TakeStatus(), 0x80);
    EXPECT_EQ(backplane.TakeStatus(), 0);
    Drive(1);
    backplane.Stop();
    EXPECT_EQ(backplane.TakeStatus(), 0);
}

} // namespace
} // namespace boardsim
