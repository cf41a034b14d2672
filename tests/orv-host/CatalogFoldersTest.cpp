#include "OrvHost/update/CatalogFolders.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using CatalogFoldersTest = test::HostedTest;

TEST_F(CatalogFoldersTest, downloadFoldersAreNamedAfterTheApplicationAndTheCategory)
{
    EXPECT_EQ(folder.file("root/temp/orv-library.downloads.core"),
              OrvHost::CatalogFolders::core().downloadFolder);
    EXPECT_EQ(folder.file("root/temp/orv-library.downloads.bonus"),
              OrvHost::CatalogFolders::bonus().downloadFolder);
    EXPECT_EQ(folder.file("root/temp/orv-library.downloads.manufacturer"),
              OrvHost::CatalogFolders::manufacturer().downloadFolder);
    EXPECT_EQ(folder.file("root/core/catalog_hash.txt"), OrvHost::CatalogFolders::core().hashFile());
}

TEST_F(CatalogFoldersTest, catalogsAreRegularFilesWithTheExactExtension)
{
    for (const char* name :
         {"b.orvlib", "a b.orvlib", "c.ORVLIB", "d.orvlibz", "e.zip", ".orvlib", "f.orvlib.bak"})
        folder.write(std::string("root/core/") + name, "x");
    std::filesystem::create_directory(folder.path() + "/root/core/g.orvlib");
    EXPECT_THAT(OrvHost::CatalogFolders::core().catalogs(),
                testing::ElementsAre(folder.file("root/core/a b.orvlib"), folder.file("root/core/b.orvlib")));
    EXPECT_TRUE(OrvHost::CatalogFolders::catalogsIn(folder.file("missing")).empty());
}
