#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"
#include "tests/support/TempFolder.h"

TEST(ReplacementFile, theNameBesideFitsAndBelongsToItsTargetAlone)
{
    const std::string longName(254, 'n');
    const std::string first = host::ReplacementFile::besideName("/folder/" + longName + "1");
    const std::string second = host::ReplacementFile::besideName("/folder/" + longName + "2");
    EXPECT_NE(first, second);
    EXPECT_EQ(fileString(first).parentPath(), fileString("/folder"));
    EXPECT_LE(fileString(first).stemWithExtension().toNativeString().size(), 255u);
    EXPECT_EQ(fileString(first).extension(), fileString(".orv-new"));
    EXPECT_EQ(host::ReplacementFile::besideName("data").find('/'), std::string::npos);
}

TEST(ReplacementFile, aFreshFileNeverReplacesOneThatAppearedMeanwhile)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const fileString target = folder.file("data");
    auto file = ReplacementFile::open(target.toNativeString(), ReplacementFile::Mode::Fresh);
    ASSERT_TRUE(file);
    test::writeFile(target.toNativeString(), "somebody else's");
    EXPECT_FALSE(file->commit());
    EXPECT_EQ(errno, EEXIST);
    file.reset();
    EXPECT_FALSE(ReplacementFile::open(target.toNativeString(), ReplacementFile::Mode::Fresh));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(test::readFile(target), "somebody else's");
    EXPECT_EQ(test::listTree(folder.path()), std::vector<std::string>{"data"});
}

TEST(ReplacementFile, aFileBesideThatIsNoLongerOursIsNotPutInPlace)
{
    using host::ReplacementFile;
    const test::TempFolder folder;
    const std::string target = folder.write("data", "old").toNativeString();
    auto file = ReplacementFile::open(target, ReplacementFile::Mode::Locked);
    ASSERT_TRUE(file);
    const std::string beside = ReplacementFile::besideName(target);
    FileUtils::removePath(fileString(beside));
    test::writeFile(beside, "half of what another writer has");
    EXPECT_FALSE(file->commit());
    EXPECT_EQ(test::readFile(target), "old");
}
