#include "signals/signal_list.h"
#include "support/board_tables.h"
#include "ui/patterns/header_control.h"

#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using Redraw = HeaderControl::Redraw;

/// Five signals: a line, a bus of two bits, a hidden line, and two more lines, each 40 wide when
/// visible, after a fixed column of 50.
class Header : public testing::Test {
protected:
    Header() {
        for (const char* name : {"A", "B1", "B0", "C", "D", "E"}) {
            CSignal* signal = list.InsertBlank(nullptr);
            signal->name = name;
            signal->width = 40;
        }
        list[1].grouped = list[2].grouped = true;
        list[1].groupAttribute = GroupAttribute::Start;
        list[2].groupAttribute = GroupAttribute::End;
        list[3].hidden = true;
        header.Attach(list);
        header.fixedEnd = 50;
    }
    /// The middles of the columns A, B, D and E.
    enum Place { OnA = 71, OnB = 111, OnD = 151, OnE = 191, PastEnd = 300 };

    std::string Selected() const {
        std::string names;
        for (const auto& signal : list.All()) {
            names += signal->selected ? signal->name + " " : "";
        }
        return names;
    }
    std::string Order() const {
        std::string names;
        for (const auto& signal : list.All()) {
            names += signal->name + " ";
        }
        return names;
    }
    void Click(int place, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        EXPECT_EQ(header.Press(place, keys), Redraw::Header);
        EXPECT_EQ(header.Release(place), Redraw::Nothing);
    }

    CSignalList list{NoTables()};
    HeaderControl header{HeaderControl::Layout{
        .extent = &CSignal::width, .visible = &CSignal::VisibleWidth, .smallest = 21}};
};

TEST_F(Header, HitsColumnsAndTheirEdges) {
    EXPECT_EQ(header.HitColumn(49).signal, nullptr);
    EXPECT_EQ(header.HitColumn(50).signal, &list[0]);
    EXPECT_FALSE(header.HitColumn(88).edge);
    for (const int place : {89, 91, 93}) { // A ends at 91
        EXPECT_EQ(header.HitColumn(place).signal, &list[0]) << place;
        EXPECT_TRUE(header.HitColumn(place).edge) << place;
    }
    EXPECT_EQ(header.HitColumn(94).signal, &list[1]);
    EXPECT_EQ(header.HitColumn(OnD).signal, &list[4]) << "a hidden one takes no space";
    EXPECT_EQ(header.HitColumn(PastEnd).signal, nullptr);
    header.offset = 40;
    EXPECT_EQ(header.HitColumn(OnA).signal, &list[1]);
    EXPECT_EQ(header.HitColumn(OnA).start, 51);
}

TEST_F(Header, HiddenSignalsAreNotHit) {
    list[0].hidden = true;
    const HeaderControl::Hit hit = header.HitColumn(53);
    EXPECT_EQ(hit.signal, &list[1]);
    EXPECT_FALSE(hit.edge);
}

TEST_F(Header, APlainClickSelectsOneColumn) {
    Click(OnA);
    EXPECT_EQ(Selected(), "A ");
    Click(OnB);
    EXPECT_EQ(Selected(), "B1 B0 ") << "a bus as a whole";
}

TEST_F(Header, CtrlTogglesAColumn) {
    Click(OnA);
    Click(OnD, Qt::ControlModifier);
    EXPECT_EQ(Selected(), "A D ");
    Click(OnA, Qt::ControlModifier);
    EXPECT_EQ(Selected(), "D ");
    Click(OnB, Qt::ControlModifier);
    EXPECT_EQ(Selected(), "B1 B0 D ") << "a bus as a whole";
    Click(OnB, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "A B1 B0 ") << "from the last plain click, which was on A";
}

TEST_F(Header, ShiftSelectsExactlyTheSpan) {
    Click(OnE);
    Click(OnD);
    Click(OnB, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "B1 B0 C D ");
    Click(OnE, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "D E ");
}

TEST_F(Header, ShiftWithoutAnEarlierClickSelectsOneColumn) {
    Click(OnD, Qt::ShiftModifier);
    Click(OnB, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "B1 B0 D ");
}

TEST_F(Header, ShiftAfterTheLastClickedColumnWasRemoved) {
    Click(OnA);
    list.DeleteSelected();
    Click(OnA, Qt::ShiftModifier);
    EXPECT_EQ(Selected(), "B1 B0 ");
}

TEST_F(Header, AnEdgeResizesItsColumnDownToTheSmallestWidth) {
    EXPECT_EQ(header.Press(131, Qt::NoModifier), Redraw::Nothing); // B ends there
    EXPECT_TRUE(header.IsActive());
    EXPECT_EQ(header.Move(150), Redraw::All);
    EXPECT_EQ(list[1].width, 59);
    EXPECT_EQ(header.Move(150), Redraw::Nothing);
    EXPECT_EQ(header.Move(60), Redraw::All);
    EXPECT_EQ(list[1].width, 21);
    header.Release(60);
    EXPECT_FALSE(header.IsActive());
    EXPECT_EQ(header.Move(150), Redraw::Nothing);
    EXPECT_EQ(Selected(), "");
}

TEST_F(Header, TheEdgeOfTheFixedColumnResizesIt) {
    EXPECT_EQ(header.Press(52, Qt::NoModifier), Redraw::Nothing);
    EXPECT_EQ(header.Move(80), Redraw::All);
    EXPECT_EQ(header.fixedEnd, 80);
    header.Move(3);
    EXPECT_EQ(header.fixedEnd, 21);
    header.Release(3);
}

TEST_F(Header, ADragToTheLeftMovesTheColumnBeforeTheTarget) {
    header.Press(OnE, Qt::NoModifier);
    EXPECT_EQ(header.CursorAt(OnA), Qt::ClosedHandCursor);
    EXPECT_EQ(header.Release(OnA), Redraw::All);
    EXPECT_EQ(Order(), "E A B1 B0 C D ");
    header.Press(OnA, Qt::NoModifier); // E is there now
    EXPECT_EQ(header.Release(PastEnd), Redraw::Nothing);
    EXPECT_EQ(Order(), "E A B1 B0 C D ");
}

TEST_F(Header, ADragToTheRightMovesAWholeBusAfterTheTarget) {
    header.Press(OnB, Qt::NoModifier);
    header.Release(OnE);
    EXPECT_EQ(Order(), "A C D E B1 B0 ");
}

TEST_F(Header, TheCursorShowsEdges) {
    EXPECT_EQ(header.CursorAt(OnA), Qt::ArrowCursor);
    EXPECT_EQ(header.CursorAt(90), Qt::SizeHorCursor);
    EXPECT_EQ(header.CursorAt(49), Qt::SizeHorCursor);
}

TEST_F(Header, ThePressThatOpensTheMenuSelectsAnUnselectedColumn) {
    Click(OnA);
    Click(OnD, Qt::ControlModifier);
    EXPECT_EQ(header.SelectForMenu(OnD), Redraw::Nothing);
    EXPECT_EQ(Selected(), "A D ");
    EXPECT_EQ(header.SelectForMenu(OnE), Redraw::Header);
    EXPECT_EQ(Selected(), "E ");
    EXPECT_EQ(header.SelectForMenu(PastEnd), Redraw::Nothing);
}

TEST_F(Header, BandsHaveGapsAFixedStripAndDragWithoutModifiers) {
    HeaderControl bands{HeaderControl::Layout{.extent = &CSignal::height,
                                              .visible = &CSignal::VisibleHeight,
                                              .smallest = 20,
                                              .gap = 1,
                                              .fixedResizes = false,
                                              .anyClickDrags = false,
                                              .axis = Qt::Vertical}};
    bands.Attach(list);
    bands.fixedEnd = 17; // bands of 20 begin at 18, 39 and so on
    EXPECT_EQ(bands.HitColumn(39).start, 18) << "the last pixels are its edge";
    EXPECT_EQ(bands.HitColumn(42).start, 39);
    EXPECT_EQ(bands.HitColumn(63).start, 60);
    EXPECT_EQ(bands.CursorAt(18), Qt::ArrowCursor);
    EXPECT_EQ(bands.CursorAt(38), Qt::SizeVerCursor);
    bands.Press(25, Qt::ControlModifier);
    EXPECT_FALSE(bands.IsActive());
    EXPECT_TRUE(list[0].selected);
    bands.Press(25, Qt::NoModifier);
    EXPECT_TRUE(bands.IsActive());
    bands.Release(25);
    bands.Press(38, Qt::NoModifier);
    EXPECT_EQ(bands.Move(30), Redraw::Nothing) << "as small as possible";
    EXPECT_EQ(bands.Move(48), Redraw::All);
    EXPECT_EQ(list[0].height, 30);
    EXPECT_EQ(list[0].width, 40);
}

TEST_F(Header, TheMenuEndsADrag) {
    header.Press(OnE, Qt::NoModifier);
    header.SelectForMenu(OnE);
    EXPECT_FALSE(header.IsActive());
    EXPECT_EQ(header.Release(OnA), Redraw::Nothing);
    EXPECT_EQ(Order(), "A B1 B0 C D E ");
}

} // namespace
} // namespace busquill::test
