#include "capture/listing_columns.h"
#include "signals/signal_list.h"
#include "support/board_tables.h"

#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class ListingColumns : public testing::Test {
protected:
    ListingColumns() { list.BuildFromTables(0, ModeState); }

    std::string Show(const std::vector<std::string>& names) {
        return ShowColumns(list, names, board.tables);
    }
    std::vector<std::string> Shown() const {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < list.Size(); i = list.GroupEnd(i)) {
            if (!list[i].hidden) {
                names.push_back(list[i].RowName());
            }
        }
        return names;
    }

    BoardTables board{"PCIKite-1"};
    CSignalList list{board.tables};
};

TEST_F(ListingColumns, StandInTheOrderOfTheNamesInAnyCase) {
    EXPECT_EQ(Show({"irdy", "SAMPLE", "COMMAND", "FRAME"}), "");
    EXPECT_THAT(Shown(), ElementsAre("IRDY", "COMMAND", "FRAME"));
}

TEST_F(ListingColumns, SignalsThatTheListLacksAreAdded) {
    EXPECT_EQ(Show({"AD[7:4]", "ACCUM"}), "");
    EXPECT_THAT(Shown(), ElementsAre("AD[7:4]", "ACCUM"));
}

TEST_F(ListingColumns, AnUnknownNameIsReportedWithTheNearest) {
    EXPECT_THAT(Show({"COMAND"}), StartsWith("no column \"COMAND\"; there are COMMAND, "));
}

} // namespace
} // namespace busquill::test
