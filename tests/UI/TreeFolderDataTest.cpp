#include "OrvLibrary/UI/TreeFolderData.h"

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

using Library::TreeFolderData;

namespace {

const fileString kPath("/catalogs/Doors.orvlib");
constexpr int kFolderFlags = 37 + 8;

} // namespace

TEST(TreeFolderData, everyConstructorAddsDropsToTheFlags)
{
    EXPECT_EQ(static_cast<int>(TreeFolderData(kPath).flags()), kFolderFlags);
    EXPECT_EQ(static_cast<int>(TreeFolderData(1, kPath).flags()), kFolderFlags);
    EXPECT_EQ(static_cast<int>(TreeFolderData(1, kPath, "a").flags()), kFolderFlags);
}

TEST(TreeFolderData, constructorsTakeIdPathAndName)
{
    const TreeFolderData folder(kPath);
    EXPECT_EQ(folder.getId(), -1);
    EXPECT_EQ(folder.getDatabasePath(), kPath);
    EXPECT_EQ(folder.getItemName(), "");
    const TreeFolderData named(4, kPath, "Doors");
    EXPECT_EQ(named.getId(), 4);
    EXPECT_EQ(named.getItemName(), "Doors");
    EXPECT_EQ(TreeFolderData(4, kPath).getItemName(), "");
    EXPECT_FALSE(named.isLeaf());
}

TEST(TreeFolderData, isValidWhileItsDatabaseExistsWhateverItsId)
{
    const test::TempFolder folder;
    EXPECT_TRUE(TreeFolderData(folder.write("a.orvlib", "")).isValid());
    EXPECT_TRUE(TreeFolderData(fileString(folder.path())).isValid());
    EXPECT_FALSE(TreeFolderData(1, folder.file("missing.orvlib")).isValid());
}
