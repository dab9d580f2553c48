#include "signals/signal_list.h"
#include "support/signal_definitions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Names = std::vector<std::string>;
using testing::IsEmpty;

/// AD as a group of three, then FRAME, IRDY, TRDY, then EXT as a group of two.
class SignalListEdit : public testing::Test {
protected:
    void SetUp() override {
        tables_.Bus("AD", 0, 2, 0);
        tables_.Bus("FRAME", 0, 0, 72);
        tables_.Bus("IRDY", 0, 0, 74);
        tables_.Bus("TRDY", 0, 0, 73);
        tables_.Bus("EXT", 0, 1, 96);
        list_.BuildFromTables(1, ModeState);
    }
    CSignal* Row(const char* name) { return FindRow(list_, name); }
    void Select(std::initializer_list<const char*> rows) {
        for (const char* row : rows) {
            list_.SetGroupSelected(Row(row), true);
        }
    }
    HandMadeTables tables_;
    CSignalList list_{tables_.Tables()};
};

TEST_F(SignalListEdit, SelectsAGroupThroughItsLastMember) {
    list_.SetGroupSelected(Row("AD[2:0]"), true);
    EXPECT_TRUE(list_[0].selected);
    EXPECT_TRUE(list_[2].selected);
    EXPECT_FALSE(list_[3].selected);
    list_.SetGroupSelected(Row("FRAME"), true);
    EXPECT_TRUE(list_[3].selected);
    EXPECT_FALSE(list_[4].selected);
    list_.SetGroupSelected(Row("AD[2:0]"), false);
    EXPECT_FALSE(list_[2].selected);
    EXPECT_TRUE(list_[3].selected);
    list_.SetGroupSelected(nullptr, true);
    EXPECT_FALSE(list_[0].selected);
}

TEST_F(SignalListEdit, UngroupsTheSelectedSignals) {
    Select({"AD[2:0]", "FRAME"});
    list_[3].showValue = true;
    list_.UngroupSelected();
    EXPECT_EQ(RowNames(list_),
              (Names{"AD[0]", "AD[1]", "AD[2]", "FRAME", "IRDY", "TRDY", "EXT[1:0]"}));
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_FALSE(list_[i].grouped);
        EXPECT_FALSE(list_[i].showValue);
        EXPECT_EQ(list_[i].groupAttribute, 0);
        EXPECT_EQ(list_[i].groupWidth, 0U);
        EXPECT_THAT(list_[i].groupData, IsEmpty());
        EXPECT_THAT(list_[i].groupMask, IsEmpty());
    }
    EXPECT_TRUE(list_[3].showValue) << "it was not in a group";
    EXPECT_EQ(Row("EXT[1:0]")->groupWidth, 2U);
}

TEST_F(SignalListEdit, CollapsesToTheFirstSelectedSignal) {
    list_.SetGroupSelected(Row("IRDY"), true);
    list_.SetGroupSelected(Row("EXT[1:0]"), true);
    list_.CollapseSelected();
    EXPECT_EQ(SignalNames(list_),
              (Names{"AD[0]", "AD[1]", "AD[2]", "FRAME", "IRDY", "EXT[0]", "EXT[1]", "TRDY"}));
    EXPECT_EQ(RowNames(list_), (Names{"AD[2:0]", "FRAME", "IRDY,EXT[1:0]", "TRDY"}));
    const CSignal& first = list_[4];
    EXPECT_EQ(first.groupAttribute, GroupAttribute::Start);
    EXPECT_EQ(list_[5].groupAttribute, 0);
    EXPECT_EQ(list_[6].groupAttribute, GroupAttribute::End);
    EXPECT_EQ(first.groupWidth, 3U);
    EXPECT_EQ(first.groupData.size(), 32U);
    EXPECT_TRUE(first.showValue);
    EXPECT_THAT(list_[5].groupData, IsEmpty());
}

TEST_F(SignalListEdit, MovesEachLaterSignalBeforeTheFirstUnselectedOne) {
    for (const char* name : {"FRAME", "TRDY"}) {
        Row(name)->selected = true;
    }
    list_[0].selected = true;
    list_.CollapseSelected();
    EXPECT_EQ(SignalNames(list_),
              (Names{"AD[0]", "FRAME", "TRDY", "AD[1]", "AD[2]", "IRDY", "EXT[0]", "EXT[1]"}));
    EXPECT_EQ(list_[0].groupName, "AD[0],FRAME,TRDY");
}

TEST_F(SignalListEdit, CollapsesOneSignalToAGroupOfOne) {
    Select({"FRAME"});
    list_.CollapseSelected();
    const CSignal* frame = Row("FRAME");
    ASSERT_NE(frame, nullptr);
    EXPECT_TRUE(frame->grouped);
    EXPECT_EQ(frame->groupAttribute, GroupAttribute::Start | GroupAttribute::End);
    EXPECT_EQ(frame->groupWidth, 1U);
    EXPECT_EQ(list_.Size(), 8U);
}

TEST_F(SignalListEdit, CollapsesNothingWithoutASelection) {
    const Names before = RowNames(list_);
    list_.CollapseSelected();
    list_.UngroupSelected();
    list_.DeleteSelected();
    EXPECT_EQ(RowNames(list_), before);
}

TEST_F(SignalListEdit, DeletesTheSelectedSignals) {
    Select({"AD[2:0]", "TRDY"});
    list_.DeleteSelected();
    EXPECT_EQ(RowNames(list_), (Names{"FRAME", "IRDY", "EXT[1:0]"}));
}

TEST_F(SignalListEdit, RemovesAGroupOrASingleSignal) {
    list_.RemoveGroup(Row("AD[2:0]"));
    list_.RemoveGroup(Row("IRDY"));
    EXPECT_EQ(RowNames(list_), (Names{"FRAME", "TRDY", "EXT[1:0]"}));
    list_.RemoveGroup(nullptr);
    EXPECT_EQ(list_.Size(), 4U);
}

TEST_F(SignalListEdit, InsertsABlankRow) {
    const CSignal* blank = list_.InsertBlank(Row("FRAME"));
    EXPECT_EQ(blank, &list_[3]);
    EXPECT_EQ(blank->dataIndex, -1);
    EXPECT_EQ(blank->name, "");
    const CSignal* last = list_.InsertBlank(nullptr);
    EXPECT_EQ(last, &list_[9]);
}

TEST_F(SignalListEdit, ColoursTheSelectedSignalsAndTheirDefinitions) {
    tables_.Decoded("KIND", {0, 1}, {{"Zero", "00"}});
    const auto def = tables_.Tables().decodedSignals.FindByName("KIND");
    CSignal* kind = list_.AddSignal(nullptr, def, 1, 0, 0, 0, Radix::Hex, true);
    list_.SetGroupSelected(Row("EXT[1:0]"), true);
    list_.SetSelectedColor(0x0000FF);
    const auto& buses = tables_.Tables().busSignals;
    EXPECT_EQ(Row("EXT[1:0]")->color, 0x0000FFU);
    EXPECT_EQ(list_[7].color, 0x0000FFU);
    EXPECT_EQ(buses.FindByName("EXT")->color, 0x0000FFU);
    EXPECT_EQ(buses.FindByName("AD")->color, 0U);
    EXPECT_EQ(list_[0].color, 0U);

    list_.SetGroupSelected(Row("EXT[1:0]"), false);
    kind->selected = true;
    list_.SetSelectedColor(0x00FF00);
    EXPECT_EQ(def->color, 0x00FF00U);
    EXPECT_EQ(buses.FindByName("AD")->color, 0U);
    EXPECT_EQ(buses.FindByName("EXT")->color, 0x0000FFU);
}

struct Move {
    const char* group;
    const char* target; // null for the end of the list
    Names rows;
};

TEST_F(SignalListEdit, MovesAGroupAfterALaterTargetAndBeforeAnEarlierOne) {
    const std::vector<Move> moves = {
        {"AD[2:0]", "FRAME", {"FRAME", "AD[2:0]", "IRDY", "TRDY", "EXT[1:0]"}},
        {"AD[2:0]", "EXT[1:0]", {"FRAME", "IRDY", "TRDY", "EXT[1:0]", "AD[2:0]"}},
        {"AD[2:0]", nullptr, {"FRAME", "IRDY", "TRDY", "EXT[1:0]", "AD[2:0]"}},
        {"EXT[1:0]", "AD[2:0]", {"EXT[1:0]", "AD[2:0]", "FRAME", "IRDY", "TRDY"}},
        {"EXT[1:0]", "IRDY", {"AD[2:0]", "FRAME", "EXT[1:0]", "IRDY", "TRDY"}},
        {"FRAME", "TRDY", {"AD[2:0]", "IRDY", "TRDY", "FRAME", "EXT[1:0]"}},
        {"TRDY", "FRAME", {"AD[2:0]", "TRDY", "FRAME", "IRDY", "EXT[1:0]"}},
        {"EXT[1:0]", nullptr, {"AD[2:0]", "FRAME", "IRDY", "TRDY", "EXT[1:0]"}},
        {"IRDY", "IRDY", {"AD[2:0]", "FRAME", "IRDY", "TRDY", "EXT[1:0]"}},
        {"AD[2:0]", "AD[2:0]", {"AD[2:0]", "FRAME", "IRDY", "TRDY", "EXT[1:0]"}},
    };
    for (const Move& move : moves) {
        list_.BuildFromTables(1, ModeState);
        list_.MoveGroup(Row(move.group), move.target == nullptr ? nullptr : Row(move.target));
        EXPECT_EQ(RowNames(list_), move.rows) << move.group;
    }
}

TEST_F(SignalListEdit, IsUnchangedWhenAGroupIsMovedIntoItself) {
    const Names before = SignalNames(list_);
    list_.MoveGroup(&list_[0], &list_[1]);
    list_.MoveGroup(&list_[0], &list_[2]);
    CSignal stranger;
    list_.MoveGroup(&stranger, nullptr);
    list_.MoveGroup(&list_[0], &stranger);
    EXPECT_EQ(SignalNames(list_), before);
}

TEST_F(SignalListEdit, AMixedGroupKeepsTheOrderOfItsMembersWhenMoved) {
    Select({"FRAME", "EXT[1:0]"});
    list_.CollapseSelected();
    ASSERT_EQ(RowNames(list_), (Names{"AD[2:0]", "FRAME,EXT[1:0]", "IRDY", "TRDY"}));
    list_.MoveGroup(Row("FRAME,EXT[1:0]"), Row("AD[2:0]"));
    EXPECT_EQ(SignalNames(list_),
              (Names{"FRAME", "EXT[0]", "EXT[1]", "AD[0]", "AD[1]", "AD[2]", "IRDY", "TRDY"}));
    EXPECT_EQ(list_[0].groupName, "FRAME,EXT[1:0]");
    EXPECT_EQ(list_[0].groupAttribute, GroupAttribute::Start);
    EXPECT_EQ(list_[2].groupAttribute, GroupAttribute::End);
}

TEST_F(SignalListEdit, AGroupWithoutItsEndIncludesTheRestOfTheList) {
    list_.RemoveGroup(Row("EXT[1:0]"));
    list_[2].selected = true;
    list_.DeleteSelected();
    list_.SetGroupSelected(&list_[0], true);
    EXPECT_TRUE(list_[list_.Size() - 1].selected);
    list_.RemoveGroup(&list_[0]);
    EXPECT_TRUE(list_.Empty());
}

} // namespace
} // namespace busquill::test
