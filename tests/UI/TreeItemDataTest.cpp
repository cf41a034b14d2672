#include "OrvLibrary/UI/TreeItemData.h"

#include <set>
#include <type_traits>

#include <QStandardItemModel>

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

using Library::TreeItemData;
using Library::TreeItemDataLessThan;

namespace {

const fileString kPath("/catalogs/Doors.orvlib");

TreeItemData fullItem()
{
    TreeItemData item(12, kPath, "Door");
    item.setSelectionPaneName("pane");
    item.setItemImageIndex(5);
    item.setType(1003);
    item.setToolTip("tip");
    item.setData("mine", Qt::UserRole + 7);
    item.setFlags(Qt::ItemIsEnabled | Qt::ItemNeverHasChildren);
    return item;
}

void expectFullItem(const TreeItemData& item)
{
    EXPECT_EQ(item.getId(), 12);
    EXPECT_EQ(item.getDatabasePath(), kPath);
    EXPECT_EQ(item.getSelectionPaneName(), "pane");
    EXPECT_EQ(item.getItemImageIndex(), 5);
    EXPECT_EQ(item.type(), 1003);
    EXPECT_EQ(item.getItemName(), "Door");
    EXPECT_EQ(item.toolTip(), "tip");
    EXPECT_EQ(item.data(Qt::UserRole + 7), QVariant("mine"));
    EXPECT_EQ(item.flags(), Qt::ItemIsEnabled | Qt::ItemNeverHasChildren);
}

} // namespace

TEST(TreeItemData, defaultItemIsNothing)
{
    const TreeItemData item;
    EXPECT_EQ(item.getId(), -1);
    EXPECT_TRUE(item.getDatabasePath().empty());
    EXPECT_EQ(item.getSelectionPaneName(), "");
    EXPECT_EQ(item.getItemName(), "");
    EXPECT_EQ(static_cast<int>(item.flags()), 37);
    EXPECT_TRUE(item.isLeaf());
}

TEST(TreeItemData, constructorsTakeIdPathAndName)
{
    EXPECT_EQ(TreeItemData(3, kPath).getDatabasePath(), kPath);
    EXPECT_EQ(TreeItemData(3, kPath).getItemName(), "");
    const TreeItemData named(3, kPath, "Door");
    EXPECT_EQ(named.getId(), 3);
    EXPECT_EQ(named.getItemName(), "Door");
    EXPECT_EQ(named.getDatabasePath(), kPath);
}

TEST(TreeItemData, isValidWithAnIdAndAnExistingDatabase)
{
    const test::TempFolder folder;
    const fileString existing = folder.write("a.orvlib", "");
    EXPECT_TRUE(TreeItemData(0, existing).isValid());
    EXPECT_FALSE(TreeItemData(-1, existing).isValid());
    EXPECT_FALSE(TreeItemData(0, folder.file("missing.orvlib")).isValid());
    EXPECT_FALSE(TreeItemData().isValid());
}

TEST(TreeItemData, copyTakesEverythingAlong)
{
    const TreeItemData source = fullItem();
    const TreeItemData copy(source);
    expectFullItem(copy);
    expectFullItem(source);
}

TEST(TreeItemData, assignmentReplacesEverything)
{
    TreeItemData target(99, fileString("/other"), "Other");
    target.setData("gone", Qt::UserRole + 8);
    target = fullItem();
    expectFullItem(target);
    EXPECT_FALSE(target.data(Qt::UserRole + 8).isValid());
    TreeItemData& alias = target;
    target = alias;
    expectFullItem(target);
}

TEST(TreeItemData, copyOfAnItemInAModelIsFreeOfTheModel)
{
    QStandardItemModel model;
    auto* inModel = new TreeItemData(fullItem());
    inModel->appendRow(new QStandardItem("child"));
    model.appendRow(inModel);
    const TreeItemData copy(*inModel);
    EXPECT_EQ(copy.model(), nullptr);
    EXPECT_EQ(copy.rowCount(), 0);
    expectFullItem(copy);
}

TEST(TreeItemData, copyIsIndependentOfItsSource)
{
    TreeItemData source = fullItem();
    const TreeItemData copy(source);
    source.setItemName("Changed");
    source.setSelectionPaneName("changed");
    expectFullItem(copy);
}

TEST(TreeItemData, equalityComparesPathIdAndSelectionPaneNameOnly)
{
    TreeItemData a(1, kPath, "a");
    TreeItemData b(1, kPath, "b");
    b.setItemImageIndex(9);
    b.setType(9);
    EXPECT_TRUE(a == b);
    b.setSelectionPaneName("pane");
    EXPECT_FALSE(a == b);
    a.setSelectionPaneName(std::string("pane\0x", 6));
    b.setSelectionPaneName(std::string("pane\0y", 6));
    EXPECT_FALSE(a == b);
    b.setSelectionPaneName(std::string("pane\0x", 6));
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(TreeItemData(2, kPath) == TreeItemData(1, kPath));
    EXPECT_FALSE(TreeItemData(1, fileString("/else")) == TreeItemData(1, kPath));
}

TEST(TreeItemDataLessThan, ordersByPathThenId)
{
    const TreeItemDataLessThan less;
    const fileString early("/a"), late("/b");
    EXPECT_TRUE(less(TreeItemData(9, early), TreeItemData(1, late)));
    EXPECT_FALSE(less(TreeItemData(1, late), TreeItemData(9, early)));
    EXPECT_TRUE(less(TreeItemData(1, early), TreeItemData(2, early)));
    EXPECT_FALSE(less(TreeItemData(2, early), TreeItemData(1, early)));
    EXPECT_FALSE(less(TreeItemData(1, early, "a"), TreeItemData(1, early, "b")));
    EXPECT_FALSE(less(TreeItemData(1, early, "b"), TreeItemData(1, early, "a")));
}

TEST(TreeItemDataLessThan, keepsOneItemPerPathAndIdInASet)
{
    std::set<TreeItemData, TreeItemDataLessThan> items;
    TreeItemData named(1, kPath, "name");
    named.setSelectionPaneName("pane");
    items.insert(TreeItemData(1, kPath));
    EXPECT_FALSE(items.insert(named).second);
    EXPECT_TRUE(items.insert(TreeItemData(2, kPath)).second);
    EXPECT_EQ(items.begin()->getId(), 1);
}
