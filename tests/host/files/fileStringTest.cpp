#include "OrvLibrary/host/fileString.h"

#include <map>
#include <sstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/impl/files/TempNames_p.h"
#include "tests/support/TempFolder.h"

namespace {

fileString path(const std::string& native)
{
    return fileString(native);
}

struct Parts
{
    const char* whole;
    const char* stem;
    const char* nameWithExtension;
    const char* extension;
    const char* parent;
    const char* parentWithSeparator;
    const char* pathAndName;
};

class FileStringParts : public testing::TestWithParam<Parts>
{
};

TEST_P(FileStringParts, splitAsDocumented)
{
    const Parts& parts = GetParam();
    const fileString whole = path(parts.whole);
    EXPECT_EQ(whole.stem().toNativeString(), parts.stem);
    EXPECT_EQ(whole.stemWithExtension().toNativeString(), parts.nameWithExtension);
    EXPECT_EQ(whole.extension().toNativeString(), parts.extension);
    EXPECT_EQ(whole.parentPath().toNativeString(), parts.parent);
    EXPECT_EQ(whole.parentPathWithSeparator().toNativeString(), parts.parentWithSeparator);
    EXPECT_EQ(whole.pathAndName().toNativeString(), parts.pathAndName);
}

INSTANTIATE_TEST_SUITE_P(
    FileString, FileStringParts,
    testing::Values(Parts{"", "", "", "", "", "", ""}, //
                    Parts{"/a/Doors.orvlib", "Doors", "Doors.orvlib", ".orvlib", "/a", "/a/", "/a/Doors"},
                    Parts{"Doors.orvlib", "Doors", "Doors.orvlib", ".orvlib", "", "", "Doors"},
                    Parts{"/a/Doors", "Doors", "Doors", "", "/a", "/a/", "/a/Doors"},
                    Parts{"/a.b/Doors", "Doors", "Doors", "", "/a.b", "/a.b/", "/a.b/Doors"},
                    Parts{"/a/Doors.orvlib.bak", "Doors.orvlib", "Doors.orvlib.bak", ".bak", "/a", "/a/",
                          "/a/Doors.orvlib"},
                    Parts{"/a/Doors.ORVLIB", "Doors", "Doors.ORVLIB", ".ORVLIB", "/a", "/a/", "/a/Doors"},
                    Parts{"/a/.orvlib", ".orvlib", ".orvlib", "", "/a", "/a/", "/a/.orvlib"},
                    Parts{"/a/Doors.", "Doors", "Doors.", ".", "/a", "/a/", "/a/Doors"},
                    Parts{"/a/..", "..", "..", "", "/a", "/a/", "/a/.."}, //
                    Parts{".", ".", ".", "", "", "", "."},                //
                    Parts{"/a/b/", "", "", "", "/a/b", "/a/b/", "/a/b/"},
                    Parts{"/a.b/", "", "", "", "/a.b", "/a.b/", "/a.b/"},
                    Parts{"/a", "a", "a", "", "/", "/", "/a"}, //
                    Parts{"/", "", "", "", "/", "/", "/"},     //
                    Parts{"/a//b.c", "b", "b.c", ".c", "/a", "/a//", "/a//b"}));

struct Join
{
    const char* left;
    const char* right;
    const char* joined;
};

class FileStringJoin : public testing::TestWithParam<Join>
{
};

TEST_P(FileStringJoin, putsExactlyOneSeparatorBetween)
{
    EXPECT_EQ((path(GetParam().left) / path(GetParam().right)).toNativeString(), GetParam().joined);
}

INSTANTIATE_TEST_SUITE_P(FileString, FileStringJoin,
                         testing::Values(Join{"/a", "b", "/a/b"}, Join{"/a/", "b", "/a/b"},
                                         Join{"/a", "/b", "/a/b"}, Join{"/a//", "//b", "/a/b"},
                                         Join{"/", "b", "/b"}, Join{"/", "/b", "/b"}, Join{"/a", "", "/a/"},
                                         Join{"/a/", "", "/a/"}, Join{"", "b", "b"}, Join{"", "/b", "/b"},
                                         Join{"", "", ""}, Join{"a", "b/", "a/b/"}));

TEST(FileString, plusAddsNoSeparator)
{
    EXPECT_EQ((path("/a/") + path("b")).toNativeString(), "/a/b");
    EXPECT_EQ((path("/a/b") + path(".zip")).toNativeString(), "/a/b.zip");
}

TEST(FileString, isBuiltFromUnicodeTextAndGivesItBack)
{
    const marl::unicode::String text(u8"T\u00fcren/\u6241.orvlib");
    const fileString fromText = text;
    EXPECT_EQ(fromText.toNativeString(), u8"T\u00fcren/\u6241.orvlib");
    EXPECT_EQ(fromText.unicodeString(), text);
}

TEST(FileString, bytesThatAreNotUtf8PassThroughUnharmed)
{
    const test::TempFolder folder;
    const std::string name = "T\xFCr\x80\x01.orvlib";
    const fileString file = folder.write(name, "x");
    EXPECT_TRUE(file.pathExists());
    const fileString again(file.unicodeString());
    EXPECT_EQ(again.toNativeString(), folder.path() + "/" + name);
    EXPECT_EQ(again.stemWithExtension().toNativeString(), name);
    std::ostringstream stream;
    stream << again;
    EXPECT_EQ(stream.str(), folder.path() + "/" + name);
}

TEST(FileString, isAKeyInByteOrder)
{
    EXPECT_LT(path("B"), path("a"));
    EXPECT_FALSE(path("a") < path("a"));
    EXPECT_TRUE(path("a") == path("a"));
    EXPECT_TRUE(path("a") != path("A"));
    const std::map<fileString, int> map{{path("b"), 1}, {path("a"), 2}};
    EXPECT_EQ(map.begin()->second, 2);
}

TEST(FileString, emptyIsTheEmptyText)
{
    EXPECT_TRUE(fileString().empty());
    EXPECT_FALSE(fileString().pathExists());
    EXPECT_FALSE(path("a").empty());
    EXPECT_TRUE(fileString(static_cast<const char*>(nullptr)).empty());
}

TEST(FileString, filesAndFoldersExistAndBrokenLinksDoNot)
{
    const test::TempFolder folder;
    EXPECT_TRUE(folder.write("file", "").pathExists());
    EXPECT_TRUE(path(folder.path()).pathExists());
    EXPECT_FALSE(folder.file("none").pathExists());
    ASSERT_EQ(symlink("none", folder.file("broken").toNativeString().c_str()), 0);
    EXPECT_FALSE(folder.file("broken").pathExists());
}

TEST(FileString, aPathWithANulNeverExists)
{
    const test::TempFolder folder;
    const fileString file = folder.write("file", "x");
    const fileString withNul(file.toNativeString() + std::string(1, '\0') + ".orvlib");
    EXPECT_FALSE(withNul.pathExists());
    EXPECT_EQ(withNul.modificationTime(), 0);
    EXPECT_EQ(withNul.extension().toNativeString(), ".orvlib");
}

TEST(FileString, modificationTimeIsInSecondsSinceTheEpoch)
{
    const test::TempFolder folder;
    const fileString file = folder.write("file", "x");
    const timespec times[] = {{1, 0}, {1234567890, 999999999}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.toNativeString().c_str(), times, 0), 0);
    EXPECT_EQ(file.modificationTime(), 1234567890);
    EXPECT_EQ(folder.file("none").modificationTime(), 0);
}

class FileStringTempName : public testing::Test
{
protected:
    FileStringTempName() : mPaths(path(mFolder.path())), mFormer(PathUtils::install(&mPaths)) {}
    ~FileStringTempName() override { PathUtils::install(mFormer); }

    test::TempFolder mFolder;
    RootPathUtils mPaths;
    PathUtils* mFormer;
};

TEST_F(FileStringTempName, isNewAndInTheTemporaryFolder)
{
    fileString first, second;
    first.generateAsTempName(".zip");
    second.generateAsTempName(path(".zip"));
    EXPECT_NE(first, second);
    EXPECT_FALSE(first.pathExists());
    EXPECT_EQ(first.extension(), path(".zip"));
    EXPECT_EQ(first.parentPathWithSeparator(), mPaths.getTempPath());
    EXPECT_TRUE(first.parentPath().pathExists());
}

TEST_F(FileStringTempName, firstOneRemovesWhatAKilledWriterLeft)
{
    const fileString left = mPaths.getTempPath() / path(host::makeTempName(".zip"));
    test::writeFile(left.toNativeString(), "half");
    fileString name;
    name.generateAsTempName(".zip");
    EXPECT_FALSE(left.pathExists());
}

TEST_F(FileStringTempName, replacesTheFormerValueAndMayHaveNoExtension)
{
    fileString name = path("/former/value.zip");
    name.generateAsTempName("");
    EXPECT_EQ(name.parentPathWithSeparator(), mPaths.getTempPath());
    EXPECT_EQ(name.extension(), fileString());
}

} // namespace
