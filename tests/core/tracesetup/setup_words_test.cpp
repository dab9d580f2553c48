#include "support/board_tables.h"
#include "tracesetup/setup_words.h"
#include "tracesetup/trace_setup.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

TEST(SetupWords, OfTheDefaultSetup) {
    BoardTables board("PCIKite-1");
    const TraceSetup setup(board.tables);
    EXPECT_THAT(SetupWords(setup, board.board),
                ElementsAre("Clock: Sync", "Power Zoom: 3.75 ns", "Trigger position: 50%",
                            "Level 1: store all samples; on any sample, trigger and stay in this "
                            "level; otherwise stay in this level"));
}

TEST(SetupWords, DescribeOnlyLevelsThatCanBeReached) {
    BoardTables board("PCIKite-1");
    TraceSetup setup(board.tables);
    setup.levels[0].thenTrigger = false;
    setup.levels[0].thenGoto = 2;
    setup.levels[2].storeExpr = setup.levels[2].ifExpr = expressionAll;
    setup.levels[2].occurs = 12;
    setup.levels[2].thenGoto = 2;
    const auto words = SetupWords(setup, board.board);
    EXPECT_THAT(words, Contains("Level 1: store all samples; on any sample, go to level 3; "
                                "otherwise stay in this level"));
    EXPECT_THAT(words, Contains(testing::HasSubstr("on any sample for the 12th time, ")));
    EXPECT_THAT(words, testing::Not(Contains(testing::StartsWith("Level 2:"))));
}

} // namespace
} // namespace busquill::test
