#include "ui/controls/check_tree.h"

#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest/QTest>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;

/// Two groups: one with two subgroups, one with checks only.
class CheckTree : public testing::Test {
protected:
    CheckTree() {
        tree.SetRows(rows);
        tree.resize(300, 300);
        tree.show();
        QApplication::processEvents();
    }
    /// A click on the check box of a row.
    void Click(int row) {
        const QRect place = tree.visualItemRect(&tree.Item(row));
        QStyleOptionViewItem option;
        option.initFrom(&tree);
        option.rect = place;
        option.features = QStyleOptionViewItem::HasCheckIndicator;
        const QRect box =
            tree.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &tree);
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, box.center());
    }
    std::string Checks() {
        std::string checks;
        for (int row = 0; row < tree.RowCount(); ++row) {
            checks += tree.IsChecked(row) ? 'x' : '.';
        }
        return checks;
    }

    const std::vector<CheckRow> rows = {
        {0, "Timing"}, {1, "Master"},   {2, "1 - a"}, {2, "2 - b"}, {1, "Slave"},
        {2, "3 - c"},  {0, "Warnings"}, {1, "4 - d"}, {1, "5 - e"},
    };
    CCheckTree tree;
};

TEST_F(CheckTree, ShowsItsRowsInOrder) {
    ASSERT_EQ(tree.RowCount(), 9);
    EXPECT_EQ(tree.topLevelItemCount(), 2);
    int y = -1;
    for (int row = 0; row < tree.RowCount(); ++row) {
        EXPECT_EQ(tree.Item(row).text(0).toStdString(), rows[static_cast<std::size_t>(row)].text);
        const QRect place = tree.visualItemRect(&tree.Item(row));
        EXPECT_GT(place.top(), y); // all are expanded
        y = place.top();
    }
    EXPECT_EQ(Checks(), ".........");
}

TEST_F(CheckTree, AGroupPassesItsStateDown) {
    Click(0);
    EXPECT_EQ(Checks(), "xxxxxx...");
    Click(0);
    EXPECT_EQ(Checks(), ".........");
}

TEST_F(CheckTree, ASubgroupPassesItsStateDownOnly) {
    Click(1);
    EXPECT_EQ(Checks(), ".xxx.....");
    Click(0);
    Click(1);
    EXPECT_EQ(Checks(), "x...xx...") << "the rows above are unchanged";
    Click(0);
    Click(0);
    EXPECT_EQ(Checks(), "xxxxxx...") << "and checks all of them again";
}

TEST_F(CheckTree, ACheckFollowsItsBox) {
    Click(7);
    EXPECT_EQ(Checks(), ".......x.");
    tree.setCurrentItem(&tree.Item(8));
    QTest::keyClick(&tree, Qt::Key_Space);
    EXPECT_EQ(Checks(), ".......xx");
}

TEST_F(CheckTree, ReportsEachChangeByTheUserOnce) {
    const QSignalSpy changes(&tree, &CCheckTree::ChecksChanged);
    tree.SetChecked([](int row) { return row % 2 == 0; });
    EXPECT_EQ(Checks(), "x.x.x.x.x");
    EXPECT_EQ(changes.count(), 0);
    Click(6);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(Checks(), "x.x.x....");
}

TEST_F(CheckTree, ReportsClicksAndKeysAfterTheirChange) {
    std::vector<std::string> seen;
    tree.connect(&tree, &CCheckTree::Used, &tree, [&] { seen.push_back(Checks()); });
    Click(2);
    tree.setCurrentItem(&tree.Item(2));
    QTest::keyClick(&tree, Qt::Key_Space);
    QTest::keyClick(&tree, Qt::Key_Down);
    const QRect place = tree.visualItemRect(&tree.Item(8));
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, {290, place.center().y()});
    EXPECT_THAT(seen, ElementsAre("..x......", ".........", ".........", "........."));
    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, {290, place.center().y()});
    tree.SetChecked([](int) { return true; });
    EXPECT_EQ(seen.size(), 4U);
}

TEST_F(CheckTree, ATextOrAColourIsNotAChange) {
    Click(2);
    const QSignalSpy changes(&tree, &CCheckTree::ChecksChanged);
    tree.Item(0).setForeground(0, Qt::red);
    tree.Item(0).setText(0, "Timing, failed");
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(Checks(), "..x......");
}

TEST_F(CheckTree, ARowWithoutAGroupIsARoot) {
    const std::vector<CheckRow> odd = {{1, "lone"}, {2, "below"}, {0, "[group]"}};
    tree.SetRows(odd);
    EXPECT_EQ(tree.RowCount(), 3);
    EXPECT_EQ(tree.topLevelItemCount(), 2);
    EXPECT_EQ(tree.Item(1).parent(), &tree.Item(0));
    tree.SetRows({});
    EXPECT_EQ(tree.RowCount(), 0);
}

} // namespace
} // namespace busquill::test
