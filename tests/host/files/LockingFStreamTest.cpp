// Reading, writing and opening: when the target gets its new content, and which calls fail.
#include <cerrno>
#include <filesystem>
#include <locale>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/host/files/LockingFStreamFixture.h"
#include "tests/support/ChildProcess.h"

namespace {

using test::kAppend;
using test::kRead;
using test::kWrite;
using test::Names;

using LockingFStreamTest = test::LockingFStreamFixture;

TEST_F(LockingFStreamTest, readsWhatAnotherWrote)
{
    const std::string content("line\r\n\n\0x\x1A\xFF", 11);
    LockingFStream out(mFolder.file("data"), kWrite);
    ASSERT_TRUE(out.is_open());
    out << content;
    out.close();
    EXPECT_TRUE(out.good());
    EXPECT_FALSE(out.is_open());
    LockingFStream in(mFolder.file("data"), kRead);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), content);
    in.close();
    EXPECT_FALSE(in.fail());
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, carriesMoreThanItsBuffer)
{
    std::string content;
    for (int i = 0; i < 100000; ++i)
        content += std::to_string(i) + "\n";
    LockingFStream out(mFolder.file("data"), kWrite);
    for (int i = 0; i < 100000; ++i)
        out << i << "\n";
    out.close();
    EXPECT_TRUE(out.good());
    EXPECT_TRUE(readAll(mFolder.file("data")) == content);
}

TEST_F(LockingFStreamTest, targetKeepsItsOldContentUntilClose)
{
    const fileString file = mFolder.write("data", "old");
    LockingFStream out(file, kWrite);
    out << "new" << std::flush;
    EXPECT_EQ(test::readFile(file), "old");
    out.close();
    EXPECT_EQ(test::readFile(file), "new");
}

TEST_F(LockingFStreamTest, withoutCloseTheTargetStaysAndNothingIsLeft)
{
    const fileString file = mFolder.write("data", "old");
    {
        LockingFStream out(file, kWrite);
        out << "new" << std::flush;
        LockingFStream fresh(mFolder.file("fresh"), kWrite);
        fresh << "new";
    }
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, aFailedStreamIsNotCommitted)
{
    const fileString file = mFolder.write("data", "old");
    LockingFStream out(file, kWrite);
    out << "new";
    out.setstate(std::ios_base::failbit);
    out.close();
    EXPECT_TRUE(out.fail());
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, closingTwiceFailsAndChangesNothing)
{
    const fileString file = mFolder.file("data");
    LockingFStream out(file, kWrite);
    out << "new";
    out.close();
    EXPECT_TRUE(out.good());
    out.close();
    EXPECT_TRUE(out.fail());
    EXPECT_EQ(test::readFile(file), "new");
}

TEST_F(LockingFStreamTest, failuresThrowWhereAskedFor)
{
    LockingFStream missing(mFolder.file("none"), kRead);
    EXPECT_THROW(missing.exceptions(std::ios_base::failbit | std::ios_base::badbit), std::ios_base::failure);
    LockingFStream out(mFolder.file("folder/none"), kWrite);
    EXPECT_THROW(out.exceptions(std::ios_base::failbit), std::ios_base::failure);
    LockingFStream closed(mFolder.file("data"), kWrite);
    closed.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    std::filesystem::remove_all(mFolder.path());
    EXPECT_THROW(closed.close(), std::ios_base::failure) << "there is nothing left to rename";
}

TEST_F(LockingFStreamTest, foldersAndPipesDoNotOpen)
{
    std::filesystem::create_directory(mFolder.path() + "/folder");
    ASSERT_EQ(mkfifo(mFolder.file("fifo").toNativeString().c_str(), 0666), 0);
    ASSERT_EQ(symlink("circle", mFolder.file("circle").toNativeString().c_str()), 0);
    const Names before = list();
    const std::string file = mFolder.path() + "/fresh";
    for (const auto mode : {std::ios_base::openmode(kRead), kWrite, kAppend}) {
        EXPECT_FALSE(opens(mFolder.file("folder"), mode));
        EXPECT_FALSE(opens(mFolder.file("fifo"), mode)) << "and does not wait";
        EXPECT_FALSE(opens(mFolder.file("circle"), mode));
        EXPECT_FALSE(opens(mFolder.file("none/none"), mode));
        EXPECT_FALSE(opens(fileString("/dev/null"), mode));
        EXPECT_FALSE(opens(fileString(file + std::string(1, '\0')), mode));
        EXPECT_FALSE(opens(fileString(), mode));
    }
    EXPECT_FALSE(opens(fileString(file), kRead));
    EXPECT_EQ(list(), before);
}

/// The system's error number if the stream does not open, otherwise 0.
int reasonNotToOpen(const fileString& path, std::ios_base::openmode mode)
{
    errno = 0;
    const LockingFStream stream(path, mode);
    return stream.is_open() ? 0 : errno;
}

TEST_F(LockingFStreamTest, theReasonForAFailureIsInErrno)
{
    const fileString file = mFolder.write("data", "old");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0444), 0);
    EXPECT_EQ(reasonNotToOpen(mFolder.file("none"), kRead), ENOENT);
    EXPECT_EQ(reasonNotToOpen(fileString(mFolder.path()), kRead), EISDIR);
    for (const auto mode : {kWrite, kAppend}) {
        EXPECT_EQ(reasonNotToOpen(file, mode), EACCES);
        EXPECT_EQ(reasonNotToOpen(mFolder.file("none/none"), mode), ENOENT);
        EXPECT_EQ(reasonNotToOpen(fileString(mFolder.path()), mode), EISDIR);
    }
    std::filesystem::create_directory(mFolder.path() + "/fresh");
    LockingFStream out(mFolder.file("fresh/data"), kWrite);
    std::filesystem::remove_all(mFolder.path() + "/fresh");
    errno = 0;
    out.close();
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(LockingFStreamTest, aReadOnlyTargetIsRefusedAlsoForTheSuperuser)
{
    const fileString file = mFolder.write("data", "old");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0444), 0);
    EXPECT_FALSE(opens(file, kWrite));
    EXPECT_FALSE(opens(file, kAppend));
    EXPECT_EQ(readAll(file), "old");
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, theFileOfAnotherIsRefused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser, who can become somebody else";
    ASSERT_EQ(chmod(mFolder.path().c_str(), 0777), 0);
    const fileString file = mFolder.write("data", "old");
    const auto end =
        test::runWithoutRights([&] { return opens(file, kWrite) || opens(file, kAppend) ? 1 : 0; });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(list(), Names{"data"});
}

TEST_F(LockingFStreamTest, aLinkIsFollowedToItsTarget)
{
    mFolder.write("real/data", "old");
    ASSERT_EQ(symlink("real/hop", mFolder.file("link").toNativeString().c_str()), 0);
    ASSERT_EQ(symlink("data", mFolder.file("real/hop").toNativeString().c_str()), 0);
    writeAll(mFolder.file("link"), "new");
    EXPECT_EQ(test::readFile(mFolder.file("real/data")), "new");
    EXPECT_EQ(list(), (Names{"link", "real/", "real/data", "real/hop"}));
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder.file("link").toNativeString()));
}

TEST_F(LockingFStreamTest, aLinkToAMissingFileCreatesThatFile)
{
    std::filesystem::create_directory(mFolder.path() + "/real");
    const std::string target = mFolder.path() + "/real/data";
    ASSERT_EQ(symlink(target.c_str(), mFolder.file("link").toNativeString().c_str()), 0);
    writeAll(mFolder.file("link"), "new");
    EXPECT_EQ(test::readFile(target), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder.file("link").toNativeString()));
}

TEST_F(LockingFStreamTest, theTargetKeepsItsPermissionsAndOwner)
{
    const fileString file = mFolder.write("data", "old");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0606), 0);
    const uid_t owner = geteuid() == 0 ? 65534 : geteuid();
    ASSERT_EQ(chown(file.toNativeString().c_str(), owner, getegid()), 0);
    writeAll(file, "new");
    struct stat status = {};
    ASSERT_EQ(stat(file.toNativeString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0606u);
    EXPECT_EQ(status.st_uid, owner);
}

TEST_F(LockingFStreamTest, aNewFileHasTheUsualPermissions)
{
    const mode_t mask = umask(022);
    writeAll(mFolder.file("data"), "new");
    umask(mask);
    struct stat status = {};
    ASSERT_EQ(stat(mFolder.file("data").toNativeString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST_F(LockingFStreamTest, namesOfEveryLengthCanBeWritten)
{
    const std::string longest(255, 'n');
    writeAll(mFolder.file(longest), "new");
    writeAll(mFolder.file("\xFF\x01"), "new");
    EXPECT_EQ(readAll(mFolder.file(longest)), "new");
    EXPECT_EQ(list().size(), 2u);
}

TEST_F(LockingFStreamTest, numbersAreWrittenAndReadInTheClassicLocale)
{
    struct Grouped : std::numpunct<char>
    {
        char do_thousands_sep() const override { return '.'; }
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Grouped));
    LockingFStream out(mFolder.file("data"), kWrite);
    out << 1234567 << " " << 0.5;
    out.close();
    LockingFStream in(mFolder.file("data"), kRead);
    int whole = 0;
    double half = 0;
    in >> whole >> half;
    std::locale::global(former);
    EXPECT_EQ(test::readFile(mFolder.file("data")), "1234567 0.5");
    EXPECT_EQ(whole, 1234567);
    EXPECT_EQ(half, 0.5);
}

TEST_F(LockingFStreamTest, appendingWritesInPlace)
{
    const fileString file = mFolder.file("log");
    for (const char* text : {"one\n", "two\n"}) {
        LockingFStream out(file, kAppend);
        out << text << std::flush;
        EXPECT_NE(test::readFile(file).find(text), std::string::npos) << "before it is closed";
        out.close();
        EXPECT_TRUE(out.good());
    }
    EXPECT_EQ(test::readFile(file), "one\ntwo\n");
    EXPECT_EQ(list(), Names{"log"});
}

} // namespace
