#include "OrvLibrary/UI/TreeData.h"

#include <QStandardItemModel>

#include <gmock/gmock.h>

#include "OrvLibrary/UI/TreeCatalogData.h"
#include "OrvLibrary/UI/TreeFolderData.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "tests/UI/UiHost.h"

using Library::LibraryCategoryData;
using Library::TreeData;
using Library::TreeFolderData;
using Library::TreeItemData;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

const fileString kPath("/catalogs/Doors.orvlib");

TreeItemData item(const std::string& name)
{
    return TreeItemData(1, kPath, name);
}

TreeFolderData folder(const std::string& name)
{
    return TreeFolderData(1, kPath, name);
}

// The smallest node that a host could derive. Its text differs from the text it was given.
class ShoutingItem : public TreeItemData
{
public:
    explicit ShoutingItem(const std::string& name) : TreeItemData(1, kPath, name) {}
    QVariant data(int role) const override
    {
        const QVariant value = TreeItemData::data(role);
        return role == Qt::DisplayRole ? QVariant(prefix + value.toString()) : value;
    }
    QString prefix;
};

class SetDataCounter : public TreeItemData
{
public:
    void setData(const QVariant& value, int role) override
    {
        roles.push_back(role);
        TreeItemData::setData(value, role);
    }
    std::vector<int> roles;
};

QStringList sortedNames(QStandardItemModel& model)
{
    model.sort(0);
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names << model.item(row)->text();
    return names;
}

} // namespace

TEST(TreeData, freshNodeHasNoImageNoTypeAndTheFlagsOfALeaf)
{
    const TreeItemData node(7, kPath);
    EXPECT_EQ(node.getItemImageIndex(), -1);
    EXPECT_EQ(node.getId(), 7);
    EXPECT_EQ(node.type(), -1);
    EXPECT_EQ(static_cast<int>(node.flags()), 37);
    EXPECT_EQ(TreeItemData().getId(), -1);
}

TEST(TreeData, typeAndImageIndexAreCarriedUnchanged)
{
    TreeItemData node;
    node.setType(QStandardItem::UserType + 3);
    node.setItemImageIndex(1L << 40);
    EXPECT_EQ(static_cast<const QStandardItem&>(node).type(), QStandardItem::UserType + 3);
    EXPECT_EQ(node.getItemImageIndex(), 1L << 40);
}

TEST(TreeData, nameIsTheDisplayTextInUtf8)
{
    TreeItemData node;
    node.setItemName("T\xC3\xBCr");
    EXPECT_EQ(node.text(), QString::fromUtf8("T\xC3\xBCr"));
    node.setText(QString(QChar(0x20AC)));
    EXPECT_EQ(node.getItemName(), "\xE2\x82\xAC");
}

TEST(TreeData, nameOfAValueThatIsNoTextIsItsConversion)
{
    TreeItemData node;
    node.setData(42, Qt::DisplayRole);
    EXPECT_EQ(node.getItemName(), "42");
    node.setData(QVariantMap{{"a", 1}}, Qt::DisplayRole);
    EXPECT_EQ(node.getItemName(), "");
    node.setData(QVariant(), Qt::DisplayRole);
    EXPECT_EQ(node.getItemName(), "");
}

TEST(TreeData, nameGoesThroughTheVirtualSetDataAndData)
{
    SetDataCounter counter;
    counter.setItemName("Door");
    EXPECT_THAT(counter.roles, ElementsAre(0));
    ShoutingItem shouting("Door");
    shouting.prefix = "A ";
    EXPECT_EQ(shouting.getItemName(), "A Door");
}

TEST(TreeData, leavesSortAfterContainersWhateverTheirNames)
{
    EXPECT_EQ(TreeData::treeOrderComparatorStatic(true, false, "a", "z"), 1);
    EXPECT_EQ(TreeData::treeOrderComparatorStatic(false, true, "z", "a"), -1);
    EXPECT_TRUE(folder("z").treeOrderComparator(item("a")));
    EXPECT_FALSE(item("a").treeOrderComparator(folder("z")));
    EXPECT_TRUE(LibraryCategoryData(Library::kCoreLibrary, kPath).treeOrderComparator(item("a")));
}

TEST(TreeData, nodesOfOneKindFollowTheNameOrderWithoutLetterCase)
{
    for (const bool leaf : {true, false}) {
        EXPECT_LT(TreeData::treeOrderComparatorStatic(leaf, leaf, "a", "B"), 0);
        EXPECT_GT(TreeData::treeOrderComparatorStatic(leaf, leaf, "b", "A"), 0);
        EXPECT_EQ(TreeData::treeOrderComparatorStatic(leaf, leaf, "Door", "door"), 0);
        EXPECT_LT(TreeData::treeOrderComparatorStatic(leaf, leaf, "Door 9", "door 10"), 0);
    }
    EXPECT_TRUE(folder("a").treeOrderComparator(folder("B")));
    EXPECT_FALSE(folder("B").treeOrderComparator(folder("a")));
    EXPECT_FALSE(folder("Same").treeOrderComparator(folder("same")));
    EXPECT_FALSE(folder("same").treeOrderComparator(folder("Same")));
}

TEST(TreeData, orderFollowsANameThatChangesAfterTheFirstComparison)
{
    TreeItemData moving = item("a");
    const TreeItemData fixed = item("m");
    EXPECT_TRUE(moving < fixed);
    moving.setItemName("z");
    EXPECT_FALSE(moving < fixed);
    EXPECT_TRUE(fixed < moving);
    moving.setData("b", Qt::EditRole);
    EXPECT_TRUE(moving < fixed);
    moving = item("y");
    EXPECT_FALSE(moving < fixed);
}

TEST(TreeData, orderFollowsATextThatTheModelChangesPastTheNode)
{
    QStandardItemModel model;
    for (const char* name : {"a", "m"})
        model.appendRow(new TreeItemData(1, kPath, name));
    ASSERT_EQ(sortedNames(model), QStringList({"a", "m"}));
    // These functions do not call the node's setData.
    ASSERT_TRUE(model.setItemData(model.index(0, 0), {{Qt::DisplayRole, "z"}}));
    EXPECT_EQ(sortedNames(model), QStringList({"m", "z"}));
    ASSERT_TRUE(model.clearItemData(model.index(1, 0)));
    EXPECT_EQ(sortedNames(model), QStringList({"", "m"}));
}

TEST(TreeData, copyKeepsItsPlaceUntilItIsRenamed)
{
    const TreeItemData fixed = item("m");
    TreeItemData original = item("a");
    EXPECT_TRUE(original < fixed);
    TreeItemData copy = original;
    original.setItemName("z");
    EXPECT_TRUE(copy < fixed);
    EXPECT_FALSE(original < fixed);
    copy.setItemName("y");
    EXPECT_FALSE(copy < fixed);
    EXPECT_TRUE(copy < original);
}

TEST(TreeData, classThatOverridesDataIsAskedAtEveryComparison)
{
    ShoutingItem changing("m");
    const TreeItemData fixed = item("k");
    EXPECT_FALSE(changing < fixed);
    changing.prefix = "a";
    EXPECT_TRUE(changing < fixed);
    EXPECT_FALSE(fixed < changing);
    changing.prefix = "z";
    EXPECT_FALSE(changing < fixed);
}

TEST(TreeData, valueThatIsNoTextSortsAsItsConversion)
{
    TreeItemData number;
    number.setData(42, Qt::DisplayRole);
    EXPECT_TRUE(item("9") < number);
    EXPECT_TRUE(number < item("100"));
    const TreeItemData nameless;
    EXPECT_TRUE(nameless < number);
    EXPECT_FALSE(nameless < TreeItemData());
}

TEST(TreeData, foreignItemOnTheRightIsAnAssertionAndNeverComesAfter)
{
    const test::AssertionRecorder assertions;
    const QStandardItem foreign("zzz");
    EXPECT_FALSE(item("a") < foreign);
    EXPECT_THAT(test::AssertionRecorder::expressions, ElementsAre("rhsTreeData != nullptr"));
    EXPECT_THAT(test::AssertionRecorder::file, EndsWith("TreeData.cpp"));
}

TEST(TreeData, operatorLessTakesOtherKindsOfNodesWithoutAssertion)
{
    const test::AssertionRecorder assertions;
    EXPECT_TRUE(folder("z") < item("a"));
    EXPECT_FALSE(item("a") < folder("z"));
    EXPECT_TRUE(ShoutingItem("a") < item("b"));
    EXPECT_TRUE(item("a") < ShoutingItem("b"));
    EXPECT_THAT(test::AssertionRecorder::expressions, IsEmpty());
}

TEST(TreeData, modelSortsByTheNodesOwnOrder)
{
    QStandardItemModel model;
    for (const char* name : {"door 10", "Alpha", "Door 9", "beta"})
        model.appendRow(new TreeItemData(1, kPath, name));
    model.appendRow(new TreeFolderData(1, kPath, "zebra"));
    model.appendRow(new TreeFolderData(1, kPath, "Yak"));
    EXPECT_EQ(sortedNames(model), QStringList({"Yak", "zebra", "Alpha", "beta", "Door 9", "door 10"}));
}

TEST(TreeData, onlyItemsAreItems)
{
    EXPECT_TRUE(item("a").isItem());
    EXPECT_TRUE(ShoutingItem("a").isItem());
    EXPECT_FALSE(folder("a").isItem());
    EXPECT_FALSE(LibraryCategoryData(Library::kBonusLibrary, kPath).isItem());
}

TEST(TreeData, nodesAreEqualWhenPathAndIdAre)
{
    const TreeData& folderNode = TreeFolderData(1, kPath, "a");
    const TreeData& itemNode = TreeItemData(1, kPath, "b");
    EXPECT_TRUE(folderNode == itemNode);
    EXPECT_FALSE(folderNode == TreeFolderData(2, kPath));
    EXPECT_FALSE(folderNode == TreeFolderData(1, fileString("/catalogs/doors.orvlib")));
    EXPECT_TRUE(TreeItemData(1, kPath) == folderNode);
}
