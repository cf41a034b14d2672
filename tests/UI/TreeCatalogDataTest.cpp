#include "OrvLibrary/UI/TreeCatalogData.h"

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

using Library::LibraryCategoryData;

namespace {

const fileString kPath("/catalogs/bonus");

} // namespace

TEST(TreeCatalogData, constructorsTakeIdCategoryAndPath)
{
    const LibraryCategoryData node(5, Library::kBonusLibrary, kPath);
    EXPECT_EQ(node.getId(), 5);
    EXPECT_EQ(node.getCategory(), Library::kBonusLibrary);
    EXPECT_EQ(node.getDatabasePath(), kPath);
    const LibraryCategoryData withoutId(Library::kManufacturerLibrary, kPath);
    EXPECT_EQ(withoutId.getId(), -1);
    EXPECT_EQ(withoutId.getCategory(), Library::kManufacturerLibrary);
    EXPECT_EQ(withoutId.getDatabasePath(), kPath);
}

TEST(TreeCatalogData, isAContainerThatAcceptsNoDrops)
{
    const LibraryCategoryData node(Library::kCoreLibrary, kPath);
    EXPECT_FALSE(node.isLeaf());
    EXPECT_EQ(static_cast<int>(node.flags()), 37);
}

TEST(TreeCatalogData, isValidWhileItsPathExists)
{
    const test::TempFolder folder;
    EXPECT_TRUE(LibraryCategoryData(Library::kCoreLibrary, fileString(folder.path())).isValid());
    EXPECT_FALSE(LibraryCategoryData(1, Library::kCoreLibrary, folder.file("missing")).isValid());
}
