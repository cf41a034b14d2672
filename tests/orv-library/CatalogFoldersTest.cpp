#include "OrvHost/update/CatalogFolders.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "tests/orv-library/HostedTest.h"

using CatalogFoldersTest = test::HostedTest;

TEST_F(CatalogFoldersTest, downloadFoldersAreNamedAfterTheApplicationAndTheCategory)
{
    EXPECT_EQ(folder.file("root/temp/orv-library.downloads.core"), CatalogFolders::core().downloadFolder);
    EXPECT_EQ(folder.file("root/temp/orv-library.downloads.bonus"), CatalogFolders::bonus().downloadFolder);
    EXPECT_EQ(folder.file("root/temp/orv-library.downloads.manufacturer"),
              CatalogFolders::manufacturer().downloadFolder);
    EXPECT_EQ(folder.file("root/core/catalog_hash.txt"), CatalogFolders::core().hashFile());
}

TEST_F(CatalogFoldersTest, catalogsAreRegularFilesWithTheExactExtension)
{
    for (const char* name :
         {"b.orvlib", "a b.orvlib", "c.ORVLIB", "d.orvlibz", "e.zip", ".orvlib", "f.orvlib.bak"})
        folder.write(std::string("root/core/") + name, "x");
    std::filesystem::create_directory(folder.path() + "/root/core/g.orvlib");
    EXPECT_THAT(CatalogFolders::core().catalogs(),
                testing::ElementsAre(folder.file("root/core/a b.orvlib"), folder.file("root/core/b.orvlib")));
    EXPECT_TRUE(CatalogFolders::catalogsIn(folder.file("missing")).empty());
}
